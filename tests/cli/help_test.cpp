#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include <cli/help_text.h>

#include "drawing_scene.h"
#include "tool_process.h"
#include "tool_scene.h"

namespace {

using cli::ExitCode;

std::string contentOf(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Whether a program of Debian's is installed on this machine.
bool isInstalled(const std::string& program)
{
    return std::filesystem::exists("/usr/bin/" + program);
}

TEST(Help, EachVerbIsListedAndExplained)
{
    const std::string whole = runLine({"help"}).out;
    for (const cli::Verb& verb : cli::verbs()) {
        EXPECT_NE(whole.find(std::string("  ") + verb.name + " "), std::string::npos) << verb.name;
        std::vector<std::string> line = {"help"};
        std::string name = verb.name;
        if (const auto blank = name.find(' '); blank != std::string::npos) {
            line.push_back(name.substr(0, blank));
            name.erase(0, blank + 1);
        }
        line.push_back(name);
        const Said said = runLine(line);
        EXPECT_EQ(said.code, ExitCode::Ok) << verb.name;
        EXPECT_NE(said.out.find(cli::usageOf(verb)), std::string::npos) << verb.name;
    }
}

TEST(Help, EachOptionOfAVerbStandsInItsHelp)
{
    for (const cli::Verb& verb : cli::verbs()) {
        const std::string help = cli::verbHelp(verb, false);
        for (const cli::OptionInfo& option : cli::optionsOf(&verb)) {
            EXPECT_FALSE(option.help.empty()) << verb.name << " " << option.names;
            for (const std::string& name : option.spellings)
                EXPECT_NE(help.find(name), std::string::npos) << verb.name << " " << name;
        }
    }
}

TEST(Help, EachVerbTakesJsonLockWaitAndWhereItChangesDryRun)
{
    const std::set<std::string> changing = {"new",
                                            "subset add",
                                            "move",
                                            "set",
                                            "prop set",
                                            "prop remove",
                                            "remove",
                                            "sheet new",
                                            "sheet import",
                                            "sheet rename",
                                            "renumber",
                                            "drawing copy",
                                            "drawing new",
                                            "drawing layout add",
                                            "drawing layout rename",
                                            "drawing layout remove",
                                            "drawing sheetdata write",
                                            "drawing sheetdata remove"};
    for (const cli::Verb& verb : cli::verbs()) {
        std::set<std::string> names;
        for (const cli::OptionInfo& option : cli::optionsOf(&verb))
            names.insert(option.spellings.begin(), option.spellings.end());
        for (const char* name : {"--json", "--lock-wait", "-C", "-q", "-h", "--help"})
            EXPECT_TRUE(names.count(name)) << verb.name << " " << name;
        EXPECT_EQ(names.count("--dry-run"), changing.count(verb.name)) << verb.name;
        EXPECT_EQ(names.count("-n"), changing.count(verb.name)) << verb.name;
    }
}

TEST(Help, ShortAndLongHelpComeBeforeAnyOtherCheck)
{
    const Said brief = runLine({"move", "-h"});
    EXPECT_EQ(brief.code, ExitCode::Ok);
    EXPECT_EQ(brief.err, "");
    EXPECT_EQ(brief.out.find("Examples:"), std::string::npos);
    EXPECT_NE(brief.out.find("--to"), std::string::npos);
    EXPECT_EQ(brief.out.find("--lock-wait"), std::string::npos); // what every verb has

    const Said full = runLine({"move", "--help"});
    EXPECT_LT(full.out.find("Examples:"), full.out.find("Usage:"));
    EXPECT_EQ(full.out, runLine({"help", "move"}).out);
}

TEST(Help, OptionsStandInColumnsThatNoLongNameBreaks)
{
    for (const cli::Verb& verb : cli::verbs())
        for (const cli::OptionInfo& option : cli::optionsOf(&verb)) {
            const std::string help = cli::verbHelp(verb, false);
            const std::string first = option.help.substr(0, option.help.find(' '));
            const std::size_t at =
                help.find("  " + option.names + (option.names.empty() ? option.value : ""));
            ASSERT_NE(at, std::string::npos) << verb.name << option.names;
            const std::size_t word = help.find(first, help.find(option.value, at));
            EXPECT_EQ(word - help.rfind('\n', word) - 1, 24u) << verb.name << " " << option.names;
        }
}

TEST(Help, AFirstWordGivesAllItsVerbs)
{
    const Said said = runLine({"help", "prop"});
    EXPECT_EQ(said.code, ExitCode::Ok);
    for (const char* verb : {"prop set", "prop remove", "prop list"})
        EXPECT_NE(said.out.find(std::string("Usage: kvsheetset ") + verb), std::string::npos);
    EXPECT_EQ(runLine({"prop", "-h"}).out, said.out);
    EXPECT_EQ(runLine({"prop", "--help"}).out, said.out);
}

TEST(Help, OfAGroupIsADocumentTooWhereverItIsAskedFor)
{
    for (const std::vector<std::string>& line :
         {std::vector<std::string>{"--json", "prop", "--help"},
          {"prop", "--help", "--json"},
          {"prop", "--json", "-h"}}) {
        const auto json = runLine(line).json();
        EXPECT_EQ(json["schema"], "kvsheetset.help/1");
        EXPECT_EQ(json["verbs"], runLine({"help", "prop", "--json"}).json()["verbs"]);
        EXPECT_GT(json["verbs"].size(), 1u);
    }
    EXPECT_EQ(runLine({"prop", "--json", "--help", "more"}).code, ExitCode::Usage);
}

TEST(Help, TheDocumentListsVerbsAndOptions)
{
    const auto json = runLine({"help", "tree", "--json"}).json();
    EXPECT_EQ(json["schema"], "kvsheetset.help/1");
    ASSERT_EQ(json["verbs"].size(), 1u);
    EXPECT_EQ(json["verbs"][0]["verb"], "tree");
    EXPECT_EQ(runLine({"help", "--json"}).json()["verbs"].size(), cli::verbs().size());
}

TEST(JsonDocuments, EachHasItsRowInTheDocumentation)
{
    const std::string page = contentOf(std::string(KV_DOCS) + "/json.md");
    for (const cli::Verb& verb : cli::verbs()) {
        std::string name = verb.name;
        std::replace(name.begin(), name.end(), ' ', '-');
        EXPECT_NE(page.find("| `kvsheetset." + name + "/1` |"), std::string::npos) << name;
    }
}

/// The names of the fields that a document has at its top, behind those that all have.
std::vector<std::string> ownFields(const nlohmann::ordered_json& document)
{
    std::vector<std::string> names;
    for (const auto& [name, value] : document.items())
        if (name != "schema" && name != "ok" && name != "exitCode" && name != "warnings")
            names.push_back(name);
    return names;
}

TEST(JsonDocuments, EachFieldIsDocumented)
{
    const SampleFolder sample;
    const DrawingFolder drawings;
    const std::string file = sample.native();
    const std::string plan = drawings.put("line-ac1032.dwg");
    const std::string page = contentOf(std::string(KV_DOCS) + "/json.md");
    const std::vector<std::vector<std::string>> lines = {
        {"new", file + "2.dst"},
        {"tree", file},
        {"info", file},
        {"subset", "add", file, "x"},
        {"move", file, "g4", "--to", "g1"},
        {"set", file, "g4", "name=x"},
        {"prop", "set", file, "g4", "a=b"},
        {"prop", "list", file, "g4"},
        {"prop", "remove", file, "g4", "a"},
        {"remove", file, "g4"},
        {"check", file},
        {"lock", file},
        {"help"},
        {"completion", "bash"},
        {"--version"},
        {"drawing", "info", plan},
        {"drawing", "check", plan},
        {"drawing", "copy", plan, plan + ".dxf"},
        {"drawing", "new", plan + "2.dwg"},
        {"drawing", "layout", "list", plan},
        {"drawing", "layout", "add", plan, "A"},
        {"drawing", "layout", "rename", plan, "A", "B"},
        {"drawing", "layout", "remove", plan, "B"},
        {"drawing", "sheetdata", "show", plan},
        {"drawing", "sheetdata", "write", plan, "--set", file, "--layout", "Layout1"},
        {"drawing", "sheetdata", "remove", plan}};
    for (std::vector<std::string> line : lines) {
        line.push_back("--json");
        const auto document = runLine(line).json();
        const std::string schema = document["schema"];
        EXPECT_EQ(document["ok"], true) << schema;
        const std::size_t row = page.find("| `" + schema + "` |");
        ASSERT_NE(row, std::string::npos) << schema;
        const std::string text = page.substr(row, page.find('\n', row) - row);
        for (const std::string& field : ownFields(document))
            EXPECT_NE(text.find("`" + field + "`"), std::string::npos) << schema << " " << field;
    }
}

TEST(ManPage, IsTheOneThatTheOptionTreeMakes)
{
    EXPECT_EQ(contentOf(std::string(KV_DOCS) + "/man/kvsheetset.1"), cli::manualSource())
        << "make it anew with: kvsheetset help --man";
}

TEST(ManPage, HasEveryOptionThatHelpHas)
{
    const std::string page = contentOf(std::string(KV_DOCS) + "/man/kvsheetset.1");
    for (const cli::Verb& verb : cli::verbs())
        for (const cli::OptionInfo& option : cli::optionsOf(&verb))
            for (std::string name : option.spellings) {
                for (std::size_t at = name.find('-'); at != std::string::npos;
                     at = name.find('-', at + 2))
                    name.insert(at, "\\");
                EXPECT_NE(page.find(name), std::string::npos) << verb.name << " " << name;
            }
}

TEST(ManPage, IsWellFormed)
{
    if (!isInstalled("mandoc"))
        GTEST_SKIP() << "mandoc is not installed";
    const Ran ran = runProgram(
        {"/usr/bin/mandoc", "-Tlint", "-Wwarning", std::string(KV_DOCS) + "/man/kvsheetset.1"});
    EXPECT_EQ(ran.code, 0) << ran.out << ran.err;
}

/// What the script offers for a command line whose last word is being typed.
std::string completed(const std::string& words, int current, const std::string& folder)
{
    const TempFolder scripts;
    scripts.write("script", cli::bashCompletion());
    scripts.write("try", ". " + (scripts.path() / "script").string() + "\ncd " + folder +
                             "\nCOMP_WORDS=(" + words + ")\nCOMP_CWORD=" + std::to_string(current) +
                             "\nCOMPREPLY=()\n_kvsheetset\nprintf '%s ' \"${COMPREPLY[@]}\"\n");
    return runProgram({"/bin/bash", (scripts.path() / "try").string()}).out;
}

TEST(Completion, OffersVerbsOptionsAndFiles)
{
    if (!std::filesystem::exists("/bin/bash"))
        GTEST_SKIP() << "bash is not installed";
    const TempFolder folder;
    folder.write("house.dst", "");
    folder.write("house.txt", "");
    const std::string here = folder.path().string();

    EXPECT_EQ(completed("kvsheetset in", 1, here), "info ");
    EXPECT_EQ(completed("kvsheetset prop ''", 2, here), "set remove list ");
    EXPECT_EQ(completed("kvsheetset tree --de", 2, here), "--depth ");
    EXPECT_EQ(completed("kvsheetset tree ho", 2, here), "house.dst ");
    EXPECT_EQ(completed("kvsheetset prop list --json ho", 4, here), "house.dst ");
    EXPECT_EQ(completed("kvsheetset -C . tree ho", 4, here), "house.dst ");
    EXPECT_EQ(completed("kvsheetset prop set house.dst g1 --for s", 6, here), "set sheets ");
    EXPECT_EQ(completed("kvsheetset move house.dst g4 --to ''", 5, here), " ");
}

TEST(Completion, OffersFoldersVerbsAndShellsWhereTheyStand)
{
    if (!std::filesystem::exists("/bin/bash"))
        GTEST_SKIP() << "bash is not installed";
    const TempFolder folder;
    folder.write("house.dst", "");
    std::filesystem::create_directory(folder.path() / "homes");
    const std::string here = folder.path().string();

    EXPECT_EQ(completed("kvsheetset -C ho", 2, here), "homes ");
    EXPECT_EQ(completed("kvsheetset tree ho", 2, here), "house.dst homes ");
    EXPECT_EQ(completed("kvsheetset help tr", 2, here), "tree ");
    EXPECT_EQ(completed("kvsheetset completion ''", 2, here), "bash ");
    // Behind the file there is nothing to guess.
    EXPECT_EQ(completed("kvsheetset remove house.dst ho", 3, here), " ");
    EXPECT_EQ(completed("kvsheetset subset add house.dst ho", 4, here), " ");
}

TEST(Completion, OffersDrawingsWhereDrawingsStand)
{
    if (!std::filesystem::exists("/bin/bash"))
        GTEST_SKIP() << "bash is not installed";
    const TempFolder folder;
    for (const char* name : {"house.dst", "hall.dwg", "hut.DXF", "hangar.dwf"})
        folder.write(name, "");
    const std::string here = folder.path().string();

    EXPECT_EQ(completed("kvsheetset drawing ''", 2, here), "info check copy new layout sheetdata ");
    EXPECT_EQ(completed("kvsheetset drawing layout ''", 3, here), "list add rename remove ");
    EXPECT_EQ(completed("kvsheetset drawing info h", 3, here), "hall.dwg hut.DXF ");
    EXPECT_EQ(completed("kvsheetset drawing copy hall.dwg h", 4, here), "hall.dwg hut.DXF ");
    EXPECT_EQ(completed("kvsheetset drawing copy a b --as AC102", 6, here),
              "AC1021 AC1024 AC1027 ");
    EXPECT_EQ(completed("kvsheetset drawing layout rename hall.dwg h", 5, here), " ");
    EXPECT_EQ(completed("kvsheetset drawing sheetdata write hall.dwg --set h", 6, here),
              "house.dst ");
    EXPECT_EQ(completed("kvsheetset tree h", 2, here), "house.dst ");
}

TEST(Completion, KnowsEveryOptionOfTheTree)
{
    const std::string script = cli::bashCompletion();
    for (const cli::Verb& verb : cli::verbs())
        for (const cli::OptionInfo& option : cli::optionsOf(&verb))
            for (const std::string& name : option.spellings)
                EXPECT_NE(script.find(name), std::string::npos) << verb.name << " " << name;
    EXPECT_EQ(runLine({"completion", "bash", "--json"}).json()["script"], script);
}

} // namespace
