#include <gtest/gtest.h>

#include <db/resbuf.h>
#include <gs/linetype.h>

#include "scene_tools.h"
#include "text_samples.h"

namespace {

/// A drawing with a text style, and a text in it.
class StyleScene : public DrawingScene
{
public:
    TvDbObjectId addStyle(std::u16string_view font)
    {
        TvDbObjectPointer<TvDbTextStyleTable> styles(
            database().symbolTableId(TvDb::SymbolTable::TextStyle), TvDb::kForWrite);
        auto* style = new TvDbTextStyleTableRecord;
        style->setName(TvString(u"Own"));
        EXPECT_EQ(styles->add(m_style, style), TvStatus::Ok);
        style->edit().setText("font", font);
        style->close();
        return m_style;
    }
    template <class Change>
    void changeStyle(Change change)
    {
        TvDbObjectPointer<TvDbTextStyleTableRecord> style(m_style, TvDb::kForWrite);
        change(*style);
    }
    /// The shape of "HI" in that style.
    gs::TextShape lineInStyle()
    {
        auto* text = new TvDbText;
        setText(*text, u"HI");
        return shapeOfAdded(text);
    }
    gs::TextShape paragraphsInStyle()
    {
        auto* text = new TvDbMText;
        setMText(*text, u"HI");
        return shapeOfAdded(text);
    }

private:
    template <class Text>
    gs::TextShape shapeOfAdded(Text* text)
    {
        const TvDbObjectId id = add(text);
        const TvDbObjectPointer<Text> open(id, TvDb::kForWrite);
        open->setTextStyle(m_style);
        return shapeOf(*open, testFonts());
    }

    TvDbObjectId m_style;
};

TEST(TextStyle, NamesTheFont)
{
    StyleScene outlines, strokes;
    outlines.addStyle(u"arial.ttf");
    strokes.addStyle(u"romans.shx");

    EXPECT_TRUE(outlines.lineInStyle().parts.at(0).isFilled);
    EXPECT_TRUE(outlines.paragraphsInStyle().parts.at(0).isFilled);
    EXPECT_FALSE(strokes.lineInStyle().parts.at(0).isFilled);
    EXPECT_FALSE(strokes.paragraphsInStyle().parts.at(0).isFilled);
}

TEST(TextStyle, TellsFamilyBoldAndItalicInExtendedData)
{
    StyleScene scene;
    scene.addStyle(u"txt.shx");
    const auto setFamily = [&](std::int32_t flags) {
        scene.changeStyle([&](TvDbTextStyleTableRecord& style) {
            const TvResbufPtr family(
                tvutBuildList(1001, u"ACAD", 1000, u"DejaVu Sans", 1071, flags, 0));
            EXPECT_EQ(style.setXData(family.get()), TvStatus::Ok);
        });
        return scene.lineInStyle();
    };
    const gs::TextShape plain = setFamily(34);
    EXPECT_TRUE(plain.parts.at(0).isFilled);
    EXPECT_GT(setFamily(0x2000022).extents.width(), plain.extents.width());
    EXPECT_GT(setFamily(0x1000022).extents.width(), plain.extents.width() + 0.1);
}

TEST(TextStyle, GivesParagraphsTheirWidthAndSlant)
{
    StyleScene scene;
    scene.addStyle(u"txt");
    const double plain = scene.paragraphsInStyle().extents.width();
    scene.changeStyle(
        [](TvDbTextStyleTableRecord& style) { style.edit().setReal("width_factor", 2); });
    EXPECT_NEAR(scene.paragraphsInStyle().extents.width(), 2 * plain, 1e-9);
    scene.changeStyle([](TvDbTextStyleTableRecord& style) {
        style.edit().setReal("width_factor", 1);
        style.edit().setReal("oblique", 0.7853981633974483);
    });
    EXPECT_NEAR(scene.paragraphsInStyle().extents.width(), plain + 1, 1e-9);
    EXPECT_NEAR(scene.lineInStyle().extents.width(), plain, 1e-9); // lines have their own
}

TEST(TextStyle, ThatIsVerticalWritesLettersBelowEachOther)
{
    StyleScene scene;
    scene.addStyle(u"txt");
    scene.changeStyle(
        [](TvDbTextStyleTableRecord& style) { style.edit().setInteger("is_vertical", 1); });
    const gs::TextShape shape = scene.lineInStyle();

    EXPECT_NEAR(shape.extents.highY, 0, 1e-9);
    EXPECT_NEAR(shape.extents.lowY, -2.5, 1e-9);
    EXPECT_NEAR(shape.extents.center().x, 0, 1e-9);
    EXPECT_NEAR(shape.runs.at(0).direction.y, -1, 1e-9);
}

TEST(Tolerance, TakesItsSizesFromTheDimensionStyle)
{
    StyleScene scene;
    scene.addStyle(u"txt");
    TvDbObjectId dimensionStyle;
    {
        TvDbObjectPointer<TvDbDimStyleTable> styles(
            scene.database().symbolTableId(TvDb::SymbolTable::DimStyle), TvDb::kForWrite);
        auto* style = new TvDbDimStyleTableRecord;
        style->setName(TvString(u"Own"));
        EXPECT_EQ(styles->add(dimensionStyle, style), TvStatus::Ok);
        style->edit().setReal("DIMTXT", 2);
        style->edit().setReal("DIMGAP", 1);
        style->edit().setReal("DIMSCALE", 3);
        style->edit().structure("DIMCLRT").setInteger("value",
                                                      static_cast<std::int32_t>(0xC3000001));
        style->close();
    }
    auto* tolerance = new TvDbFcf;
    tolerance->setText(TvString(u"A"));
    const TvDbObjectId id = scene.add(tolerance);
    const TvDbObjectPointer<TvDbFcf> open(id, TvDb::kForWrite);
    open->setDimensionStyle(dimensionStyle);
    const gs::TextShape shape = shapeOf(*open, testFonts());

    EXPECT_NEAR(shape.extents.height(), 12, 1e-9);
    EXPECT_EQ(shape.parts.at(0).color, gs::OwnColor::fromIndex(1));

    // Its own say counts first.
    const TvResbufPtr own(tvutBuildList(1001, u"ACAD", 1000, u"DSTYLE", 1002, u"{", 1070, 140, 1040,
                                        4.0, 1002, u"}", 0));
    ASSERT_EQ(open->setXData(own.get()), TvStatus::Ok);
    EXPECT_NEAR(shapeOf(*open, testFonts()).extents.height(), 18, 1e-9);
}

TEST(Linetypes, TellTheirDashesAndTexts)
{
    StyleScene scene;
    const TvDbObjectId style = scene.addStyle(u"txt");
    TvDbObjectPointer<TvDbLinetypeTable> types(
        scene.database().symbolTableId(TvDb::SymbolTable::Linetype), TvDb::kForWrite);
    auto* type = new TvDbLinetypeTableRecord;
    type->setName(TvString(u"GAS"));
    TvDbObjectId id;
    ASSERT_EQ(types->add(id, type), TvStatus::Ok);
    db::RecordEditor edit = type->edit();
    db::ArrayEditor dashes = edit.array("dashes");
    dashes.resize(4);
    const double lengths[] = {2, -0.5, 0, -1.5};
    for (std::uint32_t i = 0; i < 4; ++i)
        dashes[i].setReal("length", lengths[i]);
    for (const std::uint32_t i : {1u, 3u}) {
        dashes[i].setInteger("flags", 10);
        dashes[i].setReal("scale", 0.25);
        dashes[i].setReal("x_offset", -0.1);
    }
    std::vector<std::uint8_t> area(512);
    const std::string_view texts("G\0A\0S\0\0\0X\0\0\0", 12);
    std::copy(texts.begin(), texts.end(), area.begin());
    edit.setBytes("text_area", area);
    edit.array("styles").setHandle(1, style.handle().value());
    type->close();

    const gs::LinePattern pattern = gs::patternOf(id);

    ASSERT_EQ(pattern.dashes.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(pattern.dashes[i].length, lengths[i]);
    EXPECT_EQ(pattern.length(), 4);
    ASSERT_EQ(pattern.dashes[1].texts.size(), 1u);
    EXPECT_EQ(pattern.dashes[1].texts[0].text, u"GAS");
    EXPECT_EQ(pattern.dashes[3].texts.at(0).text, u"X");
    EXPECT_EQ(pattern.dashes[1].texts[0].height, 0.25);
    EXPECT_EQ(pattern.dashes[1].texts[0].offset.x, -0.1);
    EXPECT_TRUE(pattern.dashes[1].texts[0].staysReadable);
    EXPECT_FALSE(pattern.dashes[1].texts[0].isUpright);
    EXPECT_EQ(pattern.dashes[1].texts[0].font.name, u"txt");
    EXPECT_TRUE(pattern.dashes[0].texts.empty());
}

TEST(Linetypes, OfNumbersThatMakeNoSenseAreContinuous)
{
    DrawingScene scene;
    TvDbObjectPointer<TvDbLinetypeTable> types(
        scene.database().symbolTableId(TvDb::SymbolTable::Linetype), TvDb::kForWrite);
    int number = 0;
    for (const double bad : {std::nan(""), 1e308, 0.0}) {
        auto* type = new TvDbLinetypeTableRecord;
        type->setName(TvString(std::u16string(u"T") + static_cast<char16_t>(u'0' + number++)));
        TvDbObjectId id;
        ASSERT_EQ(types->add(id, type), TvStatus::Ok);
        db::ArrayEditor dashes = type->edit().array("dashes");
        dashes.resize(3);
        dashes[0].setReal("length", bad);
        dashes[1].setReal("length", -bad);
        dashes[2].setReal("length", bad);
        type->close();
        EXPECT_TRUE(gs::patternOf(id).isContinuous()) << bad;
    }
}

} // namespace
