// Sheets from the drawings of a folder.

#include <filesystem>

#include <operations/import_folder.h>

#include "import_scene.h"

using operations::DrawingFolder;

namespace {

using Paths = std::vector<TvString>;
using Lines = std::vector<std::string>;

class ImportFolderTest : public ImportScene
{
protected:
    void SetUp() override
    {
        ImportScene::SetUp();
        top = folder.path() / "plans";
        std::filesystem::create_directories(top);
    }
    std::string in(const char* name) const { return std::string("plans/") + name; }
    void draw(const char* name, const std::vector<TvString>& layouts)
    {
        const std::string path = in(name);
        std::filesystem::create_directories((folder.path() / path).parent_path());
        drawing(path.c_str(), layouts);
    }
    DrawingFolder found() { return operations::findDrawings(folder.file("plans")); }
    /// "Ground: 1 - a - A" for each sheet, in tree order.
    Lines made(const operations::FolderImport& how)
    {
        const DrawingFolder drawings = found();
        const auto loaded = operations::loadLayouts(operations::drawingsOf(drawings), {&manager()},
                                                    operations::LayoutOrder::Tabs);
        TvSmDatabase* set = manager().createDatabase(folder.file("new.dst"), u"", true);
        last = makeSheetsOfFolder(*set->getSheetSet(), drawings, loaded.rows, how);
        std::vector<TvSmSheet*> sheets;
        KvDbUtil::GetAllSheetsInTheSubSet(set->getSheetSet(), sheets);
        Lines lines;
        for (const TvSmSheet* sheet : sheets) {
            std::string place;
            for (const auto* at = tvrxCast<TvSmSubset>(sheet->getOwner());
                 at && at != set->getSheetSet(); at = tvrxCast<TvSmSubset>(at->getOwner()))
                place = at->getName().utf8() + "/" + place;
            lines.push_back(place + sheet->getNumber().utf8() + " " + sheet->getName().utf8());
        }
        return lines;
    }

    std::filesystem::path top;
    operations::FolderSheets last;
};

} // namespace

TEST_F(ImportFolderTest, DrawingsComeInNaturalOrderAndBeforeThoseOfTheFoldersBelow)
{
    for (const char* name : {"a10.dwg", "a9.DWG", "b/z.dwg", "a/y.dwg", "a/deep/x.dwg"}) {
        std::filesystem::create_directories((top / name).parent_path());
        folder.write(in(name), "");
    }
    folder.write(in("notes.txt"), "");
    folder.write(in(".hidden.dwg"), "");
    Paths expected;
    for (const char* name : {"a9.DWG", "a10.dwg", "a/y.dwg", "a/deep/x.dwg", "b/z.dwg"})
        expected.push_back(folder.file(in(name)));
    EXPECT_EQ(operations::drawingsOf(found()), expected);
}

TEST_F(ImportFolderTest, LinksToFoldersAreNotFollowed)
{
    folder.write(in("a.dwg"), "");
    std::filesystem::create_directory_symlink(top, top / "again");
    std::filesystem::create_directory_symlink("..", top / "above");
    EXPECT_EQ(operations::drawingsOf(found()), Paths{folder.file(in("a.dwg"))});
}

TEST_F(ImportFolderTest, AFolderThatIsNotThereHoldsNothing)
{
    EXPECT_TRUE(operations::drawingsOf(operations::findDrawings(folder.file("gone"))).empty());
}

TEST_F(ImportFolderTest, TwoDrawingsOfTwoLayoutsGiveFourSheetsNumberedAsTheyAreMade)
{
    draw("b.dwg", {u"2", u"1"});
    draw("a.dwg", {u"A", u"B"});
    EXPECT_EQ(made({}), (Lines{"1 a - A", "2 a - B", "3 b - 2", "4 b - 1"}));
    EXPECT_EQ(last.sheets.size(), 4u);
    EXPECT_EQ(last.subsets, 0);
    const TvSmTvDbLayoutReference* reference = last.sheets[0]->getLayoutReference();
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->getFileName(), folder.file(in("a.dwg")));
    EXPECT_EQ(reference->getHandle(), handle(folder.file(in("a.dwg")), u"A"));
}

TEST_F(ImportFolderTest, WithoutThePrefixSheetsAreNamedAsTheirLayouts)
{
    draw("a.dwg", {u"A"});
    EXPECT_EQ(made({false, false}), Lines{"1 A"});
}

TEST_F(ImportFolderTest, FoldersWithSheetsBecomeSubsetsAndNumbersRunOn)
{
    draw("cover.dwg", {u"C"});
    draw("1 Ground/a.dwg", {u"A"});
    draw("1 Ground/Details/d.dwg", {u"D"});
    draw("2 Roof/empty.dwg", {});
    draw("3 Site/below/s.dwg", {u"S"});
    EXPECT_EQ(made({true, true}), (Lines{"1 cover - C", "1 Ground/2 a - A",
                                         "1 Ground/Details/3 d - D", "3 Site/below/4 s - S"}));
    EXPECT_EQ(last.subsets, 4);
}

TEST_F(ImportFolderTest, WithoutSubsetsAllSheetsStandInTheSetItself)
{
    draw("1 Ground/a.dwg", {u"A"});
    draw("cover.dwg", {u"C"});
    EXPECT_EQ(made({}), (Lines{"1 cover - C", "2 a - A"}));
}

TEST_F(ImportFolderTest, DamagedDrawingsAndLayoutsInUseAreLeftOut)
{
    draw("a.dwg", {u"A", u"B"});
    draw("z.dwg", {u"Z"});
    folder.write(in("broken.dwg"), "AC1032, no more");
    use(house, folder.file(in("a.dwg")), u"A");
    EXPECT_EQ(made({}), (Lines{"1 a - B", "2 z - Z"}));
}

TEST_F(ImportFolderTest, SheetsOfFoldersNestedTooDeepForASetGoIntoTheSubsetAbove)
{
    std::string deep;
    for (int level = 0; level < TvSmSubset::kMaxDepth + 5; ++level)
        deep += "d/";
    draw((deep + "a.dwg").c_str(), {u"A"});
    EXPECT_EQ(made({true, true}).size(), 1u);
    EXPECT_LE(last.subsets, TvSmSubset::kMaxDepth);
    EXPECT_GT(last.subsets, TvSmSubset::kMaxDepth - 5);
}
