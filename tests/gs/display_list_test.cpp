// What comes into a display list, and what of it a window finds again.

#include <cmath>
#include <limits>
#include <numbers>

#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>

#include "scene_tools.h"

namespace {

void expectBox(const gs::Box& box, double lowX, double lowY, double highX, double highY)
{
    EXPECT_NEAR(box.lowX, lowX, 1e-9);
    EXPECT_NEAR(box.lowY, lowY, 1e-9);
    EXPECT_NEAR(box.highX, highX, 1e-9);
    EXPECT_NEAR(box.highY, highY, 1e-9);
}

TvDbCircle* circleAt(double x, double y, double radius)
{
    auto* circle = new TvDbCircle;
    circle->setCenter({x, y, 0});
    circle->setRadius(radius);
    return circle;
}

} // namespace

TEST(DisplayList, OfAnEmptyDrawingIsEmpty)
{
    DrawingScene scene;
    const gs::DisplayList list = scene.list();
    EXPECT_TRUE(list.items().empty());
    EXPECT_TRUE(list.extents().isEmpty());
    EXPECT_FALSE(list.isPaper());
    EXPECT_FALSE(list.layers().empty());
}

TEST(DisplayList, LinesAndCirclesStandWhereTheDrawingHasThem)
{
    DrawingScene scene;
    const TvDbObjectId line = scene.add(new TvDbLine({1, 2, 9}, {4, 6, -3}));
    scene.add(circleAt(10, 0, 2));
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 2u);
    EXPECT_EQ(list.items()[0].handle, line.handle().value());
    expectBox(list.items()[0].box, 1, 2, 4, 6);
    expectBox(list.items()[1].box, 8, -2, 12, 2);
    expectBox(list.extents(), 1, -2, 12, 6);
}

TEST(DisplayList, ABlockIsDrawnAtEachOfItsInserts)
{
    DrawingScene scene;
    const TvDbObjectId block = scene.addBlock(u"part");
    scene.addTo(block, new TvDbLine({0, 0, 0}, {1, 0, 0}));
    for (const double x : {0.0, 100.0}) {
        auto* insert = new TvDbBlockReference({x, 5, 0}, block);
        insert->setScaleFactors({2, 2, 2});
        insert->setRotation(std::numbers::pi / 2);
        scene.add(insert);
    }
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 2u);
    expectBox(list.items()[0].box, 0, 5, 0, 7);
    expectBox(list.items()[1].box, 100, 5, 100, 7);
    EXPECT_NE(list.items()[0].handle, list.items()[1].handle); // those of the inserts
}

TEST(DisplayList, BlocksThatInsertThemselvesEndThere)
{
    DrawingScene scene;
    const TvDbObjectId a = scene.addBlock(u"a"), b = scene.addBlock(u"b");
    scene.addTo(a, new TvDbLine({0, 0, 0}, {1, 0, 0}));
    scene.addTo(a, new TvDbBlockReference({1, 0, 0}, b));
    scene.addTo(b, new TvDbBlockReference({1, 0, 0}, a));
    scene.add(new TvDbBlockReference({0, 0, 0}, a));
    EXPECT_EQ(scene.list().items().size(), 1u);
}

TEST(DisplayList, InsertsWithinInsertsThatMultiplyAreCutOff)
{
    DrawingScene scene;
    TvDbObjectId inner = scene.addBlock(u"b0");
    scene.addTo(inner, new TvDbLine({0, 0, 0}, {1, 0, 0}));
    for (int level = 1; level <= 12; ++level) { // ten to the power of twelve lines
        const TvDbObjectId outer =
            scene.addBlock(TvString((u"b" + std::u16string(level, u'x')).c_str()).kwszPtr());
        for (int i = 0; i < 10; ++i)
            scene.addTo(outer, new TvDbBlockReference({double(i), 0, 0}, inner));
        inner = outer;
    }
    scene.add(new TvDbBlockReference({0, 0, 0}, inner));
    gs::ListLimits limits;
    limits.items = 1000;
    const gs::DisplayList list = gs::DisplayList::ofModel(scene.database(), limits);
    EXPECT_TRUE(list.isCut());
    EXPECT_EQ(list.items().size(), 1000u);
    gs::ListLimits fewVisits;
    fewVisits.visits = 500;
    EXPECT_TRUE(gs::DisplayList::ofModel(scene.database(), fewVisits).isCut());
}

TEST(DisplayList, LayersThatAreOffOrFrozenAreNotInIt)
{
    DrawingScene scene;
    const TvDbObjectId off = scene.addLayer(u"off", 1), frozen = scene.addLayer(u"frozen", 2);
    for (const TvDbObjectId layer : {off, frozen}) {
        auto* line = new TvDbLine({0, 0, 0}, {1, 1, 0});
        const TvDbObjectId id = scene.add(line);
        TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)->setLayer(layer);
    }
    EXPECT_EQ(scene.list().items().size(), 2u);
    TvDbObjectPointer<TvDbLayerTableRecord>(off, TvDb::kForWrite)->setIsOff(true);
    EXPECT_EQ(scene.list().items().size(), 1u);
    TvDbObjectPointer<TvDbLayerTableRecord>(frozen, TvDb::kForWrite)->setIsFrozen(true);
    EXPECT_EQ(scene.list().items().size(), 0u);
}

TEST(DisplayList, OnLayerZeroABlocksContentLooksAsItsInsert)
{
    DrawingScene scene;
    const TvDbObjectId red = scene.addLayer(u"red", 1);
    const TvDbObjectId block = scene.addBlock(u"part");
    scene.addTo(block, new TvDbLine({0, 0, 0}, {1, 0, 0}));
    const TvDbObjectId insert = scene.add(new TvDbBlockReference({0, 0, 0}, block));
    EXPECT_EQ(scene.list().items()[0].color, gs::Color::foreground());
    TvDbObjectPointer<TvDbEntity>(insert, TvDb::kForWrite)->setLayer(red);
    const gs::DisplayList list = scene.list();
    EXPECT_EQ(list.items()[0].color, gs::Color::given(0xFF0000));
    EXPECT_EQ(list.layers()[list.items()[0].layer].handle, red.handle().value());
}

TEST(DisplayList, AWindowFindsWhatItShowsAndLittleElse)
{
    DrawingScene scene;
    for (int x = 0; x < 40; ++x)
        for (int y = 0; y < 25; ++y)
            scene.add(circleAt(x * 10, y * 10, 1));
    const gs::DisplayList list = scene.list();
    const gs::Box window{95, 45, 124, 74}; // around 3 by 3 of them
    std::vector<std::uint64_t> marks;
    list.mark(window, marks);
    ASSERT_EQ(marks.size(), (list.items().size() + 63) / 64);
    int found = 0;
    for (std::size_t i = 0; i < list.items().size(); ++i) {
        const bool isMarked = (marks[i / 64] >> i % 64 & 1) != 0;
        EXPECT_EQ(isMarked, list.items()[i].box.touches(window)) << i;
        found += isMarked ? 1 : 0;
    }
    EXPECT_EQ(found, 9);
}

TEST(DisplayList, BulgesAreBows)
{
    DrawingScene scene;
    auto* chain = new TvDbPolyline;
    chain->addVertexAt(0, {0, 0}, 1);
    chain->addVertexAt(1, {4, 0}, 1);
    chain->setClosed(true);
    scene.add(chain);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 1u);
    expectBox(list.extents(), 0, -2, 4, 2);
}

TEST(DisplayList, AWindowAroundEverythingShowsEveryItem)
{
    DrawingScene scene;
    for (int x = 0; x < 70; ++x)
        scene.add(circleAt(x * 10, 0, 1));
    const gs::DisplayList list = scene.list();
    std::vector<std::uint64_t> marks;
    list.mark(list.extents().grown(1), marks);
    EXPECT_EQ(marks, (std::vector<std::uint64_t>{~std::uint64_t(0), 0x3F}));
}
