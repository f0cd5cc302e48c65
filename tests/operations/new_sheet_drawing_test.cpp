// The drawing of a new sheet, made from a template.

#include <operations/sheet_drawing.h>

#include <base/kv_file_system.h>
#include <core/sheet_data.h>
#include <core/templates.h>
#include <db/drawing_audit.h>

#include "new_sheet_scene.h"

namespace {

using Names = std::vector<TvString>;

class SheetDrawingTest : public NewSheetScene
{
protected:
    bool make(const TvString& layout, const TvString& templateLayout,
              const char* templateName = "house.dwt")
    {
        return CreateSheetDrawingFromTemplate(house, sheetPath("new.dwg"), layout,
                                              path(templateName), templateLayout, handle);
    }
    bool isThere() const { return KvFileSystem::isFileExisting(sheetPath("new.dwg")); }
    /// What was made, read again.
    std::unique_ptr<TvDbDatabase> drawing() const
    {
        auto read = std::make_unique<TvDbDatabase>(false, true);
        EXPECT_EQ(read->readDwgFile(sheetPath("new.dwg")), TvStatus::Ok);
        return read;
    }
    static std::vector<std::string> findings(TvDbDatabase& drawing)
    {
        std::vector<std::string> codes;
        for (const db::DrawingFinding& finding : db::auditDrawing(drawing, {.trySave = true}))
            codes.push_back(db::auditCode(finding.rule).utf8());
        return codes;
    }
    static TvString nameOf(TvDbObjectId block)
    {
        return TvDbObjectPointer<TvDbBlockTableRecord>(block)->getName();
    }

    TvString handle = u"as before";
};

TEST_F(SheetDrawingTest, ATemplateWithFourPapersGivesADrawingWithTheModelAndOneLayout)
{
    ASSERT_TRUE(make(u"A-01 Plan", u"Details"));
    EXPECT_EQ(layoutNamesOf(*drawing()), (Names{u"Model", u"A-01 Plan"}));
}

TEST_F(SheetDrawingTest, EachSheetOfTheTemplatesThatComeWithTheProgramGivesADrawingWithoutAFinding)
{
    for (const auto& [name, sheets] :
         {std::pair{"ISO sheets.dwt", Names{u"ISO A1", u"ISO A3", u"ISO A1 Four Views"}},
          std::pair{"Imperial sheets.dwt", Names{u"ANSI D", u"ARCH D", u"ARCH D Four Views"}}})
        for (const TvString& sheet : sheets) {
            const TvString from(std::string(KV_TEMPLATES) + "/" + name);
            ASSERT_TRUE(CreateSheetDrawingFromTemplate(house, sheetPath("new.dwg"), u"A-01 Plan",
                                                       from, sheet, handle))
                << sheet.utf8();
            const auto read = drawing();
            EXPECT_EQ(layoutNamesOf(*read), (Names{u"Model", u"A-01 Plan"})) << sheet.utf8();
            EXPECT_EQ(findings(*read), std::vector<std::string>()) << sheet.utf8();
            EXPECT_EQ(read->originalFileVersion(), TvDb::kAc1032) << sheet.utf8();
        }
}

TEST_F(SheetDrawingTest, SheetsOfTheTemplatesThatComeWithTheProgramOpenInItOnTheirLayout)
{
    for (const auto& [name, sheet] :
         {std::pair{"ISO sheets.dwt", u"ISO A3"}, std::pair{"Imperial sheets.dwt", u"ARCH D"}}) {
        const std::string file = std::string("sheets/") + name + ".dwg";
        ASSERT_TRUE(CreateSheetDrawingFromTemplate(house, folder.file(file), u"A-01 Plan",
                                                   TvString(std::string(KV_TEMPLATES) + "/" + name),
                                                   sheet, handle))
            << name;
        const TvApDocument* document = opened(file.c_str());
        ASSERT_TRUE(document) << name;
        EXPECT_FALSE(document->database()->tilemode()) << name;
        DrawingMaker maker(*document->database());
        const TvDbObjectPointer<TvDbLayout> layout(maker.layout(u"A-01 Plan"));
        ASSERT_TRUE(layout) << name;
        EXPECT_EQ(layout->getBlockTableRecordId(), document->database()->paperSpaceId()) << name;
    }
}

TEST_F(SheetDrawingTest, TheChosenLayoutIsTheFirstPaperWhicheverOneItWas)
{
    for (const TvChar* chosen : {u"A1", u"Cover", u"Details", u"A3"}) {
        ASSERT_TRUE(make(u"Sheet", chosen)) << TvString(chosen).utf8();
        const auto read = drawing();
        DrawingMaker maker(*read);
        const TvDbObjectPointer<TvDbLayout> layout(maker.layout(u"Sheet"));
        EXPECT_EQ(layout->getBlockTableRecordId(), read->paperSpaceId());
        EXPECT_EQ(nameOf(read->paperSpaceId()), u"*Paper_Space");
        EXPECT_EQ(TvDbImpDatabase(*read).headerVar()->paperSpace(), read->paperSpaceId());
        EXPECT_TRUE(IsLayoutPopulated(layout.object())) << "what stood on it is still there";
        EXPECT_EQ(findings(*read), std::vector<std::string>{}) << TvString(chosen).utf8();
    }
}

TEST_F(SheetDrawingTest, ALayoutThatWasTheFirstPaperAlreadyKeepsItsBlock)
{
    TvDbDatabase source(false, true);
    ASSERT_EQ(source.readDwgFile(path("house.dwt")), TvStatus::Ok);
    const TvString first =
        TvDbObjectPointer<TvDbLayout>(
            TvDbObjectPointer<TvDbBlockTableRecord>(source.paperSpaceId())->getLayoutId())
            ->getLayoutName();
    const TvString block = source.paperSpaceId().handle().text();
    ASSERT_TRUE(make(u"Sheet", first));
    EXPECT_EQ(drawing()->paperSpaceId().handle().text(), block);
}

TEST_F(SheetDrawingTest, TheDrawingOpensOnItsLayoutEvenIfTheTemplateShowedTheModel)
{
    DrawingMaker maker;
    maker.paper(u"A1");
    EXPECT_EQ(maker.drawing().setTilemode(true), TvStatus::Ok);
    maker.saveAs(path("model.dwt"));
    ASSERT_TRUE(make(u"Sheet", u"A1", "model.dwt"));
    EXPECT_FALSE(drawing()->tilemode());
}

TEST_F(SheetDrawingTest, TheDrawingHasTheCurrentFormatWhateverTheTemplateHad)
{
    DrawingMaker maker;
    maker.paper(u"A1");
    ASSERT_EQ(maker.drawing().saveAs(path("old.dwt"), false, TvDb::kAc1018), TvStatus::Ok);
    ASSERT_TRUE(make(u"Sheet", u"A1", "old.dwt"));
    EXPECT_EQ(drawing()->originalFileVersion(), TvDb::kAc1032);
    EXPECT_EQ(folder.read("sheets/new.dwg").substr(0, 6), "AC1032");
}

TEST_F(SheetDrawingTest, TheDrawingKnowsItsSetAndTheHandleIsThatOfTheSavedLayout)
{
    ASSERT_TRUE(make(u"Sheet", u"a3")); // names of layouts have no case
    const auto read = drawing();
    EXPECT_EQ(DrawingMaker(*read).handleOf(u"Sheet"), handle);
    const core::SheetData data = core::readSheetData(*read);
    EXPECT_EQ(data.texts.handle, handle);
    EXPECT_EQ(data.texts.layoutName, u"Sheet");
    EXPECT_EQ(data.texts.drawingName, sheetPath("new.dwg"));
    EXPECT_EQ(data.texts.sheetSetFile, path("house.dst"));
}

TEST_F(SheetDrawingTest, TheLayoutMayHaveTheNameOfOneThatGoes)
{
    ASSERT_TRUE(make(u"Cover", u"A1"));
    EXPECT_EQ(layoutNamesOf(*drawing()), (Names{u"Model", u"Cover"}));
    ASSERT_TRUE(make(u"a1", u"A1"));
    EXPECT_EQ(layoutNamesOf(*drawing()), (Names{u"Model", u"a1"}));
}

TEST_F(SheetDrawingTest, WhatCannotBeMadeReachesNoDisk)
{
    folder.write("broken.dwt", "no drawing");
    DrawingMaker().paper(u"A1").dropLayouts().saveAs(path("damaged.dwt"));
    EXPECT_FALSE(make(u"Sheet", u"A1", "damaged.dwt"));
    EXPECT_FALSE(make(u"Sheet", u"A9"));
    EXPECT_FALSE(make(u"Sheet", u"Model"));
    EXPECT_FALSE(make(u"Model", u"A1"));
    EXPECT_FALSE(make(u"", u"A1"));
    EXPECT_FALSE(make(u"Sheet", u"A1", "missing.dwt"));
    EXPECT_FALSE(make(u"Sheet", u"A1", "broken.dwt"));
    EXPECT_FALSE(CreateSheetDrawingFromTemplate(nullptr, sheetPath("new.dwg"), u"Sheet",
                                                path("house.dwt"), u"A1", handle));
    EXPECT_FALSE(isThere());
    EXPECT_EQ(handle, u"as before");
}

TEST_F(SheetDrawingTest, AFolderThatIsNotThereIsAFailureWithItsReason)
{
    const auto made = operations::makeSheetDrawing(
        house, {path("nowhere/new.dwg"), u"Sheet", path("house.dwt"), u"A1"});
    ASSERT_FALSE(made);
    EXPECT_EQ(made.status().failure(), base::Failure::Unreachable);
}

TEST_F(SheetDrawingTest, ADrawingThatMustBeNewReplacesNone)
{
    folder.write("sheets/new.dwg", "somebody's");
    operations::SheetDrawing sheet{sheetPath("new.dwg"), u"Sheet", path("house.dwt"), u"A1"};
    sheet.mustBeNew = true;
    const auto made = operations::makeSheetDrawing(house, sheet);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.status().failure(), base::Failure::Exists);
    EXPECT_EQ(folder.read("sheets/new.dwg"), "somebody's");
}

TEST_F(SheetDrawingTest, ATrialDoesAllButTheFile)
{
    const auto made = operations::makeSheetDrawing(
        house, {sheetPath("new.dwg"), u"Sheet", path("house.dwt"), u"A1", true});
    EXPECT_TRUE(made);
    EXPECT_FALSE(isThere());
}

} // namespace
