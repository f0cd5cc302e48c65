#include <filesystem>
#include <functional>

#include <base/edit_lock.h>
#include <base/kv_file_system.h>
#include <sm/environment.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "tool_scene.h"

namespace {

using cli::ExitCode;

/// Runs @p request and expects a refusal that leaves the sample as it was.
template <class Request>
void expectRefused(const SampleFolder& sample, const Request& request, ExitCode code,
                   const std::string& message)
{
    const std::string before = sample.bytes();
    const Said said = runVerb(request);
    EXPECT_EQ(said.code, code) << message;
    EXPECT_EQ(sample.generalised(said.err), "kvsheetset test: " + message + "\n");
    EXPECT_EQ(said.out, "") << message;
    EXPECT_EQ(sample.bytes(), before) << message;
}

template <class Request>
Request requestFor(const SampleFolder& sample)
{
    Request request;
    request.file = sample.file();
    return request;
}

template <class Request>
Request requestFor(const SampleFolder& sample, const char16_t* handle)
{
    Request request;
    request.file = sample.file();
    request.handle = handle;
    return request;
}

TvString longText(int length)
{
    return TvString(std::u16string(static_cast<std::size_t>(length), u'x'));
}

// --- new

TEST(New, MakesASetNamedAfterItsFile)
{
    const TempFolder folder;
    cli::NewRequest request;
    request.file = folder.file("house");
    request.description = u"A house";

    const Said said = runVerb(request);

    EXPECT_EQ(said.code, ExitCode::Ok);
    EXPECT_EQ(said.out, (folder.path() / "house.dst").string() + "\n");
    EXPECT_NE(said.err.find("Next: kvsheetset subset add"), std::string::npos);
    EXPECT_NE(folder.read("house.dst").find("name=\"house\" desc=\"A house\""), std::string::npos);
}

TEST(New, CopiesATemplate)
{
    const SampleFolder sample;
    cli::NewRequest request;
    request.file = sample.folder().file("copy.dst");
    request.templateFile = sample.file();
    request.name = u"Copy";

    EXPECT_EQ(runVerb(request).code, ExitCode::Ok);

    cli::TreeRequest tree;
    tree.file = request.file;
    const std::string copied = runVerb(tree).out;
    EXPECT_NE(copied.find("Copy"), std::string::npos);
    EXPECT_NE(copied.find("A-101 - Ground floor"), std::string::npos);
}

TEST(New, NeverOverwrites)
{
    const SampleFolder sample;
    expectRefused(
        sample, requestFor<cli::NewRequest>(sample), ExitCode::CannotWrite,
        "E21005: DIR/house.dst is there already. Choose another name, or delete it first.");
}

TEST(New, RefusesNamesThatMakeNoSense)
{
    const SampleFolder sample;
    cli::NewRequest request;
    request.file = sample.folder().file("house.txt");
    expectRefused(sample, request, ExitCode::Usage,
                  "E22432: \"house.txt\" is no name for a sheet set: it must end in \".dst\".");
    request.file = sample.folder().file("CON.dst");
    EXPECT_EQ(runVerb(request).code, ExitCode::Usage);
    request.file = sample.folder().file("a.dst");
    request.name = longText(65);
    expectRefused(sample, request, ExitCode::Usage,
                  "E22430: The name is too long: 65 characters, and at most 64 are allowed.");
    request.name = longText(64);
    EXPECT_EQ(runVerb(request).code, ExitCode::Ok);
}

TEST(New, TellsWhatIsMissing)
{
    const SampleFolder sample;
    cli::NewRequest request;
    request.file = sample.folder().file("none/a.dst");
    for (const bool dryRun : {true, false}) {
        request.change.dryRun = dryRun;
        EXPECT_EQ(runVerb(request).code, ExitCode::CannotWrite) << dryRun;
    }
    request.file = sample.folder().file("a.dst");
    request.templateFile = sample.folder().file("none.dst");
    EXPECT_EQ(runVerb(request).code, ExitCode::NoInput);
    request.templateFile = sample.folder().file("plans/a.dwg");
    EXPECT_EQ(runVerb(request).code, ExitCode::Damaged);
    EXPECT_FALSE(KvFileSystem::pathFileExists(request.file));
}

TEST(New, ADryRunMakesNothing)
{
    const TempFolder folder;
    cli::NewRequest request;
    request.file = folder.file("a.dst");
    request.change.dryRun = true;

    EXPECT_EQ(runVerb(request).code, ExitCode::Ok);

    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

// --- tree, info

TEST(Tree, ShowsHandlesBranchesAndMarks)
{
    const SampleFolder sample;
    expectGolden("tree.txt", sample.tree());
}

TEST(Tree, ShowsSoManyLevelsAndWhatLiesBelow)
{
    const SampleFolder sample;
    auto request = requestFor<cli::TreeRequest>(sample);
    request.depth = 1;
    expectGolden("tree-depth-1.txt", runVerb(request).out);
    request.depth = 0;
    EXPECT_EQ(runVerb(request).out, "g1  Riverside house  (subsets: 2, sheets: 4)\n");
}

TEST(Tree, TheDocumentHasEveryFieldInEveryNode)
{
    const SampleFolder sample;
    expectGolden(
        "tree.json",
        sample.generalised(runVerb(requestFor<cli::TreeRequest>(sample), kJson, "tree").out));
}

TEST(Info, CountsAndNames)
{
    const SampleFolder sample;
    const auto request = requestFor<cli::InfoRequest>(sample);
    const std::string bytes = std::to_string(sample.bytes().size());
    const auto general = [&](std::string text) {
        text.replace(text.find(bytes), bytes.size(), "SIZE");
        return sample.generalised(text);
    };
    expectGolden("info.txt", general(runVerb(request).out));
    expectGolden("info.json", general(runVerb(request, kJson, "info").out));
}

// --- subset add

TEST(SubsetAdd, PutsItWhereAskedAndPrintsItsHandle)
{
    const SampleFolder sample;
    auto request = requestFor<cli::SubsetAddRequest>(sample);
    request.name = u"One";
    EXPECT_EQ(runVerb(request).out, "gC\n");
    request.name = u"Two";
    request.place.before = u"g3";
    EXPECT_EQ(runVerb(request).out, "gD\n");
    request.name = u"Three";
    request.place = {{}, u"g4"};
    EXPECT_EQ(runVerb(request).out, "gE\n");
    request.name = u"Four";
    request.place = {};
    request.in = u"g8";
    EXPECT_EQ(runVerb(request).out, "gF\n");
    expectGolden("subset-add.txt", sample.tree());
}

TEST(SubsetAdd, RefusesBeforeAnyLockIsTaken)
{
    const SampleFolder sample;
    auto request = requestFor<cli::SubsetAddRequest>(sample);
    expectRefused(sample, request, ExitCode::Usage, "E22431: A subset needs a name.");
    request.name = longText(65);
    expectRefused(sample, request, ExitCode::Usage,
                  "E22430: The NAME is too long: 65 characters, and at most 64 are allowed.");
    request.name = u"x";
    request.in = u"7";
    expectRefused(sample, request, ExitCode::Usage,
                  "E22420: \"7\" is no handle. A handle is the letter g and hexadecimal digits, as "
                  "\"kvsheetset tree\" shows it.");
    for (const bool isBefore : {true, false}) {
        request.in = {};
        request.place = isBefore ? cli::Place{u"7", {}} : cli::Place{{}, u"7"};
        expectRefused(sample, request, ExitCode::Usage,
                      "E22420: \"7\" is no handle. A handle is the letter g and hexadecimal "
                      "digits, as \"kvsheetset tree\" shows it.");
    }
    request.place = {u"g3", u"g8"};
    expectRefused(sample, request, ExitCode::Usage, "E22409: Give --before or --after, not both.");
    EXPECT_FALSE(KvFileSystem::pathFileExists(sample.folder().file(".house.dst.lk")));
}

TEST(SubsetAdd, RefusesPlacesThatAreNone)
{
    const SampleFolder sample;
    auto request = requestFor<cli::SubsetAddRequest>(sample);
    request.name = u"x";
    request.in = u"g4";
    expectRefused(sample, request, ExitCode::Usage,
                  "E22423: g4 is a sheet; only a subset or the sheet set itself holds others.");
    request.in = u"gFF";
    expectRefused(sample, request, ExitCode::NoInput,
                  "E22421: There is no object with the handle gFF in this set. \"kvsheetset tree\" "
                  "shows those that there are.");
    request.in = u"g8";
    request.place.before = u"g4";
    expectRefused(sample, request, ExitCode::Usage,
                  "E22426: g4 does not stand in g8, so nothing can be put beside it there.");
}

// --- move

TEST(Move, PutsItAtTheEndOrBesideAnother)
{
    const SampleFolder sample;
    auto request = requestFor<cli::MoveRequest>(sample, u"g6");
    request.to = u"g3";
    request.place.before = u"g4";
    EXPECT_EQ(runVerb(request).out, "g6  A-102 - First floor: to another place in \"Plans\"\n");
    request.handle = u"gA";
    request.place = {{}, u"g6"};
    EXPECT_EQ(runVerb(request).out, "gA  Cover: from \"Riverside house\" to \"Plans\"\n");
    request.handle = u"g8";
    request.place = {};
    EXPECT_EQ(runVerb(request).code, ExitCode::Ok);
    expectGolden("move.txt", sample.tree());
}

TEST(Move, RefusesCyclesAndWhatCannotMove)
{
    const SampleFolder sample;
    auto request = requestFor<cli::MoveRequest>(sample, u"g8");
    request.to = u"g8";
    expectRefused(sample, request, ExitCode::Usage,
                  "E22427: g8 cannot be moved into g8, which is a part of it.");
    auto into = requestFor<cli::MoveRequest>(sample, u"g3");
    into.to = u"g8";
    ASSERT_EQ(runVerb(into).code, ExitCode::Ok);
    request.to = u"g3";
    expectRefused(sample, request, ExitCode::Usage,
                  "E22427: g8 cannot be moved into g3, which is a part of it.");
    request.handle = u"g1";
    expectRefused(sample, request, ExitCode::Usage,
                  "E22424: g1 is the sheet set; only sheets and subsets have a place in the tree.");
    request = requestFor<cli::MoveRequest>(sample, u"g4");
    request.to = u"g3";
    request.place.after = u"g4";
    expectRefused(sample, request, ExitCode::Usage, "E22425: g4 cannot stand beside itself.");
}

TEST(Move, RefusesWhatAreNoHandlesBeforeAnyLockIsTaken)
{
    const SampleFolder sample;
    for (const auto& [handle, to, before] :
         std::initializer_list<std::tuple<const char16_t*, const char16_t*, const char16_t*>>{
             {u"7", u"g3", u""}, {u"g4", u"7", u""}, {u"g4", u"g3", u"7"}}) {
        auto request = requestFor<cli::MoveRequest>(sample, handle);
        request.to = to;
        request.place.before = before;
        expectRefused(sample, request, ExitCode::Usage,
                      "E22420: \"7\" is no handle. A handle is the letter g and hexadecimal "
                      "digits, as \"kvsheetset tree\" shows it.");
    }
    EXPECT_FALSE(KvFileSystem::pathFileExists(sample.folder().file(".house.dst.lk")));
}

TEST(Handles, ThatAreNoneAreRefusedByEachVerbBeforeAnyLockIsTaken)
{
    const SampleFolder sample;
    const std::string file = sample.native();
    for (const std::vector<std::string>& line :
         std::initializer_list<std::vector<std::string>>{{"set", file, "7", "name=x"},
                                                         {"prop", "set", file, "7", "a=b"},
                                                         {"prop", "remove", file, "7", "a"},
                                                         {"prop", "list", file, "7"},
                                                         {"remove", file, "7"}}) {
        const Said said = runLine(line);
        EXPECT_EQ(said.code, ExitCode::Usage) << line[0];
        EXPECT_NE(said.err.find("E22420"), std::string::npos) << line[0] << said.err;
    }
    EXPECT_FALSE(KvFileSystem::pathFileExists(sample.folder().file(".house.dst.lk")));
}

TEST(Move, RefusesATreeThatIsTooDeep)
{
    const SampleFolder sample;
    TvSmSheetSetMgr manager;
    TvSmDatabase* db = manager.openDatabase(sample.file(), true, 0);
    ASSERT_TRUE(db && db->lockDb(db));
    auto* at = tvrxCast<TvSmSubset>(db->findObject(u"g8"));
    for (int level = 2; level < TvSmSubset::kMaxDepth - 1; ++level) {
        TvSmSubset* below = at->createSubset(u"deep", {});
        ASSERT_TRUE(at->insertComponent(below, nullptr));
        at = below;
    }
    const TvString deepest = at->objectId().getHandle();
    ASSERT_TRUE(db->unlockDb(db, true));

    auto chain = requestFor<cli::SubsetAddRequest>(sample);
    chain.name = u"last";
    chain.in = deepest;
    std::vector<ExitCode> codes;
    for (int more = 0; more < 4; ++more) {
        const Said said = runVerb(chain);
        codes.push_back(said.code);
        if (said.code == ExitCode::Ok)
            chain.in = TvString(said.out.substr(0, said.out.size() - 1).c_str());
    }
    EXPECT_EQ(codes.front(), ExitCode::Ok);
    EXPECT_EQ(codes.back(), ExitCode::Usage);
}

// --- set

TEST(Set, ChangesASheetAndTellsFromWhatToWhat)
{
    const SampleFolder sample;
    auto request = requestFor<cli::SetRequest>(sample, u"g4");
    request.assignments = {u"number=A-100", u"title=",  u"name=n",  u"desc=d",   u"excluded=Yes",
                           u"text1=1",      u"text2=2", u"text3=3", u"text4=a=b"};
    const Said said = runVerb(request);

    EXPECT_EQ(said.out, "g4  number  \"A-101\" -> \"A-100\"\n"
                        "g4  title  \"Ground floor\" -> \"\"\n"
                        "g4  name  \"Ground floor\" -> \"n\"\n"
                        "g4  desc  \"\" -> \"d\"\n"
                        "g4  excluded  \"no\" -> \"yes\"\n"
                        "g4  text1  \"\" -> \"1\"\n"
                        "g4  text2  \"\" -> \"2\"\n"
                        "g4  text3  \"\" -> \"3\"\n"
                        "g4  text4  \"\" -> \"a=b\"\n");
    EXPECT_NE(sample.bytes().find("<sheet handle=\"g4\" number=\"A-100\" title=\"\" name=\"n\" "
                                  "desc=\"d\" exclude=\"1\" text1=\"1\" text2=\"2\" text3=\"3\" "
                                  "text4=\"a=b\""),
              std::string::npos)
        << sample.bytes();
}

TEST(Set, ChangesTheSetAndSubsets)
{
    const SampleFolder sample;
    auto request = requestFor<cli::SetRequest>(sample, u"g1");
    request.assignments = {u"name=New", u"text4=x"};
    const auto json = runVerb(request, kJson, "set").json();
    EXPECT_EQ(json["schema"], "kvsheetset.set/1");
    EXPECT_EQ(json["changes"][0]["from"], "Riverside house");
    EXPECT_EQ(json["changes"][0]["to"], "New");
    request = requestFor<cli::SetRequest>(sample, u"g8");
    request.assignments = {u"excluded=no"};
    EXPECT_EQ(runVerb(request).out, "g8  excluded  \"yes\" -> \"no\"\n");
}

TEST(Set, WhatIsSoAlreadyLeavesTheFileAlone)
{
    const SampleFolder sample;
    const std::string before = sample.bytes();
    auto request = requestFor<cli::SetRequest>(sample, u"g4");
    request.assignments = {u"number=A-101"};

    const Said said = runVerb(request);

    EXPECT_EQ(said.code, ExitCode::Ok);
    EXPECT_EQ(said.out, "");
    EXPECT_NE(said.err.find("Nothing to change"), std::string::npos);
    EXPECT_EQ(sample.bytes(), before);
}

TEST(Set, RefusesWhatMakesNoSense)
{
    const SampleFolder sample;
    const std::string keys =
        "number, title, name, desc, excluded, text1, text2, text3, text4, pageSetups.";
    struct Case {
        const char16_t* handle;
        std::vector<TvString> assignments;
        std::string message;
    };
    const Case cases[] = {
        {u"g4", {u"titel=x"}, "E22435: There is no key \"titel\". Keys are: " + keys},
        {u"g4", {u"title"}, "E22434: \"title\" is no change. Write KEY=VALUE; keys are: " + keys},
        {u"g4", {u"=x"}, "E22434: \"=x\" is no change. Write KEY=VALUE; keys are: " + keys},
        {u"g4", {u"title=a", u"title=b"}, "E22437: The key \"title\" stands there twice."},
        {u"g4", {u"excluded=maybe"}, "E22438: excluded takes yes or no, not \"maybe\"."},
        {u"g3",
         {u"name=ok", u"number=1"},
         "E22436: a subset has no \"number\"; it has: name, desc, excluded."},
        {u"g1",
         {u"excluded=yes"},
         "E22436: the sheet set has no \"excluded\"; it has: name, desc, text1, text2, text3, "
         "text4, pageSetups."},
        {u"g5",
         {u"name=x"},
         "E22422: g5 is a part of another object, which has no texts and properties of its own."},
        {u"g4",
         {TvString(u"title=") + longText(65)},
         "E22430: The title is too long: 65 characters, and at most 64 are allowed."},
        {u"g4",
         {TvString(u"name=") + longText(65)},
         "E22430: The name is too long: 65 characters, and at most 64 are allowed."},
        {u"g4",
         {TvString(u"number=") + longText(33)},
         "E22430: The number is too long: 33 characters, and at most 32 are allowed."},
    };
    for (const Case& each : cases) {
        auto request = requestFor<cli::SetRequest>(sample, each.handle);
        request.assignments = each.assignments;
        expectRefused(sample, request, ExitCode::Usage, each.message);
    }
}

// --- prop

TEST(PropSet, NewOnesFollowTheObjectAndOldOnesKeepTheirOwner)
{
    const SampleFolder sample;
    auto request = requestFor<cli::PropSetRequest>(sample, u"g4");
    request.assignments = {u"Drawn by=Ann", u"Empty="};
    EXPECT_EQ(runVerb(request).out, "g4  Drawn by  Ann\ng4  Empty\n");
    request = requestFor<cli::PropSetRequest>(sample, u"g1");
    request.assignments = {u"Scale=1:50"};
    request.scope = cli::PropertyScope::Sheets;
    EXPECT_EQ(runVerb(request).code, ExitCode::Ok);
    request.scope = cli::PropertyScope::Keep;
    request.assignments = {u"Scale=1:100"};
    EXPECT_EQ(runVerb(request).out, "g1  Scale  \"1:50\" -> \"1:100\"\n");

    const auto ofSheet = runVerb(requestFor<cli::PropListRequest>(sample, u"g4"), kJson).json();
    EXPECT_EQ(ofSheet["properties"][0]["name"], "Drawn by");
    EXPECT_EQ(ofSheet["properties"][0]["scope"], "sheet");
    EXPECT_EQ(ofSheet["properties"][1]["value"], "");
    const auto ofSet = runVerb(requestFor<cli::PropListRequest>(sample, u"g1"), kJson).json();
    EXPECT_EQ(ofSet["properties"][0]["scope"], "sheetSet");
    EXPECT_EQ(ofSet["properties"][1]["scope"], "sheet");
    EXPECT_EQ(ofSet["properties"][1]["value"], "1:100");
}

TEST(PropList, ShowsTwoColumns)
{
    const SampleFolder sample;
    EXPECT_EQ(runVerb(requestFor<cli::PropListRequest>(sample, u"g1")).out,
              "Client  City council\n");
    EXPECT_EQ(runVerb(requestFor<cli::PropListRequest>(sample, u"g4")).out, "");
}

TEST(PropSet, RefusesNamesThatAreNone)
{
    const SampleFolder sample;
    auto request = requestFor<cli::PropSetRequest>(sample, u"g1");
    request.assignments = {u"x"};
    expectRefused(sample, request, ExitCode::Usage,
                  "E22439: \"x\" is no property. Write NAME=VALUE.");
    request.assignments = {longText(65) + u"=x"};
    expectRefused(
        sample, request, ExitCode::Usage,
        "E22430: The property name is too long: 65 characters, and at most 64 are allowed.");
}

TEST(PropRemove, RemovesWhatIsThereAndTellsOfTheRest)
{
    const SampleFolder sample;
    auto request = requestFor<cli::PropRemoveRequest>(sample, u"g1");
    request.names = {u"None", u"Client"};

    const Said said = runVerb(request, {});

    EXPECT_EQ(said.code, ExitCode::PartlyFailed);
    EXPECT_EQ(said.out, "g1  Client\n");
    EXPECT_EQ(said.err, "kvsheetset test: warning E22440: g1 has no property \"None\".\n");
    EXPECT_EQ(sample.bytes().find("Client"), std::string::npos);
    expectRefused(sample, request, ExitCode::NoInput, "E22441: g1 has none of these properties.");
}

// --- remove

TEST(Remove, TakesOutASheetOrASubsetWithAllBelow)
{
    const SampleFolder sample;
    EXPECT_EQ(runVerb(requestFor<cli::RemoveRequest>(sample, u"gA")).out, "gA  Cover\n");
    EXPECT_EQ(runVerb(requestFor<cli::RemoveRequest>(sample, u"g3")).out,
              "g3  Plans  (subsets: 0, sheets: 2)\n");
    EXPECT_EQ(sample.tree(), "g1  Riverside house\n"
                             "g8  └─ Details  (excluded)\n"
                             "g9     └─ A-501 - Stairs\n");
}

TEST(Remove, NeverTakesOutTheSetItself)
{
    const SampleFolder sample;
    expectRefused(
        sample, requestFor<cli::RemoveRequest>(sample, u"g1"), ExitCode::Usage,
        "E22429: The sheet set itself cannot be taken out. To delete it, delete the file.");
}

TEST(Remove, ADryRunTellsAndLeavesAllAsItIs)
{
    const SampleFolder sample;
    const std::string before = sample.bytes();
    auto request = requestFor<cli::RemoveRequest>(sample, u"g3");
    request.change.dryRun = true;

    const auto json = runVerb(request, kJson, "remove").json();

    EXPECT_EQ(json["dryRun"], true);
    EXPECT_EQ(json["removed"]["handle"], "g3");
    EXPECT_EQ(json["sheetsBelow"], 2);
    EXPECT_EQ(sample.bytes(), before);
    EXPECT_FALSE(KvFileSystem::pathFileExists(sample.folder().file(".house.dst.lk")));
}

// --- check, lock

TEST(Check, ListsErrorsBeforeNotes)
{
    const SampleFolder sample;
    std::string bytes = sample.bytes();
    bytes.replace(bytes.find("title=\"Stairs\""), 14, "title=\"" + std::string(65, 'x') + "\"");
    sample.folder().write("house.dst", bytes);
    const auto request = requestFor<cli::CheckRequest>(sample);
    const Said said = runVerb(request);
    EXPECT_EQ(said.code, ExitCode::CheckFailed);
    EXPECT_NE(said.err.find("errors: 1, notes: 3"), std::string::npos) << said.err;
    expectGolden("check.txt", sample.generalised(said.out));
    expectGolden("check.json", sample.generalised(runVerb(request, kJson, "check").out));
}

TEST(Check, ASetWithoutErrorsIsFine)
{
    const SampleFolder sample;
    auto request = requestFor<cli::CheckRequest>(sample);
    EXPECT_EQ(runVerb(request).code, ExitCode::Ok);
}

TEST(Check, MissingDrawingsAreErrorsWhereAskedFor)
{
    const SampleFolder sample;
    auto request = requestFor<cli::CheckRequest>(sample);
    request.drawings = true;
    const auto json = runVerb(request, kJson, "check").json();
    bool found = false;
    for (const auto& finding : json["findings"])
        found = found || (finding["code"] == "K012" && finding["severity"] == "error");
    EXPECT_TRUE(found);
}

TEST(Lock, OfAFileThatIsNotThereIsNone)
{
    const SampleFolder sample;
    cli::LockRequest request;
    request.file = sample.folder().file("none.dst");
    EXPECT_EQ(runVerb(request).code, ExitCode::NoInput);
    EXPECT_EQ(runVerb(request).out, "");
}

TEST(Lock, TellsWhoHoldsIt)
{
    const SampleFolder sample;
    const auto request = requestFor<cli::LockRequest>(sample);
    EXPECT_EQ(runVerb(request).out, "State     free\n");
    base::ManualClock clock;
    base::EditLock lock(base::systemFileOps(), clock, sample.file());
    ASSERT_TRUE(lock.take(u"renumbering"));

    const auto json = runVerb(request, kJson, "lock").json();

    EXPECT_EQ(json["state"], "heldSameHost");
    EXPECT_EQ(json["canBeTaken"], false);
    EXPECT_EQ(json["owner"]["purpose"], "renumbering");
    EXPECT_EQ(json["owner"]["since"], "2023-11-14T22:13:20Z");
    EXPECT_NE(runVerb(request).out.find("Purpose   renumbering\n"), std::string::npos);
}

// --- waiting

/// A clock whose sleep is counted, and may do something.
class WatchedClock : public base::ManualClock
{
public:
    void sleep(std::chrono::milliseconds delay) override
    {
        slept.push_back(delay.count());
        if (onSleep)
            onSleep();
        ManualClock::sleep(delay);
    }
    std::vector<long> slept;
    std::function<void()> onSleep;
};

class WithClock
{
public:
    explicit WithClock(base::Clock& clock) { sm::environment().clock = &clock; }
    ~WithClock() { sm::environment().clock = nullptr; }
};

TEST(LockWait, LooksEveryTenthOfASecondUntilTheTimeIsOver)
{
    const SampleFolder sample;
    WatchedClock clock;
    const WithClock scope(clock);
    base::EditLock lock(base::systemFileOps(), base::systemClock(), sample.file());
    ASSERT_TRUE(lock.take(u"a test"));
    auto request = requestFor<cli::SetRequest>(sample, u"g1");
    request.assignments = {u"name=x"};
    request.change.lockWait = std::chrono::seconds(1);

    EXPECT_EQ(runVerb(request).code, ExitCode::Locked);

    EXPECT_EQ(clock.slept, std::vector<long>(10, 100));
}

TEST(LockWait, GoesOnAsSoonAsTheLockIsFree)
{
    const SampleFolder sample;
    WatchedClock clock;
    const WithClock scope(clock);
    base::EditLock lock(base::systemFileOps(), base::systemClock(), sample.file());
    ASSERT_TRUE(lock.take(u"a test"));
    clock.onSleep = [&] {
        if (clock.slept.size() == 3)
            lock.release();
    };
    auto request = requestFor<cli::SetRequest>(sample, u"g1");
    request.assignments = {u"name=x"};
    request.change.lockWait = std::chrono::seconds(60);

    const Said said = runVerb(request);

    EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(said.err.rfind("Waiting: "), 0u) << said.err; // said once
    EXPECT_EQ(clock.slept.size(), 3u);
}

TEST(LockWait, SecondsAreSeconds)
{
    const SampleFolder sample;
    WatchedClock clock;
    const WithClock scope(clock);
    base::EditLock lock(base::systemFileOps(), base::systemClock(), sample.file());
    ASSERT_TRUE(lock.take(u"a test"));

    EXPECT_EQ(runLine({"set", sample.native(), "g1", "name=x", "--lock-wait", "2"}).code,
              ExitCode::Locked);
    EXPECT_EQ(clock.slept, std::vector<long>(20, 100));
    clock.slept.clear();
    EXPECT_EQ(runLine({"remove", sample.native(), "g4", "--lock-wait", "1s"}).code,
              ExitCode::Locked);
    EXPECT_EQ(clock.slept, std::vector<long>(10, 100));
}

TEST(LockWait, WithoutItALockIsToldAtOnce)
{
    const SampleFolder sample;
    WatchedClock clock;
    const WithClock scope(clock);
    base::EditLock lock(base::systemFileOps(), base::systemClock(), sample.file());
    ASSERT_TRUE(lock.take(u"a test"));
    auto request = requestFor<cli::RemoveRequest>(sample, u"g4");

    EXPECT_EQ(runVerb(request).code, ExitCode::Locked);

    EXPECT_TRUE(clock.slept.empty());
}

TEST(DryRun, OfALockedSetWarnsAndGoesOn)
{
    const SampleFolder sample;
    base::EditLock lock(base::systemFileOps(), base::systemClock(), sample.file());
    ASSERT_TRUE(lock.take(u"a test"));
    auto request = requestFor<cli::RemoveRequest>(sample, u"g4");
    request.change.dryRun = true;

    const auto json = runVerb(request, kJson, "remove").json();

    EXPECT_EQ(json["ok"], true);
    EXPECT_EQ(json["warnings"][0]["code"], "E22450");
}

TEST(NewerVersion, IsReadWithAWarningAndNeverChanged)
{
    const SampleFolder sample;
    WatchedClock clock;
    const WithClock scope(clock);
    std::string bytes = sample.bytes();
    bytes.replace(bytes.find("version=\"1.0\" nextHandle"), 13, "version=\"9.0\"");
    sample.folder().write("house.dst", bytes);

    const Said tree = runVerb(requestFor<cli::TreeRequest>(sample));
    EXPECT_EQ(tree.code, ExitCode::Ok);
    EXPECT_NE(tree.err.find("warning E22451"), std::string::npos) << tree.err;
    for (const bool dryRun : {false, true}) {
        auto request = requestFor<cli::RemoveRequest>(sample, u"g4");
        request.change.dryRun = dryRun;
        request.change.lockWait = std::chrono::seconds(60); // for what no waiting helps
        EXPECT_EQ(runVerb(request).code, ExitCode::Damaged);
    }
    EXPECT_TRUE(clock.slept.empty());
    EXPECT_EQ(sample.bytes(), bytes);
}

} // namespace
