#pragma once

#include <functional>

#include <panel/panel_commands.h>
#include <panel/recover_drawing.h>

#include "document_scene.h"

/// Notes what commands ask of the desktop.
class NotingProgram : public panel::PanelProgram
{
public:
    void exploreFile(const TvString& path) override { explored.push_back(path); }
    void hidePanel() override { ++hidden; }
    void tipStyleChanged() override { ++tips; }
    std::vector<TvString> explored;
    int hidden = 0, tips = 0;
};

/// Answers task dialogs, too; something may happen while one stands.
class TaskAnswers : public ScriptedMessages
{
public:
    TaskAnswer showTask(const TaskDialog& dialog) override
    {
        tasks.push_back(dialog);
        if (meanwhile)
            meanwhile();
        TaskAnswer given;
        given.button = task;
        return given;
    }
    std::function<void()> meanwhile;
    std::vector<TaskDialog> tasks;
    int task = 2;
};

/// The session's palettes are the page.
class PageHost : public NotingHost
{
public:
    core::SheetSetPalette* palette(Palette which) override
    {
        return which == Palette::SheetList ? page : nullptr;
    }
    panel::SheetListPage* page = nullptr;
};

/// The page of a set, with its commands. Who derives from it fills the set and calls show().
class CommandTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        m_cookie = manager().registerEventHandler(&m_events);
        core::setSessionHost(&pageHost);
        set(u"SSMSHEETSTATUS", 0);
        database = made("house.dst");
    }
    void TearDown() override
    {
        DocumentTest::TearDown();
        pageHost.page = nullptr;
        manager().unregisterEventHandler(m_cookie);
        panel::setReplaceLayout({});
    }
    void show()
    {
        pageHost.page = &page;
        ActivateSheetSet(database);
    }
    panel::TreeItem* at(const TvSmPersist* object) { return page.tree().itemOf(handleOf(object)); }
    void select(std::initializer_list<const TvSmPersist*> objects)
    {
        page.tree().ClearSelection();
        for (const TvSmPersist* object : objects)
            page.tree().SelectItem(at(object));
        page.tree().setCaret(at(*objects.begin()));
    }

    TvSmDatabase* database = nullptr;
    PageHost pageHost;
    panel::PageWindow window;
    panel::SheetListPage page{window, base::systemClock()};
    panel::PanelMenus menus{page};
    NotingProgram program;
    TaskAnswers answers;
    panel::PanelCommands commands{page, menus, program};

private:
    CTvSmSheetSetEventsHandler m_events{&g_watchTable};
    int m_cookie = -1;
};
