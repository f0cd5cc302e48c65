#include <cmath>
#include <limits>
#include <numbers>

#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>
#include <ed/drawing_view.h>
#include <ed/layouts.h>
#include <ed/system_variables.h>

#include "editor_scene.h"

namespace {

using ed::View;

class DrawingViewTest : public EditorTest
{
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        tvdbHostApplicationServices()->setWorkingDatabase(&drawing);
        const std::vector<TvDbObjectId> layouts = db::layoutsInTabOrder(drawing);
        ASSERT_GE(layouts.size(), 2u);
        model = layouts[0];
        sheet = layouts[1];
    }
    void TearDown() override
    {
        ed::setExtentsSource({});
        EditorTest::TearDown();
    }
    static View some()
    {
        View view;
        view.center = {10, 20};
        view.height = 30;
        view.aspect = 0.001; // narrower than any window here: the height stays
        view.twist = 0.25;
        view.direction = {1, 1, 1};
        view.target = {3, 4, 5};
        view.lensLengthMm = 35;
        return view;
    }
    TvDbDatabase drawing;
    TvDbObjectId model, sheet;
    ed::StoredDrawingView stored;
};

TEST_F(DrawingViewTest, TheViewOfModelSpaceIsTheActiveRecord)
{
    const TvDbObjectPointer<TvDbViewportTable> table(
        drawing.symbolTableId(TvDb::SymbolTable::Viewport));
    const auto now = stored.view(model);
    ASSERT_TRUE(now);
    ASSERT_TRUE(stored.setView(model, some()));
    TvDbObjectId id;
    ASSERT_EQ(table->getIdAt(u"*Active", id), TvStatus::Ok);
    const TvDbObjectPointer<TvDbViewportTableRecord> record(id);
    EXPECT_EQ(record->fields().point("center"), (db::Point{10, 20, 0}));
    EXPECT_EQ(record->fields().real("height"), 30);
    EXPECT_DOUBLE_EQ(record->fields().real("width"), 30 * now->aspect);
    EXPECT_EQ(record->fields().real("twist"), 0.25);
    EXPECT_EQ(record->fields().point("direction"), (db::Point{1, 1, 1}));
    EXPECT_EQ(record->fields().point("target"), (db::Point{3, 4, 5}));
    EXPECT_EQ(record->fields().real("lens_length"), 35);
}

TEST_F(DrawingViewTest, ASheetGetsItsOverallViewportWhenItIsLookedAtOtherwise)
{
    const auto before = stored.view(sheet);
    ASSERT_TRUE(before) << "one that was never shown has a view, too";
    const TvDbObjectPointer<TvDbLayout> layout(sheet, TvDb::kForNotify);
    ASSERT_TRUE(layout->getViewportArray().empty());
    ASSERT_TRUE(stored.setView(sheet, some()));
    ASSERT_EQ(layout->getViewportArray().size(), 1u);
    const TvDbObjectPointer<TvDbViewport> overall(layout->getViewportArray()[0]);
    EXPECT_TRUE(overall->isOverall());
    EXPECT_EQ(overall->centerPoint(), TvGePoint3d(10, 20, 0));
    EXPECT_EQ(overall->height(), 30);
    EXPECT_EQ(overall->viewHeight(), 30);
    EXPECT_DOUBLE_EQ(overall->width(), 30 * before->aspect);
    EXPECT_EQ(stored.view(sheet)->center, TvGePoint2d(10, 20));
    EXPECT_EQ(stored.view(overall->objectId()), stored.view(sheet));
}

TEST_F(DrawingViewTest, AViewThatIsWiderThanTheWindowIsShownWhole)
{
    View wide = some();
    wide.aspect = 100;
    ASSERT_TRUE(stored.setView(model, wide));
    const auto shown = stored.view(model);
    EXPECT_NEAR(shown->width(), 3000, 1e-9);
    EXPECT_GT(shown->height, 30);
}

TEST_F(DrawingViewTest, AWindowOfASheetShowsPartOfModelSpaceAndKeepsItsSize)
{
    ASSERT_FALSE(db::addOverallViewport(sheet).isNull());
    TvDbObjectId block, id;
    {
        const TvDbObjectPointer<TvDbLayout> layout(sheet);
        block = layout->getBlockTableRecordId();
    }
    {
        TvDbObjectPointer<TvDbBlockTableRecord> space(block, TvDb::kForWrite);
        auto viewport = std::make_unique<TvDbViewport>();
        viewport->setWidth(4);
        viewport->setHeight(2);
        ASSERT_EQ(space->appendTvDbEntity(id, viewport.get()), TvStatus::Ok);
        viewport.release()->close();
    }
    ASSERT_TRUE(stored.setView(id, some()));
    {
        const TvDbObjectPointer<TvDbViewport> viewport(id, TvDb::kForWrite);
        EXPECT_EQ(viewport->width(), 4);
        EXPECT_EQ(viewport->height(), 2);
        EXPECT_EQ(viewport->viewHeight(), 30);
        EXPECT_EQ(viewport->viewCenter(), TvGePoint2d(10, 20));
        viewport->setLocked(true);
    }
    View other = some();
    other.height = 7;
    EXPECT_FALSE(stored.setView(id, other)) << "it is locked";
    EXPECT_EQ(stored.view(id)->height, 30);
    EXPECT_TRUE(stored.setView(id, *stored.view(id))) << "nothing to change";

    // The commands look at it once it is the current one.
    drawing.setTilemode(false);
    EXPECT_EQ(ed::variable(u"CVPORT"), ed::VariableValue(std::int16_t(1)));
    EXPECT_EQ(ed::currentViewObject(drawing), sheet);
    EXPECT_TRUE(ed::setVariable(u"CVPORT", std::int16_t(2)));
    EXPECT_EQ(ed::variable(u"CVPORT"), ed::VariableValue(std::int16_t(2)));
    EXPECT_EQ(ed::currentViewObject(drawing), id);
    EXPECT_FALSE(ed::setVariable(u"CVPORT", std::int16_t(3)));
    EXPECT_TRUE(ed::setVariable(u"CVPORT", std::int16_t(1)));
    EXPECT_EQ(ed::currentViewObject(drawing), sheet);
    drawing.setTilemode(true);
    EXPECT_EQ(ed::variable(u"CVPORT"), ed::VariableValue(std::int16_t(2)));
    EXPECT_EQ(ed::currentViewObject(drawing), model);
}

TEST_F(DrawingViewTest, WhatCannotBeShownIsRefused)
{
    const auto before = stored.view(model);
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kHuge = std::numeric_limits<double>::max();
    const auto refused = [&](auto change) {
        View view = some();
        change(view);
        return !ed::isUsable(view) && !stored.setView(model, view);
    };
    EXPECT_TRUE(refused([](View& view) { view.height = 0; }));
    EXPECT_TRUE(refused([](View& view) { view.height = -1; }));
    EXPECT_TRUE(refused([](View& view) { view.height = kNone; }));
    EXPECT_TRUE(refused([](View& view) { view.aspect = 0; }));
    EXPECT_TRUE(refused([](View& view) { view.center.x = kNone; }));
    EXPECT_TRUE(refused([](View& view) { view.direction = {}; }));
    EXPECT_TRUE(refused([](View& view) { view.height = view.aspect = kHuge; }));
    EXPECT_EQ(stored.view(model), before);
    EXPECT_FALSE(stored.view({}));
    EXPECT_FALSE(stored.setView({}, some()));
    EXPECT_FALSE(stored.view(drawing.layoutDictionaryId()));
    EXPECT_TRUE(stored.extents({}).isEmpty());
}

TEST_F(DrawingViewTest, NumbersOfADrawingThatMakeNoSenseAreMended)
{
    stored.setView(model, some());
    const TvDbObjectPointer<TvDbViewportTable> table(
        drawing.symbolTableId(TvDb::SymbolTable::Viewport));
    TvDbObjectId id;
    table->getIdAt(u"*Active", id);
    {
        const TvDbObjectPointer<TvDbViewportTableRecord> record(id, TvDb::kForWrite);
        record->edit().setReal("height", 0);
        record->edit().setPoint("direction", {0, 0, 0});
    }
    ASSERT_TRUE(stored.view(model));
    EXPECT_TRUE(ed::isUsable(*stored.view(model)));
    EXPECT_TRUE(stored.setView(model, some()));
    EXPECT_EQ(stored.view(model)->height, 30);
}

TEST_F(DrawingViewTest, ExtentsComeFromWhoCanDrawAndElseFromTheDrawing)
{
    EXPECT_TRUE(stored.extents(model).isEmpty());
    EXPECT_TRUE(stored.extents(sheet).isEmpty());
    drawing.editHeader().setPoint("EXTMIN", {1, 2, 0});
    drawing.editHeader().setPoint("EXTMAX", {5, 4, 1});
    EXPECT_EQ(stored.extents(model), TvDbExtents({1, 2, 0}, {5, 4, 1}));
    TvDbObjectId asked;
    ed::setExtentsSource([&](TvDbObjectId where) {
        asked = where;
        return TvDbExtents({0, 0, 0}, {9, 9, 9});
    });
    EXPECT_EQ(stored.extents(sheet), TvDbExtents({0, 0, 0}, {9, 9, 9}));
    EXPECT_EQ(asked, sheet);
    ed::setExtentsSource([](TvDbObjectId) { return TvDbExtents(); });
    EXPECT_EQ(stored.extents(model), TvDbExtents({1, 2, 0}, {5, 4, 1}));
}

TEST_F(DrawingViewTest, ComesBackFromFilesOfTheOldestAndTheNewestVersion)
{
    stored.setView(model, some());
    stored.setView(sheet, some());
    const View ofModel = *stored.view(model), ofSheet = *stored.view(sheet);
    for (const int version : {TvDb::kAc1015, TvDb::kAc1032}) {
        const TvString path = folder.file("view.dwg");
        ASSERT_EQ(drawing.saveAs(path, false, version), TvStatus::Ok) << version;
        TvDbDatabase again(false, true);
        ASSERT_EQ(again.readDwgFile(path), TvStatus::Ok);
        const std::vector<TvDbObjectId> layouts = db::layoutsInTabOrder(again);
        EXPECT_EQ(stored.view(layouts[0]), ofModel) << version;
        EXPECT_EQ(stored.view(layouts[1])->center, ofSheet.center) << version;
        EXPECT_EQ(stored.view(layouts[1])->height, ofSheet.height) << version;
        EXPECT_DOUBLE_EQ(stored.view(layouts[1])->aspect, ofSheet.aspect) << version;
    }
}

TEST(View, DisplayCoordinatesHaveTheirOriginAtTheTargetAndTurnWithTheTwist)
{
    View view;
    view.target = {10, 20, 0};
    EXPECT_TRUE((ed::displayToWorld(view) * TvGePoint3d(1, 2, 0)).isEqualTo({11, 22, 0}));
    view.twist = std::numbers::pi / 2;
    // The world's x axis points up on the screen.
    EXPECT_TRUE(
        (*ed::displayToWorld(view).inverse() * TvGePoint3d(11, 20, 0)).isEqualTo({0, 1, 0}));
    view = {};
    view.direction = {0, -1, 0}; // from the front: z is up
    EXPECT_TRUE((*ed::displayToWorld(view).inverse() * TvGePoint3d(3, 7, 5)).isEqualTo({3, 5, -7}));
    const TvDbExtents box = ed::displayExtents(view, TvDbExtents({0, 0, 0}, {1, 2, 3}));
    EXPECT_TRUE(box.minPoint().isEqualTo({0, 0, -2}));
    EXPECT_TRUE(box.maxPoint().isEqualTo({1, 3, 0}));
}

TEST_F(DrawingViewTest, AWindowTakesThePlaceOfTheStoredView)
{
    struct Window : ed::StoredDrawingView {
    } window;
    ed::DrawingView& without = ed::drawingView();
    EXPECT_NE(&without, &window);
    ed::setDrawingView(&window);
    EXPECT_EQ(&ed::drawingView(), &window);
    ed::setDrawingView(nullptr);
    EXPECT_EQ(&ed::drawingView(), &without);
}

} // namespace
