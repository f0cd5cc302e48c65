// The panel with a folder that does not answer: the window's thread never asks it anything.

#include <QProgressDialog>
#include <QTimer>

#include <base/kv_file_system.h>
#include <core/watch_poller.h>

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
        poller = std::make_unique<core::WatchPoller>(5, 60);
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

} // namespace
