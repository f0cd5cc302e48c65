// A sheet's layout gets another name, in its drawing and in the set.

#include <ed/program_control.h>

#include "rename_scene.h"

namespace {

using RenameLayoutTest = RenameTest;

TEST_F(RenameLayoutTest, ALayoutsNewNameIsRefusedWithTheStatusOfItsReason)
{
    TvSmTvDbLayoutReference* layout = plan->getLayoutReference();
    EXPECT_EQ(RenameLayoutOfSheet(nullptr, u"x"), TvStatus::NotThatObject);
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"mODEL"), TvStatus::NameReserved);
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"A2"), TvStatus::DuplicateName);
    layout->setHandle(u"FFFF");
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"x"), TvStatus::UnknownHandle);
    layout->setHandle(u"1");
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"x"), TvStatus::NotThatObject);
    std::filesystem::remove(folder.path() / "plan.dwg");
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"x"), TvStatus::NoDatabase);
    EXPECT_EQ(RenameLayoutOfSheetWithMessages(layout, u"x"), TvStatus::FileGone);
    EXPECT_EQ(messages.numbers(), std::vector<int>{482});
    EXPECT_EQ(layout->getName(), u"A1");
}

TEST_F(RenameLayoutTest, AClosedDrawingKeepsItsVersion)
{
    for (const int version : {TvDb::kAc1015, TvDb::kAc1018, TvDb::kAc1021, TvDb::kAc1027}) {
        {
            TvDbDatabase drawing(false, true);
            ASSERT_EQ(drawing.readDwgFile(folder.file("section.dwg")), TvStatus::Ok);
            ASSERT_EQ(drawing.saveAs(folder.file("section.dwg"), false, version, nullptr),
                      TvStatus::Ok);
        }
        const TvString name = TvString().format(u"B%d", version);
        ASSERT_EQ(RenameLayoutOfSheet(section->getLayoutReference(), name), TvStatus::Ok);
        TvDbDatabase drawing(false, true);
        ASSERT_EQ(drawing.readDwgFile(folder.file("section.dwg")), TvStatus::Ok);
        EXPECT_EQ(drawing.originalFileVersion(), version);
        EXPECT_EQ(layoutIn(drawing, section), name);
        EXPECT_EQ(section->getLayoutReference()->getName(), name);
    }
}

/// Counts how often the tabs of layouts are drawn anew.
class CountingProgram : public ed::ProgramControl
{
public:
    CountingProgram() { ed::setProgramControl(this); }
    ~CountingProgram() override { ed::setProgramControl(nullptr); }
    void quit() override {}
    bool showHelp(const TvString&) override { return false; }
    void recentFilesChanged() override {}
    void layoutsChanged(TvApDocument& document) override { changed.push_back(&document); }

    std::vector<const TvApDocument*> changed;
};

TEST_F(RenameLayoutTest, InAnOpenDrawingTabsAndReferenceFollowAndOneUndoTakesItBack)
{
    CountingProgram program;
    TvApDocument* document = opened("plan.dwg");
    TvSmTvDbLayoutReference* layout = plan->getLayoutReference();
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"A2"), TvStatus::DuplicateName);
    EXPECT_TRUE(program.changed.empty());
    EXPECT_EQ(layout->getName(), u"A1");
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"Ground"), TvStatus::Ok);
    EXPECT_EQ(program.changed, std::vector<const TvApDocument*>{document});
    EXPECT_EQ(layout->getName(), u"Ground");
    EXPECT_EQ(document->database()->undo(), TvStatus::Ok);
    EXPECT_EQ(layoutIn(*document->database(), plan), u"A1");
}

TEST_F(RenameLayoutTest, ALayoutThatSomebodyReadsInAnOpenDrawingIsToldAsOneThatCannotBeChanged)
{
    TvApDocument* document = opened("plan.dwg");
    TvSmTvDbLayoutReference* layout = plan->getLayoutReference();
    const TvDbObjectPointer<TvDbLayout> reader(
        document->database()->find(TvDbHandle(layout->getHandle().view()).value()));
    ASSERT_TRUE(reader);
    EXPECT_EQ(RenameLayoutOfSheet(layout, u"Ground"), TvStatus::NotOpenable);
    EXPECT_EQ(RenameLayoutOfSheetWithMessages(layout, u"Ground"), TvStatus::NotThatObject);
    EXPECT_EQ(messages.numbers(), std::vector<int>{614});
    EXPECT_EQ(messages.asked.front().caption, 613);
    EXPECT_EQ(messages.asked.front().icon, TvUserMessages::Icon::Warning);
}

TEST_F(RenameLayoutTest, ADrawingThatCannotBeSavedLeavesTheReference)
{
    const Held held(folder.file("section.dwg"));
    EXPECT_NE(RenameLayoutOfSheet(section->getLayoutReference(), u"B2"), TvStatus::Ok);
    EXPECT_EQ(section->getLayoutReference()->getName(), u"B1");
}

} // namespace
