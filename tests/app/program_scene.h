#pragma once

#include <gtest/gtest.h>

#include <app/console_prompts.h>
#include <app/program.h>

#include "drawings.h"
#include "temp_folder.h"
#include "tool_process.h"
#include "variable_scope.h"

/// Notes what the program says, and answers what the test prepared.
class NotingPrompts : public app::ConsolePrompts
{
public:
    NotingPrompts()
        : ConsolePrompts([this](std::string_view text) { out += text; },
                         [this](std::string_view text) { err += text; })
    {
    }
    std::string out, err;
};

/// A folder with drawings, in which the program keeps all that is its own, too.
class ProgramFolder
{
public:
    ProgramFolder()
    {
        for (const char* name : {"a.dwg", "b.dwg"}) {
            const std::vector<std::uint8_t> bytes = minimalDrawing("line-ac1032.dwg");
            folder.write(name, {bytes.begin(), bytes.end()});
        }
    }
    app::ProgramFolders folders(bool withModule = false) const
    {
        app::ProgramFolders own{folder.file("config"), folder.file("data"), folder.file("state"),
                                folder.file("cache"),  folder.file("run"),  {},
                                folder.file("bin")};
        if (withModule)
            own.modules.push_back(base::pathFromNative(KV_TEST_MODULES));
        return own;
    }
    std::string path(const std::string& name) const { return (folder.path() / name).string(); }

    TempFolder folder;
};

/// The same, for processes of the program: they find their folders by the environment.
class ProgramProcessTest : public testing::Test, protected ProgramFolder
{
protected:
    Ran run(const std::vector<std::string>& arguments) { return runTool(arguments); }
    /// A script in the folder; its path.
    std::string script(const std::string& text)
    {
        folder.write("test.scr", text);
        return path("test.scr");
    }

private:
    const VariableScope m_home{"HOME", path("home").c_str()};
    const VariableScope m_config{"XDG_CONFIG_HOME", path("config").c_str()};
    const VariableScope m_data{"XDG_DATA_HOME", path("data").c_str()};
    const VariableScope m_state{"XDG_STATE_HOME", path("state").c_str()};
    const VariableScope m_cache{"XDG_CACHE_HOME", path("cache").c_str()};
    const VariableScope m_run{"XDG_RUNTIME_DIR", path("").c_str()};
    const VariableScope m_modules{"TARVIK_TEST_MODULES", KV_TEST_MODULES};
};
