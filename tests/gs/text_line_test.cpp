#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "text_samples.h"

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kNear = 1e-9;

std::u16string shownText(std::u16string_view contents)
{
    const gs::TextShape shape = lineShape(contents);
    return shape.runs.empty() ? u"" : shape.runs.front().text;
}

TEST(TextLine, ReplacesCodesByTheirCharacters)
{
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"%%c50", u"\u00D850"},   {u"%%C50", u"\u00D850"},  {u"45%%d", u"45\u00B0"},
        {u"%%p1", u"\u00B11"},     {u"100%%%", u"100%"},     {u"%%065x", u"Ax"},
        {u"%%127", u"\u00B0"},     {u"%%uA%%u", u"A"},       {u"%%oA%%O", u"A"},
        {u"%%kA%%K", u"A"},        {u"\\U+00E9", u"\u00E9"}, {u"\\U+D83D\\U+DE00", u"\U0001F600"},
        {u"\\M+182A0", u"\u3042"}, {u"\\U+00", u"\\U+00"},   {u"%%x", u"%%x"},
        {u"50%", u"50%"},          {u"%%12", u"%%12"},       {u"a\\P", u"a\\P"},
        {u"a\tb\n", u"ab"},
    };
    for (const auto& [contents, shown] : cases)
        EXPECT_EQ(TvString(shownText(contents)), TvString(shown)) << TvString(contents).utf8();
}

TEST(TextLine, DrawsLinesAtTheLettersBetweenTheirCodes)
{
    const gs::TextShape plain = lineShape(u"ace");
    const gs::TextShape under = lineShape(u"a%%uc%%ue");
    const gs::TextShape over = lineShape(u"a%%oc%%oe");
    const gs::TextShape struck = lineShape(u"a%%kc%%ke");

    EXPECT_LT(under.extents.lowY, plain.extents.lowY - 0.1);
    EXPECT_GT(over.extents.highY, plain.extents.highY + 0.1);
    EXPECT_EQ(struck.parts[0].path.points().size(), plain.parts[0].path.points().size() + 2);
    EXPECT_EQ(under.parts[0].path.points().size(), plain.parts[0].path.points().size() + 2);
    EXPECT_NEAR(under.extents.width(), plain.extents.width(), kNear);
}

TEST(TextLine, IsAsHighAsItsHeightAndBeginsAtItsPosition)
{
    TvDbText text;
    setText(text, u"HH", 2.5);
    text.setPosition({10, 20, 3});
    const gs::TextShape shape = shapeOf(text, testFonts());

    EXPECT_NEAR(shape.extents.lowY, 0, kNear);
    EXPECT_NEAR(shape.extents.highY, 2.5, kNear);
    EXPECT_NEAR(shape.extents.lowX, 0, kNear);
    EXPECT_TRUE((shape.placement * TvGePoint3d()).isEqualTo({10, 20, 3}));
    EXPECT_EQ(shape.runs.at(0).height, 2.5);
}

/// Where the letters stand in the drawing.
gs::Box placedBox(const TvDbText& text)
{
    const gs::TextShape shape = shapeOf(text, testFonts());
    gs::Path all;
    for (const gs::TextPart& part : shape.parts)
        gs::appendMapped(all, part.path, gs::FlatMap::seenFromAbove(shape.placement));
    return gs::boxOf(all);
}

TEST(TextLine, IsAlignedAtItsPoint)
{
    TvDbText text;
    setText(text, u"HHH");
    text.setPosition({-50, -50, 0}); // where another font would have begun
    text.setAlignmentPoint({10, 20, 0});
    const auto box = [&](TvDbText::TextHorzMode h, TvDbText::TextVertMode v) {
        text.setHorizontalMode(h);
        text.setVerticalMode(v);
        return placedBox(text);
    };
    EXPECT_NEAR(box(TvDbText::kTextCenter, TvDbText::kTextBase).center().x, 10, kNear);
    EXPECT_NEAR(box(TvDbText::kTextRight, TvDbText::kTextBase).highX, 10, kNear);
    EXPECT_NEAR(box(TvDbText::kTextMid, TvDbText::kTextBase).center().x, 10, kNear);
    EXPECT_NEAR(box(TvDbText::kTextMid, TvDbText::kTextBase).center().y, 20, kNear);
    EXPECT_NEAR(box(TvDbText::kTextLeft, TvDbText::kTextTop).highY, 20, kNear);
    EXPECT_NEAR(box(TvDbText::kTextLeft, TvDbText::kTextVertMid).center().y, 20, kNear);
    EXPECT_NEAR(box(TvDbText::kTextRight, TvDbText::kTextBottom).lowY, 20 + 1.0 / 3, kNear);
    EXPECT_NEAR(box(TvDbText::kTextLeft, TvDbText::kTextTop).lowX, 10, kNear);
}

TEST(TextLine, FitsBetweenItsPoints)
{
    TvDbText text;
    setText(text, u"HHH");
    text.setAlignmentPoint({10, 0, 0});
    text.setHorizontalMode(TvDbText::kTextFit);
    gs::Box box = placedBox(text);
    EXPECT_NEAR(box.highX, 10, kNear);
    EXPECT_NEAR(box.highY, 1, kNear); // as high as before

    text.setHorizontalMode(TvDbText::kTextAlign);
    box = placedBox(text);
    EXPECT_NEAR(box.highX, 10, kNear);
    EXPECT_NEAR(box.highY / box.width(), lineShape(u"HHH").extents.height() / inkWidth(u"HHH"),
                kNear);

    text.setAlignmentPoint({0, 10, 0});
    EXPECT_NEAR(placedBox(text).highY, 10, kNear); // upwards
}

TEST(TextLine, IsWiderWithAWidthFactorAndLeansWithAnAngle)
{
    TvDbText text;
    setText(text, u"HI");
    const double plain = placedBox(text).width();
    text.setWidthFactor(2);
    EXPECT_NEAR(placedBox(text).width(), 2 * plain, kNear);
    text.setWidthFactor(1);
    text.setOblique(kPi / 4);
    EXPECT_NEAR(placedBox(text).width(), plain + 1, kNear);
}

TEST(TextLine, IsTurnedAndLiesInItsPlane)
{
    TvDbText text;
    setText(text, u"HH");
    text.setRotation(kPi / 2);
    EXPECT_NEAR(placedBox(text).lowX, -1, kNear);
    text.setRotation(0);
    text.setNormal({0, 0, -1}); // seen from behind: runs to the left
    EXPECT_NEAR(placedBox(text).highX, 0, kNear);
    EXPECT_LT(placedBox(text).lowX, -1);
}

TEST(TextLine, IsMirroredAtItsPoint)
{
    TvDbText text;
    setText(text, u"HHL");
    const gs::Box plain = placedBox(text);
    text.edit().setInteger("generation", 2);
    EXPECT_NEAR(placedBox(text).lowX, -plain.highX, kNear);
    EXPECT_NEAR(placedBox(text).highX, 0, kNear);
    text.edit().setInteger("generation", 4);
    EXPECT_NEAR(placedBox(text).lowY, -1, kNear);
    EXPECT_NEAR(placedBox(text).highY, 0, kNear);
}

TEST(TextLine, TellsItsTextWhereItIsWritten)
{
    TvDbText text;
    setText(text, u"%%c HH", 2);
    text.setHorizontalMode(TvDbText::kTextRight);
    const gs::TextShape shape = shapeOf(text, testFonts());

    ASSERT_EQ(shape.runs.size(), 1u);
    EXPECT_EQ(shape.runs[0].text, u"\u00D8 HH");
    EXPECT_NEAR(shape.runs[0].origin.x, -shape.runs[0].width, kNear);
    EXPECT_NEAR(shape.runs[0].direction.x, 1, kNear);
    EXPECT_NEAR(shape.runs[0].width, shape.extents.width(), 0.2);
}

TEST(TextLine, ShowsAnotherTextInItsPlace)
{
    TvDbText text;
    setText(text, u"####");
    EXPECT_EQ(shapeOf(text, u"field", testFonts()).runs.at(0).text, u"field");
}

TEST(TextLine, OfSeveralLinesIsDrawnLikeParagraphs)
{
    TvDbAttribute attribute;
    attribute.setHeight(1);
    attribute.edit().setInteger("att_type", 2);
    db::RecordEditor lines = attribute.edit().structure("emb");
    lines.setReal("height", 1);
    lines.setText("text", u"one\\Ptwo");
    const gs::TextShape shape = shapeOf(attribute, testFonts());

    ASSERT_EQ(shape.runs.size(), 2u);
    EXPECT_EQ(shape.runs[1].text, u"two");
}

TEST(TextLine, DrawsNothingOfWhatCannotBeDrawn)
{
    const double bad[] = {0,     -1,    std::nan(""), std::numeric_limits<double>::infinity(),
                          1e300, 1e-300};
    for (const double height : bad)
        EXPECT_TRUE(lineShape(u"A", height).isEmpty()) << height;
    TvDbText text;
    setText(text, u"A");
    text.edit().setPoint("ins_pt", {std::nan(""), 0, 0});
    EXPECT_TRUE(shapeOf(text, testFonts()).isEmpty());
    EXPECT_TRUE(lineShape(u"").isEmpty());
    EXPECT_TRUE(lineShape(u"%%u%%u").isEmpty());
}

TEST(TextLine, ForgivesFactorsAndAnglesThatMakeNoSense)
{
    for (const double bad : {0.0, std::nan(""), 1e300, -1e-300}) {
        TvDbText text;
        setText(text, u"HI");
        text.setWidthFactor(bad);
        text.setOblique(bad);
        const gs::TextShape shape = shapeOf(text, testFonts());
        EXPECT_NEAR(shape.extents.highY, 1, kNear) << bad;
        EXPECT_TRUE(std::isfinite(shape.extents.width())) << bad;
    }
}

TEST(TextLine, DrawsNoMoreThanAHundredThousandLetters)
{
    TvDbText text;
    setText(text, u"");
    const gs::TextShape shape = shapeOf(text, std::u16string(1'000'000, u'I'), testFonts());
    EXPECT_EQ(shape.runs.at(0).text.size(), 100'000u);
    EXPECT_EQ(shape.parts.size(), 1u);
}

TEST(TextLine, TakesLoneHalvesOfCharacters)
{
    EXPECT_EQ(shownText(u"a\xD800z"), u"a\uFFFDz");
    EXPECT_EQ(shownText(u"a\\U+DC00"), u"a\uFFFD");
}

} // namespace
