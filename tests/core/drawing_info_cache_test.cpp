// Facts of drawings, read once.

#include <core/drawing_info_cache.h>

#include <base/kv_file_system.h>
#include <core/read_drawing_file.h>
#include <core/sheet_data.h>
#include <db/file_open_info_tip_manager.h>

#include "document_scene.h"

namespace {

class DrawingInfoTest : public DocumentTest
{
protected:
    void plan(const char* name)
    {
        DrawingMaker maker;
        maker.paper(u"A1").paperSize(u"A1", 420, 297, 1);
        maker.picture(u"A1").picture(u"Layout1").savedBy(u"N. N.");
        layoutHandle = maker.handleOf(u"A1");
        emptyHandle = maker.handleOf(u"Layout1");
        maker.saveAs(folder.file(name));
    }
    /// Null when there is nothing to be had.
    const DrawingInfo* get(const char* name)
    {
        const DrawingInfo* info = nullptr;
        return cache.Get(folder.file(name), info) ? info : nullptr;
    }
    std::vector<TvString> layoutsOf(const DrawingInfo& info)
    {
        std::vector<TvString> names;
        for (const auto& [handle, layout] : info.layouts)
            names.push_back(layout.name);
        return names;
    }

    DrawingInfoCache cache;
    TvString layoutHandle, emptyHandle;
};

TEST_F(DrawingInfoTest, HasTheLayoutsOnWhichSomethingStands)
{
    plan("a.dwg");
    const DrawingInfo* info = get("a.dwg");
    ASSERT_TRUE(info);
    EXPECT_EQ(layoutsOf(*info), std::vector<TvString>{u"A1"});
    EXPECT_EQ(info->GetPaperSize(layoutHandle), u"420.0 x 297.0");
    EXPECT_EQ(info->GetLastSavedBy(), u"N. N.");
    EXPECT_EQ(info->path, folder.file("a.dwg"));
    EXPECT_EQ(info->modificationTime, KvFileSystem::getModificationTime(folder.file("a.dwg")));
    EXPECT_FALSE(info->hasSheetSetData);
}

TEST_F(DrawingInfoTest, ALayoutWithoutEntitiesHasNoPictureThoughTheDrawingKeepsOne)
{
    plan("a.dwg");
    const DrawingInfo* info = get("a.dwg");
    ASSERT_TRUE(info);
    ASSERT_TRUE(info->GetThumbnail(layoutHandle));
    EXPECT_EQ(info->GetThumbnail(layoutHandle)->bytes.size(), 7u);
    EXPECT_FALSE(info->GetThumbnail(emptyHandle));
}

TEST_F(DrawingInfoTest, OfAnUnknownHandleIsEmpty)
{
    plan("a.dwg");
    const DrawingInfo* info = get("a.dwg");
    ASSERT_TRUE(info);
    for (const TvString& handle : {TvString(u"FFFF"), TvString(), TvString(u"no handle")}) {
        EXPECT_EQ(info->GetPaperSize(handle), u"");
        EXPECT_FALSE(info->GetThumbnail(handle));
    }
}

TEST_F(DrawingInfoTest, PaperIsInInchesWhereTheLayoutIs)
{
    DrawingMaker maker;
    maker.paper(u"Inch").paperSize(u"Inch", 254, 127, 0);
    maker.paper(u"Pixel").paperSize(u"Pixel", 640, 480, 2);
    maker.paper(u"None").paperSize(u"None", 0, 0, 1);
    maker.saveAs(folder.file("a.dwg"));
    const DrawingInfo* info = get("a.dwg");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->GetPaperSize(maker.handleOf(u"Inch")), u"10.0 x 5.0");
    EXPECT_EQ(info->GetPaperSize(maker.handleOf(u"Pixel")), u"640.0 x 480.0");
    EXPECT_EQ(info->GetPaperSize(maker.handleOf(u"None")), u"");
}

TEST_F(DrawingInfoTest, NotesThatTheDrawingNamesASheetSet)
{
    DrawingMaker maker;
    WriteSheetData(&maker.drawing(), {u"1E", u"A1", u"/a.dwg", u"/house.dst"});
    maker.saveAs(folder.file("a.dwg"));
    ASSERT_TRUE(get("a.dwg"));
    EXPECT_TRUE(get("a.dwg")->hasSheetSetData);
}

TEST_F(DrawingInfoTest, AFileIsReadOnceAndAgainWhenItsTimeChanges)
{
    plan("a.dwg");
    const DrawingInfo* first = get("a.dwg");
    ASSERT_TRUE(first);
    EXPECT_EQ(get("a.dwg"), first) << "the same record";
    DrawingMaker().paper(u"B").saveAs(folder.file("b.dwg"));
    namespace fs = std::filesystem;
    const auto time = fs::last_write_time(folder.path() / "a.dwg");
    fs::rename(folder.path() / "b.dwg", folder.path() / "a.dwg");
    fs::last_write_time(folder.path() / "a.dwg", time + std::chrono::seconds(5));
    ASSERT_TRUE(get("a.dwg"));
    EXPECT_EQ(layoutsOf(*get("a.dwg")), std::vector<TvString>{u"B"});
}

TEST_F(DrawingInfoTest, AFileOfTheSameTimeIsReadAgainWhenItsSizeChanges)
{
    plan("a.dwg");
    ASSERT_TRUE(get("a.dwg"));
    namespace fs = std::filesystem;
    const auto time = fs::last_write_time(folder.path() / "a.dwg");
    DrawingMaker().paper(u"B").paper(u"C").saveAs(folder.file("b.dwg"));
    ASSERT_NE(fs::file_size(folder.path() / "a.dwg"), fs::file_size(folder.path() / "b.dwg"));
    fs::rename(folder.path() / "b.dwg", folder.path() / "a.dwg");
    fs::last_write_time(folder.path() / "a.dwg", time);
    ASSERT_TRUE(get("a.dwg"));
    EXPECT_EQ(layoutsOf(*get("a.dwg")).size(), 2u);
}

TEST_F(DrawingInfoTest, WhatCannotBeReadIsForgotten)
{
    EXPECT_FALSE(get("none.dwg"));
    plan("a.dwg");
    ASSERT_TRUE(get("a.dwg"));
    folder.write("a.dwg", "no drawing any more");
    EXPECT_FALSE(get("a.dwg"));
    std::filesystem::remove(folder.path() / "a.dwg");
    EXPECT_FALSE(get("a.dwg"));
    const DrawingInfo* untouched = nullptr;
    EXPECT_FALSE(cache.Get(u"", untouched));
    EXPECT_FALSE(untouched);
}

TEST_F(DrawingInfoTest, AnOpenDrawingIsAnsweredFromItsDocumentAsItIsNow)
{
    plan("a.dwg");
    TvApDocument* document = opened("a.dwg");
    ASSERT_TRUE(document);
    EXPECT_TRUE(get("a.dwg")->isOfDocument);
    DrawingMaker(*document->database()).paper(u"Unsaved");
    EXPECT_EQ(layoutsOf(*get("a.dwg")).size(), 2u);
    EXPECT_EQ(documents().closeDocument(document), TvStatus::Ok);
    EXPECT_EQ(layoutsOf(*get("a.dwg")).size(), 1u) << "it was not saved";
}

TEST_F(DrawingInfoTest, ADrawingThatSomebodyIsWritingIsReadAllTheSame)
{
    plan("a.dwg");
    TvDbDatabase other(false, true);
    ASSERT_TRUE(db::beginUse(other, folder.file("a.dwg")));
    TvDbDatabase scratch(false, true);
    EXPECT_EQ(scratch.readDwgFile(folder.file("a.dwg"), TvDb::kShareNoWrite), TvStatus::FileInUse);
    EXPECT_TRUE(get("a.dwg"));
    db::endUse(other);
}

TEST_F(DrawingInfoTest, AScratchDatabaseThatIsNoneIsRefused)
{
    EXPECT_EQ(ReadDrawingFile(nullptr, folder.file("a.dwg")), TvStatus::NoDatabase);
    TvDbDatabase scratch(false, true);
    EXPECT_EQ(ReadDrawingFile(&scratch, folder.file("none.dwg")), TvStatus::FileNotFound);
}

TEST_F(DrawingInfoTest, TheOneOfTheProcessIsMadeAtItsFirstUseAndFreed)
{
    plan("a.dwg");
    const DrawingInfo* info = nullptr;
    EXPECT_TRUE(core::drawingInfoCache().Get(folder.file("a.dwg"), info));
    EXPECT_EQ(&core::drawingInfoCache(), &core::drawingInfoCache());
    core::freeDrawingInfoCache();
    core::freeDrawingInfoCache();
    EXPECT_TRUE(core::drawingInfoCache().Get(folder.file("a.dwg"), info));
}

} // namespace
