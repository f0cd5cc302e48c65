#include "variable_scope.h"

#include <gtest/gtest.h>

#include <base/user_folders.h>

namespace {

TEST(ConfigFolder, LiesWhereTheDesktopWantsIt)
{
    const VariableScope home("HOME", "/home/ann");
    {
        const VariableScope config("XDG_CONFIG_HOME", "/srv/ann");
        EXPECT_EQ(base::configFolder(), u"/srv/ann/tarvik");
    }
    for (const char* invalid : {"", "relative/config"}) {
        const VariableScope config("XDG_CONFIG_HOME", invalid);
        EXPECT_EQ(base::configFolder(), u"/home/ann/.config/tarvik");
    }
    const VariableScope config("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(base::configFolder(), u"/home/ann/.config/tarvik");
}

TEST(ConfigFolder, IsEmptyWhenNothingSaysWhere)
{
    const VariableScope config("XDG_CONFIG_HOME", nullptr);
    for (const char* invalid : {static_cast<const char*>(nullptr), "home"}) {
        const VariableScope home("HOME", invalid);
        EXPECT_TRUE(base::configFolder().isEmpty());
    }
}

TEST(UserFolders, LieBelowHomeUnlessAVariableSaysWhere)
{
    const VariableScope home("HOME", "/home/ann");
    struct Row {
        const char* variable;
        TvString (*folder)();
        const char16_t* below;
    };
    const Row rows[] = {
        {"XDG_DATA_HOME", base::dataFolder, u"/home/ann/.local/share/tarvik"},
        {"XDG_STATE_HOME", base::stateFolder, u"/home/ann/.local/state/tarvik"},
        {"XDG_CACHE_HOME", base::cacheFolder, u"/home/ann/.cache/tarvik"},
    };
    for (const Row& row : rows) {
        {
            const VariableScope given(row.variable, "/srv/ann");
            EXPECT_EQ(row.folder(), u"/srv/ann/tarvik") << row.variable;
        }
        const VariableScope invalid(row.variable, "ann");
        EXPECT_EQ(row.folder(), row.below) << row.variable;
    }
}

TEST(UserFolders, WithoutALoginThereIsNoRuntimeFolder)
{
    const VariableScope home("HOME", "/home/ann");
    const VariableScope none("XDG_RUNTIME_DIR", nullptr);
    EXPECT_TRUE(base::runtimeFolder().isEmpty());
    const VariableScope given("XDG_RUNTIME_DIR", "/run/user/7");
    EXPECT_EQ(base::runtimeFolder(), u"/run/user/7/tarvik");
}

} // namespace
