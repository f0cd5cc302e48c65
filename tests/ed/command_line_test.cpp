#include <base/kv_error_status.h>
#include <ed/command_line.h>
#include <ed/program_control.h>
#include <ed/system_variables.h>
#include <rx/tv_ed_command_stack.h>

#include <algorithm>
#include <stdexcept>

#include "editor_scene.h"
#include "scripted_prompts.h"

namespace {

using Told = std::vector<std::string>;

class CommandLineTest : public EditorTest
{
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        tvrxSysRegistry()->atPut(kTvRegisteredCommands, &stack);
        ed::setUserPrompts(&prompts);
        g_got.clear();
        stack.addCommand(u"T", u"ASK", u"FRAGE", 0, [] { ask(false); });
        stack.addCommand(u"T", u"ASKLINE", u"ASKLINE", 0, [] { ask(true); });
        stack.addCommand(u"T", u"PLAIN", u"PLAIN", 0, [] { g_got.push_back("plain"); });
        stack.addCommand(u"T", u"POSTS", u"POSTS", 0, [] {
            tvedPostCommand(u"PLAIN\n");
            line()->work();
            g_got.push_back("posted");
        });
    }
    void TearDown() override
    {
        ed::setUserPrompts(nullptr);
        tvrxSysRegistry()->remove(kTvRegisteredCommands);
        EditorTest::TearDown();
    }
    static ed::CommandLine* line() { return ed::commandLine(); }
    static void ask(bool withBlanks)
    {
        TvString text = u"untouched";
        const int status = tvedGetString(withBlanks, u"What? ", text);
        g_got.push_back((status == 5100 ? "got " : "no ") + text.utf8());
    }
    void type(const TvString& text)
    {
        tvedPostCommand(text);
        commands.work();
    }
    static inline Told g_got;
    TvEdCommandStackImp stack;
    ScriptedPrompts prompts;
    ed::CommandLine commands;
};

TEST_F(CommandLineTest, WordsAreCommandsAndTheirAnswers)
{
    type(u"PLAIN ask one\n\n  _ASK two three-is-unknown\n");
    EXPECT_EQ(g_got, (Told{"plain", "got one", "got two"}));
    EXPECT_EQ(prompts.seen, (Told{"say 23001 three-is-unknown"}));
    EXPECT_TRUE(commands.isIdle());
}

TEST_F(CommandLineTest, AWholeLineIsOneAnswerWhereBlanksBelongToIt)
{
    type(u"ASKLINE Ground floor, plan\nPLAIN\n");
    EXPECT_EQ(g_got, (Told{"got Ground floor, plan", "plain"}));
}

TEST_F(CommandLineTest, AnApostropheBeforeANameIsNoPartOfIt)
{
    type(u"'PLAIN\n'_ASK one\n'NOTTHERE\n'\n");
    EXPECT_EQ(g_got, (Told{"plain", "got one"}));
    EXPECT_EQ(prompts.seen, (Told{"say 23001 'NOTTHERE", "say 23001 '"}));
}

TEST_F(CommandLineTest, AnEmptyLineIsAnEmptyAnswer)
{
    type(u"ASK \nPLAIN\n");
    EXPECT_EQ(g_got, (Told{"got ", "plain"}));
}

TEST_F(CommandLineTest, WhatWasNotPostedTheUserIsAskedFor)
{
    prompts.answers = {u"from the user"};
    type(u"ASK\n");
    EXPECT_EQ(g_got, (Told{"got from the user"}));
    EXPECT_EQ(prompts.seen, (Told{"word: What? "}));
}

TEST_F(CommandLineTest, ReactorsHearOfTheStartAndTheEndByTheGlobalName)
{
    type(u"frage x\n");
    EXPECT_EQ(reactor.told, (Told{"starts ASK", "ended ASK"}));
}

TEST_F(CommandLineTest, AnEscapeCancelsTheCommandThatAsksAndTheNextOneRuns)
{
    type(u"ASK half\x1bPLAIN\n");
    EXPECT_EQ(g_got, (Told{"no untouched", "plain"}));
    EXPECT_EQ(reactor.told, (Told{"starts ASK", "cancelled ASK", "starts PLAIN", "ended PLAIN"}));
    EXPECT_EQ(prompts.seen, (Told{"say 23004"}));
}

TEST_F(CommandLineTest, AnEscapeBehindAnAnswerIsForTheNextQuestion)
{
    type(u"ASK one\n\x1bPLAIN\n");
    EXPECT_EQ(g_got, (Told{"got one", "plain"}));
}

TEST_F(CommandLineTest, AnEscapeWhileNothingRunsIsNothing)
{
    type(u"\x1bPLAIN\n\x1b\x1bPLAIN\n");
    EXPECT_EQ(g_got, (Told{"plain", "plain"}));
}

TEST_F(CommandLineTest, AWordThatIsEscapedIsNotACommand)
{
    type(u"PLA\x1bPLAIN\n");
    EXPECT_EQ(g_got, (Told{"plain"}));
    EXPECT_TRUE(prompts.seen.empty());
}

TEST_F(CommandLineTest, AQuestionThatIsGivenUpCancelsTheCommand)
{
    type(u"ASK\n");
    EXPECT_EQ(g_got, (Told{"no untouched"}));
    EXPECT_EQ(reactor.told, (Told{"starts ASK", "cancelled ASK"}));
}

TEST_F(CommandLineTest, WhatACommandThrowsEndsItAndNothingElse)
{
    stack.addCommand(u"T", u"THROWS", u"THROWS", 0, [] { throwErrorStatus(kvErrOutOfRange); });
    stack.addCommand(u"T", u"BREAKS", u"BREAKS", 0, [] { throw std::runtime_error("no room"); });
    type(u"THROWS\nPLAIN\nBREAKS\nPLAIN\n");
    EXPECT_EQ(g_got, (Told{"plain", "plain"}));
    EXPECT_EQ(prompts.seen, (Told{"say 23005 THROWS 24", "say 23005 BREAKS no room"}));
    EXPECT_EQ(reactor.told,
              (Told{"starts THROWS", "cancelled THROWS", "starts PLAIN", "ended PLAIN",
                    "starts BREAKS", "cancelled BREAKS", "starts PLAIN", "ended PLAIN"}));
    EXPECT_TRUE(commands.isIdle());
    EXPECT_EQ(commands.running(), u"");
}

TEST_F(CommandLineTest, AScriptEndsWithACommandThatThrows)
{
    stack.addCommand(u"T", u"THROWS", u"THROWS", 0, [] { throwErrorStatus(kvErrOutOfRange); });
    commands.startScript(u"THROWS\nPLAIN\n");
    commands.work();
    EXPECT_TRUE(g_got.empty());
    EXPECT_FALSE(commands.isScripting());
}

TEST_F(CommandLineTest, WhatAReactorThrowsLeavesTheLineReady)
{
    struct Throwing : TvEditorReactor {
        void sysVarChanged(const TvChar*) override { throwErrorStatus(kvErrOutOfRange); }
    } throwing;
    editor.addReactor(&throwing);
    commands.startScript(u"SSLOCATE 0\nPLAIN\n");
    EXPECT_THROW(commands.work(), KvErrorStatus);
    editor.removeReactor(&throwing);
    commands.stopScript();
    type(u"PLAIN\n");
    EXPECT_EQ(g_got, (Told{"plain"}));
    EXPECT_FALSE(commands.isScripting());
}

TEST_F(CommandLineTest, TheProgramHearsOfWhatIsPosted)
{
    struct Program : ed::ProgramControl {
        void quit() override {}
        bool showHelp(const TvString&) override { return false; }
        void recentFilesChanged() override {}
        void posted() override { ++count; }
        int count = 0;
    } program;
    ed::setProgramControl(&program);
    tvedPostCommand(u"PLAIN\n");
    ed::setProgramControl(nullptr);
    EXPECT_EQ(program.count, 1);
    EXPECT_TRUE(g_got.empty()) << "it runs when the program lets it";
    commands.work();
    EXPECT_EQ(g_got, (Told{"plain"}));
}

TEST_F(CommandLineTest, WhatACommandPostsComesAfterIt)
{
    type(u"POSTS\n");
    EXPECT_EQ(g_got, (Told{"posted", "plain"}));
}

TEST_F(CommandLineTest, ACommandRunsInTheContextOfItsDocumentAndIsUndoneAlone)
{
    TvApDocManager manager;
    TvApDocument* document = nullptr;
    ASSERT_EQ(manager.openDocument(folder.file("a.dwg"), false, document), TvStatus::Ok);
    static bool s_wasApplication = true;
    stack.addCommand(u"T", u"SCALE", u"SCALE", 0, [] {
        s_wasApplication = tvDocManagerPtr()->isApplicationContext();
        ed::setVariable(u"LTSCALE", 2.0);
    });
    stack.addCommand(u"T", u"SIZE", u"SIZE", 0, [] { ed::setVariable(u"TEXTSIZE", 9.0); });
    type(u"SCALE\nSIZE\n");
    EXPECT_FALSE(s_wasApplication);
    EXPECT_TRUE(manager.isApplicationContext());
    struct : TvEditorReactor {
        void commandEnded(const TvChar*) override
        {
            isApplication = tvDocManagerPtr()->isApplicationContext();
        }
        bool isApplication = false;
    } ending;
    editor.addReactor(&ending);
    type(u"SIZE\n");
    editor.removeReactor(&ending);
    EXPECT_TRUE(ending.isApplication);
    document->database()->undo(); // of the second command
    EXPECT_EQ(ed::variable(u"LTSCALE"), ed::VariableValue(2.0));
    EXPECT_NE(ed::variable(u"TEXTSIZE"), ed::VariableValue(9.0));
}

TEST_F(CommandLineTest, TheNameOfAVariableAsksForItsValue)
{
    type(u"ssmpolltime 90\n");
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), ed::VariableValue(std::int16_t(90)));
    EXPECT_TRUE(prompts.seen.empty());
    prompts.answers = {u"120"};
    type(u"SSMPOLLTIME\n");
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), ed::VariableValue(std::int16_t(120)));
    EXPECT_EQ(prompts.seen, (Told{"word: SSMPOLLTIME <90>: "}));
}

TEST_F(CommandLineTest, AnEmptyAnswerKeepsTheVariable)
{
    type(u"SSMPOLLTIME\n\n");
    EXPECT_TRUE(prompts.seen.empty());
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), ed::VariableValue(std::int16_t(60)));
}

TEST_F(CommandLineTest, AValueThatAVariableCannotHaveIsToldOf)
{
    type(u"SSMPOLLTIME 1\nSSMPOLLTIME often\n");
    EXPECT_EQ(prompts.seen, (Told{"say 23003 SSMPOLLTIME 1", "say 23003 SSMPOLLTIME often"}));
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), ed::VariableValue(std::int16_t(60)));
}

TEST_F(CommandLineTest, AReadOnlyVariableIsShown)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(folder.file("a.dwg")), TvStatus::Ok);
    tvdbHostApplicationServices()->setWorkingDatabase(&drawing);
    type(u"DWGNAME\n");
    EXPECT_EQ(prompts.seen, (Told{"say 23002 DWGNAME a.dwg"}));
}

TEST_F(CommandLineTest, FilesArePostedOrChosen)
{
    resbuf* chain = nullptr;
    tvedPostCommand(u"\"/plans/my set.dst\"\n");
    EXPECT_EQ(tvedGetFileNavDialog(u"Open", u"", u"dst", u"", 0, chain), 5100);
    TvResbufPtr posted(chain);
    ASSERT_TRUE(posted);
    EXPECT_EQ(posted->restype, 5005);
    EXPECT_EQ(TvString(posted->resval.rstring), u"/plans/my set.dst");
    EXPECT_EQ(posted->rbnext, nullptr);

    prompts.files = {u"/a.dwg", u"/b.dwg"};
    EXPECT_EQ(tvedGetFileNavDialog(u"Open", u"/plans", u"dwg; dwt;", u"Dialog", 4104, chain), 5100);
    const TvResbufPtr chosen(chain);
    EXPECT_EQ(TvString(chosen->resval.rstring), u"/a.dwg");
    ASSERT_NE(chosen->rbnext, nullptr);
    EXPECT_EQ(TvString(chosen->rbnext->resval.rstring), u"/b.dwg");
    EXPECT_EQ(prompts.asked.title, u"Open");
    EXPECT_EQ(prompts.asked.start, u"/plans");
    EXPECT_EQ(prompts.asked.extensions, (std::vector<TvString>{u"dwg", u"dwt"}));
    EXPECT_EQ(prompts.asked.dialogName, u"Dialog");
    EXPECT_TRUE(prompts.asked.mayBeSeveral);
    EXPECT_FALSE(prompts.asked.isForFolder);
}

TEST_F(CommandLineTest, AFileDialogThatIsGivenUpGivesNothing)
{
    const std::unique_ptr<resbuf> stale(new resbuf);
    resbuf* chain = stale.get();
    EXPECT_NE(tvedGetFileNavDialog(u"Folder", nullptr, nullptr, nullptr, 2320, chain), 5100);
    EXPECT_EQ(chain, nullptr);
    EXPECT_TRUE(prompts.asked.isForFolder);
    tvedPostCommand(u"\x1b");
    prompts.files = {u"/a.dst"};
    EXPECT_NE(tvedGetFileNavDialog(u"Open", u"", u"dst", u"", 0, chain), 5100);
    EXPECT_EQ(chain, nullptr);
}

TEST_F(CommandLineTest, TextIsPrintedFormatted)
{
    tvutPrintf(u"%d of %ls", 3, TvString(u"many"));
    EXPECT_EQ(prompts.seen, (Told{"print: 3 of many"}));
    ed::setUserPrompts(nullptr);
    tvutPrintf(u"%d", 3);
}

TEST_F(EditorTest, WithoutACommandLineOrAUserEveryQuestionIsGivenUp)
{
    TvString text = u"untouched";
    resbuf* chain = nullptr;
    EXPECT_NE(tvedGetString(1, u"What? ", text), 5100);
    EXPECT_EQ(text, u"untouched");
    EXPECT_NE(tvedGetFileNavDialog(u"Open", u"", u"dst", u"", 0, chain), 5100);
    tvedPostCommand(u"PLAIN\n");
    const ed::CommandLine empty;
    EXPECT_TRUE(empty.isIdle());
}

} // namespace
