// Hatches whose colours pass into each other: in the list, and in pictures.

#include <numbers>

#include <gs/picture.h>

#include "gradient_hatch.h"
#include "scene_tools.h"

namespace {

constexpr int kSide = 100; // pixels, as many as the hatch has units

gs::Picture pictureOf(const GradientLook& look)
{
    DrawingScene scene;
    scene.add(gradientHatch(look));
    gs::View view;
    view.center = {kSide / 2.0, kSide / 2.0};
    view.width = view.height = kSide;
    return gs::pictureOf(scene.list(), view);
}

/// How blue a pixel is: 0 is red, 1 is blue.
double bluenessAt(const gs::Picture& picture, int x, int y)
{
    return (picture.at(x, y) & 0xFF) / 255.0;
}

struct Expectation {
    const TvChar* name;
    double angle;
    // left, right, top and bottom in the middle of the sides; the middle; the upper left corner
    double left, right, top, bottom, middle, corner;
};

} // namespace

TEST(Gradients, RunAsTheirNamesSay)
{
    constexpr double kUp = std::numbers::pi / 2;
    constexpr Expectation kRows[] = {
        {u"LINEAR", 0, 0, 1, 0.5, 0.5, 0.5, 0},
        {u"INVLINEAR", 0, 1, 0, 0.5, 0.5, 0.5, 1},
        {u"LINEAR", kUp, 0.5, 0.5, 1, 0, 0.5, 1},
        {u"CYLINDER", 0, 0, 0, 1, 1, 1, 0},
        {u"INVCYLINDER", 0, 1, 1, 0, 0, 0, 1},
        {u"CYLINDER", kUp, 1, 1, 0, 0, 1, 0},
        {u"SPHERICAL", 0, 0.3, 0.3, 0.3, 0.3, 1, 0},
        {u"INVSPHERICAL", 0, 0.7, 0.7, 0.7, 0.7, 0, 1},
        {u"HEMISPHERICAL", 0, 0.37, 0.37, 0.1, 1, 0.55, 0},
        {u"INVHEMISPHERICAL", 0, 0.63, 0.63, 0.9, 0, 0.45, 1},
        {u"CURVED", 0, 0.43, 0.43, 0.07, 1, 0.54, 0},
        {u"INVCURVED", 0, 0.57, 0.57, 0.93, 0, 0.46, 1},
    };
    constexpr double kClose = 0.06;
    for (const Expectation& row : kRows) {
        SCOPED_TRACE(TvString(row.name).utf8() + (row.angle != 0 ? " turned" : ""));
        GradientLook look;
        look.name = row.name;
        look.angle = row.angle;
        const gs::Picture picture = pictureOf(look);
        const int half = kSide / 2, last = kSide - 2;
        EXPECT_NEAR(bluenessAt(picture, 1, half), row.left, kClose);
        EXPECT_NEAR(bluenessAt(picture, last, half), row.right, kClose);
        EXPECT_NEAR(bluenessAt(picture, half, 1), row.top, kClose);
        EXPECT_NEAR(bluenessAt(picture, half, last), row.bottom, kClose);
        EXPECT_NEAR(bluenessAt(picture, half, half), row.middle, kClose);
        EXPECT_NEAR(bluenessAt(picture, 1, 1), row.corner, kClose);
    }
}

TEST(Gradients, OfOneColourGoOverIntoWhiteOrBlack)
{
    for (const double tint : {0.0, 1.0}) {
        GradientLook look;
        look.isOneColor = true;
        look.tint = tint;
        const std::uint32_t end = pictureOf(look).at(kSide - 2, kSide / 2);
        for (const int shift : {16, 8, 0})
            EXPECT_NEAR(end >> shift & 0xFF, tint * 255, 12);
        EXPECT_NEAR(pictureOf(look).at(1, kSide / 2) >> 16 & 0xFF, 255, 12);
    }
}

TEST(Gradients, ThatAreNotCentredComeFromTheUpperLeft)
{
    GradientLook look;
    look.name = u"SPHERICAL";
    look.shift = 1;
    const gs::Picture picture = pictureOf(look);
    EXPECT_NEAR(bluenessAt(picture, kSide / 4, kSide / 4), 1, 0.06);
    EXPECT_LT(bluenessAt(picture, kSide * 3 / 4, kSide * 3 / 4), 0.5);
}

TEST(Gradients, OfferOneColourToWhoCannotDrawThem)
{
    DrawingScene scene;
    scene.add(gradientHatch({}));
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 1U);
    const gs::Item& item = list.items()[0];
    EXPECT_EQ(item.color, gs::Color::given(0x800080));
    const gs::Filling* const filling = list.fillingOf(item);
    ASSERT_NE(filling, nullptr);
    EXPECT_FALSE(filling->isRound);
    EXPECT_EQ(filling->stops.front().color, gs::Color::given(0xFF0000));
    EXPECT_EQ(filling->stops.back().color, gs::Color::given(0x0000FF));
}

TEST(Gradients, OfNoColourOrWithoutAreaDoNotHurt)
{
    for (const double side : {0.0, 1e30}) {
        DrawingScene scene;
        TvDbHatch* hatch = gradientHatch({});
        db::RecordEditor edit = hatch->edit();
        edit.array("paths")[0].array("pts")[1].setPoint("pt", {side, side, 0});
        if (side == 0)
            edit.array("colors").resize(0);
        scene.add(hatch);
        const gs::Picture picture =
            gs::pictureOf(scene.list(), gs::View::fitting({0, 0, 100, 100}, 50, 50));
        EXPECT_FALSE(picture.isEmpty());
    }
}
