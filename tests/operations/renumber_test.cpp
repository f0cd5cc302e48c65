// Numbers that count, plans with their clashes, renames of many drawings at once, and their undo.

#include <regex>

#include <operations/rename_apply.h>

#include "rename_scene.h"

using operations::Clash;
using operations::RenamePlan;
using operations::RenameRecovery;
using operations::SheetNumbers;
using operations::SheetTarget;

namespace {

TvString numberAt(const TvString& first, int step, std::size_t index)
{
    const std::optional<SheetNumbers> numbers = SheetNumbers::make(first, step);
    return numbers ? numbers->at(index) : TvString(u"(none)");
}

TEST(SheetNumbers, KeepPrefixAndWidthWhileTheyCount)
{
    EXPECT_EQ(numberAt(u"A-101", 1, 2), u"A-103");
    EXPECT_EQ(numberAt(u"001", 1, 9), u"010");
    EXPECT_EQ(numberAt(u"009", 1, 1), u"010");
    EXPECT_EQ(numberAt(u"A-98", 5, 3), u"A-113") << "it grows where it must";
    EXPECT_EQ(numberAt(u"99999999999999999999", 1, 1), u"100000000000000000000");
    EXPECT_EQ(numberAt(u"7", 10, 0), u"7");
}

TEST(SheetNumbers, NeedAFinalDigitAndAStepForward)
{
    for (const TvChar* first : {u"", u"A", u"1a", u"\u0661"})
        EXPECT_FALSE(SheetNumbers::make(first, 1)) << TvString(first).utf8();
    EXPECT_FALSE(SheetNumbers::make(u"1", 0));
    EXPECT_FALSE(SheetNumbers::make(u"1", -1));
}

class RenumberTest : public RenameTest
{
protected:
    RenamePlan renumbered(const TvString& first, bool layouts, bool files)
    {
        return operations::planRename(
            operations::renumberTargets(*house, *SheetNumbers::make(first, 1), {layouts, files}));
    }
    bool applied(const RenamePlan& effects)
    {
        return bool(operations::applyRename(*database, effects,
                                            [this] { return database->unlockDb(database, true); }));
    }
    /// Everything that a user sees: the files with their layouts, the sheets with their names.
    std::string state() const
    {
        std::string all;
        std::vector<TvSmSheet*> sheets;
        KvDbUtil::GetAllSheetsInTheSubSet(database->getSheetSet(), sheets);
        for (const TvSmSheet* sheet : sheets) {
            all += sheet->getNumber().utf8() + " " + sheet->getTitle().utf8();
            if (const auto* layout = sheet->getLayoutReference())
                all += " | " + fileOf(sheet).utf8() + " | " + layout->getName().utf8() + " = " +
                       (layout->resolveFileName().isEmpty() ? "?" : layoutOnDisk(sheet).utf8());
            all += "\n";
        }
        return all;
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (const std::string name = entry.path().filename().string();
                name.ends_with(".dwg") || name.starts_with(".kvrename"))
                names.push_back(name);
        std::ranges::sort(names);
        return names;
    }
    bool relock() { return database->lockDb(database); }
};

TEST_F(RenumberTest, ThePlanShowsEveryEffectAndChangesNothing)
{
    const RenamePlan effects = renumbered(u"A-10", true, true);
    EXPECT_FALSE(effects.hasClash());
    EXPECT_TRUE(effects.changesAnything());
    ASSERT_EQ(effects.sheets.size(), 4u);
    EXPECT_EQ(effects.sheets[1].oldNumber + u">" + effects.sheets[1].newNumber, u"2>A-11");
    EXPECT_EQ(effects.sheets[1].oldLayout + u">" + effects.sheets[1].newLayout, u"A2>A-11 Stair");
    EXPECT_EQ(effects.sheets[3].drawing, -1) << "it was never drawn";
    ASSERT_EQ(effects.drawings.size(), 2u);
    EXPECT_EQ(effects.drawings[0].newPath, folder.file("A-10 Plan.dwg")) << "after its first sheet";
    EXPECT_TRUE(isThere("plan.dwg"));
    EXPECT_EQ(plan->getNumber(), u"1");
}

TEST_F(RenumberTest, NumbersLayoutsAndFilesChangeTogether)
{
    ASSERT_TRUE(applied(renumbered(u"A-10", true, true)));
    EXPECT_EQ(state(), "A-10 Plan | A-10 Plan.dwg | A-10 Plan = A-10 Plan\n"
                       "A-11 Stair | A-10 Plan.dwg | A-11 Stair = A-11 Stair\n"
                       "A-12 Section | A-12 Section.dwg | A-12 Section = A-12 Section\n"
                       "A-13 Cover\n");
    EXPECT_EQ(files(), (std::vector<std::string>{"A-10 Plan.dwg", "A-12 Section.dwg"}));
    EXPECT_NE(folder.read("house.dst").find("A-12 Section.dwg"), std::string::npos);
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
}

TEST_F(RenumberTest, OnlyNumbersLeaveTheDrawingsAlone)
{
    const std::string before = folder.read("plan.dwg");
    std::filesystem::remove(folder.path() / "section.dwg");
    ASSERT_TRUE(applied(renumbered(u"001", false, false))) << "a missing drawing does not matter";
    EXPECT_EQ(section->getNumber(), u"003");
    EXPECT_EQ(folder.read("plan.dwg"), before);
}

TEST_F(RenumberTest, FilesLayoutsAndNumbersMayBeExchanged)
{
    const std::string first = folder.read("plan.dwg"), second = folder.read("section.dwg");
    SheetTarget one{plan, u"2", std::nullopt, std::nullopt, u"section.dwg"};
    SheetTarget two{section, u"1", std::nullopt, std::nullopt, u"plan.dwg"};
    ASSERT_TRUE(applied(operations::planRename({one, two})));
    EXPECT_EQ(folder.read("section.dwg"), first);
    EXPECT_EQ(folder.read("plan.dwg"), second);
    EXPECT_EQ(fileOf(stair), u"section.dwg");
    ASSERT_TRUE(relock());
    one = {plan, std::nullopt, std::nullopt, u"A2", std::nullopt};
    two = {stair, std::nullopt, std::nullopt, u"A1", std::nullopt};
    ASSERT_TRUE(applied(operations::planRename({one, two})));
    EXPECT_EQ(layoutOnDisk(plan) + layoutOnDisk(stair), u"A2A1");
}

TEST_F(RenumberTest, OneCommandTakesItBackAndTheSameOneDoesItAgain)
{
    const std::string before = state();
    ASSERT_TRUE(applied(renumbered(u"A-10", true, true)));
    const std::string after = state();
    ASSERT_TRUE(relock());
    base::Result<RenamePlan> undo = operations::planRenameUndo(*database);
    ASSERT_TRUE(undo && !undo->hasClash());
    ASSERT_TRUE(applied(*undo));
    // The set remembered another name of that layout than the drawing had.
    EXPECT_EQ(state(), std::regex_replace(before, std::regex("old name"), "A2"));
    ASSERT_TRUE(relock());
    undo = operations::planRenameUndo(*database);
    ASSERT_TRUE(undo && applied(*undo));
    EXPECT_EQ(state(), after);
}

TEST_F(RenumberTest, WhatChangedSinceIsNotTakenBack)
{
    EXPECT_FALSE(operations::planRenameUndo(*database)) << "nothing was renamed";
    ASSERT_TRUE(applied(renumbered(u"A-10", false, false)));
    ASSERT_TRUE(relock());
    stair->setNumber(u"B-1");
    section->setTitle(u"Cut");
    house->removeSheet(cover);
    const base::Result<RenamePlan> undo = operations::planRenameUndo(*database);
    ASSERT_TRUE(undo);
    int stale = 0;
    for (const operations::SheetEffect& sheet : undo->sheets)
        stale += sheet.clash == Clash::Stale;
    EXPECT_EQ(stale, 3);
    EXPECT_FALSE(applied(*undo));
}

TEST_F(RenumberTest, EachThingInTheWayIsNamed)
{
    const auto clashOf = [](const SheetTarget& target) {
        const RenamePlan effects = operations::planRename({target});
        return effects.sheets[0].clash != Clash::None ? effects.sheets[0].clash
               : effects.drawings.empty()             ? Clash::None
                                                      : effects.drawings[0].clash;
    };
    const auto none = std::nullopt;
    EXPECT_EQ(clashOf({plan, TvString(std::u16string(33, u'1')), none, none, none}),
              Clash::NumberTooLong);
    EXPECT_EQ(clashOf({plan, u"1?", none, none, none}), Clash::NumberCharacters);
    EXPECT_EQ(clashOf({plan, none, u" ", none, none}), Clash::TitleMissing);
    EXPECT_EQ(clashOf({plan, none, u"a|b", none, none}), Clash::TitleCharacters);
    EXPECT_EQ(clashOf({plan, none, TvString(std::u16string(65, u't')), none, none}),
              Clash::TitleTooLong);
    EXPECT_EQ(clashOf({plan, u"2", u"Stair", none, none}), Clash::Duplicate);
    EXPECT_EQ(clashOf({cover, none, none, u"L", none}), Clash::NoLayout);
    EXPECT_EQ(clashOf({plan, none, none, u"a,b", none}), Clash::LayoutName);
    EXPECT_EQ(clashOf({plan, none, none, u"Model", none}), Clash::LayoutName);
    EXPECT_EQ(clashOf({plan, none, none, u"a2", none}), Clash::LayoutTaken);
    EXPECT_EQ(clashOf({plan, none, none, none, u"section.dwg"}), Clash::FileExists);
    EXPECT_EQ(clashOf({plan, none, none, none, u"../x.dwg"}), Clash::FileName);
    EXPECT_EQ(clashOf({plan, none, none, none, u"NUL.dwg"}), Clash::FileName);
    EXPECT_EQ(clashOf({plan, none, none, none, u"a=b.dwg"}), Clash::FileName);
    EXPECT_EQ(clashOf({plan, none, none, none, u".dwg"}), Clash::FileName) << "it would be hidden";
    EXPECT_EQ(clashOf({plan, none, none, none, u" .DWG"}), Clash::FileName);
    EXPECT_EQ(clashOf({plan, none, none, none, TvString(std::u16string(250, u'f')) + u".dwg"}),
              Clash::FilePathTooLong);
    {
        const Held held(folder.file("plan.dwg"));
        EXPECT_EQ(clashOf({plan, none, none, u"L", none}), Clash::DrawingInUse);
    }
    std::filesystem::create_hard_link(folder.path() / "plan.dwg", folder.path() / "other.dwg");
    EXPECT_EQ(clashOf({plan, none, none, u"L", none}), Clash::DrawingLinked);
    EXPECT_EQ(clashOf({plan, none, none, none, u"x.dwg"}), Clash::None) << "a move parts nothing";
    std::filesystem::remove(folder.path() / "other.dwg");
    std::filesystem::rename(folder.path() / "plan.dwg", folder.path() / "other.dwg");
    std::filesystem::create_symlink("other.dwg", folder.path() / "plan.dwg");
    EXPECT_EQ(clashOf({plan, none, none, u"L", none}), Clash::DrawingLinked);
    std::filesystem::rename(folder.path() / "other.dwg", folder.path() / "plan.dwg");
    std::filesystem::permissions(folder.path() / "plan.dwg", std::filesystem::perms(0444));
    EXPECT_EQ(clashOf({plan, none, none, none, u"x.dwg"}), Clash::DrawingReadOnly);
    plan->getLayoutReference()->setHandle(u"FFFF");
    EXPECT_EQ(clashOf({section, none, none, none, u"free.dwg"}), Clash::None);
    folder.write("section.dwg", "no drawing");
    EXPECT_EQ(clashOf({section, none, none, u"L", none}), Clash::DrawingUnreadable);
    std::filesystem::remove(folder.path() / "section.dwg");
    EXPECT_EQ(clashOf({section, none, none, none, u"x.dwg"}), Clash::DrawingMissing);
    section->getLayoutReference()->setFileName(u"");
    EXPECT_EQ(clashOf({section, none, none, none, u"x.dwg"}), Clash::DrawingMissing)
        << "a location that leads nowhere is never a file at the root";
}

TEST_F(RenumberTest, APathHasRoomForTwoHundredAndFiftyNineUnits)
{
    const int room = 259 - folder.file("plan.dwg").length() + 4;
    const auto clashAt = [this](int length) {
        const std::u16string name(static_cast<std::size_t>(length), u'f');
        return operations::planRename(
                   {{plan, std::nullopt, std::nullopt, std::nullopt, TvString(name) + u".dwg"}})
            .drawings[0]
            .clash;
    };
    EXPECT_EQ(clashAt(room), Clash::None);
    EXPECT_EQ(clashAt(room + 1), Clash::FilePathTooLong);
}

TEST_F(RenumberTest, WhoHasADrawingOpenIsSaid)
{
    const Held held(folder.file("plan.dwg"));
    const RenamePlan effects = renumbered(u"A-10", true, false);
    ASSERT_EQ(effects.drawings[0].clash, Clash::DrawingInUse);
    EXPECT_NE(effects.drawings[0].about.find(u"@"), TvString::npos)
        << effects.drawings[0].about.utf8();
}

TEST_F(RenumberTest, TwoSheetsThatWereOneAlreadyMayStayWhileTheirLayoutsAreRenamed)
{
    stair->setNumber(u"1");
    stair->setTitle(u"Plan");
    const auto none = std::nullopt;
    EXPECT_FALSE(operations::planRename({{plan, none, none, u"L", none}}).hasClash());
    EXPECT_FALSE(operations::planRename({{plan, u"1", u"Plan", none, none}}).hasClash());
}

TEST_F(RenumberTest, ALayoutOrAFileMayChangeItsCaseAlone)
{
    const auto none = std::nullopt;
    ASSERT_TRUE(applied(operations::planRename({{plan, none, none, u"a1", u"PLAN.dwg"}})));
    EXPECT_EQ(layoutOnDisk(plan), u"a1");
    EXPECT_EQ(files(), (std::vector<std::string>{"PLAN.dwg", "section.dwg"}));
}

TEST_F(RenumberTest, TwoSheetsOnOneLayoutCannotNameItBoth)
{
    stair->getLayoutReference()->setHandle(plan->getLayoutReference()->getHandle());
    const RenamePlan effects = renumbered(u"A-10", true, false);
    EXPECT_EQ(effects.sheets[0].clash, Clash::None);
    EXPECT_EQ(effects.sheets[1].clash, Clash::LayoutTaken);
}

TEST_F(RenumberTest, TheModelIsNoSheetsLayout)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(folder.file("plan.dwg")), TvStatus::Ok);
    plan->getLayoutReference()->setHandle(db::layoutsInTabOrder(drawing).front().handle().text());
    EXPECT_EQ(renumbered(u"A-10", true, false).sheets[0].clash, Clash::LayoutMissing);
}

TEST_F(RenumberTest, ALayoutThatKeepsItsNameLeavesALinkedDrawingAlone)
{
    std::filesystem::create_hard_link(folder.path() / "plan.dwg", folder.path() / "other.dwg");
    const RenamePlan effects =
        operations::planRename({{plan, u"7", std::nullopt, u"A1", std::nullopt}});
    EXPECT_FALSE(effects.hasClash());
    const std::string before = folder.read("plan.dwg");
    ASSERT_TRUE(applied(effects));
    EXPECT_EQ(folder.read("other.dwg"), before);
    EXPECT_EQ(std::filesystem::hard_link_count(folder.path() / "plan.dwg"), 2u);
}

TEST_F(RenumberTest, TwoDrawingsCannotGetOneName)
{
    const RenamePlan effects =
        operations::planRename({{plan, std::nullopt, std::nullopt, std::nullopt, u"X.dwg"},
                                {section, std::nullopt, std::nullopt, std::nullopt, u"x.dwg"}});
    EXPECT_EQ(effects.drawings[0].clash, Clash::FileTwice);
    EXPECT_EQ(effects.drawings[1].clash, Clash::FileTwice);
    EXPECT_FALSE(applied(effects));
}

TEST_F(RenumberTest, ADrawingThatChangesOrIsOpenedAfterThePlanKeepsEverythingAsItIs)
{
    const std::string before = state();
    const RenamePlan effects = renumbered(u"A-10", true, true);
    {
        const Held held(folder.file("section.dwg")); // the second one: the first has left already
        EXPECT_FALSE(applied(effects));
    }
    ASSERT_TRUE(database->unlockDb(database, false) && relock());
    EXPECT_EQ(state(), before);
    folder.write("A-12 Section.dwg", "somebody's"); // appears after the look
    EXPECT_FALSE(applied(effects));
    ASSERT_TRUE(database->unlockDb(database, false) && relock());
    EXPECT_EQ(state(), before);
    EXPECT_EQ(folder.read("A-12 Section.dwg"), "somebody's");
    EXPECT_EQ(files(), (std::vector<std::string>{"A-12 Section.dwg", "plan.dwg", "section.dwg"}));
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
}

TEST_F(RenumberTest, ADrawingThatKeepsItsNamesIsLeftToWhoHasItOpen)
{
    plan->getLayoutReference()->setFileName(u"plan.dwg"); // found beside the set
    std::vector<SheetTarget> targets(2);
    targets[0].sheet = plan;
    targets[0].number = u"7";
    targets[0].layout = u"A1"; // as it is called
    targets[1].sheet = section;
    targets[1].file = u"cut.dwg";
    const RenamePlan effects = operations::planRename(targets);
    {
        const Held held(folder.file("plan.dwg"));
        EXPECT_TRUE(applied(effects));
    }
    EXPECT_EQ(plan->getNumber(), u"7");
    EXPECT_EQ(plan->getLayoutReference()->getFileName(), u"plan.dwg") << "as it was stored";
    EXPECT_EQ(files(), (std::vector<std::string>{"cut.dwg", "plan.dwg"}));
    std::filesystem::remove(folder.path() / "plan.dwg");
    const auto undo = operations::planRenameUndo(*database);
    EXPECT_TRUE(undo && !undo->hasClash()) << "nor does the undo ask for it";
}

TEST_F(RenumberTest, ASetThatCannotBeWrittenBringsAllDrawingsBack)
{
    const std::string before = state();
    const RenamePlan effects = renumbered(u"A-10", true, true);
    EXPECT_FALSE(operations::applyRename(*database, effects, [this] {
        database->unlockDb(database, false);
        return false;
    }));
    EXPECT_EQ(state(), before);
    EXPECT_EQ(files(), (std::vector<std::string>{"plan.dwg", "section.dwg"}));
}

TEST_F(RenumberTest, AViewThatStandsInADrawingFollowsItToo)
{
    auto* view = addView(plan, u"North");
    auto* reference = newFor<TvSmTvDbViewReference>(view);
    ASSERT_TRUE(reference->setFileName(folder.file("plan.dwg")) &&
                view->setViewReference(reference));
    ASSERT_TRUE(database->unlockDb(database, true) && relock());
    ASSERT_TRUE(applied(renumbered(u"7", false, true)));
    EXPECT_EQ(reference->getFileName(), folder.file("7 Plan.dwg"));
}

TEST_F(RenumberTest, ADamagedJournalStopsTheRecoveryAndStays)
{
    folder.write(".house.dst.rename", "rubbish");
    EXPECT_TRUE(operations::hasRenameToRecover(database->getFileName()));
    EXPECT_FALSE(operations::recoverRename(*database));
    EXPECT_EQ(folder.read(".house.dst.rename"), "rubbish");
}

TEST_F(RenumberTest, WithoutAJournalThereIsNothingToRecover)
{
    const auto recovered = operations::recoverRename(*database);
    ASSERT_TRUE(recovered);
    EXPECT_EQ(*recovered, RenameRecovery::Nothing);
}

} // namespace
