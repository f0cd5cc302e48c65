// Which layouts of drawings may become sheets, and which belong to a set already.

#include <filesystem>

#include "drawings.h"
#include "import_scene.h"

using operations::LayoutUse;
using operations::LoadedLayouts;

namespace {

using Paths = std::vector<TvString>;
using Lines = std::vector<std::string>;

class ImportLayoutsTest : public ImportScene
{
protected:
    LoadedLayouts load(const Paths& drawings)
    {
        return operations::loadLayouts(drawings, {&manager()});
    }
    /// "Plans.dwg: Level 1 404" for each row.
    Lines rows(const Paths& drawings) { return linesOf(load(drawings)); }
    static Lines linesOf(const LoadedLayouts& loaded)
    {
        Lines lines;
        for (const operations::LayoutRow& row : loaded.rows)
            lines.push_back(base::PathRules::native().fileNameOf(row.drawing).utf8() + ": " +
                            row.layout.utf8() + " " + std::to_string(static_cast<int>(row.use)));
        return lines;
    }
    std::size_t countOpen() { return itemsOf(manager().getDatabaseEnumerator()).size(); }
};

} // namespace

TEST_F(ImportLayoutsTest, AreThoseOnWhichSomethingStandsAndNeverTheModel)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1", u"Level 2"});
    EXPECT_EQ(rows({plans}), (Lines{"Plans.dwg: Level 1 404", "Plans.dwg: Level 2 404"}));
}

TEST_F(ImportLayoutsTest, ComeInTheOrderOfTheDrawings)
{
    const TvString b = drawing("b.dwg", {u"B"});
    const TvString a = drawing("a.dwg", {u"A"});
    EXPECT_EQ(rows({b, a}), (Lines{"b.dwg: B 404", "a.dwg: A 404"}));
}

TEST_F(ImportLayoutsTest, OfADrawingWithEmptyPaperAloneAreNone)
{
    const TvString empty = drawing("empty.dwg", {});
    const LoadedLayouts loaded = load({empty});
    EXPECT_TRUE(loaded.rows.empty());
    EXPECT_EQ(loaded.withoutLayouts, Paths{empty});
    EXPECT_TRUE(loaded.unreadable.empty());
}

TEST_F(ImportLayoutsTest, OfAnUnreadableDrawingAreNoneAndThoseOfTheOthersAreThere)
{
    folder.write("broken.dwg", "AC1032 and nothing that makes sense");
    const TvString plans = drawing("Plans.dwg", {u"Level 1"});
    const LoadedLayouts loaded = load({path("missing.dwg"), path("broken.dwg"), plans});
    ASSERT_EQ(loaded.unreadable.size(), 2u);
    EXPECT_EQ(loaded.unreadable[0].drawing, path("missing.dwg"));
    EXPECT_EQ(loaded.unreadable[0].status.failure(), base::Failure::NotFound);
    EXPECT_EQ(loaded.unreadable[1].drawing, path("broken.dwg"));
    EXPECT_FALSE(loaded.unreadable[1].status);
    EXPECT_EQ(linesOf(loaded), Lines{"Plans.dwg: Level 1 404"});
}

TEST_F(ImportLayoutsTest, OfADrawingThatLostTheListOfThemAreNoneAndItCountsAsUnreadable)
{
    const TvString damaged = path("damaged.dwg");
    DrawingMaker().paper(u"A1").dropLayouts().saveAs(damaged);
    for (const auto order : {operations::LayoutOrder::Dictionary, operations::LayoutOrder::Tabs}) {
        const LoadedLayouts loaded = operations::loadLayouts(Paths{damaged}, {&manager()}, order);
        EXPECT_TRUE(loaded.rows.empty());
        EXPECT_TRUE(loaded.withoutLayouts.empty());
        ASSERT_EQ(loaded.unreadable.size(), 1u);
        EXPECT_EQ(loaded.unreadable[0].drawing, damaged);
        EXPECT_EQ(loaded.unreadable[0].status.reason(), base::Reason::DwgObjectMissing);
    }
}

TEST_F(ImportLayoutsTest, WithoutAManagerAreNone)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1"});
    const LoadedLayouts loaded = operations::loadLayouts(Paths{plans}, {});
    EXPECT_TRUE(loaded.rows.empty());
    EXPECT_TRUE(loaded.withoutLayouts.empty());
}

TEST_F(ImportLayoutsTest, AreInUseWhenASheetOfAnOpenSetLeadsThereAtAnyDepth)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1", u"Level 2"});
    change(house, [&](TvSmSheetSet&) {
        TvSmSheet* sheet = addSheet(addSubset(ground, u"Deep"), u"", u"Plan");
        setLayout(sheet, plans, handle(plans, u"Level 2"), u"another name");
    });
    EXPECT_EQ(rows({plans}), (Lines{"Plans.dwg: Level 1 404", "Plans.dwg: Level 2 406"}));
}

TEST_F(ImportLayoutsTest, OfADrawingThatNamesASetAreInUseWhereAnOpenSetHasThem)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1"}, path("nowhere.dst"));
    use(house, plans, u"Level 1");
    EXPECT_EQ(rows({plans}), Lines{"Plans.dwg: Level 1 406"});
}

TEST_F(ImportLayoutsTest, AreInUseWhenTheSetThatTheDrawingNamesHasThem)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1", u"Level 2"}, path("named.dst"));
    closedSet("named.dst", plans, {u"Level 1"});
    const std::size_t before = countOpen();
    EXPECT_EQ(rows({plans}), (Lines{"Plans.dwg: Level 1 406", "Plans.dwg: Level 2 405"}));
    EXPECT_EQ(countOpen(), before) << "the set was opened for the look alone";
}

TEST_F(ImportLayoutsTest, OfADrawingThatNamesNoSetAreFreeThoughAClosedSetHasThem)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1"});
    closedSet("other.dst", plans, {u"Level 1"});
    EXPECT_EQ(rows({plans}), Lines{"Plans.dwg: Level 1 404"});
}

TEST_F(ImportLayoutsTest, AreJudgedByTheOpenSetsAloneWhenTheNamedSetCannotBeOpened)
{
    folder.write("broken.dst", "no set at all");
    const TvString a = drawing("a.dwg", {u"A"}, path("gone.dst"));
    const TvString b = drawing("b.dwg", {u"B"}, path("broken.dst"));
    EXPECT_EQ(rows({a, b}), (Lines{"a.dwg: A 405", "b.dwg: B 405"}));
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportLayoutsTest, OfANamedSetThatIsOpenAndLockedLeaveItsPointersAndItsLockAlive)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1", u"Level 2"}, path("house.dst"));
    const TvSmSheet* sheet = use(house, plans, u"Level 1");
    ASSERT_TRUE(house->lockDb(house));
    ground->setName(u"Changed");
    EXPECT_EQ(rows({plans}), (Lines{"Plans.dwg: Level 1 406", "Plans.dwg: Level 2 405"}));
    EXPECT_EQ(house->getLockStatus(), 1);
    EXPECT_EQ(manager().findOpenDatabase(path("house.dst")), house);
    EXPECT_EQ(ground->getName(), u"Changed");
    EXPECT_EQ(sheet->database(), house);
    EXPECT_TRUE(house->unlockDb(house, true));
}

TEST_F(ImportLayoutsTest, OfADrawingThatWasMovedAreFree)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1"});
    use(house, plans, u"Level 1");
    std::filesystem::create_directory(folder.path() / "moved");
    std::filesystem::rename(folder.path() / "Plans.dwg", folder.path() / "moved/Plans.dwg");
    EXPECT_EQ(rows({path("moved/Plans.dwg")}), Lines{"Plans.dwg: Level 1 404"});
}

TEST_F(ImportLayoutsTest, AreFoundByThePathAsItResolvesNow)
{
    std::filesystem::create_directory(folder.path() / "sub");
    const TvString plans = drawing("sub/Plans.dwg", {u"Level 1"});
    change(house, [&](TvSmSheetSet&) {
        setLayout(cover, u"sub\\Plans.dwg", handle(plans, u"Level 1"), u"Level 1");
    });
    EXPECT_EQ(rows({plans}), Lines{"Plans.dwg: Level 1 406"});
}

TEST_F(ImportLayoutsTest, OfFilesWhoseNamesDifferByCaseAreTheirOwn)
{
    const TvString lower = drawing("plans.dwg", {u"Level 1"});
    const TvString upper = path("PLANS.dwg");
    use(house, lower, u"Level 1");
    EXPECT_EQ(rows({lower}), Lines{"plans.dwg: Level 1 406"});
    if (std::filesystem::exists(base::nativePath(upper)))
        GTEST_SKIP() << "here they are one file";
    std::filesystem::copy(folder.path() / "plans.dwg", folder.path() / "PLANS.dwg");
    EXPECT_EQ(rows({upper}), Lines{"PLANS.dwg: Level 1 404"});
}

TEST_F(ImportLayoutsTest, OfOneFileWithTwoNamesThatDifferByCaseAreInUseUnderBoth)
{
    const TvString lower = drawing("plans.dwg", {u"Level 1"});
    use(house, lower, u"Level 1");
    if (!std::filesystem::exists(folder.path() / "PLANS.dwg"))
        std::filesystem::create_hard_link(folder.path() / "plans.dwg", folder.path() / "PLANS.dwg");
    EXPECT_EQ(rows({path("PLANS.dwg")}), Lines{"PLANS.dwg: Level 1 406"});
}

TEST_F(ImportLayoutsTest, InTheOrderOfTabsStandAsTheDrawingShowsThem)
{
    DrawingMaker maker;
    maker.paper(u"Zebra").paper(u"Ape");
    maker.saveAs(path("tabs.dwg"));
    const Paths drawings{path("tabs.dwg")};
    const auto tabs =
        operations::loadLayouts(drawings, {&manager()}, operations::LayoutOrder::Tabs);
    EXPECT_EQ(linesOf(tabs), (Lines{"tabs.dwg: Zebra 404", "tabs.dwg: Ape 404"}));
    EXPECT_EQ(rows(drawings), (Lines{"tabs.dwg: Ape 404", "tabs.dwg: Zebra 404"}));
}

TEST_F(ImportLayoutsTest, AreAnnouncedDrawingByDrawing)
{
    const Paths drawings{drawing("a.dwg", {u"A"}), path("gone.dwg"), drawing("b.dwg", {u"B"})};
    int announced = 0;
    operations::loadLayouts(drawings, {&manager()}, operations::LayoutOrder::Dictionary,
                            [&] { ++announced; });
    EXPECT_EQ(announced, 3);
}

TEST_F(ImportLayoutsTest, OfASetBesidesCountAsThoseOfAnOpenOne)
{
    const TvString plans = drawing("Plans.dwg", {u"Level 1"});
    closedSet("other.dst", plans, {u"Level 1"});
    TvSmDatabase copy;
    ASSERT_TRUE(copy.load(path("other.dst")));
    const LoadedLayouts loaded = operations::loadLayouts(Paths{plans}, {&manager(), &copy});
    EXPECT_EQ(linesOf(loaded), Lines{"Plans.dwg: Level 1 406"});
}

TEST_F(ImportLayoutsTest, OfRealDrawingsAreThoseThatHoldEntities)
{
    const auto drawings = realDrawings("");
    if (drawings.empty())
        GTEST_SKIP() << "no drawings in " << drawingsFolder();
    for (const auto& [name, facts] : drawings) {
        const TvString real = base::pathFromNative((drawingsFolder() / name).string());
        std::set<std::string> expected, found;
        for (const auto& layout : facts["layouts"])
            if (layout["name"] != "Model" && layout["entities"] > 0)
                expected.insert(layout["name"].get<std::string>());
        const LoadedLayouts loaded = load({real});
        EXPECT_TRUE(loaded.unreadable.empty()) << name;
        for (const operations::LayoutRow& row : loaded.rows) {
            found.insert(row.layout.utf8());
            EXPECT_EQ(row.use, LayoutUse::Free) << name;
        }
        EXPECT_EQ(found, expected) << name;
        EXPECT_EQ(loaded.withoutLayouts.empty(), !expected.empty()) << name;
        if (expected.empty())
            continue;
        use(house, real, loaded.rows.front().layout);
        EXPECT_EQ(load({real}).rows.front().use, LayoutUse::InUse) << name;
    }
}
