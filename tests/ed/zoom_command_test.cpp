#include <db/tv_db_viewport.h>
#include <ed/named_views.h>
#include <ed/view_history.h>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;
using ed::View;

class ZoomTest : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open("a.dwg");
        View view;
        view.center = {0, 0};
        view.height = 10;
        view.aspect = 0.01;
        ASSERT_TRUE(ed::drawingView().setView(shown(), view));
        aspect = now().aspect;
        drawing().editHeader().setPoint("LIMMIN", {0, 0, 0});
        drawing().editHeader().setPoint("LIMMAX", {12, 9, 0});
        ed::setExtentsSource([this](TvDbObjectId) { return extents; });
    }
    void TearDown() override
    {
        ed::setExtentsSource({});
        HostTest::TearDown();
    }
    TvDbObjectId shown() { return ed::currentViewObject(drawing()); }
    View now() { return *ed::drawingView().view(shown()); }
    /// The height at which a box of that size fills the window.
    double heightFor(double width, double height) const { return std::max(height, width / aspect); }
    TvDbExtents extents;
    double aspect = 1;
};

TEST_F(ZoomTest, ShowsABox)
{
    type(u"ZOOM W 2,1 6,3\n");
    EXPECT_EQ(now().center, TvGePoint2d(4, 2));
    EXPECT_DOUBLE_EQ(now().height, heightFor(4, 2));
    type(u"Z 10,10 @2,-6\n");
    EXPECT_EQ(now().center, TvGePoint2d(11, 7));
    EXPECT_DOUBLE_EQ(now().height, heightFor(2, 6));
    EXPECT_TRUE(said().empty());
}

TEST_F(ZoomTest, ShowsMoreOrLessByAScale)
{
    type(u"ZOOM 2X\n");
    EXPECT_DOUBLE_EQ(now().height, 5);
    EXPECT_EQ(now().center, TvGePoint2d(0, 0));
    type(u"ZOOM S .5x\n");
    EXPECT_DOUBLE_EQ(now().height, 10);
    type(u"ZOOM 3\n");
    EXPECT_DOUBLE_EQ(now().height, heightFor(12, 9) / 3);
    type(u"ZOOM C 7,8 2x\nZOOM C 7,8 4\n");
    EXPECT_EQ(now().center, TvGePoint2d(7, 8));
    EXPECT_DOUBLE_EQ(now().height, 4);
    type(u"ZOOM C 1,1\n\n");
    EXPECT_DOUBLE_EQ(now().height, 4) << "Enter keeps the height";
    EXPECT_TRUE(said().empty());
}

TEST_F(ZoomTest, WhatIsNoScaleIsToldAndNothingChanges)
{
    type(u"ZOOM 0\nZOOM -2\nZOOM 2xp\nZOOM nonsense\nZOOM 0x\nZOOM C 1,1 2xp\n");
    EXPECT_EQ(said(), std::vector<int>(6, 23232));
    type(u"ZOOM W 1,1 1,5\n");
    EXPECT_EQ(said(), std::vector<int>{23234});
    EXPECT_DOUBLE_EQ(now().height, 10);
}

TEST_F(ZoomTest, ShowsAllThatIsDrawnOrTheLimits)
{
    type(u"ZOOM E\n");
    EXPECT_EQ(now().center, TvGePoint2d(6, 4.5)) << "nothing is drawn: the limits";
    extents = TvDbExtents({20, 30, 0}, {24, 32, 5});
    type(u"ZOOM Extents\n");
    EXPECT_EQ(now().center, TvGePoint2d(22, 31));
    EXPECT_DOUBLE_EQ(now().height, 1.05 * heightFor(4, 2)) << "with a margin around it";
    type(u"ZOOM _All\n");
    EXPECT_EQ(now().center, TvGePoint2d(12, 16));
    EXPECT_DOUBLE_EQ(now().height, 1.05 * heightFor(24, 32));
    extents = TvDbExtents({7, 7, 0}, {7, 7, 0}); // a single point
    type(u"ZOOM 2x\nZOOM E\n");
    EXPECT_EQ(now().center, TvGePoint2d(7, 7));
    EXPECT_DOUBLE_EQ(now().height, 1.05 * heightFor(24, 32) / 2);
}

TEST_F(ZoomTest, GoesBackThroughTheLastTenViews)
{
    for (int i = 1; i <= 12; ++i)
        type(TvString().format(u"ZOOM C %d,0 %d\n", i, i));
    for (int i = 11; i >= 2; --i) {
        type(u"ZOOM P\n");
        EXPECT_DOUBLE_EQ(now().height, i);
    }
    EXPECT_TRUE(said().empty());
    type(u"ZOOM P\n");
    EXPECT_EQ(said(), std::vector<int>{23233});
    EXPECT_DOUBLE_EQ(now().height, 2);
}

TEST_F(ZoomTest, ViewsAreRememberedForEachLayout)
{
    type(u"ZOOM 2x\nLAYOUT S Layout1\nZOOM P\n");
    EXPECT_EQ(said(), std::vector<int>{23233});
    type(u"LAYOUT S Model\nZOOM P\n");
    EXPECT_DOUBLE_EQ(now().height, 10);
}

TEST_F(ZoomTest, WorksInTheScreensPlane)
{
    View front = now();
    front.direction = {0, -1, 0}; // x to the right, z up
    ed::drawingView().setView(shown(), front);
    extents = TvDbExtents({0, -50, 2}, {4, 50, 4});
    type(u"ZOOM E\n");
    EXPECT_NEAR(now().center.x, 2, 1e-9);
    EXPECT_NEAR(now().center.y, 3, 1e-9);
    EXPECT_NEAR(now().height, 1.05 * heightFor(4, 2), 1e-9);
}

TEST_F(ZoomTest, AWindowOfASheetIsZoomedByPaper)
{
    type(u"LAYOUT S Layout1\nZOOM 1x\n");
    const TvDbObjectId sheet = shown();
    ASSERT_FALSE(db::addOverallViewport(sheet).isNull());
    TvDbObjectId id;
    {
        TvDbObjectPointer<TvDbBlockTableRecord> space(drawing().paperSpaceId(), TvDb::kForWrite);
        auto viewport = std::make_unique<TvDbViewport>();
        viewport->setWidth(4);
        viewport->setHeight(2);
        viewport->setViewHeight(50);
        space->appendTvDbEntity(id, viewport.get());
        viewport.release()->close();
    }
    type(u"CVPORT 2\nZOOM 1/8xp\nZOOM 0.5XP\n");
    EXPECT_EQ(said(), std::vector<int>{23232});
    EXPECT_EQ(shown(), id);
    EXPECT_DOUBLE_EQ(TvDbObjectPointer<TvDbViewport>(id)->customScale(), 0.5);
}

TEST_F(ZoomTest, PanMovesByTwoPointsOrADisplacement)
{
    type(u"PAN 1,1 4,3\n");
    EXPECT_EQ(now().center, TvGePoint2d(-3, -2));
    type(u"P 3,2\n\n");
    EXPECT_EQ(now().center, TvGePoint2d(-6, -4));
    EXPECT_DOUBLE_EQ(now().height, 10);
    type(u"PAN 0,0 @10<90\n");
    EXPECT_NEAR(now().center.x, -6, 1e-9);
    EXPECT_NEAR(now().center.y, -14, 1e-9);
}

TEST_F(ZoomTest, GivenUpChangesNothingAndIsACancel)
{
    reactor.told.clear();
    type(u"ZOOM W 1,1\n"); // nobody tells the other corner
    EXPECT_DOUBLE_EQ(now().height, 10);
    EXPECT_EQ(reactor.told, (Names{"starts ZOOM", "cancelled ZOOM"}));
    type(u"PAN 1,1\x1b");
    EXPECT_EQ(now().center, TvGePoint2d(0, 0));
}

TEST_F(ZoomTest, IsAStepOfTheHistoryAndSavedInOldAndNewVersions)
{
    type(u"ZOOM C 7,8 4\nU\n");
    EXPECT_DOUBLE_EQ(now().height, 10);
    type(u"REDO\n-VIEW S Detail\n");
    for (const char* version : {"2000", "2018"}) {
        const TvString name = folder.file((std::string("zoomed") + version + ".dwg").c_str());
        type(TvString(u"SAVEAS ") + TvString(version) + u" " + name + u"\n");
        TvDbDatabase again(false, true);
        ASSERT_EQ(again.readDwgFile(name), TvStatus::Ok);
        const View view = *ed::StoredDrawingView().view(ed::currentViewObject(again));
        EXPECT_EQ(view.center, TvGePoint2d(7, 8)) << version;
        EXPECT_DOUBLE_EQ(view.height, 4) << version;
        const TvDbObjectPointer<TvDbViewTable> views(again.symbolTableId(TvDb::SymbolTable::View));
        EXPECT_TRUE(views->has(u"Detail")) << version;
    }
}

TEST_F(ZoomTest, WithoutADrawingItIsTold)
{
    manager.closeDocument(manager.curDocument());
    type(u"ZOOM\nPAN\nREGEN\nLAYOUT\n-VIEW\nU\nAUDIT\nSAVE\nCLOSE\n");
    EXPECT_EQ(said(), std::vector<int>(9, 23164));
}

// Named views

TEST_F(ZoomTest, NamedViewsAreSavedRestoredAndDeleted)
{
    type(u"ZOOM C 1,2 3\n-VIEW Save Small one\nZOOM C 9,9 20\n-V R small ONE\n");
    EXPECT_EQ(now().center, TvGePoint2d(1, 2));
    EXPECT_DOUBLE_EQ(now().height, 3);
    type(u"ZOOM P\n");
    EXPECT_DOUBLE_EQ(now().height, 20) << "what was shown before can be gone back to";
    told();
    type(u"-VIEW ?\n-VIEW D Small one\n-VIEW R Small one\n-VIEW D Small one\n");
    EXPECT_EQ(told(), (Names{"say 23217 Small one model space", "say 23216 Small one",
                             "say 23216 Small one"}));
}

TEST_F(ZoomTest, ANameThatNoViewCanHaveIsToldBeforeItsWindowIsAskedFor)
{
    type(u"-VIEW W A,B\n-VIEW W C|D\n-VIEW ?\n");
    EXPECT_EQ(said(), std::vector<int>(2, 23204));
}

TEST_F(ZoomTest, ANamedViewOfASheetBringsItsLayoutBack)
{
    type(u"LAYOUT N Plan\nLAYOUT S Plan\nZOOM C 5,5 2\n-VIEW S Corner\nLAYOUT S Layout1\n"
         u"-VIEW R Corner\n");
    EXPECT_EQ(ed::variable(u"CTAB"), ed::VariableValue(TvString(u"Plan")));
    EXPECT_DOUBLE_EQ(now().height, 2);
    const TvDbObjectPointer<TvDbViewTable> views(drawing().symbolTableId(TvDb::SymbolTable::View));
    TvDbObjectId id;
    ASSERT_EQ(views->getIdAt(u"Corner", id), TvStatus::Ok);
    const TvDbObjectPointer<TvDbViewTableRecord> view(id);
    EXPECT_TRUE(view->isPaperspaceView());
    EXPECT_EQ(view->getLayout(), shown());
    EXPECT_EQ(reactor.told.back(), "ended -VIEW");
}

TEST_F(ZoomTest, ANamedViewIsReplacedOnlyAfterAYesAndKeepsItsCategory)
{
    type(u"ZOOM C 1,1 3\n-VIEW S A\n");
    const TvDbObjectPointer<TvDbViewTable> views(drawing().symbolTableId(TvDb::SymbolTable::View));
    TvDbObjectId id;
    views->getIdAt(u"A", id);
    TvDbObjectPointer<TvDbViewTableRecord>(id, TvDb::kForWrite)->setCategoryName(u"Plans");
    type(u"ZOOM C 5,5 7\n-VIEW S a\n\n-VIEW S a\nNo\n");
    EXPECT_EQ(TvDbObjectPointer<TvDbViewTableRecord>(id)->height(), 3);
    type(u"-VIEW S a\nYes\n");
    EXPECT_EQ(TvDbObjectPointer<TvDbViewTableRecord>(id)->height(), 7);
    EXPECT_EQ(TvDbObjectPointer<TvDbViewTableRecord>(id)->getCategoryName(), u"Plans");
    EXPECT_TRUE(said().empty());
    type(u"-VIEW S a=b\n");
    EXPECT_EQ(said(), std::vector<int>{23204});
}

} // namespace
