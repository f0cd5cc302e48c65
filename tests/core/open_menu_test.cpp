// What the open button offers, and what a choice does.

#include <core/new_sheet_set_wizard.h>
#include <core/open_menu.h>
#include <ed/system_variables.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <rx/resource_module.h>
#include <rx/tv_user_messages.h>

#include "session_scene.h"

namespace {

using core::OpenMenu;
using Told = std::vector<std::string>;

class OpenMenuTest : public SessionTest, private ed::UserPrompts
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        ed::setUserPrompts(this);
    }
    void TearDown() override
    {
        core::setNewSheetSetWizard({});
        ed::setUserPrompts(nullptr);
        ed::setVariable(u"SSMAUTOOPEN", std::int16_t(1));
        SessionTest::TearDown();
    }
    TvSmDatabase* activated(const char* file, const TvString& name)
    {
        TvSmDatabase* set = made(file);
        changeName(set, name);
        ActivateSheetSet(set);
        return set;
    }
    Told said;

private:
    int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
    int askFiles(const FileQuestion&, std::vector<TvString>&) override
    {
        said.push_back("dialog");
        return ed::kCancelled;
    }
    void print(const TvString&) override {}
    void say(int text, const std::vector<TvString>& arguments) override
    {
        said.push_back(std::to_string(text) + " " + arguments.at(0).utf8());
    }
};

std::string shown(const std::vector<ed::MenuEntry>& entries)
{
    std::string text;
    for (const ed::MenuEntry& entry : entries) {
        text += entry.isSeparator ? "--" : entry.mark == ed::MenuMark::Check ? "*" : "";
        if (!entry.isSeparator)
            text += std::to_string(entry.id) + " " + entry.text.utf8();
        if (!entry.submenu.empty())
            text += " (" + shown(entry.submenu) + ")";
        text += "|";
    }
    return text;
}

std::string textOf(int number)
{
    return TvString(text::find(number)).utf8();
}

TEST_F(OpenMenuTest, WithoutAnythingOffersToOpenAndToMakeAndADeadLabel)
{
    const OpenMenu menu;
    EXPECT_EQ(shown(menu.menu().entries),
              "1 " + textOf(420) + "|2 " + textOf(421) + "|--|0 " + textOf(422) + "|");
    menu.choose(0);
    EXPECT_TRUE(said.empty());
}

TEST_F(OpenMenuTest, SetsStandFirstWithAMarkAtTheCurrentOneAndRecentOnesCountOn)
{
    TvSmDatabase* first = activated("a.dst", u"House & Garden");
    activated("b.dst", u"School");
    ActivateSheetSet(first);
    UpdateRecentList(u"/x.dst", true);
    UpdateRecentList(u"/y & z.dst", true);
    EXPECT_EQ(shown(OpenMenu().menu().entries), "*3 House && Garden|4 School|--|1 " + textOf(420) +
                                                    "|2 " + textOf(421) + "|--|0 " + textOf(422) +
                                                    " (5 /y && z.dst|6 /x.dst|)|");
}

TEST_F(OpenMenuTest, AChosenSetBecomesCurrent)
{
    TvSmDatabase* first = activated("a.dst", u"House");
    activated("b.dst", u"School");
    OpenMenu().choose(3);
    EXPECT_EQ(GetCurrentDatabase(), first);
}

TEST_F(OpenMenuTest, ASetThatWasClosedMeanwhileIsNotChosen)
{
    TvSmDatabase* first = activated("a.dst", u"House");
    TvSmDatabase* second = activated("b.dst", u"School");
    ActivateSheetSet(first);
    const OpenMenu menu;
    EXPECT_TRUE(CloseCurrentSheetSet());
    menu.choose(3);
    EXPECT_EQ(GetCurrentDatabase(), second);
}

TEST_F(OpenMenuTest, AChosenRecentPathIsOpened)
{
    manager().closeDatabase(made("a.dst"));
    UpdateRecentList(folder.file("a.dst"), true);
    const OpenMenu menu;
    UpdateRecentList(u"/newer.dst", true);
    menu.choose(OpenMenu::kFirstSet);
    ASSERT_NE(GetCurrentDatabase(), nullptr) << "what the menu showed, not what is first now";
    EXPECT_EQ(GetCurrentDatabase()->getFileName(), folder.file("a.dst"));
}

TEST_F(OpenMenuTest, OpeningAsksForAFileAndOtherNumbersDoNothing)
{
    const OpenMenu menu;
    menu.choose(OpenMenu::kOpen);
    EXPECT_EQ(said, Told{"dialog"});
    for (const int id : {-1, 0, 3, 100})
        menu.choose(id);
    EXPECT_EQ(said.size(), 1u);
}

// The wizard

class ScriptedWizard : public core::NewSheetSetWizard
{
public:
    ScriptedWizard(int answer, TvSmDatabase* made, TvString& resources)
        : m_answer(answer), m_made(made), m_resources(resources)
    {
    }
    int DoModal() override
    {
        m_resources = rx::currentResourceName();
        return m_answer;
    }
    TvSmDatabase* database() const override { return m_made; }

private:
    int m_answer;
    TvSmDatabase* m_made;
    TvString& m_resources;
};

class WizardTest : public OpenMenuTest
{
protected:
    void run(int answer, TvSmDatabase* set)
    {
        core::setNewSheetSetWizard(
            [&, answer, set] { return std::make_unique<ScriptedWizard>(answer, set, resources); });
        RunNewSheetSetWizard();
    }
    TvString resources;
};

TEST_F(WizardTest, WithoutOneTheCommandLineSaysSo)
{
    RunNewSheetSetWizard();
    OpenMenu().choose(OpenMenu::kNew);
    EXPECT_EQ(said, (Told{"8900 NEWSHEETSET", "8900 NEWSHEETSET"}));
}

TEST_F(WizardTest, AFinishedOneOpensWhatItMade)
{
    TvSmDatabase* set = made("a.dst");
    run(12325, set);
    EXPECT_EQ(GetCurrentDatabase(), set);
    EXPECT_EQ(resources, u"KvSheetSetRes.dll") << "current while it runs";
    EXPECT_EQ(rx::currentResourceName(), TvString());
}

TEST_F(WizardTest, OneThatWasGivenUpOrMadeNothingOpensNothing)
{
    TvSmDatabase* set = made("a.dst");
    run(2, set);
    run(12325, nullptr);
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_TRUE(host.told.empty());
    manager().closeDatabase(set);
}

TEST_F(WizardTest, WithAutomaticOpeningOffAFinishedOneLeavesThePanelAsItWas)
{
    TvSmDatabase* set = made("a.dst");
    ASSERT_TRUE(ed::setVariable(u"SSMAUTOOPEN", std::int16_t(0)));
    run(12325, set);
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_TRUE(host.told.empty());
    manager().closeDatabase(set);
}

TEST_F(WizardTest, OneThatCannotBeMadeIsNothing)
{
    core::setNewSheetSetWizard([] { return std::unique_ptr<core::NewSheetSetWizard>(); });
    RunNewSheetSetWizard();
    EXPECT_TRUE(said.empty());
}

} // namespace
