// What a window in a sheet shows of the model, and the sheet itself.

#include <cmath>
#include <numbers>

#include <db/record_editor.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_viewport.h>
#include <gs/picture.h>

#include "scene_tools.h"

namespace {

/// A sheet with one window of 100 by 100 around (100,100), which shows 50 units of the model.
class ViewportTest : public testing::Test
{
protected:
    ViewportTest()
    {
        EXPECT_EQ(db::addLayout(scene.database(), u"Plan", layout), TvStatus::Ok);
        block = TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify)->getBlockTableRecordId();
        if (TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify)->getViewportArray().empty())
            scene.addTo(block, new TvDbViewport); // the one that shows the sheet
        auto* window = new TvDbViewport;
        window->setCenterPoint({100, 100, 0});
        window->setWidth(100);
        window->setHeight(100);
        window->setViewHeight(50);
        viewport = scene.addTo(block, window);
    }
    template <class Change>
    void change(Change change)
    {
        TvDbObjectPointer<TvDbViewport> window(viewport, TvDb::kForWrite);
        change(*window);
    }
    gs::DisplayList list() { return gs::DisplayList::ofLayout(layout); }
    /// The items of the model's entity.
    std::vector<gs::Item> shown(TvDbObjectId id)
    {
        std::vector<gs::Item> found;
        const gs::DisplayList all = list();
        for (const gs::Item& item : all.items())
            if (item.clip != gs::Item::kNoClip &&
                (id.isNull() || item.handle == id.handle().value()))
                found.push_back(item);
        return found;
    }

    DrawingScene scene;
    TvDbObjectId layout, block, viewport;
};

void expectBox(const gs::Box& box, double lowX, double lowY, double highX, double highY)
{
    EXPECT_NEAR(box.lowX, lowX, 1e-9);
    EXPECT_NEAR(box.lowY, lowY, 1e-9);
    EXPECT_NEAR(box.highX, highX, 1e-9);
    EXPECT_NEAR(box.highY, highY, 1e-9);
}

} // namespace

TEST_F(ViewportTest, ShowsTheModelAtItsScaleAndPlace)
{
    scene.add(new TvDbLine({0, 0, 0}, {10, 5, 0}));
    change([](TvDbViewport& window) { window.setViewCenter({10, 0}); });
    const auto items = shown({});
    ASSERT_EQ(items.size(), 1u);
    expectBox(items[0].box, 80, 100, 100, 110);
}

TEST_F(ViewportTest, TurnsAndTargetsWhatItShows)
{
    scene.add(new TvDbLine({7, 3, 0}, {17, 3, 0}));
    change([](TvDbViewport& window) {
        window.setViewTarget({7, 3, 0});
        window.setTwistAngle(std::numbers::pi / 2);
    });
    const auto items = shown({});
    ASSERT_EQ(items.size(), 1u);
    expectBox(items[0].box, 100, 100, 100, 120);
}

TEST_F(ViewportTest, LooksFromItsDirection)
{
    scene.add(new TvDbLine({0, 0, 0}, {0, 4, 6}));
    change([](TvDbViewport& window) { window.setViewDirection({1, 0, 0}); });
    const auto items = shown({}); // from the right: y is to the right, z upwards
    ASSERT_EQ(items.size(), 1u);
    expectBox(items[0].box, 100, 100, 108, 112);
}

TEST_F(ViewportTest, LeavesOutWhatLiesBeyondItsEdges)
{
    scene.add(new TvDbLine({1000, 0, 0}, {1010, 5, 0}));
    scene.add(new TvDbLine({-1000, 0, 0}, {1000, 0, 0}));
    const auto items = shown({});
    ASSERT_EQ(items.size(), 1u);
    const gs::DisplayList all = list();
    ASSERT_FALSE(all.clips().empty());
    expectBox(all.clips()[0].box, 50, 50, 150, 150);
    EXPECT_TRUE(all.clips()[0].isRectangle);
    EXPECT_LE(all.extents().highX, std::max(150.0, all.sheet() ? all.sheet()->highX : 0));
    gs::PlayOptions options;
    options.background = gs::Background::Light;
    const gs::Picture picture = gs::pictureOf(all, {{100, 100}, 1, 200, 200}, options);
    EXPECT_EQ(picture.at(20, 100), 0xFFFFFFFFu);
    EXPECT_NE(picture.at(100, 99) & picture.at(100, 100), 0xFFFFFFFFu);
}

TEST_F(ViewportTest, BesideThePictureNothingOfItsModelIsDrawn)
{
    // The line reaches into the picture, and its window ends well before.
    scene.add(new TvDbLine({-1000, 0, 0}, {1000, 8, 0}));
    gs::PlayOptions options;
    options.background = gs::Background::Light;
    for (const double x : {400.0, -200.0}) {
        const gs::Picture picture = gs::pictureOf(list(), {{x, 100}, 1, 200, 200}, options);
        ASSERT_FALSE(picture.isEmpty());
        for (int row = 20; row < 180; ++row)
            for (int column = 20; column < 180; ++column)
                ASSERT_EQ(picture.at(column, row), 0xFFFFFFFFu) << column << ' ' << row;
    }
}

TEST_F(ViewportTest, DrawsNothingOfTheModelWhenItIsOff)
{
    scene.add(new TvDbLine({0, 0, 0}, {10, 5, 0}));
    change([](TvDbViewport& window) { window.setOn(false); });
    EXPECT_TRUE(shown({}).empty());
}

TEST_F(ViewportTest, HidesTheLayersThatItFroze)
{
    const TvDbObjectId layer = scene.addLayer(u"furniture", 3);
    const TvDbObjectId line = scene.add(new TvDbLine({0, 0, 0}, {10, 5, 0}));
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->setLayer(layer);
    EXPECT_EQ(shown(line).size(), 1u);
    change([&](TvDbViewport& window) { window.freezeLayers({layer}); });
    EXPECT_TRUE(shown({}).empty());
    EXPECT_EQ(scene.list().items().size(), 1u); // the model has it still
}

TEST_F(ViewportTest, IsCutOutByAnotherEntity)
{
    scene.add(new TvDbLine({-20, 0, 0}, {20, 0, 0}));
    auto* round = new TvDbCircle;
    round->setCenter({100, 100, 0});
    round->setRadius(10);
    const TvDbObjectId circle = scene.addTo(block, round);
    change([&](TvDbViewport& window) {
        db::RecordEditor edit = window.edit();
        edit.setInteger("status", window.fields().integer("status") | 0x10000);
        edit.setHandle("clip_boundary", circle.handle().value());
    });
    const gs::DisplayList all = list();
    ASSERT_EQ(all.clips().size(), 1u);
    expectBox(all.clips()[0].box, 90, 90, 110, 110);
    EXPECT_FALSE(all.clips()[0].isRectangle);
    gs::PlayOptions options;
    options.background = gs::Background::Light;
    const gs::Picture picture = gs::pictureOf(all, {{100, 100}, 1, 200, 200}, options);
    EXPECT_EQ(picture.at(80, 99) & picture.at(80, 100), 0xFFFFFFFFu);
    EXPECT_NE(picture.at(100, 99) & picture.at(100, 100), 0xFFFFFFFFu);
}

TEST_F(ViewportTest, TheSheetIsThePaperWithItsMargins)
{
    TvDbObjectPointer<TvDbLayout> sheet(layout, TvDb::kForWrite);
    db::RecordEditor edit = sheet->edit();
    edit.setReal("paper_width", 210);
    edit.setReal("paper_height", 297);
    edit.setReal("margin_left", 5);
    edit.setReal("margin_bottom", 6);
    edit.setReal("margin_right", 7);
    edit.setReal("margin_top", 8);
    edit.setInteger("paper_units", 1);
    edit.setInteger("rotation", 1); // a quarter turn
    sheet.close();
    const gs::DisplayList all = list();
    ASSERT_TRUE(all.sheet() && all.printable());
    EXPECT_TRUE(all.isPaper());
    EXPECT_NEAR(all.mmPerUnit(), 1, 1e-9);
    EXPECT_NEAR(all.sheet()->width(), 297, 1e-9);
    EXPECT_NEAR(all.sheet()->height(), 210, 1e-9);
    expectBox(*all.printable(), 0, 0, 297 - 8 - 6, 210 - 5 - 7);
    EXPECT_NEAR(all.sheet()->lowX, -8, 1e-9); // turned, its top is to the left
    EXPECT_NEAR(all.sheet()->lowY, -5, 1e-9);
}

// From a camera. The window is as wide as high: a lens of 42 mm / sqrt(2) sees in its target's
// plane just as much as the camera is away.

namespace {

constexpr double kSquareLensMm = 29.698484809834998;
enum : std::int64_t { kPerspective = 1, kFront = 2, kBack = 4, kNotAtEye = 0x10 };

void lookDown(TvDbViewport& window, std::int64_t flags)
{
    db::RecordEditor edit = window.edit();
    edit.setInteger("status", window.fields().integer("status") | flags);
    edit.setPoint("direction", {0, 0, 50}); // two units of paper for one of the model
    edit.setReal("lens_length", kSquareLensMm);
}

} // namespace

TEST_F(ViewportTest, SeesFromItsCameraWhatIsNearerLarger)
{
    const TvDbObjectId far = scene.add(new TvDbLine({0, 0, 0}, {10, 0, 0}));
    const TvDbObjectId near = scene.add(new TvDbLine({0, 10, 25}, {10, 10, 25}));
    change([](TvDbViewport& window) {
        lookDown(window, kPerspective);
        window.setViewHeight(7); // the lens counts
    });
    ASSERT_EQ(shown(far).size(), 1U);
    expectBox(shown(far)[0].box, 100, 100, 120, 100);
    ASSERT_EQ(shown(near).size(), 1U);
    expectBox(shown(near)[0].box, 100, 140, 140, 140); // half as far away
}

TEST_F(ViewportTest, CutsOffWhatIsBehindItsCamera)
{
    scene.add(new TvDbLine({10, 0, 60}, {10, 0, 90}));
    change([](TvDbViewport& window) { lookDown(window, kPerspective); });
    EXPECT_TRUE(shown({}).empty());
    scene.add(new TvDbLine({0, 0, 0}, {10, 0, 100})); // through the camera's plane
    const auto items = shown({});
    ASSERT_EQ(items.size(), 1U);
    EXPECT_NEAR(items[0].box.lowX, 100, 1e-9);
    EXPECT_GT(items[0].box.highX, 150);
    EXPECT_LT(items[0].box.highX, 1e6);
}

TEST_F(ViewportTest, CirclesAndAreasAreSeenFromItsCamera)
{
    auto* circle = new TvDbCircle;
    circle->setCenter({0, 0, 25});
    circle->setRadius(10);
    const TvDbObjectId id = scene.add(circle);
    change([](TvDbViewport& window) { lookDown(window, kPerspective); });
    ASSERT_EQ(shown(id).size(), 1U);
    const gs::Box box = shown(id)[0].box;
    EXPECT_NEAR(box.highX, 140, 1e-3);
    EXPECT_NEAR(box.lowY, 60, 1e-3);
}

TEST_F(ViewportTest, ALineWithoutEndVanishesInTheDistance)
{
    auto* ray = new TvDbRay;
    ray->edit().setPoint("point", {10, 0, 0});
    ray->edit().setPoint("direction", {0, 0, -1}); // straight away
    scene.add(ray);
    change([](TvDbViewport& window) { lookDown(window, kPerspective); });
    const auto items = shown({});
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].kind, gs::Item::Kind::Stroke);
    EXPECT_NEAR(items[0].box.lowX, 100, 1e-3);
    EXPECT_NEAR(items[0].box.highX, 120, 1e-9);
}

TEST_F(ViewportTest, ShowsWhatIsBetweenItsPlanes)
{
    scene.add(new TvDbLine({0, 0, -10}, {20, 0, 10}));
    change([](TvDbViewport& window) {
        lookDown(window, kFront | kBack | kNotAtEye);
        window.edit().setReal("front_clip", 5);
        window.edit().setReal("back_clip", -5);
    });
    auto items = shown({});
    ASSERT_EQ(items.size(), 1U);
    expectBox(items[0].box, 110, 100, 130, 100); // two units of paper for one of the model
    change([](TvDbViewport& window) {            // both planes off
        window.edit().setInteger("status",
                                 window.fields().integer("status") & ~std::int64_t(kFront | kBack));
    });
    items = shown({});
    ASSERT_EQ(items.size(), 1U);
    expectBox(items[0].box, 100, 100, 140, 100);
}
