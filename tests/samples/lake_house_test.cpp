// The sample project: drawn anew it is what lies there, and it shows what such a project can hold.

#include <sample_maker/lake_house.h>

#include <filesystem>
#include <fstream>

#include <db/drawing_audit.h>
#include <db/tv_db_annotations.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>
#include <db/tv_db_viewport.h>
#include <dwg/dwg_codec.h>
#include <gtest/gtest.h>
#include <sm/publishing.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "temp_folder.h"

namespace {

constexpr const char* kDrawings[] = {"drawings/site.dwg",     "drawings/surroundings.dwg",
                                     "drawings/plans.dwg",    "drawings/elevations.dwg",
                                     "drawings/sections.dwg", "drawings/details.dwg"};

std::filesystem::path shipped(const std::string& name)
{
    return std::filesystem::path(KV_LAKE_HOUSE) / name;
}

std::string bytesOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class LakeHouse : public testing::Test
{
protected:
    void SetUp() override { dwg::install(); }
    static std::unique_ptr<TvDbDatabase> open(const std::string& name)
    {
        auto drawing = std::make_unique<TvDbDatabase>(false, true);
        EXPECT_EQ(drawing->readDwgFile(TvString(shipped(name).string())), TvStatus::Ok) << name;
        return drawing;
    }
    template <class T>
    static int count(TvDbDatabase& drawing)
    {
        int found = 0;
        for (const TvDbObjectId id : drawing.objectIds())
            if (const TvDbObjectPointer<T> object(id); object)
                ++found;
        return found;
    }
};

} // namespace

TEST_F(LakeHouse, IsTheSameWhenItIsMadeAnew)
{
    const TempFolder folder;
    samples::makeLakeHouse(TvString(folder.path().string()));
    std::set<std::string> made;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
        if (entry.is_regular_file())
            made.insert(std::filesystem::relative(entry.path(), folder.path()).string());
    std::set<std::string> expected(std::begin(kDrawings), std::end(kDrawings));
    expected.insert("lake-house.dst");
    EXPECT_EQ(made, expected);
    for (const std::string& name : expected)
        EXPECT_TRUE(bytesOf(folder.path() / name) == bytesOf(shipped(name)))
            << name << ": run scripts/make-samples";
}

TEST_F(LakeHouse, IsSmall)
{
    std::uintmax_t bytes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KV_LAKE_HOUSE))
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    EXPECT_LT(bytes, 1'000'000u);
}

TEST_F(LakeHouse, HasDrawingsOfTwoVersionsWithoutFaults)
{
    std::set<int> versions;
    for (const char* name : kDrawings) {
        const auto drawing = open(name);
        versions.insert(drawing->originalFileVersion());
        EXPECT_TRUE(db::auditDrawing(*drawing).empty()) << name;
    }
    EXPECT_EQ(versions, (std::set<int>{TvDb::kAc1015, TvDb::kAc1032}));
}

TEST_F(LakeHouse, ShowsWhatDrawingsHold)
{
    const auto plans = open("drawings/plans.dwg"), site = open("drawings/site.dwg");
    EXPECT_GT(count<TvDbRotatedDimension>(*plans), 20);
    EXPECT_GT(count<TvDbHatch>(*plans), 20);
    EXPECT_GT(count<TvDbAttribute>(*plans), 30);
    EXPECT_EQ(count<TvDbViewport>(*plans), 3 + 4) << "one for each sheet, and windows";
    const TvDbObjectPointer<TvDbBlockTable> blocks(site->symbolTableId(TvDb::SymbolTable::Block));
    TvDbObjectId id;
    ASSERT_EQ(blocks->getIdAt(u"surroundings", id), TvStatus::Ok);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(id)->xrefStatus(), TvDb::kXrfResolved);
}

TEST_F(LakeHouse, HasThirteenSheetsOneOfWhichHasNoDrawing)
{
    TvSmSheetSetMgr manager;
    TvSmDatabase* database =
        manager.openDatabase(TvString(shipped("lake-house.dst").string()), false, 0);
    ASSERT_NE(database, nullptr);
    std::vector<TvSmSheet*> sheets;
    CollectPublishableSheets(database->getSheetSet(), sheets, true);
    EXPECT_EQ(sheets.size(), 13u);
    std::vector<std::string> missing;
    std::set<TvString> drawings;
    for (const TvSmSheet* sheet : sheets) {
        const TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
        drawings.insert(layout->getFileName());
        const TvString path = layout->resolveFileName();
        if (path.isEmpty())
            missing.push_back(sheet->getNumber().utf8());
        else
            EXPECT_FALSE(layout->getHandle().isEmpty()) << sheet->getNumber().utf8();
    }
    EXPECT_EQ(missing, std::vector<std::string>{"S-101"});
    EXPECT_EQ(drawings.size(), 6u);
    manager.closeDatabase(database);
}
