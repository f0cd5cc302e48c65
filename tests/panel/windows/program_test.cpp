// The panel in the program, brought by the module as its users have it.

#include <sys/wait.h>

#include <QElapsedTimer>

#include <core/session.h>
#include <core/sheet_set_panel.h>
#include <ed/tarv_palette_prop_manager.h>
#include <panel_windows/drag_tree_ctrl.h>
#include <panel_windows/sheet_set_dlg.h>
#include <panel_windows/sheet_set_palette_set.h>
#include <sm/tv_sm_sheet_set_mgr.h>
#include <ui/qt_text.h>

#include "../../app/window/window_scene.h"
#include "tied_fork.h"

namespace {

class PanelProgramTest : public testing::Test, protected ProgramFolder
{
protected:
    PanelProgramTest()
    {
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        std::filesystem::copy_file(std::filesystem::path(KV_SAMPLES) / "house.dst",
                                   folder.path() / "house.dst");
        start();
    }
    ~PanelProgramTest() override
    {
        end();
        ui::setStateStore(nullptr);
    }
    void start()
    {
        app::ProgramFolders own = folders();
        own.modules.push_back(base::pathFromNative(KV_BUILD_DIR "/modules"));
        program = std::make_unique<app::Program>(app::Program::Setup{own, nullptr, &messages});
        m_theme = std::make_unique<ui::ThemeManager>(); // follows the editor's variable
        main = std::make_unique<window::MainWindow>(*program, nullptr, nullptr);
        main->resize(1000, 640);
        main->show();
        ASSERT_TRUE(program->loadModules());
        settle();
    }
    void end()
    {
        while (!GetSessionDatabases().empty())
            CloseCurrentSheetSet();
        main->commandPanel().refuseAll();
        program->stop();
        main.reset();
        m_theme.reset();
        program.reset();
    }
    static void settle()
    {
        for (int i = 0; i < 5; ++i)
            QApplication::processEvents();
    }
    void type(const char* text)
    {
        QLineEdit& line = main->commandPanel().line();
        QTest::keyClicks(&line, QLatin1String(text));
        QTest::keyClick(&line, Qt::Key_Return);
        settle();
    }
    CTarvSheetSetPaletteSet* panel() const
    {
        for (QDockWidget* dock : main->findChildren<QDockWidget*>())
            if (auto* set = dynamic_cast<CTarvSheetSetPaletteSet*>(dock))
                return set;
        return nullptr;
    }
    CDragTreeCtrl& tree() const { return panel()->sheetList().page().tree(); }
    void picture(const char* name) const
    {
        const QString to = qEnvironmentVariable("KV_UI_PICTURES");
        if (!to.isEmpty())
            main->grab().save(to + QLatin1Char('/') + QLatin1String(name) + QLatin1String(".png"));
    }

private:
    TarvikConfig m_state{folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;

protected:
    AnsweringMessages messages;
    std::unique_ptr<app::Program> program;
    std::unique_ptr<window::MainWindow> main;
};

TEST_F(PanelProgramTest, SheetSetShowsThePaletteSetAndSheetSetHideHidesIt)
{
    EXPECT_EQ(panel(), nullptr) << "made at the first need";
    type("SHEETSET");
    ASSERT_NE(panel(), nullptr);
    EXPECT_TRUE(panel()->isVisible());
    EXPECT_EQ(panel()->GetPaletteCount(), 3);
    EXPECT_EQ(panel()->side(), ed::DockSide::Right);
    EXPECT_TRUE(program->mainAppService().isSheetSetPaletteShown());
    type("SHEETSETHIDE");
    EXPECT_FALSE(panel()->isVisible());
    EXPECT_FALSE(program->mainAppService().isSheetSetPaletteShown());
    type("SHEETSET");
    panel()->close();
    EXPECT_FALSE(program->mainAppService().isSheetSetPaletteShown()) << "by its cross as well";
}

TEST_F(PanelProgramTest, TheMenuEntryIsCheckedWhileThePanelIsShownAndHidesIt)
{
    QAction* entry = nullptr;
    for (QAction* action : main->findChildren<QAction*>())
        if (action->text() == ui::textOf(23570))
            entry = action;
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->isCheckable());
    EXPECT_FALSE(entry->isChecked());
    entry->trigger();
    settle();
    ASSERT_NE(panel(), nullptr);
    EXPECT_TRUE(panel()->isVisible());
    EXPECT_TRUE(entry->isChecked());
    panel()->close();
    EXPECT_FALSE(entry->isChecked()) << "hidden by its cross";
    type("SHEETSET");
    EXPECT_TRUE(entry->isChecked()) << "shown by its command";
    entry->trigger();
    settle();
    EXPECT_FALSE(panel()->isVisible());
    EXPECT_FALSE(entry->isChecked());
}

TEST_F(PanelProgramTest, AnOpenedSetStandsInTheTree)
{
    main->openFiles({folder.file("house.dst")});
    settle();
    ASSERT_NE(panel(), nullptr);
    EXPECT_TRUE(panel()->isVisible());
    const QModelIndex root = tree().model()->index(0, 0);
    ASSERT_TRUE(root.isValid());
    EXPECT_EQ(ui::fromQt(root.data().toString()), GetCurrentDatabase()->getSheetSet()->getName());
    EXPECT_GT(tree().model()->rowCount(root), 0);
    tree().items().tree().ExpandAll(true);
    settle();
    picture(ui::theme() == ui::Theme::Light ? "panel-light" : "panel-dark");
    const ui::Theme former = ui::theme();
    main->perform(app::WindowAction::Theme);
    settle();
    EXPECT_NE(ui::theme(), former);
    EXPECT_EQ(ui::fromQt(root.data().toString()), GetCurrentDatabase()->getSheetSet()->getName());
    picture(ui::theme() == ui::Theme::Light ? "panel-light" : "panel-dark");
}

TEST_F(PanelProgramTest, WhatAnotherProcessWritesIsShown)
{
    main->openFiles({folder.file("house.dst")});
    TvSmSheetSetMgr other;
    TvSmDatabase* copy = other.openDatabase(folder.file("house.dst"), true, 0);
    ASSERT_NE(copy, nullptr);
    ASSERT_TRUE(copy->lockDb(copy));
    copy->getSheetSet()->setName(u"Villa");
    ASSERT_TRUE(copy->unlockDb(copy, true));
    other.closeDatabase(copy);
    EXPECT_TRUE(QTest::qWaitFor([this] {
        return tree().model()->index(0, 0).data().toString() == QLatin1String("Villa");
    }));
}

/// Another process that changes the set and commits.
template <class Change>
void changeInAnotherProcess(const TvString& file, Change change)
{
    const pid_t child = tiedFork();
    if (child == 0) {
        TvSmSheetSetMgr other;
        TvSmDatabase* copy = other.openDatabase(file, true, 0);
        const bool isChanged =
            copy && copy->lockDb(copy) && (change(*copy), true) && copy->unlockDb(copy, true);
        ::_exit(isChanged ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
}

TEST_F(PanelProgramTest, WhatAnotherProcessWritesIsShownWithTheViewAsItWas)
{
    const TvString file = folder.file("house.dst");
    TvString handle;
    {
        TvSmSheetSetMgr other;
        TvSmDatabase* copy = other.openDatabase(file, true, 0);
        ASSERT_TRUE(copy && copy->lockDb(copy));
        for (int i = 0; i < 60; ++i) {
            TvSmSheet* sheet = copy->getSheetSet()->createSheet(TvString().format(u"S%d", i), u"");
            copy->getSheetSet()->insertComponent(sheet, nullptr);
            if (i == 40)
                handle = sheet->objectId().getHandle();
        }
        ASSERT_TRUE(copy->unlockDb(copy, true));
        other.closeDatabase(copy);
    }
    main->openFiles({file});
    settle();
    panel::SheetTree& items = tree().items().tree();
    items.ExpandAll(true);
    items.setExpanded(items.root()->firstChild(), false);
    const auto open = items.GetExpandSnapshot();
    items.selectOnly(items.itemOf(handle));
    settle();
    tree().scrollToTop(items.itemOf(handle)->previousSibling()->previousSibling());
    settle();
    const panel::TreeItem* top = tree().firstVisible();
    ASSERT_NE(top, items.root());

    QElapsedTimer since;
    changeInAnotherProcess(file, [&](TvSmDatabase& copy) {
        tvrxCast<TvSmSheet>(copy.findObject(handle))->setTitle(u"Villa");
    });
    since.start();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return items.labelOf(*items.itemOf(handle)) == u"Villa"; }, 30000));
    RecordProperty("shownAfterMs", static_cast<int>(since.elapsed()));
    settle();
    EXPECT_EQ(items.GetExpandSnapshot(), open);
    EXPECT_EQ(items.GetSelectedHandles(), std::set<TvString>{handle});
    EXPECT_EQ(items.caret(), items.itemOf(handle));
    EXPECT_EQ(tree().firstVisible(), top) << "nothing has scrolled";
}

TEST_F(PanelProgramTest, AFileThatWasDeletedIsWrittenBackFromMemory)
{
    main->openFiles({folder.file("house.dst")});
    settle();
    const std::filesystem::path file = folder.path() / "house.dst";
    ASSERT_TRUE(std::filesystem::remove(file));
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(file); }, 30000));
    settle();
    EXPECT_TRUE(messages.asked.empty()) << "and the user is not told";
    TvSmSheetSetMgr other;
    TvSmDatabase* copy = other.openDatabase(folder.file("house.dst"), true, 0);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getSheetSet()->getName(), GetCurrentDatabase()->getSheetSet()->getName());
    other.closeDatabase(copy);
}

TEST_F(PanelProgramTest, ThePanelComesBackWhereItWas)
{
    type("SHEETSET");
    panel()->RestoreControlBar(static_cast<int>(ed::DockSide::Left));
    panel()->SetActivePalette(1);
    end();
    start();
    type("SHEETSET");
    EXPECT_EQ(panel()->side(), ed::DockSide::Left);
    EXPECT_EQ(ui::fromQt(ui::textOf(796)), panel()->GetActivePalette()->GetTitle());
}

} // namespace
