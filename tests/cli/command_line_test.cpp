#include <filesystem>

#include <cli/option_tree.h>
#include <sm/environment.h>

#include "tool_scene.h"

namespace {

using cli::ExitCode;

TEST(Nearest, FindsWhatWasMeant)
{
    const std::vector<std::string> verbs = {"tree", "info", "move", "remove", "completion"};
    EXPECT_EQ(cli::nearest("tre", verbs), "tree");
    EXPECT_EQ(cli::nearest("ifno", verbs), "info");
    EXPECT_EQ(cli::nearest("mvoe", verbs), "move");
    EXPECT_EQ(cli::nearest("compeltoin", verbs), "completion");
    EXPECT_EQ(cli::nearest("embroider", verbs), "");
    EXPECT_EQ(cli::nearest(std::string(1000, 'x'), verbs), "");
}

TEST(Nearest, ToleratesOneLetterInAShortWordAndAThirdInALongOne)
{
    const std::vector<std::string> verbs = {"move", "completion"};
    EXPECT_EQ(cli::nearest("mxve", verbs), "move");
    EXPECT_EQ(cli::nearest("mxxe", verbs), "");
    EXPECT_EQ(cli::nearest("cxxxletion", verbs), "completion");
    EXPECT_EQ(cli::nearest("cxxxxetion", verbs), "");
}

TEST(Nearest, NothingIsMeantByAWordOfManyLetters)
{
    const std::vector<std::string> words = {std::string(40, 'x')};
    EXPECT_EQ(cli::nearest(std::string(40, 'x'), words), words[0]);
    EXPECT_EQ(cli::nearest(std::string(41, 'x'), words), "");
}

TEST(CommandLine, WrongUsageIsToldOnTheStandardErrorOnly)
{
    struct Case {
        std::vector<std::string> arguments;
        const char* message;
    };
    const Case cases[] = {
        {{"tre", "a.dst"},
         "kvsheetset: E22402: There is no verb \"tre\". Did you mean \"tree\"?\n"},
        {{"embroider"},
         "kvsheetset: E22401: There is no verb \"embroider\". See kvsheetset help.\n"},
        {{"subset"}, "kvsheetset: E22403: \"subset\" wants one more word: add.\n"},
        {{"prop", "lst", "a.dst"},
         "kvsheetset: E22402: There is no verb \"prop lst\". Did you mean \"prop list\"?\n"},
        {{"--jsn", "tree"},
         "kvsheetset: E22405: There is no option \"--jsn\" here. Did you mean \"--json\"?\n"},
        {{"tree"}, "kvsheetset tree: E22407: FILE is missing.\n"},
        {{"tree", "--dept", "1"},
         "kvsheetset tree: E22405: There is no option \"--dept\" here. Did you mean "
         "\"--depth\"?\n"},
        {{"tree", "a.dst", "--zzz=1"},
         "kvsheetset tree: E22404: There is no option \"--zzz\" here.\n"},
        {{"tree", "a.dst", "b"}, "kvsheetset tree: E22406: \"b\" is one argument too many.\n"},
        {{"tree", ""}, "kvsheetset tree: E22411: FILE is empty.\n"},
        {{"tree", "a.dst", "--depth", "-1"},
         "kvsheetset tree: E22413: --depth takes a whole number from 0 to 999999, not \"-1\".\n"},
        {{"tree", "a.dst", "--depth"},
         "kvsheetset tree: E22408: The option --depth takes one value, once.\n"},
        {{"tree", "a.dst", "--lock-wait", "soon"},
         "kvsheetset tree: E22413: --lock-wait takes a whole number from 0 to 999999, not "
         "\"soon\".\n"},
        {{"move", "a.dst", "g4"}, "kvsheetset move: E22407: --to is missing.\n"},
        {{"move", "a.dst", "g4", "--to", "g3", "--before", "g5", "--after", "g6"},
         "kvsheetset move: E22409: Give --before or --after, not both.\n"},
        {{"set", "a.dst", "g4"}, "kvsheetset set: E22407: KEY=VALUE is missing.\n"},
        {{"set", "a.dst", "g4", "title=\xff"},
         "kvsheetset set: E22412: KEY=VALUE is not written in UTF-8.\n"},
        {{"prop", "set", "a.dst", "g1", "a=b", "--for", "me"},
         "kvsheetset prop set: E22414: --for takes \"set\" or \"sheets\", not \"me\".\n"},
        {{"completion", "fish"},
         "kvsheetset completion: E22415: There is no completion for \"fish\"; there is one for "
         "bash.\n"},
        {{"help", "tre"},
         "kvsheetset help: E22402: There is no verb \"tre\". Did you mean \"tree\"?\n"},
    };
    for (const Case& each : cases) {
        const Said said = runLine(each.arguments);
        EXPECT_EQ(said.code, ExitCode::Usage) << each.message;
        EXPECT_EQ(said.err, each.message);
        EXPECT_EQ(said.out, "") << each.message;
    }
}

TEST(CommandLine, WithoutArgumentsGivesShortHelpOnTheStandardError)
{
    const Said said = runLine({});

    EXPECT_EQ(said.code, ExitCode::Usage);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.err.rfind("Usage: kvsheetset", 0), 0u);
}

TEST(CommandLine, WrongUsageGivesADocumentWhereOneWasAskedFor)
{
    const Said verb = runLine({"tre", "--json"});
    EXPECT_EQ(verb.json()["schema"], "kvsheetset.usage/1");
    EXPECT_EQ(verb.json()["ok"], false);
    EXPECT_EQ(verb.json()["error"]["code"], "E22402");

    const Said option = runLine({"tree", "--json"});
    EXPECT_EQ(option.json()["schema"], "kvsheetset.tree/1");
    EXPECT_EQ(option.json()["exitCode"], 2);

    EXPECT_EQ(runLine({"--json"}).json()["error"]["code"], "E22419");
    // Behind two dashes it is the name of a file.
    EXPECT_EQ(runLine({"tre", "--", "--json"}).out, "");
}

TEST(CommandLine, TwoDashesMayStandBeforeTheVerb)
{
    const SampleFolder sample;
    EXPECT_EQ(runLine({"--", "tree", sample.native()}).out, sample.tree());
}

TEST(CommandLine, BehindTwoDashesEverythingIsAnArgument)
{
    const SampleFolder sample;
    EXPECT_EQ(runLine({"subset", "add", sample.native(), "--", "--"}).code, ExitCode::Ok);
    EXPECT_NE(sample.tree().find("─ --\n"), std::string::npos) << sample.tree();
}

TEST(CommandLine, NumbersHaveAtMostSixDigits)
{
    const SampleFolder sample;
    EXPECT_EQ(runLine({"tree", sample.native(), "--depth", "999999"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"tree", sample.native(), "--depth", "1000000"}).code, ExitCode::Usage);
}

TEST(CommandLine, AChangeTellsOthersWhichVerbHoldsTheLock)
{
    const SampleFolder sample;
    ASSERT_EQ(runLine({"subset", "add", sample.native(), "x"}).code, ExitCode::Ok);
    EXPECT_EQ(sm::environment().purpose, "subset add");
}

TEST(CommandLine, ArgumentsAreTakenAsTheyStand)
{
    const SampleFolder sample;
    const std::string file = sample.native();
    for (const std::string name : {"[a,b]", "{}", "tree", "", "a=b=c"}) {
        const std::string wanted = name.empty() ? "empty" : name;
        const Said said = runLine({"prop", "set", file, "g1", "Key=" + name});
        ASSERT_EQ(said.code, ExitCode::Ok) << said.err;
        const auto json = runLine({"prop", "list", file, "g1", "--json"}).json();
        EXPECT_EQ(json["properties"][1]["value"], name) << wanted;
    }
    EXPECT_EQ(runLine({"prop", "set", file, "g1", "[x]=1"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"prop", "remove", file, "g1", "[x]"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"subset", "add", file, "add"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"subset", "add", file, "--", "--name"}).code, ExitCode::Ok);
    EXPECT_NE(sample.tree().find("--name"), std::string::npos);
}

/// Puts the working folder back.
class CurrentFolder
{
public:
    ~CurrentFolder() { std::filesystem::current_path(m_former); }

private:
    std::filesystem::path m_former = std::filesystem::current_path();
};

TEST(CommandLine, FilesWhoseNamesLookLikeOptionsWorkBehindTwoDashes)
{
    const CurrentFolder restored;
    const TempFolder folder;
    for (const std::string name : {"-o.dst", "--config=x.dst", "$(id).dst", "[a].dst"}) {
        const Said made = runLine({"-C", folder.path().string(), "new", "--", name});
        EXPECT_EQ(made.code, ExitCode::Ok) << made.err;
        EXPECT_TRUE(std::filesystem::exists(folder.path() / name)) << name;
        EXPECT_EQ(runLine({"tree", "--", name}).code, ExitCode::Ok) << name;
    }
}

TEST(CommandLine, AFolderThatIsNotThereCannotBeEntered)
{
    const CurrentFolder restored;
    const TempFolder folder;
    const Said said = runLine({"tree", "a.dst", "-C", (folder.path() / "none").string()});

    EXPECT_EQ(said.code, ExitCode::NoInput);
    EXPECT_NE(said.err.find("E22416"), std::string::npos);
}

TEST(CommandLine, SecondsMayCarryTheirUnit)
{
    const SampleFolder sample;
    EXPECT_EQ(runLine({"tree", sample.native(), "--lock-wait", "30s"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"tree", sample.native(), "--lock-wait", "s"}).code, ExitCode::Usage);
}

TEST(CommandLine, OutputThatCannotBeWrittenIsAFailure)
{
    const SampleFolder sample;
    TestPorts ports;
    ports.canWrite = false;

    const std::vector<std::string> line = {"tree", sample.native()};
    EXPECT_EQ(cli::runTool(line, ports), 8);
    EXPECT_NE(ports.errors.find("E22417"), std::string::npos);

    // What failed before is what counts.
    const std::vector<std::string> missing = {"tree", sample.native() + "x"};
    EXPECT_EQ(cli::runTool(missing, ports), 3);
}

TEST(CommandLine, InterruptedBeforeItsDataAVerbShowsNone)
{
    const SampleFolder sample;
    const std::string before = sample.bytes();
    for (const std::vector<std::string>& line :
         {std::vector<std::string>{"tree", sample.native()},
          std::vector<std::string>{"set", sample.native(), "g1", "name=x"},
          std::vector<std::string>{"check", sample.native()}}) {
        TestPorts ports;
        ports.interrupted = true;
        EXPECT_EQ(cli::runTool(line, ports), 130) << line[0];
        EXPECT_EQ(ports.output, "") << line[0];
    }
    EXPECT_EQ(sample.bytes(), before);
}

TEST(Version, TellsTheFormatThatIsWritten)
{
    EXPECT_NE(runLine({"--version"}).out.find("sheet-set file format 1.0"), std::string::npos);
    const auto json = runLine({"--version", "--json"}).json();
    EXPECT_EQ(json["schema"], "kvsheetset.version/1");
    EXPECT_EQ(json["formats"]["dst"], "1.0");
    EXPECT_FALSE(json["libraries"]["icu"].get<std::string>().empty());
}

} // namespace
