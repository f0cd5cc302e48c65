#include <map>

#include <ed/palette_set.h>

namespace {

class Element : public ed::StateElement
{
public:
    std::map<TvString, TvString> attributes;

    std::optional<TvString> attribute(const TvString& name) const override
    {
        const auto found = attributes.find(name);
        return found == attributes.end() ? std::nullopt : std::optional(found->second);
    }
    void setAttribute(const TvString& name, const TvString& value) override
    {
        attributes[name] = value;
    }
};

ed::PalettePlacement unusual()
{
    ed::PalettePlacement placement;
    placement.side = ed::DockSide::Top;
    placement.isRolledIn = true;
    placement.isTransparent = true;
    placement.transparency = 45;
    placement.mayDock = false;
    placement.floating = {-20, 30, 400, 500};
    placement.docked = {1, 2, 300, 600};
    placement.activePalette = 2;
    return placement;
}

} // namespace

TEST(PalettePlacement, ComesBackAsItWasSaved)
{
    Element element;
    ed::savePlacement(unusual(), element);
    EXPECT_EQ(ed::readPlacement(element), unusual());
}

TEST(PalettePlacement, KeepsAttributesOfOthers)
{
    Element element;
    element.attributes[u"Other"] = u"kept";
    ed::savePlacement(unusual(), element);
    EXPECT_EQ(element.attributes[u"Other"], u"kept");
}

TEST(PalettePlacement, OfAnEmptyElementIsTheStandard)
{
    EXPECT_EQ(ed::readPlacement(Element(), unusual()), unusual());
}

TEST(PalettePlacement, TakesNothingThatMakesNoSense)
{
    for (const TvChar* hostile : {u"", u" 1", u"1 ", u"0x1", u"99999999999999999999", u"-99999999",
                                  u"nan", u"6", u"-1", u"1.5", u"\xD800"}) {
        Element element;
        for (const TvChar* name : {u"Orientation", u"AutoHide", u"Transparent", u"AllowDocking",
                                   u"Width", u"DockHeight"})
            element.attributes[name] = hostile;
        element.attributes[u"Transparency"] = u"91";
        element.attributes[u"ActivePalette"] = u"-1";
        EXPECT_EQ(ed::readPlacement(element, unusual()), unusual()) << TvString(hostile).utf8();
    }
}

TEST(PalettePlacement, TakesARectangleAsAWholeOnly)
{
    Element element;
    ed::savePlacement({}, element);
    element.attributes[u"X"] = u"5";
    element.attributes[u"Y"] = u"5";
    element.attributes[u"Width"] = u"100";
    element.attributes[u"Height"] = u"0";
    EXPECT_EQ(ed::readPlacement(element, unusual()).floating, unusual().floating);
    element.attributes[u"Height"] = u"7";
    EXPECT_EQ(ed::readPlacement(element, unusual()).floating, (ed::ScreenRect{5, 5, 100, 7}));
}

TEST(PalettePlacement, SidesHaveTheirNumbers)
{
    const std::pair<int, int> expected[] = {
        {1, 59423}, {2, 59420}, {3, 59421}, {4, 59419}, {5, 59422}};
    for (const auto& [orientation, bar] : expected) {
        ASSERT_TRUE(ed::sideOfOrientation(orientation));
        EXPECT_EQ(static_cast<int>(*ed::sideOfOrientation(orientation)), bar);
        ASSERT_TRUE(ed::sideOfBar(bar));
        EXPECT_EQ(ed::orientationOf(*ed::sideOfBar(bar)), orientation);
    }
    EXPECT_FALSE(ed::sideOfOrientation(0));
    EXPECT_FALSE(ed::sideOfOrientation(6));
    EXPECT_FALSE(ed::sideOfBar(59418));
}
