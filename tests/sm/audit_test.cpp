#include <sm/audit.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include <gtest/gtest.h>

#include <sm/limits.h>
#include <sm/tv_sm_sheet_set_mgr.h>
#include <temp_folder.h>

#include "sheet_set_builder.h"

namespace {

using sm::AuditRule;
using sm::Finding;
using sm::Severity;

constexpr char kHead[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// A sheet set from the text between the set's tags, opened from a file of its own.
class AuditedSet
{
public:
    explicit AuditedSet(const std::string& inside, const std::string& version = "1.0")
    {
        folder.write("a.dst", kHead +
                                  ("<sheetSetFile version=\"" + version +
                                   "\" nextHandle=\"g100\">"
                                   "<sheetSet handle=\"g1\" name=\"Set\">"
                                   "<publishOptions handle=\"g2\"/>") +
                                  inside + "</sheetSet></sheetSetFile>\n");
    }
    std::vector<Finding> findings(const sm::AuditOptions& options = {})
    {
        TvSmDatabase* db = m_manager.openDatabase(folder.file("a.dst"), true, 0);
        EXPECT_NE(db, nullptr);
        return sm::auditSheetSet(db, options);
    }
    TempFolder folder;

private:
    TvSmSheetSetMgr m_manager;
};

/// "K007 g3 (error)" of each finding, for comparison.
std::vector<std::string> shown(const std::vector<Finding>& findings)
{
    std::vector<std::string> out;
    for (const Finding& finding : findings)
        out.push_back(sm::auditCode(finding.rule).utf8() + " " + finding.handle.utf8() +
                      (finding.severity == Severity::Error ? " error" : " note"));
    return out;
}

using Shown = std::vector<std::string>;

std::string sheet(const std::string& handle, const std::string& attributes,
                  const std::string& inside = {})
{
    return "<sheet handle=\"" + handle + "\" " + attributes + ">" + inside + "</sheet>";
}

std::string layout(const std::string& handle, const std::string& path, const std::string& object,
                   const std::string& more = {})
{
    return "<layout handle=\"" + handle + "\" path=\"" + path + "\" object=\"" + object + "\"" +
           more + "/>";
}

TEST(Audit, ASetThatIsWellHasNoFindings)
{
    AuditedSet set("<subset handle=\"g3\" name=\"Plans\">" +
                   sheet("g4", "number=\"1\" title=\"One\"", layout("g5", "a.dwg", "1F")) +
                   "</subset>");
    set.folder.write("a.dwg", "");

    EXPECT_EQ(shown(set.findings()), Shown());
    EXPECT_TRUE(sm::auditSheetSet(nullptr).empty());
}

TEST(Audit, TextsOverTheirLimitsAreErrors)
{
    const std::string atLimit(sm::kMaxNameLength, 'x');
    const std::string over = atLimit + "x";
    AuditedSet set("<property handle=\"g9\" name=\"" + over + "\" value=\"v\"/>" +
                   "<property handle=\"gA\" name=\"" + atLimit + "\" value=\"v\"/>" +
                   "<subset handle=\"g3\" name=\"" + over + "\"/>" +
                   "<subset handle=\"g4\" name=\"" + atLimit + "\"/>" +
                   sheet("g5", "number=\"" + std::string(33, '1') + "\" title=\"" + over + "\"",
                         layout("g6", "a.dwg", "1")) +
                   sheet("g7", "number=\"" + std::string(32, '1') + "\" title=\"" + atLimit + "\"",
                         layout("g8", "a.dwg", "2")));
    set.folder.write("a.dwg", "");

    const auto findings = set.findings();

    EXPECT_EQ(shown(findings),
              (Shown{"K005 g1 error", "K002 g3 error", "K004 g5 error", "K003 g5 error"}));
    EXPECT_EQ(findings[1].arguments, (std::vector<TvString>{u"65", u"64"}));
}

TEST(Audit, ANameThatStandsForTheTitleIsToldOnce)
{
    AuditedSet set(sheet("g4", "name=\"" + std::string(65, 'x') + "\""));

    EXPECT_EQ(shown(set.findings()), (Shown{"K002 g4 error", "K021 g4 note"}));
}

TEST(Audit, PropertiesThatCannotBeReachedAreErrors)
{
    AuditedSet set("<property handle=\"g3\" name=\"a\" value=\"1\"/>"
                   "<property handle=\"g4\" name=\"a\" value=\"2\"/>"
                   "<property handle=\"g5\" name=\"\" value=\"3\"/>"
                   "<property handle=\"g6\" name=\"A\" value=\"4\"/>");

    EXPECT_EQ(shown(set.findings()), (Shown{"K007 g1 error", "K006 g1 error"}));
}

TEST(Audit, NumbersThatStandTwiceAreNotes)
{
    AuditedSet set(sheet("g3", "number=\"1\" title=\"a\"") +
                   sheet("g4", "number=\"1\" title=\"b\"") +
                   sheet("g5", "number=\"\" title=\"c\"") + sheet("g6", "title=\"d\""));

    std::vector<Finding> findings = set.findings();
    std::erase_if(findings,
                  [](const Finding& f) { return f.rule == AuditRule::SheetWithoutLayout; });

    ASSERT_EQ(shown(findings), Shown{"K018 g4 note"});
    EXPECT_EQ(findings[0].arguments, (std::vector<TvString>{u"1", u"g3"}));
}

TEST(Audit, EmptyTitlesAndNamesAreNotes)
{
    AuditedSet set("<subset handle=\"g3\" name=\"\"/>" + sheet("g4", "title=\"\" name=\"n\""));

    EXPECT_EQ(shown(set.findings()), (Shown{"K020 g3 note", "K019 g4 note", "K021 g4 note"}));
}

TEST(Audit, OneLayoutOnTwoSheetsIsAnError)
{
    AuditedSet set(sheet("g3", "title=\"a\"", layout("g4", "a.dwg", "1f")) +
                   sheet("g5", "title=\"b\"", layout("g6", "A.DWG", "1F")) +
                   sheet("g7", "title=\"c\"", layout("g8", "a.dwg", "20")));
    set.folder.write("a.dwg", "");
    set.folder.write("A.DWG", "");

    const auto findings = set.findings();

    ASSERT_EQ(shown(findings), Shown{"K011 g5 error"});
    EXPECT_EQ(findings[0].arguments, std::vector<TvString>{u"g3"});
}

TEST(Audit, LayoutsThatLeadNowhereAreErrors)
{
    AuditedSet set(sheet("g3", "title=\"a\"", layout("g4", "", "1F")) +
                   sheet("g5", "title=\"b\"", layout("g6", "a.dwg", "")) +
                   sheet("g7", "title=\"c\"", layout("g8", "a.dwg", "xyz")));
    set.folder.write("a.dwg", "");

    EXPECT_EQ(shown(set.findings()), (Shown{"K009 g3 error", "K009 g5 error", "K010 g7 error"}));
}

TEST(Audit, AMissingDrawingIsANoteUnlessDrawingsMustBeThere)
{
    AuditedSet set("<defaultTemplate handle=\"g9\" path=\"none.dwt\" object=\"1F\"/>" +
                   sheet("g3", "title=\"a\"", layout("g4", "none.dwg", "1F")));
    sm::AuditOptions strict;
    strict.drawingsMustBeThere = true;

    EXPECT_EQ(shown(set.findings()), (Shown{"K013 g1 note", "K012 g3 note"}));
    EXPECT_EQ(shown(set.findings(strict)), (Shown{"K013 g1 note", "K012 g3 error"}));
}

TEST(Audit, ADrawingFoundThroughTheKeptRelativePathIsWell)
{
    AuditedSet set(sheet("g3", "title=\"a\"",
                         layout("g4", "/elsewhere/a.dwg", "1F", " relative=\"plans/a.dwg\"")));
    std::filesystem::create_directory(set.folder.path() / "plans");
    set.folder.write("plans/a.dwg", "");

    EXPECT_EQ(shown(set.findings()), Shown());
}

TEST(Audit, TwoDrawingsThatAReferenceCouldMeanAreNoted)
{
    const TempFolder other;
    other.write("a.dwg", "");
    AuditedSet set(
        sheet("g3", "title=\"a\"",
              layout("g4", (other.path() / "a.dwg").string(), "1F", " relative=\"plans/a.dwg\"")));
    std::filesystem::create_directory(set.folder.path() / "plans");
    set.folder.write("plans/a.dwg", "");

    EXPECT_EQ(shown(set.findings()), Shown{"K014 g3 note"});
}

TEST(Audit, NetworkHostsAreNotedAndNotTouched)
{
    AuditedSet set(sheet("g3", "title=\"a\"", layout("g4", "\\\\203.0.113.5\\s\\x.dwg", "1F")) +
                   sheet("g5", "title=\"b\"", layout("g6", "http://203.0.113.5/x.dwg", "1F")));

    EXPECT_EQ(shown(set.findings()), (Shown{"K015 g3 note", "K015 g5 note"}));
}

TEST(Audit, AViewsMissingDrawingIsToldByItsSheet)
{
    const std::string view = "<views><view handle=\"g8\" name=\"v\" category=\"g77\">"
                             "<viewReference handle=\"g9\" path=\"none.dwg\" object=\"2A\"/>"
                             "</view></views>";
    AuditedSet set(sheet("g3", "title=\"a\"", layout("g4", "none.dwg", "1F") + view));

    EXPECT_EQ(shown(set.findings()), (Shown{"K012 g3 note", "K016 g8 note"}));
}

TEST(Audit, MembersOfASelectionThatAreGoneAreNoted)
{
    AuditedSet set("<selections><selection handle=\"g5\" name=\"s\"><member use=\"g3\"/>"
                   "<member use=\"g77\"/></selection></selections>"
                   "<subset handle=\"g3\" name=\"a\"/>");

    const auto findings = set.findings();

    ASSERT_EQ(shown(findings), Shown{"K017 g5 note"});
    EXPECT_EQ(findings[0].arguments, std::vector<TvString>{u"g77"});
}

TEST(Audit, SubsetsDeeperThanTheModelMovesAreErrors)
{
    std::string inside;
    std::string end;
    for (int level = 0; level < TvSmSubset::kMaxDepth + 1; ++level) {
        inside += "<subset handle=\"g" + TvString().format(u"%x", 0x1000 + level).utf8() +
                  "\" name=\"a\">";
        end += "</subset>";
    }
    AuditedSet set(inside + end);

    const auto findings = set.findings();

    // The set itself is the first level.
    ASSERT_EQ(shown(findings), (Shown{"K008 g10C7 error", "K008 g10C8 error"}));
    EXPECT_EQ(findings[0].arguments, (std::vector<TvString>{u"201", u"200"}));
}

TEST(Audit, ASetWithoutNameIsWell)
{
    AuditedSet set("");
    const std::string text = set.folder.read("a.dst");
    const std::string name = " name=\"Set\"";
    set.folder.write("a.dst", std::string(text).replace(text.find(name), name.size(), ""));

    EXPECT_EQ(shown(set.findings()), Shown());
}

TEST(Audit, TextsOfViewsOverTheirLimitsAreErrors)
{
    const std::string view = "<views><view handle=\"g8\" number=\"" + std::string(33, '1') +
                             "\" title=\"" + std::string(65, 'x') +
                             "\"/><view handle=\"g9\" number=\"" + std::string(32, '1') +
                             "\" title=\"" + std::string(64, 'x') + "\"/></views>";
    AuditedSet set(sheet("g3", "title=\"a\"", layout("g4", "a.dwg", "1F") + view));
    set.folder.write("a.dwg", "");

    EXPECT_EQ(shown(set.findings()), (Shown{"K004 g8 error", "K003 g8 error"}));
}

TEST(Audit, AHandleOfADrawingsObjectHasAtMostSixteenDigits)
{
    AuditedSet set(sheet("g3", "title=\"a\"", layout("g4", "a.dwg", "0123456789abCDEF")) +
                   sheet("g5", "title=\"b\"", layout("g6", "a.dwg", "0123456789abCDEF0")));
    set.folder.write("a.dwg", "");

    EXPECT_EQ(shown(set.findings()), Shown{"K010 g5 error"});
}

TEST(Audit, AKeptRelativePathThatLeadsToTheSameFileOrNowhereIsWell)
{
    const TempFolder other;
    other.write("a.dwg", "");
    const std::string stored = (other.path() / "a.dwg").string();
    AuditedSet set(
        sheet("g3", "title=\"a\"", layout("g4", stored, "1F", " relative=\"plans/a.dwg\"")) +
        sheet("g5", "title=\"b\"", layout("g6", stored, "2F", " relative=\"gone/a.dwg\"")));
    std::filesystem::create_directory_symlink(other.path(), set.folder.path() / "plans");

    EXPECT_EQ(shown(set.findings()), Shown());
}

TEST(Audit, MembersOfASelectionThatWereTakenOutOrAreNoComponentsAreNoted)
{
    SheetSetScene scene;
    TvSmDatabase* db = scene.create();
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSubset* gone = addSubset(set, u"gone");
    ASSERT_TRUE(set->getSheetSelections()->add(u"s", u"")->add(gone));
    EXPECT_EQ(shown(sm::auditSheetSet(db)), Shown());
    ASSERT_TRUE(set->removeSubset(gone));
    EXPECT_EQ(sm::auditSheetSet(db).at(0).rule, AuditRule::SelectionMemberGone);

    AuditedSet other("<selections><selection handle=\"g5\" name=\"s\"><member use=\"g4\"/>"
                     "</selection></selections>" +
                     sheet("g3", "title=\"a\"", layout("g4", "a.dwg", "1F")));
    other.folder.write("a.dwg", "");
    EXPECT_EQ(shown(other.findings()), Shown{"K017 g5 note"});
}

TEST(Audit, HandlesThatAreUsedUpAreAnError)
{
    AuditedSet set("<subset handle=\"g7FFFFFFFFFFFFFE\" name=\"a\"/>");

    EXPECT_EQ(shown(set.findings()), Shown{"K001 g1 error"});
}

TEST(Audit, ANewerVersionIsNoted)
{
    AuditedSet set("<subset handle=\"g3\" name=\"a\"/>", "9.0");

    EXPECT_EQ(shown(set.findings()), Shown{"K022 g1 note"});
}

} // namespace
