// The list of layouts, without its window: ticks, order, what OK does.

#include <core/settings.h>
#include <operations/import_layout_list.h>
#include <operations/import_sheets.h>
#include <resources/texts.h>

#include "import_scene.h"

using operations::ImportLayoutList;
using operations::ImportSettings;
using operations::SortDirections;

namespace {

using Paths = std::vector<TvString>;
using Lines = std::vector<std::string>;
using Numbers = std::vector<int>;

class ImportListTest : public ImportScene
{
protected:
    void SetUp() override
    {
        ImportScene::SetUp();
        plans = drawing("Plans.dwg", {u"Level 1", u"Level 2"});
        ASSERT_TRUE(house->lockDb(house));
    }
    void TearDown() override
    {
        if (house->getLockStatus() == 1)
            house->unlockDb(house, false);
        ImportScene::TearDown();
    }
    /// "Level 1 x" where it is ticked.
    static Lines shown(const ImportLayoutList& list)
    {
        Lines lines;
        for (const operations::LayoutRow& row : list.rows())
            lines.push_back(row.layout.utf8() + (row.isTicked ? " x" : ""));
        return lines;
    }
    static Lines namesOf(const std::vector<TvSmSheet*>& sheets)
    {
        Lines names;
        for (const TvSmSheet* sheet : sheets)
            names.push_back(sheet->getName().utf8());
        return names;
    }
    /// Lets the cover lead to a layout, as a part of the change that runs.
    void use(const TvString& layout) { setLayout(cover, plans, handle(plans, layout), layout); }

    TvString plans;
    std::vector<TvSmSheet*> made;
};

} // namespace

TEST_F(ImportListTest, BeginsEmptyAndTicksWhatMayBeImported)
{
    use(u"Level 2");
    ImportLayoutList list(ground);
    EXPECT_TRUE(list.rows().empty());
    list.load(Paths{plans});
    EXPECT_EQ(shown(list), (Lines{"Level 1 x", "Level 2"}));
    EXPECT_EQ(list.textAt(1, 0), u"Plans.dwg");
    EXPECT_EQ(list.textAt(1, 1), u"Level 2");
    EXPECT_EQ(list.textAt(0, 2), TvString(text::find(404)));
    EXPECT_EQ(list.textAt(1, 2), TvString(text::find(406)));
    EXPECT_TRUE(list.textAt(2, 0).isEmpty());
    EXPECT_TRUE(list.textAt(0, 3).isEmpty());
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportListTest, ASecondChoiceOfFilesReplacesTheFirst)
{
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    list.load(Paths{drawing("Roof.dwg", {u"Roof"})});
    EXPECT_EQ(shown(list), Lines{"Roof x"});
}

TEST_F(ImportListTest, SaysWhichDrawingsCannotBeReadAndThenWhichAreEmpty)
{
    const TvString first = drawing("first.dwg", {});
    folder.write("broken.dwg", "nothing");
    const TvString second = drawing("second.dwg", {});
    ImportLayoutList list(ground);
    list.load(Paths{first, path("broken.dwg"), plans, second, path("missing.dwg")});
    EXPECT_EQ(shown(list), (Lines{"Level 1 x", "Level 2 x"})) << "the others are listed";
    EXPECT_EQ(messages.numbers(), (Numbers{409, 409, 411}));
    EXPECT_EQ(messages.asked[0].caption, 408);
    EXPECT_EQ(messages.asked[0].arguments, Paths{TvString(u"\n\t") + path("broken.dwg")});
    EXPECT_EQ(messages.asked[1].arguments, Paths{TvString(u"\n\t") + path("missing.dwg")});
    EXPECT_EQ(messages.asked[2].caption, 410);
    EXPECT_EQ(messages.asked[2].icon, TvUserMessages::Icon::Warning);
    EXPECT_EQ(messages.asked[2].arguments, Paths{TvString(u"\n\t") + first + u"\n\t" + second});
}

TEST_F(ImportListTest, AFileWithEmptyPaperAloneGivesNoRowAndIsNamedAtTheEnd)
{
    const TvString empty = drawing("empty.dwg", {});
    ImportLayoutList list(ground);
    list.load(Paths{empty});
    EXPECT_TRUE(list.rows().empty());
    EXPECT_EQ(messages.numbers(), Numbers{411});
    EXPECT_EQ(messages.asked[0].arguments, Paths{TvString(u"\n\t") + empty});
}

TEST_F(ImportListTest, NamesThatAreAskedForAreTickedAloneByTheirExactLetters)
{
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    list.tickOnly(Paths{u"Level 2"});
    EXPECT_EQ(shown(list), (Lines{"Level 1", "Level 2 x"}));
    EXPECT_TRUE(messages.asked.empty());
    list.tickOnly(Paths{u"level 2", u"Level 1", u"Level 9"});
    EXPECT_EQ(shown(list), (Lines{"Level 1 x", "Level 2"}));
    EXPECT_EQ(messages.numbers(), Numbers{413}) << "once, however many are missing";
    EXPECT_EQ(messages.asked[0].caption, 412);
    list.tickOnly({});
    EXPECT_EQ(shown(list), (Lines{"Level 1 x", "Level 2"}));
}

TEST_F(ImportListTest, SheetsAreNamedAfterTheirDrawingsOnDemand)
{
    for (const bool withPrefix : {true, false}) {
        ImportLayoutList list(ground);
        list.load(Paths{plans});
        made.clear();
        EXPECT_TRUE(list.accept(withPrefix, made));
        EXPECT_EQ(namesOf(made), withPrefix ? (Lines{"Plans - Level 1", "Plans - Level 2"})
                                            : (Lines{"Level 1", "Level 2"}));
        EXPECT_TRUE(list.rows().empty());
    }
}

TEST_F(ImportListTest, ASheetLeadsToItsLayoutHasNoNumberAndNoPlaceYet)
{
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    const std::string before = folder.read("Plans.dwg");
    ASSERT_TRUE(list.accept(true, made));
    ASSERT_EQ(made.size(), 2u);
    const TvSmTvDbLayoutReference* reference = made[1]->getLayoutReference();
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->getFileName(), plans);
    EXPECT_EQ(reference->getName(), u"Level 2");
    EXPECT_EQ(reference->getHandle(), handle(plans, u"Level 2"));
    EXPECT_TRUE(made[1]->getNumber().isEmpty());
    EXPECT_TRUE(made[1]->getDesc().isEmpty());
    EXPECT_EQ(made[1]->getTitle(), u"Plans - Level 2");
    EXPECT_EQ(childrenOf(ground), Paths{u"Cover"});
    EXPECT_EQ(folder.read("Plans.dwg"), before) << "the drawing is not written";
}

TEST_F(ImportListTest, ATickOnALayoutInUseCountsAndCreatesNothing)
{
    use(u"Level 2");
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    list.setTicked(0, false);
    list.setTicked(1, true);
    EXPECT_TRUE(list.accept(true, made));
    EXPECT_TRUE(made.empty());
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportListTest, WithoutATickItSaysSoAndTicksAllThatMayBeImportedAgain)
{
    use(u"Level 2");
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    list.setTicked(0, false);
    EXPECT_FALSE(list.accept(true, made));
    EXPECT_TRUE(made.empty());
    EXPECT_EQ(messages.numbers(), Numbers{403});
    EXPECT_EQ(messages.asked[0].caption, 0);
    EXPECT_EQ(messages.asked[0].icon, TvUserMessages::Icon::Warning);
    EXPECT_EQ(shown(list), (Lines{"Level 1 x", "Level 2"}));
}

TEST_F(ImportListTest, AnEmptyListIsRefused)
{
    ImportLayoutList list(ground);
    EXPECT_FALSE(list.accept(true, made));
    EXPECT_EQ(messages.numbers(), Numbers{403});
}

TEST_F(ImportListTest, SortedByTheStatusItGivesTheSheetsInThatOrder)
{
    const TvString named = drawing("Zone.dwg", {u"A"}, path("gone.dst"));
    SortDirections directions;
    ImportLayoutList list(ground);
    list.load(Paths{named, plans});
    EXPECT_EQ(shown(list), (Lines{"A x", "Level 1 x", "Level 2 x"}));
    // The words of the two states decide, unit by unit.
    const bool isFreeFirst = TvString(text::find(404)).compare(TvString(text::find(405))) < 0;
    ASSERT_TRUE(isFreeFirst);
    EXPECT_EQ(list.sort(2, directions), (std::vector<std::size_t>{1, 2, 0}));
    ASSERT_TRUE(list.accept(false, made));
    EXPECT_EQ(namesOf(made), (Lines{"Level 1", "Level 2", "A"}));
}

TEST_F(ImportListTest, ColumnsSortByCaseAndTurnWithEachClickFromListToList)
{
    const TvString mixed = drawing("mixed.dwg", {u"a", u"B", u"c"});
    SortDirections directions;
    ImportLayoutList first(ground);
    first.load(Paths{mixed});
    first.sort(1, directions);
    EXPECT_EQ(shown(first), (Lines{"B x", "a x", "c x"})) << "the first click ever ascends";
    ImportLayoutList second(ground);
    second.load(Paths{mixed});
    second.sort(1, directions);
    EXPECT_EQ(shown(second), (Lines{"c x", "a x", "B x"})) << "the next list goes on";
    second.sort(0, directions);
    EXPECT_EQ(shown(second), (Lines{"c x", "a x", "B x"})) << "equal texts stay, own turns";
    second.sort(1, directions);
    EXPECT_EQ(shown(second), (Lines{"B x", "a x", "c x"}));
    EXPECT_TRUE(second.sort(3, directions).empty());
    EXPECT_TRUE(second.sort(-1, directions).empty());
}

TEST_F(ImportListTest, ManyRowsOfEqualTextStayInTheirOrder)
{
    Paths layouts;
    for (int i = 0; i < 40; ++i)
        layouts.push_back(TvString().format(u"L%02d", i));
    SortDirections directions;
    ImportLayoutList list(ground);
    list.load(Paths{drawing("many.dwg", layouts)});
    const Lines before = shown(list);
    list.sort(2, directions);
    EXPECT_EQ(shown(list), before);
    list.sort(2, directions);
    EXPECT_EQ(shown(list), before);
}

TEST_F(ImportListTest, ANameThatIsLongerThanASheetsIsMadeAllTheSame)
{
    const TvString longName(std::u16string(100, u'n'));
    ImportLayoutList list(ground);
    list.load(Paths{drawing("long.dwg", {longName})});
    ASSERT_TRUE(list.accept(true, made));
    EXPECT_EQ(namesOf(made), Lines{"long - " + longName.utf8()});
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportListTest, ForOneSheetALayoutInUseMayBeTickedAndNothingChanges)
{
    use(u"Level 2");
    ImportLayoutList list(cover);
    list.load(Paths{plans});
    list.setTicked(1, true);
    EXPECT_TRUE(list.accept(true, made));
    EXPECT_EQ(cover->getLayoutReference()->getName(), u"Level 2");
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportListTest, ForOneSheetNothingIsTickedAndOneTickTakesTheOthersAway)
{
    ImportLayoutList list(cover);
    list.load(Paths{plans});
    EXPECT_EQ(shown(list), (Lines{"Level 1", "Level 2"}));
    list.setTicked(0, true);
    list.setTicked(1, true);
    EXPECT_EQ(shown(list), (Lines{"Level 1", "Level 2 x"}));
    list.setTicked(1, false);
    EXPECT_EQ(shown(list), (Lines{"Level 1", "Level 2"}));
    EXPECT_FALSE(list.accept(true, made));
    EXPECT_EQ(messages.numbers(), Numbers{403});
    EXPECT_EQ(shown(list), (Lines{"Level 1", "Level 2"})) << "which one is the user's choice";
}

TEST_F(ImportListTest, ForOneSheetTheTickedLayoutBecomesItsOwn)
{
    for (const TvChar* layout : {u"Level 1", u"Level 2"}) { // a new reference, and the same again
        const TvSmTvDbLayoutReference* former = cover->getLayoutReference();
        ImportLayoutList list(cover);
        list.load(Paths{plans});
        list.setTicked(list.rows()[0].layout == layout ? 0 : 1, true);
        EXPECT_TRUE(list.accept(true, made));
        const TvSmTvDbLayoutReference* reference = cover->getLayoutReference();
        ASSERT_NE(reference, nullptr);
        EXPECT_TRUE(!former || former == reference);
        EXPECT_EQ(reference->getFileName(), plans);
        EXPECT_EQ(reference->getName(), TvString(layout));
        EXPECT_EQ(reference->getHandle(), handle(plans, layout));
    }
    EXPECT_TRUE(made.empty());
    EXPECT_EQ(cover->getName(), u"Cover");
    EXPECT_EQ(cover->getNumber(), u"1");
}

TEST_F(ImportListTest, SettingsAreThoseOfTheUserAndWidthsAboveZero)
{
    const TvString keys = u"UserInterfaceSettings\\ImportLayoutAsSheetDialog\\";
    ImportSettings settings = ImportSettings::read();
    EXPECT_EQ(settings.widths[0], 150);
    EXPECT_EQ(settings.widths[1], 150);
    EXPECT_EQ(settings.widths[2], 300);
    EXPECT_TRUE(settings.withPrefix);
    settings = {{11, 0, -5}, false};
    settings.write();
    int stored = 7;
    EXPECT_TRUE(ReadConfigInt(keys + u"Column1", stored));
    EXPECT_EQ(stored, 11);
    EXPECT_TRUE(ReadConfigInt(keys + u"Column3", stored));
    EXPECT_TRUE(ReadConfigInt(keys + u"Prefix", stored));
    EXPECT_EQ(stored, 0);
    settings = ImportSettings::read();
    EXPECT_EQ(settings.widths[0], 11);
    EXPECT_EQ(settings.widths[1], 150) << "zero counts as missing";
    EXPECT_EQ(settings.widths[2], 300) << "so does what is below";
    EXPECT_FALSE(settings.withPrefix);
    settings.withPrefix = true;
    settings.write();
    EXPECT_TRUE(ReadConfigInt(keys + u"Prefix", stored));
    EXPECT_EQ(stored, 1);
}

TEST_F(ImportListTest, SheetsGetThePropertiesOfSheetsAndStandInTheirOrder)
{
    TvSmSheetSet* top = house->getSheetSet();
    sm::setTextProperty(top->getCustomProperties(), u"Checked by", u"N. N.", 2);
    sm::setTextProperty(top->getCustomProperties(), u"Client", u"Town", 1);
    sm::setTextProperty(top->getCustomProperties(), u"Both", u"b", 3);
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    ASSERT_TRUE(list.accept(false, made));
    EXPECT_TRUE(operations::placeImportedSheets(*ground, made, cover));
    EXPECT_EQ(childrenOf(ground), (Paths{u"Level 1", u"Level 2", u"Cover"}));
    for (const TvSmSheet* sheet : made) {
        const std::vector<sm::Property> all = sm::propertiesOf(sheet->getCustomProperties());
        ASSERT_EQ(all.size(), 2u);
        EXPECT_EQ(all[0].name, u"Checked by");
        EXPECT_EQ(all[1].name, u"Both");
        TvVariant value;
        all[1].value->getValue(value);
        TvString text;
        EXPECT_TRUE(value.getString(text));
        EXPECT_EQ(text, u"b");
        EXPECT_EQ(all[1].value->getFlags(), 2) << "the sheet's own";
    }
}

TEST_F(ImportListTest, SheetsWithoutANeighbourGoLast)
{
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    ASSERT_TRUE(list.accept(false, made));
    EXPECT_TRUE(operations::placeImportedSheets(*ground, made, nullptr));
    EXPECT_EQ(childrenOf(ground), (Paths{u"Cover", u"Level 1", u"Level 2"}));
}

TEST_F(ImportListTest, WithoutTheLockNothingIsMade)
{
    ImportLayoutList list(ground);
    list.load(Paths{plans});
    ASSERT_TRUE(house->unlockDb(house, false));
    EXPECT_TRUE(list.accept(false, made));
    EXPECT_TRUE(made.empty());
}
