#include <gtest/gtest.h>

#include <app/menu_table.h>
#include <app/prompt_keywords.h>

#include <set>

namespace {

TEST(PromptKeywords, AreWhatStandsBetweenTheLastBrackets)
{
    EXPECT_EQ(app::promptKeywords(u"Zoom [all] or [All/Center/ Window ] <All>:"),
              (std::vector<TvString>{u"All", u"Center", u"Window"}));
}

TEST(PromptKeywords, ThereAreNoneWithoutBrackets)
{
    for (const char16_t* prompt : {u"Name:", u"", u"[", u"]", u"[]", u"[/ /]", u"a]b["})
        EXPECT_TRUE(app::promptKeywords(prompt).empty()) << TvString(prompt).utf8();
}

TEST(MenuTable, NoKeyMeansTwoThings)
{
    std::set<std::string> keys;
    for (const app::MenuRow& row : app::menuRows())
        EXPECT_TRUE(!row.keys || keys.insert(row.keys).second) << row.keys;
}

TEST(MenuTable, EachEntryDoesOneThing)
{
    for (const app::MenuRow& row : app::menuRows())
        EXPECT_EQ(row.label != app::kSeparator,
                  (row.action != nullptr) != (row.own != app::WindowAction::None))
            << app::textOf(row.label).utf8();
}

} // namespace
