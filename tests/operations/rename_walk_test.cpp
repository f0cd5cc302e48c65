// A walk renames sheet after sheet, and is kept or taken back as one.

#include <sys/stat.h>

#include "rename_scene.h"

using operations::RenameNames;
using operations::RenameStep;
using operations::SheetRename;

namespace {

/// A user who types what the test prepared, and ends each dialog as it says.
class ScriptedWalk : public operations::RenameWalkPorts
{
public:
    struct Step {
        RenameNames typed;
        RenameStep end;
    };
    ScriptedWalk(TvSmDatabase* database, TvSmSheet* first, std::vector<Step> steps)
        : m_database(database), m_at(first), m_steps(std::move(steps))
    {
    }
    TvSmSheet* selectedSheet() override { return m_at; }
    RenameStep runDialog(TvSmSheet& sheet, TvString& layoutName) override
    {
        SheetRename rename;
        EXPECT_TRUE(rename.load(&sheet, m_database));
        layoutName = rename.names().layout;
        const Step step = m_steps.at(m_done++);
        if (step.end != RenameStep::Cancel)
            rename.apply(step.typed, {});
        if (onStep)
            onStep(m_done);
        return step.end;
    }
    void labelChanged(const TvString& sheet) override
    {
        labels.push_back(tvrxCast<TvSmSheet>(m_database->findObject(sheet))->getNumber());
    }
    void selectPrevious() override { m_at = GetPreviousSheet(m_at); }
    void selectNext() override { m_at = GetNextSheet(m_at); }
    std::vector<TvString> labels; ///< the number that each was told with
    std::function<void(std::size_t)> onStep;

private:
    TvSmDatabase* m_database;
    TvSmSheet* m_at;
    std::vector<Step> m_steps;
    std::size_t m_done = 0;
};

class RenameWalkTest : public RenameTest
{
protected:
    void SetUp() override
    {
        RenameTest::SetUp();
        ASSERT_TRUE(database->unlockDb(database, false));
        change(database, [this](TvSmSheetSet& top) {
            top.removeSubset(details);
            top.removeSheet(stair);
            last = addSheet(&top, u"4", u"Last");
            DrawingMaker maker;
            maker.paper(u"C1").saveAs(folder.file("last.dwg"));
            setLayout(last, folder.file("last.dwg"), maker.handleOf(u"C1"), u"C1");
            top.removeSheet(cover);
        });
    }
    bool walk(std::vector<ScriptedWalk::Step> steps)
    {
        ScriptedWalk walk(database, plan, std::move(steps));
        const bool isKept = operations::renameSheets(database, walk);
        labels = walk.labels;
        return isKept;
    }
    TvSmSheet* last = nullptr;
    std::vector<TvString> labels;
};

TEST_F(RenameWalkTest, CancelOnTheThirdSheetBringsTheFirstTwoBackAndTheThirdWasNeverApplied)
{
    EXPECT_FALSE(walk({{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Next},
                       {{u"x3", u"X3", u"L3", u"x3.dwg"}, RenameStep::Cancel}}));
    EXPECT_TRUE(isThere("plan.dwg") && isThere("section.dwg") && isThere("last.dwg"));
    EXPECT_FALSE(isThere("x1.dwg") || isThere("x2.dwg") || isThere("x3.dwg"));
    EXPECT_EQ(layoutOnDisk(plan) + layoutOnDisk(section) + layoutOnDisk(last), u"A1B1C1");
    EXPECT_EQ(plan->getNumber() + section->getNumber() + last->getNumber(), u"134");
    EXPECT_EQ(fileOf(plan), u"plan.dwg");
    EXPECT_EQ(labels, (std::vector<TvString>{u"x1", u"x2", u"1", u"3", u"4"}))
        << "once more when they have their numbers back";
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(RenameWalkTest, ADrawingWhoseLayoutKeptItsNameIsNotWrittenToTakeItBack)
{
    const auto inodeOf = [this](const char* name) {
        struct stat found {
        };
        EXPECT_EQ(stat((folder.path() / name).c_str(), &found), 0);
        return found.st_ino;
    };
    // Of the one on which the user gives up the set has a former name.
    change(database, [this](TvSmSheetSet&) { section->getLayoutReference()->setName(u"B0"); });
    const ino_t never = inodeOf("section.dwg");
    ScriptedWalk walk(database, plan,
                      {{{u"x1", u"X1", u"A1", u"x1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Cancel}});
    ino_t applied = 0;
    walk.onStep = [&](std::size_t step) {
        if (step == 1)
            applied = inodeOf("x1.dwg");
    };
    EXPECT_FALSE(operations::renameSheets(database, walk));
    EXPECT_EQ(inodeOf("plan.dwg"), applied);
    EXPECT_EQ(inodeOf("section.dwg"), never);
}

TEST_F(RenameWalkTest, AWalkThatComesToASheetWithoutALayoutIsTakenBack)
{
    change(database, [](TvSmSheetSet& top) { addSheet(&top, u"5", u"Bare"); });
    EXPECT_FALSE(walk({{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Next},
                       {{u"x3", u"X3", u"L3", u"x3.dwg"}, RenameStep::Next}}));
    EXPECT_TRUE(isThere("plan.dwg") && isThere("section.dwg") && isThere("last.dwg"));
    EXPECT_EQ(layoutOnDisk(plan) + layoutOnDisk(section) + layoutOnDisk(last), u"A1B1C1");
}

TEST_F(RenameWalkTest, OkKeepsEveryStepOfTheWalk)
{
    EXPECT_TRUE(walk({{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Next},
                      {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Previous},
                      {{u"y1", u"Y1", u"M1", u"y1.dwg"}, RenameStep::Ok}}));
    EXPECT_TRUE(isThere("y1.dwg") && isThere("x2.dwg"));
    EXPECT_EQ(layoutOnDisk(plan) + layoutOnDisk(section), u"M1L2");
    EXPECT_NE(folder.read("house.dst").find("y1.dwg"), std::string::npos);
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(RenameWalkTest, ARefusedStepLeavesTheSheetAsItWasAndTheWalkGoesOn)
{
    EXPECT_TRUE(walk({{{u"x1", u"", u"L1", u"x1.dwg"}, RenameStep::Next},
                      {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Ok}}));
    EXPECT_TRUE(isThere("plan.dwg") && isThere("x2.dwg"));
    EXPECT_EQ(plan->getNumber(), u"1");
}

TEST_F(RenameWalkTest, AWalkThatLeavesTheSheetsIsTakenBack)
{
    EXPECT_FALSE(walk({{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Previous}}));
    EXPECT_TRUE(isThere("plan.dwg"));
    EXPECT_EQ(layoutOnDisk(plan), u"A1");
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(RenameWalkTest, TakingBackStopsAtTheFirstThatIsNoSheetWithALayoutAnyMore)
{
    ScriptedWalk walk(database, plan,
                      {{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Next},
                       {{}, RenameStep::Cancel}});
    walk.onStep = [this](std::size_t step) {
        if (step == 3)
            section->setLayoutReference(nullptr);
    };
    EXPECT_FALSE(operations::renameSheets(database, walk));
    EXPECT_TRUE(isThere("x1.dwg")) << "what lies behind it stays on disk";
    EXPECT_EQ(plan->getNumber(), u"1") << "the set itself is rolled back";
}

TEST_F(RenameWalkTest, ALockedSetIsLeftAlone)
{
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_FALSE(walk({}));
    EXPECT_EQ(database->getLockStatus(), 1);
    ScriptedWalk none(nullptr, nullptr, {});
    EXPECT_FALSE(operations::renameSheets(nullptr, none));
}

TEST_F(RenameWalkTest, ADrawingThatTheSetKnowsByItsPlaceBesideItGoesBackThere)
{
    change(database, [this](TvSmSheetSet&) {
        for (TvSmSheet* sheet : {plan, section})
            sheet->getLayoutReference()->setFileName(fileOf(sheet));
    });
    EXPECT_FALSE(walk({{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Next},
                       {{}, RenameStep::Cancel}}));
    EXPECT_TRUE(isThere("plan.dwg") && isThere("section.dwg"));
    EXPECT_FALSE(isThere("x1.dwg") || isThere("x2.dwg"));
    EXPECT_FALSE(std::filesystem::exists("plan.dwg")) << "and not where the program runs";
    EXPECT_EQ(layoutOnDisk(plan) + layoutOnDisk(section), u"A1B1");
}

TEST_F(RenameWalkTest, ADrawingThatWasMissingAtFirstStaysWhereItTurnsUp)
{
    std::filesystem::rename(folder.path() / "plan.dwg", folder.path() / "away");
    ScriptedWalk walk(
        database, plan,
        {{{u"x1", u"X1", u"", u"x1.dwg"}, RenameStep::Next}, {{}, RenameStep::Cancel}});
    walk.onStep = [this](std::size_t step) {
        if (step == 2)
            std::filesystem::rename(folder.path() / "away", folder.path() / "plan.dwg");
    };
    EXPECT_FALSE(operations::renameSheets(database, walk));
    EXPECT_TRUE(isThere("plan.dwg"));
    EXPECT_EQ(layoutOnDisk(plan), u"A1");
}

TEST_F(RenameWalkTest, WhenTheSetCannotBeWrittenTheDrawingsAreWhatTheyWere)
{
    const std::string before = folder.read("house.dst");
    ScriptedWalk walk(database, plan,
                      {{{u"x1", u"X1", u"L1", u"x1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Previous},
                       {{u"y1", u"Y1", u"M1", u"y1.dwg"}, RenameStep::Next},
                       {{u"x2", u"X2", u"L2", u"x2.dwg"}, RenameStep::Ok}});
    walk.onStep = [this](std::size_t step) {
        if (step == 4)
            ops.failKind(base::FaultyFileOps::Kind::Write, ENOSPC);
    };
    EXPECT_FALSE(operations::renameSheets(database, walk));
    ops.reset();
    EXPECT_EQ(folder.read("house.dst"), before);
    EXPECT_TRUE(isThere("plan.dwg") && isThere("section.dwg"));
    EXPECT_FALSE(isThere("x1.dwg") || isThere("x2.dwg") || isThere("y1.dwg"));
    EXPECT_EQ(layoutOnDisk(plan) + layoutOnDisk(section), u"A1B1");
    EXPECT_EQ(plan->getNumber() + section->getNumber(), u"13");
    EXPECT_EQ(walk.labels.back(), u"3");
    EXPECT_EQ(database->getLockStatus(), 0);
}

} // namespace
