#pragma once

#include <deque>

#include <base/kv_file_system.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <ed/command_line.h>
#include <ed/drawing_view.h>
#include <ed/host_commands.h>
#include <ed/program_control.h>
#include <ed/recent_files.h>
#include <ed/system_variables.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_user_messages.h>

#include "editor_scene.h"
#include "scripted_prompts.h"

/// Answers messages from a list, and notes them; refuses when the list is empty.
class ScriptedMessages : public TvUserMessages
{
public:
    Answer show(const Message& message) override
    {
        note(message.text, message.arguments);
        return answers.empty() ? Answer::No : static_cast<Answer>(take());
    }
    TaskAnswer showTask(const TaskDialog& dialog) override
    {
        note(dialog.instruction.number, dialog.instruction.arguments);
        TaskAnswer answer;
        if (!answers.empty())
            answer.button = take();
        return answer;
    }
    std::deque<int> answers;
    std::vector<std::string> seen;

private:
    int take()
    {
        const int first = answers.front();
        answers.pop_front();
        return first;
    }
    void note(int text, const std::vector<TvString>& arguments)
    {
        std::string line = std::to_string(text);
        for (const TvString& argument : arguments)
            line += " " + base::PathRules::native().fileNameOf(argument).utf8();
        seen.push_back(line);
    }
};

/// The host with its commands, its documents and a command line, without a window.
class HostTest : public EditorTest, protected ed::ProgramControl
{
protected:
    static constexpr int kSave = 101, kDiscard = 102;

    void SetUp() override
    {
        EditorTest::SetUp();
        tvrxSysRegistry()->atPut(kTvRegisteredCommands, &stack);
        ed::setUserPrompts(&prompts);
        tvrxSetUserMessages(&messages);
        ed::setProgramControl(this);
        ed::setRecentFilesFolder(folder.file("state"));
        ASSERT_TRUE(ed::addHostCommands(stack));
        ASSERT_TRUE(ed::setVariable(u"FILEDIA", std::int16_t(0)));
        reactor.told.clear();
    }
    void TearDown() override
    {
        ed::setRecentFilesFolder({});
        ed::setProgramControl(nullptr);
        tvrxSetUserMessages(nullptr);
        ed::setUserPrompts(nullptr);
        tvrxSysRegistry()->remove(kTvRegisteredCommands);
        EditorTest::TearDown();
    }
    void quit() override { ++quits; }
    bool showHelp(const TvString& topic) override
    {
        helped.push_back(topic);
        return hasHelp;
    }
    void recentFilesChanged() override { ++recentChanges; }

    void type(const TvString& text)
    {
        tvedPostCommand(text);
        commands.work();
        EXPECT_TRUE(commands.isIdle());
    }
    /// What was asked and said since the last call, without the arguments' folders.
    std::vector<std::string> told() { return std::exchange(prompts.seen, {}); }
    /// The numbers of what was said.
    std::vector<int> said()
    {
        std::vector<int> numbers;
        for (const std::string& line : told())
            if (line.starts_with("say "))
                numbers.push_back(std::stoi(line.substr(4)));
        return numbers;
    }
    TvString path(const char* name) const { return folder.file(name); }
    TvApDocument* open(const char* name)
    {
        TvApDocument* document = nullptr;
        EXPECT_EQ(manager.openDocument(path(name), false, document), TvStatus::Ok);
        return document;
    }
    TvDbDatabase& drawing() { return *manager.curDocument()->database(); }
    std::vector<std::string> layouts()
    {
        std::vector<std::string> names;
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing()))
            names.push_back(
                TvDbObjectPointer<TvDbLayout>(id, TvDb::kForNotify)->getLayoutName().utf8());
        return names;
    }

    TvEdCommandStackImp stack;
    ScriptedPrompts prompts;
    ScriptedMessages messages;
    ed::CommandLine commands;
    TvApDocManager manager;
    int quits = 0, recentChanges = 0;
    bool hasHelp = false;
    std::vector<TvString> helped;
};
