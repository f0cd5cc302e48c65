// A sheet's number, title, layout and file change together.

#include "rename_scene.h"

using operations::RenameNames;
using operations::RenameOptions;
using operations::RenameOutcome;
using operations::SheetRename;

namespace {

class RenameSheetTest : public RenameTest
{
protected:
    SheetRename loaded(TvSmSheet* sheet)
    {
        SheetRename rename;
        EXPECT_TRUE(rename.load(sheet, database));
        return rename;
    }
    RenameOutcome applied(TvSmSheet* sheet, const RenameNames& names,
                          const RenameOptions& options = {})
    {
        return loaded(sheet).apply(names, options);
    }
};

TEST_F(RenameSheetTest, TheNeighbourCountsOnlyWhereItIsASheetOfTheSameSubset)
{
    EXPECT_EQ(GetNextSheet(plan), stair);
    EXPECT_EQ(GetPreviousSheet(stair), plan);
    EXPECT_EQ(GetPreviousSheet(plan), nullptr) << "the first";
    EXPECT_EQ(GetNextSheet(stair), nullptr) << "a subset comes next";
    EXPECT_EQ(GetPreviousSheet(section), nullptr) << "a subset stands before it";
    EXPECT_EQ(GetNextSheet(section), cover);
    EXPECT_EQ(GetNextSheet(nullptr), nullptr);
}

TEST_F(RenameSheetTest, TheLayoutsNameComesFromTheDrawing)
{
    const SheetRename rename = loaded(stair);
    EXPECT_EQ(rename.names().layout, u"A2") << "and not what the set remembers";
    EXPECT_EQ(rename.names().file, u"plan.dwg");
    EXPECT_EQ(rename.folder(), base::pathFromNative(folder.path().string()));
    EXPECT_FALSE(rename.isLocked() || rename.isOpenHere() || rename.isLayoutMissing());
}

TEST_F(RenameSheetTest, WithoutALayoutOrASetThereIsNothingToLoad)
{
    SheetRename rename;
    EXPECT_FALSE(rename.load(cover, database));
    EXPECT_FALSE(rename.load(nullptr, database));
    EXPECT_FALSE(rename.load(plan, nullptr));
}

TEST_F(RenameSheetTest, WithoutADocumentManagerThereIsNothingToLoadAndNothingIsRenamed)
{
    closeDocuments();
    SheetRename rename;
    EXPECT_FALSE(rename.load(plan, database));
    EXPECT_EQ(rename.apply({u"9", u"X", u"Y", u"z.dwg"}, {}), RenameOutcome::NoLayout);
    EXPECT_EQ(plan->getNumber(), u"1");
    EXPECT_TRUE(isThere("plan.dwg"));
}

TEST_F(RenameSheetTest, AllFourNamesChangeAndBothSheetsOfTheDrawingFollow)
{
    EXPECT_EQ(applied(plan, {u"12", u"Ground", u"12 Ground", u"12 Ground.dwg"}),
              RenameOutcome::Done);
    EXPECT_FALSE(isThere("plan.dwg"));
    EXPECT_EQ(layoutOnDisk(plan), u"12 Ground");
    EXPECT_EQ(plan->getLayoutReference()->getName(), u"12 Ground");
    EXPECT_EQ(plan->getNumber() + u"|" + plan->getTitle(), u"12|Ground");
    EXPECT_EQ(fileOf(plan), u"12 Ground.dwg");
    EXPECT_EQ(fileOf(stair), u"12 Ground.dwg");
    EXPECT_EQ(layoutOnDisk(stair), u"A2");
    EXPECT_TRUE(messages.asked.empty());
    EXPECT_EQ(folder.read("house.dst").find("12 Ground"), std::string::npos)
        << "the set's file waits for the lock's end";
}

TEST_F(RenameSheetTest, AFileWithoutTheExtensionGetsItAndOneInOtherLettersToo)
{
    EXPECT_EQ(applied(section, {u"3", u"Section", u"B1", u"cut"}), RenameOutcome::Done);
    EXPECT_TRUE(isThere("cut.dwg"));
    EXPECT_EQ(applied(section, {u"3", u"Section", u"B1", u"Cut.DWG"}), RenameOutcome::Done);
    EXPECT_TRUE(isThere("Cut.DWG.dwg"));
}

TEST_F(RenameSheetTest, AnExistingFileIsNotOverwrittenAndNothingElseHappens)
{
    const std::string there = folder.read("section.dwg");
    EXPECT_EQ(applied(plan, {u"9", u"Nine", u"Nine", u"section.dwg"}), RenameOutcome::FileExists);
    EXPECT_EQ(messages.numbers(), std::vector<int>{617});
    EXPECT_EQ(messages.asked.front().caption, 501);
    EXPECT_EQ(folder.read("section.dwg"), there);
    EXPECT_EQ(layoutOnDisk(plan), u"A1");
    EXPECT_EQ(plan->getNumber(), u"1");
}

TEST_F(RenameSheetTest, AFileThatAppearsAfterTheLookIsKeptAndNobodyIsTold)
{
    // The name is free when it is looked at, and taken when the drawing moves: a link that leads
    // nowhere.
    std::filesystem::create_symlink(folder.path() / "nowhere", folder.path() / "new.dwg");
    EXPECT_EQ(applied(plan, {u"9", u"Nine", u"Nine", u"new.dwg"}), RenameOutcome::Done);
    EXPECT_TRUE(messages.asked.empty());
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "new.dwg"));
    EXPECT_EQ(fileOf(plan), u"plan.dwg");
    EXPECT_EQ(layoutOnDisk(plan), u"Nine") << "the layout keeps its new name";
    EXPECT_EQ(plan->getNumber(), u"9");
}

TEST_F(RenameSheetTest, ANameThatDiffersInCaseOnlyMovesNothing)
{
    EXPECT_EQ(applied(plan, {u"1", u"Plan", u"A1", u"PLAN.dwg"}), RenameOutcome::Done);
    EXPECT_TRUE(isThere("plan.dwg"));
    EXPECT_FALSE(isThere("PLAN.dwg"));
    EXPECT_EQ(fileOf(plan), u"plan.dwg");
}

TEST_F(RenameSheetTest, ADrawingThatSomebodyHasOpenKeepsLayoutAndFileAndTheSheetIsRenamed)
{
    const Held held(folder.file("plan.dwg"));
    const std::string before = folder.read("plan.dwg");
    SheetRename rename = loaded(plan);
    EXPECT_TRUE(rename.isLocked());
    EXPECT_FALSE(rename.isOpenHere());
    EXPECT_EQ(rename.names().layout, u"A1");
    EXPECT_FALSE(rename.canRenameLayout() || rename.canRenameFile());
    EXPECT_EQ(rename.apply({u"9", u"Nine", u"A1", u"plan.dwg"}, {}), RenameOutcome::Done);
    EXPECT_EQ(plan->getNumber(), u"9");
    EXPECT_EQ(folder.read("plan.dwg"), before);
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(RenameSheetTest, SomebodyWhoOpensTheDrawingAfterTheLookKeepsItsFileAsItIs)
{
    SheetRename rename = loaded(plan);
    const Held held(folder.file("plan.dwg"));
    const std::string before = folder.read("plan.dwg");
    EXPECT_EQ(rename.apply({u"9", u"Nine", u"Nine", u"nine.dwg"}, {}),
              RenameOutcome::LayoutRefused);
    EXPECT_EQ(folder.read("plan.dwg"), before);
    EXPECT_EQ(plan->getLayoutReference()->getName(), u"A1");
    EXPECT_EQ(plan->getNumber(), u"1");
}

TEST_F(RenameSheetTest, InADrawingThatIsOpenHereTheLayoutIsRenamedAndTheFileIsNot)
{
    TvApDocument* document = opened("plan.dwg");
    const std::string before = folder.read("plan.dwg");
    SheetRename rename = loaded(plan);
    EXPECT_TRUE(rename.isLocked() && rename.isOpenHere());
    EXPECT_TRUE(rename.canRenameLayout());
    EXPECT_FALSE(rename.canRenameFile());
    EXPECT_EQ(rename.apply({u"1", u"Plan", u"Ground", u"ground.dwg"}, {}), RenameOutcome::Done);
    EXPECT_EQ(layoutIn(*document->database(), plan), u"Ground");
    EXPECT_EQ(folder.read("plan.dwg"), before) << "it is the user's to save";
    EXPECT_EQ(fileOf(plan), u"plan.dwg");
}

TEST_F(RenameSheetTest, InADrawingThatIsOpenHereTheNameThatWasNotSavedYetCounts)
{
    TvApDocument* document = opened("plan.dwg");
    ASSERT_EQ(RenameLayoutOfSheet(plan->getLayoutReference(), u"Ground"), TvStatus::Ok);
    plan->getLayoutReference()->setName(u"A1");
    EXPECT_EQ(loaded(plan).names().layout, u"Ground");
    EXPECT_EQ(layoutIn(*document->database(), plan), u"Ground");
}

TEST_F(RenameSheetTest, ANameThatStaysIsWrittenAllTheSame)
{
    EXPECT_EQ(applied(stair, {u"2", u"Stair", u"A2", u"plan.dwg"}), RenameOutcome::Done);
    EXPECT_EQ(stair->getLayoutReference()->getName(), u"A2") << "the set had another one";
}

TEST_F(RenameSheetTest, WhatWasNeverLoadedIsNotRenamed)
{
    SheetRename rename;
    EXPECT_EQ(rename.apply({u"1", u"T", u"L", u"f.dwg"}, {}), RenameOutcome::NoLayout);
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(RenameSheetTest, AMissingDrawingShowsWhatTheSetKnowsAndNumberAndTitleChange)
{
    std::filesystem::remove(folder.path() / "plan.dwg");
    SheetRename rename = loaded(stair);
    EXPECT_TRUE(rename.isDrawingMissing() && rename.isLayoutMissing());
    EXPECT_EQ(rename.names().layout, u"old name");
    EXPECT_EQ(rename.names().file, u"plan.dwg");
    EXPECT_EQ(rename.apply({u"9", u"Nine", u"", u"plan.dwg"}, {}), RenameOutcome::Done);
    EXPECT_EQ(stair->getNumber(), u"9");
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(RenameSheetTest, ADrawingThatWentSinceIsToldAndNothingBecomesAFileElsewhere)
{
    SheetRename rename = loaded(stair);
    std::filesystem::remove(folder.path() / "plan.dwg");
    EXPECT_EQ(rename.apply({u"9", u"Nine", u"Nine", u"nine.dwg"}, {}), RenameOutcome::DrawingGone);
    EXPECT_EQ(messages.numbers(), std::vector<int>{482});
    EXPECT_EQ(messages.asked.front().caption, 553);
    EXPECT_TRUE(rename.isDrawingMissing() && rename.isLayoutMissing());
    EXPECT_EQ(rename.names().layout, u"old name");
    EXPECT_EQ(stair->getNumber(), u"2");
    EXPECT_FALSE(isThere("nine.dwg") || std::filesystem::exists("/nine.dwg"));
}

TEST_F(RenameSheetTest, OfADrawingThatWentSinceTheNameIsThatWhichTheSetHasNow)
{
    SheetRename rename = loaded(plan);
    plan->getLayoutReference()->setFileName(folder.file("moved.dwg"));
    EXPECT_EQ(rename.apply({u"1", u"Plan", u"A1", u"plan.dwg"}, {}), RenameOutcome::DrawingGone);
    EXPECT_EQ(rename.names().file, u"moved.dwg");
}

TEST_F(RenameSheetTest, AHandleWithoutALayoutIsALayoutThatIsMissing)
{
    plan->getLayoutReference()->setHandle(u"1"); // of a table
    SheetRename rename = loaded(plan);
    EXPECT_TRUE(rename.isLayoutMissing());
    EXPECT_FALSE(rename.isDrawingMissing());
    EXPECT_EQ(rename.names().layout, u"");
    const RenameOptions all{true, true, true, true};
    EXPECT_FALSE(rename.controls(all).layoutCheck || rename.inForce(all).layoutMatchesSheet);
    EXPECT_EQ(rename.apply({u"9", u"Nine", u"", u"plan.dwg"}, {}), RenameOutcome::Done)
        << "an empty layout is not looked at";
}

TEST_F(RenameSheetTest, ALayoutThatWentSinceIsTold)
{
    SheetRename rename = loaded(plan);
    plan->getLayoutReference()->setHandle(u"FFFF");
    EXPECT_EQ(rename.apply({u"9", u"Nine", u"Nine", u"nine.dwg"}, {}), RenameOutcome::LayoutGone);
    EXPECT_EQ(messages.numbers(), std::vector<int>{614});
    EXPECT_EQ(messages.asked.front().caption, 613);
    EXPECT_TRUE(rename.isLayoutMissing());
    EXPECT_EQ(rename.names().layout, u"");
    EXPECT_FALSE(isThere("nine.dwg"));
}

TEST_F(RenameSheetTest, RefusalsComeInTheirOrderAndTheFirstOneEndsIt)
{
    struct Case {
        RenameNames typed;
        RenameOutcome expected;
    };
    const Case cases[] = {
        {{u"1|", u"", u"", u""}, RenameOutcome::TextMissing},
        {{u"1|", u"T", u" ", u"f.dwg"}, RenameOutcome::TextMissing},
        {{u"1|", u" ", u"L", u"f.dwg"}, RenameOutcome::TextMissing},
        {{u"1|", u"T", u"L", u"\t"}, RenameOutcome::TextMissing},
        {{u"1|", u"T", u"L", u".dwg"}, RenameOutcome::UnsupportedCharacter},
        {{u"1", u"T?", u"L", u"f.dwg"}, RenameOutcome::UnsupportedCharacter},
        {{u"1", u"T", u"L", u"a/b.dwg"}, RenameOutcome::UnsupportedCharacter},
        {{u"1", u"T", u"A, B", u"f.dwg"}, RenameOutcome::UnsupportedCharacter},
        {{u"2", u"Stair", u"L", u".dwg"}, RenameOutcome::TextMissing},
        {{u"2", u"Stair", u"L", u"section.dwg"}, RenameOutcome::Duplicate},
        {{u"1", u"Plan", u"Model", u"section.dwg"}, RenameOutcome::FileExists},
        {{u"1", u"Plan", u"MODEL", u"free.dwg"}, RenameOutcome::LayoutRefused},
        {{u"1", u"Plan", u"A2", u"free.dwg"}, RenameOutcome::LayoutRefused},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(applied(plan, each.typed), each.expected)
            << each.typed.number.utf8() << ' ' << each.typed.title.utf8() << ' '
            << each.typed.layout.utf8() << ' ' << each.typed.file.utf8();
        EXPECT_EQ(plan->getTitle(), u"Plan");
        EXPECT_EQ(fileOf(plan), u"plan.dwg");
        EXPECT_EQ(layoutOnDisk(plan), u"A1");
    }
    EXPECT_EQ(messages.numbers(), (std::vector<int>{500, 617, 616}))
        << "the last one has no message";
    EXPECT_EQ(messages.asked.back().caption, 615);
    EXPECT_EQ(messages.asked.front().caption, 499);
}

TEST_F(RenameSheetTest, ACommaStandsInNumberTitleAndFile)
{
    EXPECT_EQ(applied(plan, {u"1,2", u"Plan, big", u"A1", u"Plan, big.dwg"}), RenameOutcome::Done);
    EXPECT_TRUE(isThere("Plan, big.dwg"));
}

TEST_F(RenameSheetTest, AnUnreadableDrawingIsToldAndStays)
{
    SheetRename rename = loaded(section);
    folder.write("section.dwg", "no drawing");
    EXPECT_EQ(rename.apply({u"3", u"Section", u"C1", u"c.dwg"}, {}), RenameOutcome::LayoutGone);
    EXPECT_EQ(messages.numbers(), std::vector<int>{409});
    EXPECT_EQ(messages.asked.front().caption, 593);
    EXPECT_EQ(folder.read("section.dwg"), "no drawing");
}

TEST_F(RenameSheetTest, TheOptionsAreKeptOnlyWhenItWorked)
{
    const RenameOptions wanted{true, false, true, true};
    applied(plan, {u"2", u"Stair", u"A1", u"plan.dwg"}, wanted);
    EXPECT_EQ(RenameOptions::stored(), RenameOptions());
    applied(plan, {u"1", u"Plan", u"A1", u"plan.dwg"}, wanted);
    EXPECT_EQ(RenameOptions::stored(), wanted);
    int value = -1;
    EXPECT_TRUE(ReadConfigInt(u"UserInterfaceSettings\\SheetSetWizard\\RenameLayoutWithSheetPrefix",
                              value));
    EXPECT_EQ(value, 0);
    WriteConfigInt(u"UserInterfaceSettings\\SheetSetWizard\\RenameLayoutWithSheetPrefix", 2);
    EXPECT_FALSE(RenameOptions::stored().layoutHasNumber) << "2 and more are no";
}

TEST_F(RenameSheetTest, NamesFollowTheNumberWithABlankAndTheTitleWithout)
{
    const RenameOptions all{true, true, true, true};
    RenameNames names{u"12", u"Plan", u"x", u"x.dwg"};
    operations::followSheet(names, all);
    EXPECT_EQ(names.layout + u"|" + names.file, u"12 Plan|12 Plan.dwg");
    names.number.setEmpty();
    operations::followNumber(names, all);
    EXPECT_EQ(names.layout + u"|" + names.file, u" Plan| Plan.dwg");
    operations::followTitle(names, all);
    EXPECT_EQ(names.layout + u"|" + names.file, u"Plan|Plan.dwg");
    names.number = u"7";
    operations::followSheet(names, {true, false, false, true});
    EXPECT_EQ(names.layout + u"|" + names.file, u"Plan|Plan.dwg") << "without prefix; file alone";
}

} // namespace
