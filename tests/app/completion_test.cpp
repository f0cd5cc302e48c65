#include <gtest/gtest.h>

#include <app/completion.h>
#include <rx/tv_ed_command_stack.h>

namespace {

class CompletionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        add(u"LAYOUT", u"Lay");
        add(u"LAYERS", u"Layers");
        add(u"ZZPLOT", u"ZZPLOT");
    }
    void add(const TvString& global, const TvString& local)
    {
        commands.addCommand(u"G", global, local, 0, [] {});
    }
    TvEdCommandStackImp commands;
};

TEST_F(CompletionTest, FindsLocalAndGlobalNamesInAnyCase)
{
    const app::Completion found = app::complete(u"lay", &commands);
    EXPECT_EQ(found.candidates, (std::vector<TvString>{u"Lay", u"Layers", u"LAYOUT"}));
    EXPECT_EQ(found.common, u"Lay");
}

TEST_F(CompletionTest, GoesAsFarAsAllAgree)
{
    EXPECT_EQ(app::complete(u"zz", &commands).common, u"ZZPLOT");
    EXPECT_EQ(app::complete(u"LAYE", &commands).common.compareNoCase(u"LAYERS"), 0);
}

TEST_F(CompletionTest, AnUnderscoreAsksForGlobalNames)
{
    const app::Completion found = app::complete(u"_lay", &commands);
    EXPECT_EQ(found.candidates, (std::vector<TvString>{u"_LAYERS", u"_LAYOUT"}));
    EXPECT_EQ(found.common, u"_LAY");
}

TEST_F(CompletionTest, FindsVariables)
{
    const app::Completion found = app::complete(u"tilem", nullptr);
    EXPECT_EQ(found.candidates, (std::vector<TvString>{u"TILEMODE"}));
}

TEST_F(CompletionTest, NothingForNothing)
{
    EXPECT_TRUE(app::complete(u"", &commands).candidates.empty());
    const app::Completion none = app::complete(u"nosuchthing", &commands);
    EXPECT_TRUE(none.candidates.empty());
    EXPECT_EQ(none.common, u"nosuchthing");
}

} // namespace
