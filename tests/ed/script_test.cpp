#include <ed/script.h>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;

std::string textOf(std::string_view bytes)
{
    return ed::scriptText(std::as_bytes(std::span(bytes.data(), bytes.size()))).utf8();
}

TEST(ScriptText, HasLineFeedsAndNoComments)
{
    EXPECT_EQ(textOf("ZOOM E\r\n; a comment\r\nREGEN\rPAN\n"), "ZOOM E\nREGEN\nPAN\n");
    EXPECT_EQ(textOf("LAYOUT N a;b\n ; no comment\n"), "LAYOUT N a;b\n ; no comment\n");
    EXPECT_EQ(textOf("ZOOM\n\n\nE"), "ZOOM\n\n\nE\n");
    EXPECT_EQ(textOf(""), "");
}

TEST(ScriptText, MayBeInAnyUsualCoding)
{
    EXPECT_EQ(textOf("\xEF\xBB\xBFL\xC3\xBC\n"), "Lü\n");
    EXPECT_EQ(textOf("L\xC3\xBC"), "Lü\n");
    EXPECT_EQ(textOf(std::string_view("\xFF\xFEL\0\xFC\0\n\0", 8)), "Lü\n");
    EXPECT_EQ(textOf(std::string_view("\xFE\xFF\0L\0\xFC\0\n", 8)), "Lü\n");
    const std::string latin = textOf("L\xFC");
    EXPECT_TRUE(latin == "Lü\n" || latin == "L\xEF\xBF\xBD\n") << latin;
}

class ScriptTest : public HostTest
{
protected:
    void write(const char* name, std::string_view text)
    {
        folder.write(name, {text.begin(), text.end()});
    }
};

TEST_F(ScriptTest, TypesItsWordsAndTheRestComesAfterIt)
{
    ed::setVariable(u"FILEDIA", std::int16_t(1));
    write("go.scr", "; makes a sheet\nOPEN\n" + path("a.dwg").utf8() +
                        "\nLAYOUT N Ground floor\nLAYOUT\nS\nGround floor\nLTSCALE 3\n");
    prompts.files = {path("go.scr")};
    type(u"SCRIPT\n");
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1", "Ground floor"}));
    EXPECT_EQ(ed::variable(u"CTAB"), ed::VariableValue(TvString(u"Ground floor")));
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(3.0));
    EXPECT_EQ(ed::variable(u"FILEDIA"), ed::VariableValue(std::int16_t(1)))
        << "files are asked for in the line while a script runs, whatever FILEDIA says";
    EXPECT_TRUE(told().empty());
}

TEST_F(ScriptTest, IsTypedInFrontOfWhatWasPosted)
{
    open("a.dwg");
    write("go.scr", "LTSCALE 3");
    type(u"SCRIPT " + path("go") + u"\nLTSCALE 4\n");
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(4.0));
    EXPECT_TRUE(told().empty());
}

TEST_F(ScriptTest, EndsWithACommandThatIsCancelled)
{
    open("a.dwg");
    write("go.scr", "LTSCALE 3\nLAYOUT N\x1b\nLTSCALE 5\n");
    type(u"SCRIPT " + path("go.scr") + u"\nTEXTSIZE 2\n");
    EXPECT_EQ(said(), (std::vector<int>{23004, 23248}));
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(3.0));
    EXPECT_EQ(ed::variable(u"TEXTSIZE"), ed::VariableValue(2.0)) << "what was typed goes on";
}

TEST_F(ScriptTest, GoesOnAfterAWordThatIsUnknown)
{
    open("a.dwg");
    write("go.scr", "NONSENSE\nLTSCALE 5\n");
    type(u"SCRIPT " + path("go.scr") + u"\n");
    EXPECT_EQ(said(), std::vector<int>{23001});
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(5.0));
}

TEST_F(ScriptTest, RunsNoOther)
{
    open("a.dwg");
    write("inner.scr", "LTSCALE 9\n");
    write("go.scr", "SCRIPT\nLTSCALE 5\n");
    write("last.scr", "LTSCALE 6\nSCRIPT");
    type(u"SCRIPT " + path("go.scr") + u"\n");
    EXPECT_EQ(said(), std::vector<int>{23247});
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(5.0));
    type(u"SCRIPT " + path("last.scr") + u"\n" + path("inner.scr") + u"\n");
    EXPECT_EQ(said().front(), 23247) << "also as its last command";
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(6.0));
    static base::Status s_status;
    static TvString s_path;
    s_path = path("inner.scr");
    stack.addCommand(u"T", u"INNER", u"INNER", 0, [] { s_status = ed::runScript(s_path); });
    write("call.scr", "INNER\n");
    EXPECT_TRUE(ed::runScript(path("call.scr")));
    EXPECT_EQ(s_status.failure(), base::Failure::Usage);
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(6.0));
}

TEST_F(ScriptTest, MayBeStartedByACommandAndRunsAfterIt)
{
    open("a.dwg");
    write("go.scr", "LTSCALE 8\n");
    static TvString s_path;
    s_path = path("go.scr");
    stack.addCommand(u"T", u"STARTS", u"STARTS", 0, [] {
        EXPECT_TRUE(ed::runScript(s_path));
        ed::setVariable(u"LTSCALE", 2.0);
    });
    type(u"STARTS\n");
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(8.0));
}

TEST_F(ScriptTest, WhatCannotBeReadIsTold)
{
    type(u"SCRIPT " + path("none.scr") + u"\n");
    EXPECT_EQ(said(), std::vector<int>{21001});
    EXPECT_FALSE(ed::runScript(folder.file("state")));
    EXPECT_FALSE(commands.isScripting());
}

TEST_F(ScriptTest, OfHugeSizeIsRefused)
{
    write("huge.scr", std::string((16 << 20) + 1, 'x'));
    EXPECT_EQ(ed::runScript(path("huge.scr")).failure(), base::Failure::TooLarge);
}

} // namespace
