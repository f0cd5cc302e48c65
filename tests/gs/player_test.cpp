// What play() draws, where, in which colour, and how much of it.

#include <cmath>
#include <limits>

#include <cairo.h>

#include <db/tv_db_annotations.h>
#include <db/tv_db_curves.h>
#include <gs/picture.h>
#include <gs/player.h>

#include "pictures.h"
#include "scene_tools.h"

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFF, kBlack = 0xFF000000;

gs::PlayOptions onWhite()
{
    gs::PlayOptions options;
    options.background = gs::Background::Light;
    return options;
}

/// One unit is one pixel, and (0,0) the lower left corner.
gs::View plain(int width, int height)
{
    return {{width / 2.0, height / 2.0}, 1, width, height};
}

void addTriangle(DrawingScene& scene, const TvGePoint2d& a, const TvGePoint2d& b,
                 const TvGePoint2d& c)
{
    auto* solid = new TvDbSolid;
    db::RecordEditor edit = solid->edit();
    edit.setPoint("p1", {a.x, a.y, 0});
    edit.setPoint("p2", {b.x, b.y, 0});
    edit.setPoint("p3", {c.x, c.y, 0});
    edit.setPoint("p4", {c.x, c.y, 0});
    scene.add(solid);
}

/// The picture as cairo alone draws it: the context's coordinates are not pixels for the raster.
gs::Picture byCairoAlone(const gs::DisplayList& list, const gs::View& view)
{
    cairo_rectangle_t all{0, 0, double(view.width), double(view.height)};
    cairo_surface_t* record = cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &all);
    cairo_t* context = cairo_create(record);
    gs::play(list, view, context, onWhite());
    cairo_destroy(context);
    gs::Picture picture{view.width, view.height, {}};
    picture.pixels.assign(static_cast<std::size_t>(view.width * view.height), 0);
    cairo_surface_t* image = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(picture.pixels.data()), CAIRO_FORMAT_ARGB32, view.width,
        view.height, view.width * 4);
    context = cairo_create(image);
    cairo_set_source_surface(context, record, 0, 0);
    cairo_paint(context);
    cairo_destroy(context);
    cairo_surface_destroy(image);
    cairo_surface_destroy(record);
    return picture;
}

void addManyThings(DrawingScene& scene)
{
    for (int i = 0; i < 12; ++i) {
        scene.add(new TvDbLine({5, 5, 0}, {95.0, 8.0 * i, 0}));
        auto* circle = new TvDbCircle;
        circle->setCenter({10.0 + 7 * i, 50, 0});
        circle->setRadius(3.0 + i);
        scene.add(circle);
    }
    addTriangle(scene, {60, 70}, {90, 75}, {70, 95});
}

} // namespace

TEST(Player, LinesAreOnePixelWideWhereTheyBelong)
{
    DrawingScene scene;
    scene.add(new TvDbLine({2.5, 3.5, 0}, {7.5, 3.5, 0}));
    const gs::Picture picture = gs::pictureOf(scene.list(), plain(10, 10), onWhite());
    for (int x = 3; x < 7; ++x) {
        EXPECT_EQ(picture.at(x, 6), kBlack) << x; // y counts from the top
        EXPECT_EQ(picture.at(x, 5), kWhite) << x;
        EXPECT_EQ(picture.at(x, 7), kWhite) << x;
    }
    EXPECT_EQ(picture.at(0, 6), kWhite);
    EXPECT_EQ(picture.at(9, 6), kWhite);
}

TEST(Player, TheForegroundSuitsTheBackground)
{
    DrawingScene scene;
    scene.add(new TvDbLine({0, 3.5, 0}, {10, 3.5, 0}));
    const gs::DisplayList list = scene.list();
    gs::PlayOptions options;
    EXPECT_EQ(gs::pictureOf(list, plain(10, 10), options).at(5, 6), kWhite);
    EXPECT_EQ(gs::pictureOf(list, plain(10, 10), options).at(5, 1),
              0xFF000000 | gs::rgbOf(gs::Background::Dark));
    EXPECT_EQ(gs::pictureOf(list, plain(10, 10), onWhite()).at(5, 6), kBlack);
}

TEST(Player, DrawsTheSameByItselfAndThroughCairo)
{
    DrawingScene scene;
    addManyThings(scene);
    const gs::DisplayList list = scene.list();
    for (const double zoom : {1.0, 3.0, 0.3}) {
        const gs::View view = plain(100, 100).zoomed(zoom, {50, 50});
        EXPECT_LT(difference(gs::pictureOf(list, view, onWhite()), byCairoAlone(list, view)), 0.03)
            << zoom;
    }
}

TEST(Player, InPartsThePictureComesOutTheSame)
{
    DrawingScene scene;
    addManyThings(scene);
    const gs::DisplayList list = scene.list();
    const gs::View view = plain(100, 100);
    gs::Picture parts{100, 100, gs::Picture::Pixels(100 * 100)};
    cairo_surface_t* image = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(parts.pixels.data()), CAIRO_FORMAT_ARGB32, 100, 100, 400);
    cairo_t* context = cairo_create(image);
    gs::PlayOptions options = onWhite();
    options.budget = 4;
    gs::PlayProgress progress;
    int calls = 0;
    while (!progress.isDone && calls < 100) {
        const std::uint32_t before = progress.drawn;
        progress = gs::play(list, view, context, options, progress);
        EXPECT_LE(progress.drawn - before, 4u);
        ++calls;
    }
    cairo_destroy(context);
    cairo_surface_destroy(image);
    EXPECT_EQ(calls, 7); // 25 things
    EXPECT_EQ(progress.drawn, list.items().size());
    EXPECT_EQ(parts.pixels, gs::pictureOf(list, view, onWhite()).pixels);
}

TEST(Player, EndsWhenItIsCancelled)
{
    DrawingScene scene;
    for (int i = 0; i < 1000; ++i)
        scene.add(new TvDbLine({0, 0, 0}, {50, i / 20.0, 0}));
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 50, 50);
    cairo_t* context = cairo_create(image);
    gs::PlayOptions options = onWhite();
    options.isCancelled = [] { return true; };
    const gs::PlayProgress progress = gs::play(scene.list(), plain(50, 50), context, options);
    cairo_destroy(context);
    cairo_surface_destroy(image);
    EXPECT_FALSE(progress.isDone);
    EXPECT_LT(progress.drawn, 500u);
}

TEST(Player, WhatIsOutsideCostsNothing)
{
    DrawingScene scene;
    for (int i = 0; i < 1000; ++i)
        scene.add(new TvDbLine({i * 10.0, 0, 0}, {i * 10.0 + 5, 5, 0}));
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 50, 50);
    cairo_t* context = cairo_create(image);
    const gs::PlayProgress progress = gs::play(scene.list(), plain(50, 50), context);
    cairo_destroy(context);
    cairo_surface_destroy(image);
    EXPECT_TRUE(progress.isDone);
    EXPECT_LE(progress.drawn, 7u);
    EXPECT_GE(progress.drawn, 5u);
}

TEST(Player, HiddenLayersAndFilteredItemsAreLeftOut)
{
    DrawingScene scene;
    const TvDbObjectId layer = scene.addLayer(u"hidden", 1);
    const TvDbObjectId line = scene.add(new TvDbLine({0, 3.5, 0}, {10, 3.5, 0}));
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->setLayer(layer);
    const gs::DisplayList list = scene.list();
    gs::PlayOptions options = onWhite();
    EXPECT_NE(gs::pictureOf(list, plain(10, 10), options).at(5, 6), kWhite);
    options.hiddenLayers.resize(list.layers().size());
    options.hiddenLayers[list.items()[0].layer] = true;
    EXPECT_EQ(gs::pictureOf(list, plain(10, 10), options).at(5, 6), kWhite);
    options = onWhite();
    options.filter = [&](const gs::Item& item) { return item.handle != line.handle().value(); };
    EXPECT_EQ(gs::pictureOf(list, plain(10, 10), options).at(5, 6), kWhite);
}

TEST(Player, WipeoutsHideWhatIsBelowThem)
{
    DrawingScene scene;
    scene.add(new TvDbLine({0, 3.5, 0}, {20, 3.5, 0}));
    auto* wipeout = new TvDbWipeout;
    db::RecordEditor edit = wipeout->edit();
    edit.setPoint("origin", {5, 0, 0});
    edit.setPoint("u_vec", {10, 0, 0});
    edit.setPoint("v_vec", {0, 10, 0});
    edit.setPoint("size", {1, 1, 0});
    edit.setInteger("display", 7);
    scene.add(wipeout);
    scene.add(new TvDbLine({0, 5.5, 0}, {20, 5.5, 0}));
    const gs::Picture picture = gs::pictureOf(scene.list(), plain(20, 12), onWhite());
    EXPECT_EQ(picture.at(2, 8), kBlack);
    EXPECT_EQ(picture.at(10, 8), kWhite);
    EXPECT_EQ(picture.at(10, 6), kBlack);
}

TEST(Player, LineWeightsAreMillimetresOfPaperOrScreen)
{
    DrawingScene scene;
    auto* line = new TvDbLine({0, 10, 0}, {40, 10, 0});
    line->edit().setInteger("lineweight", 17); // 1 mm
    scene.add(line);
    const gs::DisplayList list = scene.list();
    const auto thickness = [&](gs::PlayOptions::Weights weights) {
        gs::PlayOptions options = onWhite();
        options.weights = weights;
        options.pixelsPerMm = 6;
        const gs::Picture picture = gs::pictureOf(list, plain(40, 20), options);
        int dark = 0;
        for (int y = 0; y < 20; ++y)
            dark += (picture.at(20, y) & 0xFF) < 128 ? 1 : 0;
        return dark;
    };
    EXPECT_EQ(thickness(gs::PlayOptions::Weights::Hairlines), 1);
    EXPECT_EQ(thickness(gs::PlayOptions::Weights::Pixels), 6);
    EXPECT_EQ(thickness(gs::PlayOptions::Weights::Paper), 6); // model space has no paper
}

TEST(Player, LinesWithoutEndCrossTheWholeView)
{
    DrawingScene scene;
    auto* line = new TvDbXline;
    line->setBasePoint({1000, 5.5, 0});
    line->setUnitDir({1, 0, 0});
    scene.add(line);
    auto* ray = new TvDbRay;
    ray->setBasePoint({5.5, 10, 0});
    ray->setUnitDir({0, 1, 0});
    scene.add(ray);
    const gs::DisplayList list = scene.list();
    EXPECT_TRUE(list.extents().isEmpty());
    const gs::Picture picture = gs::pictureOf(list, plain(20, 20), onWhite());
    EXPECT_NE(picture.at(1, 14), kWhite);
    EXPECT_NE(picture.at(18, 14), kWhite);
    EXPECT_NE(picture.at(5, 2), kWhite);
    EXPECT_EQ(picture.at(5, 18), kWhite);
}

TEST(Player, DeepZoomsShowThePartThatIsThere)
{
    DrawingScene scene;
    auto* circle = new TvDbCircle;
    circle->setRadius(1e6);
    scene.add(circle);
    addTriangle(scene, {-3e6, 0}, {3e6, 0}, {0, -3e6});
    const gs::DisplayList list = scene.list();
    // At the circle's right end, a pixel being a millionth of a unit.
    const gs::View view{{1e6, 0}, 1e6, 40, 40};
    const gs::Picture picture = gs::pictureOf(list, view, onWhite());
    EXPECT_NE(picture.at(20, 5), kWhite) << "the circle";
    EXPECT_EQ(picture.at(5, 5), kWhite);
    EXPECT_EQ(picture.at(5, 35), kBlack) << "the triangle";
}

TEST(Player, WhatHasNoPlaceIsLeftOut)
{
    constexpr double kFar = std::numeric_limits<double>::max();
    DrawingScene scene;
    for (const double odd : {kFar, -kFar, 1e308, 1e29}) {
        scene.add(new TvDbLine({0, 0, 0}, {odd, odd / 3, 0}));
        auto* circle = new TvDbCircle;
        circle->setCenter({odd, 1, 0});
        circle->setRadius(std::abs(odd));
        scene.add(circle);
    }
    const gs::DisplayList list = scene.list();
    for (const gs::Item& item : list.items())
        EXPECT_TRUE(std::isfinite(item.box.width() * item.box.height()));
    EXPECT_LE(list.items().size(), 2u); // of the last and nearest ones
    gs::pictureOf(list, plain(30, 30));
    gs::pictureOf(list, {{0, 0}, 1e30, 30, 30});
    gs::pictureOf(list, {{1e300, 1e300}, 1e-300, 30, 30});
}

TEST(Player, PointsKeepTheirShareOfTheView)
{
    DrawingScene scene;
    scene.database().editHeader().setInteger("PDMODE", 2); // a plus
    scene.database().editHeader().setReal("PDSIZE", -20);  // of the view, per cent
    auto* point = new TvDbPoint;
    point->setPosition({50, 50, 0});
    scene.add(point);
    const gs::DisplayList list = scene.list();
    for (const double zoom : {1.0, 10.0}) {
        const gs::View view = plain(100, 100).zoomed(zoom, {50, 50});
        const gs::Picture picture = gs::pictureOf(list, view, onWhite());
        EXPECT_NE(picture.at(50 + 15, 49) & picture.at(50 + 15, 50), kWhite) << zoom;
        EXPECT_EQ(picture.at(50 + 25, 50), kWhite) << zoom;
    }
}
