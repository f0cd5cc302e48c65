// The command that renames the sheets of the panel, one dialog after the other.

#include <panel/panel_commands.h>

#include "rename_dialog_scene.h"

namespace {

class NoProgram : public panel::PanelProgram
{
    void exploreFile(const TvString&) override {}
    void hidePanel() override {}
};

/// The page of the session, without a window, with House in it.
class RenameCommandTest : public RenameDialogScene
{
protected:
    void SetUp() override
    {
        RenameDialogScene::SetUp();
        ASSERT_TRUE(database->unlockDb(database, true));
        m_cookie = manager().registerEventHandler(&m_events);
        set(u"SSMSHEETSTATUS", 0);
        host.list = &page;
        page.SwitchDatabase(true);
    }
    void TearDown() override
    {
        RenameDialogScene::TearDown();
        host.list = nullptr;
        manager().unregisterEventHandler(m_cookie);
    }
    panel::TreeItem* at(const TvSmPersist* object) { return page.tree().itemOf(handleOf(object)); }
    /// As the panel shows it, which is not asked for anew by looking at it.
    std::string label(const TvSmPersist* object) { return page.tree().labelOf(*at(object)).utf8(); }
    /// Runs the command on that item, with a step for each of the dialogs that come.
    void rename(const TvSmPersist* object, std::vector<std::function<void(Dlg&)>> steps)
    {
        page.tree().selectOnly(at(object));
        m_steps = std::move(steps);
        m_dialogs = 0;
        waitForDialog();
        commands.run(panel::kRenameSheets);
        QApplication::processEvents();
    }
    int dialogs() const { return m_dialogs; }

    panel::PageWindow window;
    panel::SheetListPage page{window, base::systemClock()};
    panel::PanelMenus menus{page};
    NoProgram program;
    panel::PanelCommands commands{page, menus, program};

private:
    void waitForDialog()
    {
        whenWaiting([this] {
            auto* dialog = runningDialog<Dlg>();
            if (!dialog)
                return;
            const auto step = static_cast<std::size_t>(m_dialogs++);
            if (step + 1 < m_steps.size())
                waitForDialog();
            if (step < m_steps.size())
                m_steps[step](*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
    }
    CTvSmSheetSetEventsHandler m_events{&g_watchTable};
    int m_cookie = -1;
    std::vector<std::function<void(Dlg&)>> m_steps;
    int m_dialogs = 0;
};

TEST_F(RenameCommandTest, WalksAndOkKeepsAll)
{
    rename(plan, {[](Dlg& first) {
                      type(first, Dlg::kNumberEdit, "11");
                      press(first, Dlg::kNextButton);
                  },
                  [](Dlg& second) {
                      EXPECT_EQ(texts(second), "2|Stair|A2|plan.dwg");
                      type(second, Dlg::kFileEdit, "both.dwg");
                      press(second, text::kIdOk);
                  }});
    EXPECT_EQ(dialogs(), 2);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(plan->getNumber(), u"11");
    EXPECT_TRUE(isThere("both.dwg"));
    EXPECT_NE(folder.read("house.dst").find("both.dwg"), std::string::npos);
}

TEST_F(RenameCommandTest, WalksBackToTheSheetBefore)
{
    rename(stair, {[](Dlg& second) { press(second, Dlg::kPreviousButton); },
                   [](Dlg& first) {
                       EXPECT_EQ(texts(first), "1|Plan|A1|plan.dwg");
                       press(first, text::kIdOk);
                   }});
    EXPECT_EQ(dialogs(), 2);
    EXPECT_EQ(page.tree().caret(), at(plan));
}

TEST_F(RenameCommandTest, CancelOnTheWalkBringsTheFirstSheetBack)
{
    rename(plan, {[](Dlg& first) {
                      type(first, Dlg::kNumberEdit, "11");
                      type(first, Dlg::kLayoutEdit, "Ground");
                      type(first, Dlg::kFileEdit, "ground.dwg");
                      press(first, Dlg::kNextButton);
                  },
                  [](Dlg& second) {
                      EXPECT_EQ(texts(second), "2|Stair|A2|ground.dwg");
                      press(second, text::kIdCancel);
                  }});
    EXPECT_EQ(dialogs(), 2);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(plan->getNumber(), u"1");
    EXPECT_TRUE(isThere("plan.dwg"));
    EXPECT_EQ(layoutOnDisk(plan), u"A1");
}

TEST_F(RenameCommandTest, TheTreeShowsTheNewLabelWhileTheWalkGoesOnAndTheOldOneAfterCancel)
{
    EXPECT_EQ(label(plan), "1 - Plan");
    rename(plan, {[](Dlg& first) {
                      type(first, Dlg::kNumberEdit, "11");
                      press(first, Dlg::kNextButton);
                  },
                  [this](Dlg& second) {
                      EXPECT_EQ(label(plan), "11 - Plan");
                      press(second, text::kIdCancel);
                  }});
    EXPECT_EQ(dialogs(), 2);
    EXPECT_EQ(label(plan), "1 - Plan");
}

TEST_F(RenameCommandTest, AfterOkTheDrawingsAreLookedAt)
{
    set(u"SSMSHEETSTATUS", 1);
    host.list = nullptr; // nobody tells the page that the set was written
    ASSERT_EQ(at(cover)->image(), core::SheetImage::ImageSheet);
    const auto finishStatus = [this] {
        while (!page.workOnStatus())
            ;
    };
    rename(plan, {[](Dlg& only) { press(only, text::kIdCancel); }});
    finishStatus();
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheet);
    rename(plan, {[](Dlg& only) { press(only, text::kIdOk); }});
    finishStatus();
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheetMissing);
}

TEST_F(RenameCommandTest, DoesNothingForASubsetOrALockedSet)
{
    rename(details, {});
    EXPECT_EQ(dialogs(), 0);
    EXPECT_EQ(database->getLockStatus(), 0);
    ASSERT_TRUE(database->lockDb(database));
    rename(plan, {});
    EXPECT_EQ(dialogs(), 0);
    EXPECT_EQ(database->getLockStatus(), 1);
}

TEST_F(RenameCommandTest, DoesNothingWhileThePageShowsAnotherSetThanTheCurrentOne)
{
    host.list = nullptr; // the page stays where it is
    ActivateSheetSet(made("other.dst"));
    ASSERT_EQ(page.tree().database(), database);
    rename(plan, {});
    EXPECT_EQ(dialogs(), 0);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(GetCurrentDatabase()->getLockStatus(), 0);
}

} // namespace
