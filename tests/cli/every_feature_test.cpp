#include <fstream>

#include "tool_scene.h"

// The tool on a set that has something of every kind, each with values of its own.

namespace {

using cli::ExitCode;

class EveryFeature
{
public:
    EveryFeature()
    {
        std::ifstream in(std::string(KV_TEST_DATA) + "/sm/every_feature.dst", std::ios::binary);
        m_folder.write("all.dst", {std::istreambuf_iterator<char>(in), {}});
    }
    std::string file() const { return (m_folder.path() / "all.dst").string(); }
    std::string bytes() const { return m_folder.read("all.dst"); }

private:
    TempFolder m_folder;
};

TEST(Objects, OfEachKindHaveTheirWord)
{
    const EveryFeature all;
    const std::pair<const char*, const char*> kinds[] = {
        {"g1", "sheetSet"},  {"g15", "subset"},    {"g16", "sheet"}, {"g19", "view"},
        {"g11", "category"}, {"g1E", "selection"}, {"g2", "other"}};
    for (const auto& [handle, kind] : kinds) {
        const Said said = runLine({"prop", "list", all.file(), handle, "--json"});
        ASSERT_EQ(said.code, ExitCode::Ok) << handle << said.err;
        EXPECT_EQ(said.json()["object"]["kind"], kind) << handle;
    }
}

TEST(PropList, ShowsEachTypeAndWhoseAPropertyIs)
{
    const EveryFeature all;
    const auto list = runLine({"prop", "list", all.file(), "g1", "--json"}).json()["properties"];
    struct Row {
        const char* name;
        const char* type;
        nlohmann::ordered_json value;
        const char* scope;
    };
    const Row rows[] = {
        {"Client", "text", "Town <council>", "sheetSet"},
        {"Checked by", "text", "", "sheet"},
        {"Count", "int", -123456, "none"},
        {"Short", "short", -7, "both"},
        {"Scale", "real", 0.1, "none"},
        {"Done", "bool", true, "none"},
        {"Nothing", "empty", nullptr, "none"},
    };
    ASSERT_EQ(list.size(), std::size(rows));
    for (std::size_t at = 0; at < list.size(); ++at) {
        EXPECT_EQ(list[at]["name"], rows[at].name);
        EXPECT_EQ(list[at]["type"], rows[at].type) << rows[at].name;
        EXPECT_EQ(list[at]["value"], rows[at].value) << rows[at].name;
        EXPECT_EQ(list[at]["scope"], rows[at].scope) << rows[at].name;
    }
    EXPECT_EQ(runLine({"prop", "list", all.file(), "g1"}).out, "Client      Town <council>\n"
                                                               "Checked by  \n"
                                                               "Count       -123456\n"
                                                               "Short       -7\n"
                                                               "Scale       0.1\n"
                                                               "Done        true\n"
                                                               "Nothing     \n");
}

TEST(PropList, OneLongNameDoesNotPushAllValuesAway)
{
    const EveryFeature all;
    const std::string name(40, 'n');
    ASSERT_EQ(runLine({"prop", "set", all.file(), "g15", "a=1", name + "=2"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"prop", "list", all.file(), "g15"}).out,
              "a" + std::string(31, ' ') + "  1\n" + name + "  2\n");
}

TEST(PropSet, OnASheetTheOwnerCanBeChosen)
{
    const EveryFeature all;
    ASSERT_EQ(runLine({"prop", "set", all.file(), "g1C", "a=1", "--for", "set"}).code,
              ExitCode::Ok);
    ASSERT_EQ(runLine({"prop", "set", all.file(), "g15", "b=1", "--for", "sheets"}).code,
              ExitCode::Ok);
    const auto scopeOf = [&](const char* handle) {
        return runLine({"prop", "list", all.file(), handle, "--json"})
            .json()["properties"][0]["scope"];
    };
    EXPECT_EQ(scopeOf("g1C"), "sheetSet");
    EXPECT_EQ(scopeOf("g15"), "sheet");
}

TEST(Set, ChangesViewsCategoriesAndSelections)
{
    const EveryFeature all;
    const Said view = runLine({"set", all.file(), "g19", "number=2", "title=West", "name=w"});
    EXPECT_EQ(view.out, "g19  number  \"1\" -> \"2\"\n"
                        "g19  title  \"North\" -> \"West\"\n"
                        "g19  name  \"v\" -> \"w\"\n");
    // The name of a view never stands for its title.
    EXPECT_EQ(runLine({"set", all.file(), "g1B", "name=s", "title="}).out,
              "g1B  name  \"\" -> \"s\"\ng1B  title  \"South\" -> \"\"\n");
    EXPECT_EQ(runLine({"set", all.file(), "g11", "desc=d"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"set", all.file(), "g1E", "name=Later"}).code, ExitCode::Ok);
    EXPECT_NE(all.bytes().find("<view handle=\"g19\" number=\"2\" title=\"West\" name=\"w\""),
              std::string::npos);
    EXPECT_NE(all.bytes().find("<category handle=\"g11\" name=\"Plans\" desc=\"d\""),
              std::string::npos);
    EXPECT_NE(all.bytes().find("<selection handle=\"g1E\" name=\"Later\""), std::string::npos);
    EXPECT_EQ(runLine({"set", all.file(), "g11", "number=1"}).code, ExitCode::Usage);
    EXPECT_EQ(runLine({"set", all.file(), "g19", "excluded=yes"}).code, ExitCode::Usage);
}

TEST(Set, EachTextOfTheSetIsItsOwn)
{
    const EveryFeature all;
    ASSERT_EQ(runLine({"set", all.file(), "g1", "text1=a", "text2=b", "text3=c", "text4=d"}).code,
              ExitCode::Ok);
    EXPECT_NE(all.bytes().find("text1=\"a\" text2=\"b\" text3=\"c\" text4=\"d\">"),
              std::string::npos);
}

TEST(Set, TakesEachWordForYesAndNo)
{
    const EveryFeature all;
    for (const auto& [yes, no] : std::initializer_list<std::pair<const char*, const char*>>{
             {"yes", "no"}, {"TRUE", "False"}, {"on", "OFF"}, {"1", "0"}}) {
        const auto excluded = [&](const std::string& value) {
            return runLine({"set", all.file(), "g1D", "excluded=" + value}).out;
        };
        EXPECT_EQ(excluded(yes), "g1D  excluded  \"no\" -> \"yes\"\n") << yes;
        EXPECT_EQ(excluded(no), "g1D  excluded  \"yes\" -> \"no\"\n") << no;
    }
}

TEST(PropSet, TheDocumentTellsFromWhatToWhatAndNothingForANewOne)
{
    const EveryFeature all;
    const auto changes =
        runLine({"prop", "set", all.file(), "g16", "Checked by=A", "New=B", "--json"})
            .json()["changes"];
    EXPECT_EQ(changes[0],
              (nlohmann::ordered_json{{"name", "Checked by"}, {"from", "N. N."}, {"to", "A"}}));
    EXPECT_EQ(changes[1],
              (nlohmann::ordered_json{{"name", "New"}, {"from", nullptr}, {"to", "B"}}));
}

TEST(Tree, TheSetIsNeverMarkedAsExcluded)
{
    const EveryFeature all; // the flag of the set is set, and means nothing
    const std::string tree = runLine({"tree", all.file()}).out;
    EXPECT_EQ(tree.find("(excluded)"), tree.find("Ground floor") + 14) << tree;
}

TEST(Tree, HandlesOfAnyWidthLeaveTheColumnsStraight)
{
    const EveryFeature all;
    EXPECT_EQ(runLine({"tree", all.file()}).out.rfind("g1   School", 0), 0u);
    EXPECT_NE(runLine({"tree", all.file()}).out.find("\ng1C  └─"), std::string::npos);
}

TEST(Tree, WhatHasNothingBelowIsNotTruncated)
{
    const EveryFeature all;
    const auto root = runLine({"tree", all.file(), "--depth", "2", "--json"}).json()["root"];
    const auto below = root["children"][0]["children"];
    ASSERT_EQ(below.size(), 2u);
    EXPECT_FALSE(below[1].contains("truncated")); // an empty subset
    EXPECT_FALSE(root.contains("truncated"));
    const auto shallow = runLine({"tree", all.file(), "--depth", "1", "--json"}).json()["root"];
    EXPECT_EQ(shallow["children"][0]["truncated"], true);
}

TEST(Remove, CountsSubsetsWithinSubsets)
{
    const EveryFeature all;
    ASSERT_EQ(runLine({"subset", "add", all.file(), "Deep", "--in", "g1D"}).code, ExitCode::Ok);
    EXPECT_EQ(runLine({"remove", all.file(), "g15"}).out,
              "g15  Ground floor  (subsets: 2, sheets: 1)\n");
}

TEST(Info, ADrawingCountsOnceAndNetworkHostsAreNotLookedAt)
{
    const SampleFolder sample;
    std::string bytes = sample.bytes();
    const std::string other = "path=\"plans/b.dwg\"";
    ASSERT_NE(bytes.find(other), std::string::npos);
    sample.folder().write("house.dst", std::string(bytes).replace(bytes.find(other), other.size(),
                                                                  "path=\"plans/A.DWG\""));
    EXPECT_EQ(runLine({"info", sample.native(), "--json"}).json()["drawings"]["referenced"], 1);

    sample.folder().write("house.dst",
                          std::string(bytes).replace(bytes.find(other), other.size(),
                                                     "path=\"\\\\203.0.113.5\\s\\b.dwg\""));
    const auto drawings = runLine({"info", sample.native(), "--json"}).json()["drawings"];
    EXPECT_EQ(drawings["referenced"], 2);
    EXPECT_EQ(drawings["missing"], 0);
    EXPECT_EQ(drawings["notLooked"], 1);
    EXPECT_NE(runLine({"info", sample.native()}).out.find("on a network host and not looked at: 1"),
              std::string::npos)
        << runLine({"info", sample.native()}).out;
}

} // namespace
