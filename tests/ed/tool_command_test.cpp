#include <algorithm>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;

class ToolCommandTest : public HostTest
{
};

TEST_F(ToolCommandTest, TheHostsCommandsComeInOneGroupOnce)
{
    EXPECT_FALSE(ed::addHostCommands(stack));
    for (const TvEdCommand* command : stack.commands()) {
        EXPECT_EQ(command->groupName(), u"KV_HOST_CMDGROUP");
        EXPECT_FALSE(command->localName().isEmpty()) << command->globalName().utf8();
    }
    EXPECT_EQ(stack.commands().size(), 20u);
    EXPECT_TRUE(stack.removeGroup(ed::kHostCommandGroup));
    EXPECT_TRUE(stack.commands().empty());
    EXPECT_TRUE(ed::addHostCommands(stack));
}

TEST_F(ToolCommandTest, ShortNamesLeadToCommandsThatAreThere)
{
    for (const TvChar* name : {u"z", u"P", u"RE", u"LO", u"-LAYOUT", u"-V", u"EXIT", u"?", u"_Z"}) {
        const TvString command = ed::aliasedCommand(name);
        EXPECT_NE(stack.lookupGlobalCmd(command), nullptr) << TvString(name).utf8();
    }
    EXPECT_TRUE(ed::aliasedCommand(u"ZZ").isEmpty());
    open("a.dwg");
    stack.addCommand(u"T", u"Z", u"Z", 0, [] { ed::setVariable(u"LTSCALE", 8.0); });
    type(u"Z\n");
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(8.0)) << "a command's name comes first";
}

TEST_F(ToolCommandTest, AuditTellsItsFindingsAndHowMany)
{
    open("a.dwg");
    type(u"AUDIT\n\n");
    EXPECT_EQ(told(), Names{"say 23241 0 0 0"});
    type(u"LAYOUT N Two\n");
    {
        TvDbObjectId id = db::layoutsInTabOrder(drawing())[2];
        TvDbObjectPointer<TvDbLayout>(id, TvDb::kForWrite)->setTabOrder(1);
    }
    type(u"AUDIT N\n");
    ASSERT_EQ(told().size(), 2u);
    const auto places = [this] {
        std::vector<int> orders;
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing()))
            orders.push_back(TvDbObjectPointer<TvDbLayout>(id)->getTabOrder());
        return orders;
    };
    type(u"AUDIT Yes\n");
    const Names lines = told();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_TRUE(lines[0].starts_with("say 23249 D32 ")) << lines[0];
    EXPECT_NE(lines[0].find("Layout1"), std::string::npos) << lines[0];
    EXPECT_EQ(lines[2], "say 23244 1 0");
    EXPECT_EQ(places(), (std::vector{0, 1, 2}));
    type(u"U\n");
    EXPECT_EQ(places(), (std::vector{0, 1, 1})) << "one step";
}

TEST_F(ToolCommandTest, HelpAsksTheProgramAndElseTellsWhatItKnows)
{
    hasHelp = true;
    type(u"HELP zoom\nHELP z\nHELP\n\n");
    EXPECT_EQ(helped, (std::vector<TvString>{u"ZOOM", u"ZOOM", u""}));
    EXPECT_TRUE(told().empty());
    hasHelp = false;
    type(u"HELP z\nHELP nonsense\n");
    EXPECT_EQ(told(),
              (Names{"say 23251 ZOOM Shows more or less of the drawing.", "say 23001 nonsense"}));
    type(u"?\n\n");
    EXPECT_EQ(said(), std::vector<int>(20, 23251));
}

TEST_F(ToolCommandTest, VariablesAreListedAndSet)
{
    open("a.dwg");
    type(u"SETVAR ltscale\n2.5\n");
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(2.5));
    EXPECT_TRUE(told().empty());
    type(u"SETVAR LTSCALE 3.5\nSETVAR CTAB Layout1\n");
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(3.5));
    EXPECT_EQ(ed::variable(u"CTAB"), ed::VariableValue(TvString(u"Layout1")));
    EXPECT_TRUE(told().empty());
    type(u"SETVAR DWGNAME\nSETVAR nonsense\n");
    EXPECT_EQ(told(), (Names{"say 23002 DWGNAME a.dwg", "say 23256 nonsense"}));
    type(u"SETVAR ?\n");
    const Names lines = told();
    EXPECT_NE(std::ranges::find(lines, "say 23253 LTSCALE 3.5"), lines.end());
    EXPECT_NE(std::ranges::find(lines, "say 23254 DWGNAME a.dwg"), lines.end());
}

TEST_F(ToolCommandTest, RegenDrawsTheDrawingAnew)
{
    struct Window : ed::StoredDrawingView {
        void regenerate(TvDbDatabase& database) override { drawn.push_back(&database); }
        void reload(TvDbDatabase& database) override { reloaded.push_back(&database); }
        std::vector<TvDbDatabase*> drawn, reloaded;
    } window;
    ed::setDrawingView(&window);
    open("a.dwg");
    type(u"RE\n");
    EXPECT_EQ(window.drawn, std::vector{&drawing()});
    EXPECT_TRUE(window.reloaded.empty());
    type(u"LTSCALE 3\nU\n");
    EXPECT_EQ(window.reloaded, std::vector{&drawing()});
    ed::setDrawingView(nullptr);
}

} // namespace
