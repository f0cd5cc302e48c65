// The panel with a folder that does not answer: the window's thread never asks it anything.

#include <QProgressDialog>
#include <QTimer>

#include <base/kv_file_system.h>
#include <core/auto_open_reactor.h>
#include <core/sheet_data.h>
#include <core/watch_poller.h>
#include <ed/layouts.h>

#include "dead_folder.h"
#include "page_scene.h"

namespace {

class DeadFolderTest : public PageTest
{
protected:
    void SetUp() override
    {
        PageTest::SetUp();
        sm::environment().files = nullptr; // files are asked about in other threads as well
        core::resetTipStyle();
        std::filesystem::create_directory(folder.path() / "share");
        drawingFor(plan, "share/plan.dwg");
        drawingFor(stair, "share/stair.dwg");
        drawingFor(section, "section.dwg");
        far = made("share/far.dst");
        change(far, [](TvSmSheetSet& top) {
            top.setName(u"Far");
            addSheet(&top, u"9", u"Shed");
        });
        ActivateSheetSet(far);
        ActivateSheetSet(database);
        poller = std::make_unique<core::WatchPoller>(5, 60, 0);
        poller->tick();
        dlg->page().expandAll(true);
        settle();
        share.die();
    }
    void TearDown() override
    {
        EXPECT_EQ(share.askedByWindow(), std::vector<std::string>());
        share.comeBack();
        poller.reset();
        PageTest::TearDown();
    }
    /// Events and ticks until @p isSo.
    template <class Condition>
    bool turnUntil(Condition isSo)
    {
        return QTest::qWaitFor(
            [&] {
                poller->tick();
                return isSo();
            },
            30000);
    }
    void moveTo(const QPoint& to)
    {
        QWidget* area = tree().viewport();
        QMouseEvent move(QEvent::MouseMove, to, area->mapToGlobal(to), Qt::NoButton, Qt::NoButton,
                         {});
        QApplication::sendEvent(area, &move);
    }
    CTarvSheetSetToolTipCtrl& tip() { return tree().tips()->tip(); }
    bool isFarSilent() const
    {
        return core::lockInfoAtHand(far).state == base::LockState::Unreachable;
    }
    /// Whoever is asked to wait gives up.
    void refuseToWait()
    {
        QTimer* look = new QTimer(holder.get());
        QObject::connect(look, &QTimer::timeout, holder.get(), [this] {
            for (QWidget* window : QApplication::topLevelWidgets())
                if (auto* dialog = qobject_cast<QProgressDialog*>(window);
                    dialog && dialog->isVisible()) {
                    ++waits;
                    dialog->cancel();
                }
        });
        look->start(10);
    }

    TvSmDatabase* far = nullptr; // its file is in the folder
    std::unique_ptr<core::WatchPoller> poller;
    int waits = 0;
    DeadFolder share{(folder.path() / "share").string()};
};

TEST(DeadFolder, NotesWhatTheWindowAsksAndLetsOtherFoldersLive)
{
    const TempFolder folder;
    std::filesystem::create_directory(folder.path() / "share");
    folder.write("share/plan.dwg", "a");
    folder.write("section.dwg", "a");
    DeadFolder share((folder.path() / "share").string());
    share.die();
    EXPECT_FALSE(KvFileSystem::isFileExisting(folder.file("share/plan.dwg")));
    EXPECT_FALSE(share.askedByWindow().empty());
    EXPECT_TRUE(KvFileSystem::isFileExisting(folder.file("section.dwg")));
    share.comeBack();
    EXPECT_TRUE(KvFileSystem::isFileExisting(folder.file("share/plan.dwg")));
}

TEST_F(DeadFolderTest, TicksGoOnAndTheSetCountsAsUnreachable)
{
    ASSERT_TRUE(turnUntil([this] { return isFarSilent(); }));
    changeElsewhere(
        [this](TvSmDatabase& copy) { inCopy<TvSmSheet>(copy, plan)->setTitle(u"Other"); });
    EXPECT_TRUE(turnUntil([this] { return rows().find("1 - Other") != std::string::npos; }))
        << "the other set is watched on";
}

TEST_F(DeadFolderTest, ASetThatNothingHappenedToIsNotAskedAbout)
{
    share.comeBack();
    poller = std::make_unique<core::WatchPoller>(10'000, 60, 1'000'000);
    poller->tick(); // from now on the system tells
    poller->tick();
    share.die();
    for (int i = 0; i < 50; ++i)
        poller->tick();
    EXPECT_EQ(share.asked(), 0);
    poller = std::make_unique<core::WatchPoller>(0, 60, 0);
    poller->tick();
    EXPECT_TRUE(QTest::qWaitFor([this] { return share.asked() > 0; }, 30000))
        << "one that trusts nobody asks";
}

TEST_F(DeadFolderTest, TheTreeIsFilledAndItsStatusIsAskedFor)
{
    set(u"SSMSHEETSTATUS", 1);
    dlg->page().RebuildTree();
    EXPECT_NE(rows().find("1 - Plan"), std::string::npos);
    dlg->page().UpdateStatusImages();
    settle();
    ASSERT_TRUE(QTest::qWaitFor([this] { return share.waiting() > 0; }, 30000));
    holder->grab();
}

TEST_F(DeadFolderTest, ATipShowsWhatIsKnownAndTheRestWhenTheFolderIsBack)
{
    moveTo(pointOf(plan));
    ASSERT_TRUE(QTest::qWaitFor([this] { return tip().isVisible(); }, 30000));
    EXPECT_TRUE(tip().isWaiting());
    EXPECT_EQ(tip().tip().text.find(u"1 - Plan"), 0);
    EXPECT_EQ(tip().tip().text.find(u"bytes"), TvString::npos);
    tip().grab();
    const QSize before = tip().size();
    share.comeBack();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !tip().isWaiting(); }, 30000));
    EXPECT_TRUE(tip().isVisible());
    EXPECT_NE(tip().tip().text.find(u"bytes"), TvString::npos);
    EXPECT_NE(tip().size(), before) << "with room for it";
}

TEST_F(DeadFolderTest, TipsOfOneFolderDoNotPileUpThreads)
{
    for (const TvSmSheet* sheet : {plan, stair, plan, stair, plan}) {
        tip().SetHandle(handleOf(sheet));
        EXPECT_TRUE(tip().Update({50, 50}));
        EXPECT_TRUE(tip().isWaiting());
        EXPECT_TRUE(QTest::qWaitFor([this] { return share.asked() > 0; })) << "its thread runs";
        QTest::qWait(2);
    }
    EXPECT_EQ(share.asked(), 1);
    tip().SetHandle(handleOf(section));
    ASSERT_TRUE(tip().Update({50, 50}));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !tip().isWaiting(); }, 30000));
    EXPECT_NE(tip().tip().text.find(u"bytes"), TvString::npos) << "another folder's tip is whole";
}

TEST_F(DeadFolderTest, ATipThatGoesWhileItWaitsIsForgotten)
{
    tip().SetHandle(handleOf(plan));
    ASSERT_TRUE(tip().Update({50, 50}));
    tip().hide();
    share.comeBack();
    QTest::qWait(120);
    EXPECT_FALSE(tip().isVisible());
}

TEST_F(DeadFolderTest, RowsAreSelectedOpenedFilteredAndPainted)
{
    set(u"SSMSHEETSTATUS", 1);
    click(plan);
    click(stair, Qt::ControlModifier);
    EXPECT_EQ(selectedInView().size(), 2u);
    QTest::keyClick(&tree(), Qt::Key_Down);
    dlg->page().expandAll(false);
    dlg->page().expandAll(true);
    tree().SetFilter(u"stair");
    settle();
    EXPECT_EQ(rows().find("1 - Plan"), std::string::npos);
    tree().SetFilter({});
    holder->grab();
}

TEST_F(DeadFolderTest, ItsMenusOpenWithoutIt)
{
    rightClick(pointOf(plan));
    EXPECT_FALSE(menus.ids.empty());
    rightClick(pointOf(stair));
    EXPECT_FALSE(menus.ids.empty());
    rightClick(pointOf(ground));
    EXPECT_FALSE(menus.ids.empty());
    dlg->menus().format();
    dlg->menus().publish();
    dlg->menus().selections();
}

TEST_F(DeadFolderTest, WhoOpensASheetIsAskedToWaitAndMayGiveUp)
{
    refuseToWait();
    doubleClick(plan);
    EXPECT_EQ(waits, 1);
    EXPECT_EQ(tvDocManagerPtr()->documentCount(), 0);
    click(plan);
    dlg->commands().run(panel::kOpenSheetReadOnly);
    dlg->commands().run(panel::kExploreSheet);
    EXPECT_EQ(waits, 3);
}

TEST_F(DeadFolderTest, WhoWaitsGetsTheSheetWhenTheFolderIsBack)
{
    QTimer::singleShot(150, holder.get(), [this] { share.comeBack(); });
    doubleClick(plan);
    EXPECT_EQ(tvDocManagerPtr()->documentCount(), 1);
}

TEST_F(DeadFolderTest, TheBoxSwitchesToASetThatCannotBeReachedAndShowsIt)
{
    ASSERT_TRUE(turnUntil([this] { return isFarSilent(); }));
    auto* box = dlg->Item<COpenComboBox>(CSheetSetDlg::kSetBox);
    const bool isSecond = GetSessionDatabases()[1] == far;
    menus.choice = isSecond ? 4 : 3;
    QTest::mouseClick(box, Qt::LeftButton);
    settle();
    EXPECT_EQ(GetCurrentDatabase(), far);
    EXPECT_NE(rows().find("9 - Shed"), std::string::npos);
    EXPECT_TRUE(COpenComboBox::isLocked());
    EXPECT_FALSE(COpenComboBox::tip().isEmpty());
    holder->grab();
    // What would change it ends quietly.
    QTest::keyClick(&tree(), Qt::Key_Delete);
    dlg->commands().run(panel::kRemoveSheets);
    dlg->commands().run(panel::kFirstFormat);
    rightClick({40, 30});
    poller->tick();
    menus.choice = isSecond ? 3 : 4;
    QTest::mouseClick(box, Qt::LeftButton);
    EXPECT_EQ(GetCurrentDatabase(), database);
    EXPECT_FALSE(COpenComboBox::isLocked());
}

TEST_F(DeadFolderTest, ARecentSetThatDoesNotAnswerIsNotOpenedByWhoDoesNotWait)
{
    UpdateRecentList(folder.file("share/gone.dst"), true);
    refuseToWait();
    menus.choice = 5; // behind two sets
    QTest::mouseClick(dlg->Item<COpenComboBox>(CSheetSetDlg::kSetBox), Qt::LeftButton);
    EXPECT_EQ(waits, 1);
    EXPECT_EQ(GetCurrentDatabase(), database);
}

/// Documents and current drawings in the folder, opened while it was alive.
class DeadDocumentTest : public DeadFolderTest
{
protected:
    void openThenDie(bool readOnly = false)
    {
        share.comeBack();
        ASSERT_TRUE(opened("share/plan.dwg", readOnly));
        ASSERT_TRUE(opened("share/stair.dwg", readOnly));
        share.die();
    }
};

TEST_F(DeadDocumentTest, AnotherDrawingOpensAndIsLookedAt)
{
    openThenDie();
    doubleClick(section);
    EXPECT_EQ(tvDocManagerPtr()->documentCount(), 3);
    EXPECT_EQ(tvDocManagerPtr()->mdiActiveDocument()->docTitle(), u"section.dwg");
    click(section);
    dlg->commands().run(panel::kOpenSheetReadOnly);
    EXPECT_EQ(tvDocManagerPtr()->documentCount(), 3);
}

TEST_F(DeadDocumentTest, AnotherDrawingOfTheSameFileNameOpens)
{
    openThenDie();
    drawingFor(section, "plan.dwg");
    click(section);
    dlg->commands().run(panel::kOpenSheetReadOnly);
    EXPECT_EQ(tvDocManagerPtr()->documentCount(), 3);
    EXPECT_EQ(tvDocManagerPtr()->mdiActiveDocument()->fileName(), folder.file("plan.dwg"));
}

TEST_F(DeadDocumentTest, MenusOpenWhileItsDrawingIsTheCurrentOne)
{
    drawingFor(section, "plan.dwg");
    openThenDie(true);
    tvDocManagerPtr()->activateDocument(
        tvDocManagerPtr()->documentOf(folder.file("share/plan.dwg")));
    ed::setCurrentLayout(*tvDocManagerPtr()->curDocument()->database(),
                         DrawingMaker(*tvDocManagerPtr()->curDocument()->database()).layout(u"A1"));
    for (const TvSmPersist* each : {plan, stair, section}) {
        rightClick(pointOf(each));
        EXPECT_FALSE(menus.ids.empty());
    }
}

TEST_F(DeadDocumentTest, MenusOpenWhileASheetThereHasTheCurrentDrawingsFileName)
{
    share.comeBack();
    std::filesystem::create_directory(folder.path() / "near");
    DrawingMaker maker;
    maker.paper(u"A1").saveAs(folder.file("near/plan.dwg"));
    share.die();
    TvApDocument* document = opened("near/plan.dwg", true);
    ed::setCurrentLayout(*document->database(), maker.layout(u"A1"));
    rightClick(pointOf(section));
    EXPECT_FALSE(menus.ids.empty());
    EXPECT_FALSE(panel::contextFacts(dlg->page().tree(), *at(section)).isCurrentSheetInSet);
}

TEST_F(DeadFolderTest, ADrawingOpensThatNamesASetThereOrIsASheetOfOne)
{
    const TvEdAutoOpenSheetSetReactor reactor;
    set(u"SSLOCATE", 1);
    set(u"SSMAUTOOPEN", 1);
    share.comeBack();
    DrawingMaker maker;
    maker.paper(u"A1").saveAs(folder.file("shed.dwg"));
    change(far, [&](TvSmSheetSet& top) {
        setLayout(tvrxCast<TvSmSheet>(itemsOf(top.getSheetEnumerator()).front()),
                  folder.file("shed.dwg"), maker.handleOf(u"A1"), u"A1");
    });
    TvDbDatabase scratch(false, true);
    ASSERT_EQ(scratch.readDwgFile(folder.file("section.dwg")), TvStatus::Ok);
    ASSERT_TRUE(WriteSheetData(
        &scratch, {u"99", u"A1", folder.file("section.dwg"), folder.file("share/gone.dst")}));
    ASSERT_EQ(scratch.saveAs(folder.file("orphan.dwg")), TvStatus::Ok);
    share.die();
    ASSERT_TRUE(opened("shed.dwg"));
    EXPECT_EQ(GetCurrentDatabase(), far) << "it is open: it is shown";
    ASSERT_TRUE(opened("orphan.dwg"));
    EXPECT_TRUE(messages.asked.empty()) << "whether its set is there nobody knows";
    ActivateSheetSet(database);
}

TEST_F(DeadFolderTest, AnotherSetIsOpenedAndThoseThereAreShownAndClosed)
{
    TvSmDatabase* near = made("near.dst");
    change(near, [](TvSmSheetSet& top) { top.setName(u"Near"); });
    manager().closeDatabase(near);
    UpdateRecentList(folder.file("NEAR.dst"), true);
    UpdateRecentList(folder.file("near.dst"), true);
    menus.choice = 5; // behind two sets
    QTest::mouseClick(dlg->Item<COpenComboBox>(CSheetSetDlg::kSetBox), Qt::LeftButton);
    EXPECT_EQ(GetCurrentDatabase()->getFileName(), folder.file("near.dst"));
    ActivateSheetSet(far);
    settle();
    EXPECT_NE(rows().find("9 - Shed"), std::string::npos);
    dlg->commands().run(panel::kCloseSheetSet);
    EXPECT_NE(GetCurrentDatabase(), far);
}

TEST_F(DeadFolderTest, CommandsThatAskForADrawingOrAPlaceBeforeTheirDialogMayBeGivenUp)
{
    refuseToWait();
    int renamed = 0, made = 0;
    dlg->commands().setHandler(panel::kRenameSheets, [&](auto&) { ++renamed; });
    dlg->commands().setHandler(panel::kNewSheet, [&](auto&) { ++made; });
    click(plan);
    dlg->commands().run(panel::kRenameSheets);
    EXPECT_EQ(waits, 1);
    EXPECT_EQ(renamed, 0);
    change(database, [&](TvSmSheetSet&) {
        auto place = std::make_unique<TvSmFileReference>();
        ASSERT_TRUE(place->initNew(ground, u""));
        ASSERT_TRUE(place->setFileName(folder.file("share")));
        ASSERT_TRUE(ground->setNewSheetLocation(place.get()));
        place.release();
    });
    click(stair); // its subset has the place of the one above
    dlg->commands().run(panel::kNewSheet);
    EXPECT_EQ(made, 0);
    click(section);
    dlg->commands().run(panel::kRenameSheets);
    EXPECT_EQ(renamed, 1);
    click(roof);
    dlg->commands().run(panel::kNewSheet);
    EXPECT_EQ(made, 1);
}

} // namespace
