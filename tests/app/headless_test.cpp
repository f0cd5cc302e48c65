#include "program_scene.h"

#include <app/headless.h>
#include <app/words.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <dwg/dwg_codec.h>
#include <ed/command_line.h>
#include <gs/display_list.h>

namespace {

using HeadlessTest = ProgramProcessTest;

TEST_F(HeadlessTest, OpensADrawingAndEnds)
{
    const Ran ran = run({"--headless", path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err, "");
}

TEST_F(HeadlessTest, OpensTheDrawingsOfEachVersion)
{
    for (const char* version : {"1015", "1018", "1021", "1024", "1027", "1032"}) {
        const std::string name = std::string("line-ac") + version + ".dwg";
        const Ran ran = run({"--headless", std::string(KV_TEST_DATA) + "/dwg/" + name});
        EXPECT_EQ(ran.code, 0) << name << ": " << ran.err;
    }
}

TEST_F(HeadlessTest, AScriptPlotsADrawing)
{
    const std::string blank = path("with blank.pdf");
    const Ran ran =
        run({"--headless", "--script",
             script("PLOT\n" + path("out") + "\nPLOT\n\"" + blank + "\"\n"), path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(folder.read("out.pdf").starts_with("%PDF-")) << ran.err;
    EXPECT_TRUE(folder.read("with blank.pdf").starts_with("%PDF-")) << ran.err;
    EXPECT_NE(ran.err.find("out.pdf was written."), std::string::npos) << ran.err;
    EXPECT_NE(
        run({"--headless", "--script", script("PLOT\n/nowhere/at/all/x.pdf\n"), path("a.dwg")})
            .err.find("Publishing failed"),
        std::string::npos);
}

TEST_F(HeadlessTest, ADrawingThatIsNotThereIsToldAndTheCodeSaysSo)
{
    const Ran ran = run({"--headless", path("none.dwg")});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(ran.err.find("E21001"), std::string::npos) << ran.err;
    EXPECT_EQ(run({"--headless", path("none.dwg"), path("a.dwg")}).code, 1);
}

TEST_F(HeadlessTest, AHostileDrawingIsToldAndTheScriptGoesOn)
{
    std::string bytes = folder.read("b.dwg");
    for (std::size_t at = 0x80; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(0xFF);
    folder.write("bad.dwg", bytes);
    folder.write("cut.dwg", folder.read("a.dwg").substr(0, 1000));

    const Ran bad = run({"--headless", path("bad.dwg")});
    EXPECT_EQ(bad.code, 7) << bad.err;
    EXPECT_NE(bad.err.find("tarvik: E21"), std::string::npos) << bad.err;
    EXPECT_EQ(run({"--headless", path("cut.dwg")}).code, 7);

    const Ran both =
        run({"--headless", "--script", script("NOTTHERE\n"), path("bad.dwg"), path("a.dwg")});
    EXPECT_EQ(both.code, 1);
    EXPECT_NE(both.err.find("NOTTHERE"), std::string::npos) << both.err;
}

TEST_F(HeadlessTest, ADrawingThatSomebodyEditsIsNotOpened)
{
    const LockHolder other(folder.file("a.dwg"));
    ASSERT_TRUE(other.isHolding());
    EXPECT_EQ(run({"--headless", path("a.dwg")}).code, 4);
}

TEST_F(HeadlessTest, AnUnknownCommandMakesItFail)
{
    const Ran ran = run({"--headless", "--script", script("NOTTHERE\n"), path("a.dwg")});
    EXPECT_EQ(ran.code, 1);
    EXPECT_NE(ran.err.find("E23001"), std::string::npos) << ran.err;
}

TEST_F(HeadlessTest, WhatACommandRefusesMakesItFail)
{
    for (const char* line :
         {"LAYOUT Delete None", "-VIEW Restore None", "ZOOM 0", "LAYOUT New *"}) {
        const Ran ran =
            run({"--headless", "--script", script(std::string(line) + "\n"), path("a.dwg")});
        EXPECT_EQ(ran.code, 1) << line << ": " << ran.err;
        EXPECT_NE(ran.err.find("tarvik: E23"), std::string::npos) << line << ": " << ran.err;
    }
    for (const char* line : {"U", "DWGNAME"}) // nothing to do, or only to show
        EXPECT_EQ(
            run({"--headless", "--script", script(std::string(line) + "\n"), path("a.dwg")}).code,
            0)
            << line;
}

TEST_F(HeadlessTest, AMissingScriptIsTold)
{
    const Ran ran = run({"--headless", "--script", path("none.scr")});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(ran.err.find("none.scr"), std::string::npos) << ran.err;
}

TEST_F(HeadlessTest, AScriptWorksOnADrawingFromItsOpeningToItsEnd)
{
    const Ran ran = run({"--headless", "--script",
                         script("OPEN\n" + path("a.dwg") +
                                "\n"
                                "LAYOUT Set Layout1\n"
                                "LAYOUT New Plan\n"
                                "LAYOUT Rename Plan\nGround floor\n"
                                "-VIEW Save Whole\n"
                                "LAYOUT New Draft\n"
                                "U\n"
                                "QSAVE\n"
                                "CLOSE\n"
                                "QUIT\n"
                                "NOTREACHED\n")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_EQ(ran.err.find("NOTREACHED"), std::string::npos);
    dwg::install();
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(folder.file("a.dwg")), TvStatus::Ok);
    std::vector<std::string> names;
    for (const TvDbObjectId id : db::layoutsInTabOrder(drawing))
        names.push_back(TvDbObjectPointer<TvDbLayout>(id)->getLayoutName().utf8());
    EXPECT_EQ(names, (std::vector<std::string>{"Model", "Layout1", "Ground floor"}));
    TvDbViewTable* views = nullptr;
    ASSERT_EQ(drawing.getSymbolTable(views), TvStatus::Ok);
    EXPECT_TRUE(views->has(u"Whole"));
    views->close();
}

TEST_F(HeadlessTest, ZoomingToTheExtentsShowsWhatIsDrawn)
{
    const Ran ran = run({"--headless", "--script", script("ZOOM Extents\nQSAVE\n"), path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    dwg::install();
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(folder.file("a.dwg")), TvStatus::Ok);
    const gs::DisplayList list = gs::DisplayList::ofModel(drawing);
    ASSERT_TRUE(list.savedWindow());
    EXPECT_LE(list.savedWindow()->lowX, list.extents().lowX + 1e-6);
    EXPECT_GE(list.savedWindow()->highY, list.extents().highY - 1e-6);
    EXPECT_LT(list.savedWindow()->height(),
              list.extents().height() * 3 + list.extents().width() * 3);
}

TEST_F(HeadlessTest, WhatIsNotSavedIsGoneAndThatIsSaid)
{
    const std::string before = folder.read("a.dwg");
    const Ran ran = run({"--headless", "--script", script("CTAB\nLayout1\n"), path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(ran.err.find("a.dwg had changes"), std::string::npos) << ran.err;
    EXPECT_EQ(folder.read("a.dwg"), before);
}

TEST_F(HeadlessTest, WrongOptionsAreUsageErrors)
{
    const Ran ran = run({"--headless", "--frob"});
    EXPECT_EQ(ran.code, 2);
    EXPECT_NE(ran.err.find("--frob"), std::string::npos) << ran.err;
}

TEST_F(HeadlessTest, VersionAndHelpGoToTheOutput)
{
    EXPECT_EQ(run({"--version"}).out.rfind("tarvik ", 0), 0u);
    EXPECT_EQ(run({"--help"}).out.rfind("Usage: tarvik", 0), 0u);
}

TEST_F(HeadlessTest, LeavesNothingBesideTheDrawings)
{
    run({"--headless", "--script", script("CTAB\nLayout1\n"), path("a.dwg"), path("b.dwg")});
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        EXPECT_NE(entry.path().filename().string()[0], '.') << entry.path();
}

TEST(ConsolePrompts, NothingThatATerminalObeysGetsThrough)
{
    NotingPrompts prompts;
    prompts.print(u"one\x1b[2J\ntwo\n");
    prompts.say(23500, {});
    EXPECT_EQ(prompts.out.find('\x1b'), std::string::npos);
    EXPECT_NE(prompts.out.find("\ntwo\n"), std::string::npos);
    EXPECT_EQ(prompts.failures(), 0);
}

TEST(ConsolePrompts, WordsOfAnyLengthMakeShortMessages)
{
    NotingPrompts prompts;
    prompts.say(ed::kUnknownCommand, {TvString(std::u16string(1 << 20, u'\0'))});
    EXPECT_LT(prompts.err.size(), 5000u);
    EXPECT_NE(prompts.err.find("\u2026"), std::string::npos);
}

TEST(ConsolePrompts, AMessageIsOneLineWhateverItsTextAndItsNamesHold)
{
    NotingPrompts prompts;
    prompts.say(350, {u"a\nb.dwg", u"c.dst"}); // a text of two paragraphs
    EXPECT_EQ(std::ranges::count(prompts.err, '\n'), 1);
    EXPECT_NE(prompts.err.find("a\\x0Ab.dwg"), std::string::npos) << prompts.err;
    EXPECT_NE(prompts.err.find(". Remove"), std::string::npos) << prompts.err;
}

TEST(ConsolePrompts, WarningsCountAsFailures)
{
    NotingPrompts prompts;
    TvUserMessages::Message message;
    message.text = 514;
    prompts.show(message);
    EXPECT_EQ(prompts.failures(), 0);
    message.icon = TvUserMessages::Icon::Warning;
    prompts.show(message);
    EXPECT_EQ(prompts.failures(), 1);
    EXPECT_NE(prompts.err.find("E00514"), std::string::npos) << prompts.err;
}

} // namespace
