// What of the sheet list is shown while the user looks for something.

#include <panel/tree_filter.h>

#include "panel_scene.h"

namespace {

using Labels = std::vector<TvString>;

class TreeFilterTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        change([this](TvSmSheetSet&) {
            auto* value = new TvSmCustomPropertyValue;
            value->initNew(stair->getCustomProperties(), u"");
            value->setFlags(TvSmCustomPropertyValue::kSheetProperty);
            value->setValue(TvVariant(TvString(u"Concrete C30")));
            stair->getCustomProperties()->setProperty(u"Material", value);
            section->setDesc(u"Along the axis B");
        });
        tree.Merge();
    }
    /// Those that are shown, in the order of the tree.
    Labels shown(const TvString& text)
    {
        const panel::FilteredTree found = panel::filterTree(tree, text);
        Labels labels;
        collect(*tree.root(), found, labels);
        return labels;
    }
    void collect(panel::TreeItem& item, const panel::FilteredTree& found, Labels& labels)
    {
        if (found.shown.contains(&item))
            labels.push_back(tree.labelOf(item));
        for (const auto& child : item.children())
            collect(*child, found, labels);
    }
};

TEST_F(TreeFilterTest, ShowsWhatWasFoundWithAllThatItStandsIn)
{
    EXPECT_EQ(shown(u"stair"), (Labels{u"House", u"Ground", u"Details", u"2 - Stair"}));
    EXPECT_EQ(panel::filterTree(tree, u"stair").matches, 1);
    EXPECT_TRUE(panel::filterTree(tree, u"stair").opened.contains(itemOf(details)));
}

TEST_F(TreeFilterTest, LooksInNumberTitleDescriptionAndPropertiesInAnyCase)
{
    EXPECT_EQ(shown(u"3"), (Labels{u"House", u"Ground", u"Details", u"2 - Stair", u"3 - Section"}))
        << "a number, and C30 in a property";
    EXPECT_EQ(shown(u"COVER"), (Labels{u"House", u"Cover"}));
    EXPECT_EQ(shown(u"axis"), (Labels{u"House", u"Ground", u"3 - Section"}));
    EXPECT_EQ(shown(u"concrete"), (Labels{u"House", u"Ground", u"Details", u"2 - Stair"}));
    EXPECT_EQ(shown(u"material"), Labels{u"House"}) << "values, not names of properties";
}

TEST_F(TreeFilterTest, AllWordsMustBeInOneItemInAnyOrder)
{
    EXPECT_EQ(shown(u"axis  section"), (Labels{u"House", u"Ground", u"3 - Section"}));
    EXPECT_EQ(shown(u"plan section"), Labels{u"House"});
}

TEST_F(TreeFilterTest, WhatIsInAFoundSubsetCanBeSeenThere)
{
    EXPECT_EQ(shown(u"details"), (Labels{u"House", u"Ground", u"Details", u"2 - Stair"}));
    EXPECT_FALSE(panel::filterTree(tree, u"details").opened.contains(itemOf(details)))
        << "but it is not opened for that";
}

TEST_F(TreeFilterTest, ThatTheSetIsFoundShowsNothingMore)
{
    EXPECT_EQ(shown(u"house"), Labels{u"House"});
}

TEST_F(TreeFilterTest, TheTreeStaysAsItIs)
{
    tree.setExpanded(itemOf(details), false);
    tree.selectOnly(itemOf(cover));
    const auto before = tree.GetExpandSnapshot();
    panel::filterTree(tree, u"stair");
    EXPECT_EQ(tree.GetExpandSnapshot(), before);
    EXPECT_EQ(selected(), Labels{u"Cover"});
}

TEST_F(TreeFilterTest, WithoutATreeThereIsNothingToFind)
{
    tree.ClearTree();
    EXPECT_EQ(panel::filterTree(tree, u"stair").matches, 0);
}

} // namespace
