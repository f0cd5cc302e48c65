#include "window_scene.h"

#include <QPainter>
#include <QWheelEvent>

#include <db/tv_db_curves.h>
#include <db/tv_db_symbol_table.h>

namespace {

using app::ScreenPoint;
using window::DrawingCanvas;

void wheel(DrawingCanvas& canvas, QPointF at, int eighths, Qt::KeyboardModifiers keys = {})
{
    QWheelEvent event(at, canvas.mapToGlobal(at), {}, {0, eighths}, Qt::NoButton, keys,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &event);
}

class CanvasTest : public WindowTest
{
protected:
    CanvasTest() { open("a.dwg"); }
    DrawingCanvas& canvas() { return main->currentPage()->canvas(); }
};

TEST_F(CanvasTest, TheDrawingIsPainted)
{
    const QImage& picture = canvas().raster().picture();
    ASSERT_FALSE(picture.isNull());
    const QRgb background = picture.pixel(0, 0);
    int different = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            different += picture.pixel(x, y) != background;
    EXPECT_GT(different, 50);
}

TEST_F(CanvasTest, TheWheelKeepsWhatIsUnderTheCursor)
{
    const QPointF at(123, 77);
    const TvGePoint2d before = canvas().view().toPlan({at.x(), at.y()});
    const double scale = canvas().view().scale();
    wheel(canvas(), at, 120);
    EXPECT_NEAR(canvas().view().scale(), scale * app::kWheelStep, scale * 1e-9);
    const TvGePoint2d after = canvas().view().toPlan({at.x(), at.y()});
    EXPECT_NEAR(after.x, before.x, 1e-6);
    EXPECT_NEAR(after.y, before.y, 1e-6);
    wheel(canvas(), at, -120);
    EXPECT_NEAR(canvas().view().scale(), scale, scale * 1e-9);
}

TEST_F(CanvasTest, TwoFingersPan)
{
    const ScreenPoint before = canvas().view().toScreen({0, 0});
    QWheelEvent event(QPointF(50, 50), canvas().mapToGlobal(QPointF(50, 50)), {12, -7}, {12, -7},
                      Qt::NoButton, Qt::NoModifier, Qt::ScrollUpdate, false);
    QApplication::sendEvent(&canvas(), &event);
    const ScreenPoint after = canvas().view().toScreen({0, 0});
    EXPECT_NEAR(after.x - before.x, 12, 1e-6);
    EXPECT_NEAR(after.y - before.y, -7, 1e-6);
}

TEST_F(CanvasTest, TheMiddleButtonPansAndTwiceShowsAll)
{
    const ScreenPoint before = canvas().view().toScreen({0, 0});
    QTest::mousePress(&canvas(), Qt::MiddleButton, {}, {100, 100});
    QTest::mouseMove(&canvas(), {130, 90});
    QTest::mouseRelease(&canvas(), Qt::MiddleButton, {}, {130, 90});
    const ScreenPoint after = canvas().view().toScreen({0, 0});
    EXPECT_NEAR(after.x - before.x, 30, 1e-6);
    EXPECT_NEAR(after.y - before.y, -10, 1e-6);

    canvas().zoomBy(1e-3);
    QTest::mouseDClick(&canvas(), Qt::MiddleButton, {}, {100, 100});
    const gs::Box& all = canvas().list()->extents();
    const ScreenPoint low = canvas().view().toScreen({all.lowX, all.lowY});
    const ScreenPoint high = canvas().view().toScreen({all.highX, all.highY});
    EXPECT_GT(std::max(high.x - low.x, low.y - high.y), canvas().height() / 2.0);
}

TEST_F(CanvasTest, AWindowIsChosenWithTheMouseAndEscapeEndsIt)
{
    const TvGePoint2d low = canvas().view().toPlan({100, 200});
    canvas().beginZoomWindow();
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, {100, 200});
    QTest::mouseMove(&canvas(), {300, 100});
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, {300, 100});
    EXPECT_FALSE(canvas().isChoosingWindow());
    const ScreenPoint now = canvas().view().toScreen(low);
    EXPECT_NEAR(now.x, std::max(0.0, now.x), 1e-6);
    EXPECT_TRUE(std::abs(now.x) < 1 || std::abs(now.y - canvas().height()) < 1);

    const app::ViewTransform before = canvas().view();
    canvas().beginZoomWindow();
    QTest::keyClick(&canvas(), Qt::Key_Escape);
    EXPECT_FALSE(canvas().isChoosingWindow());
    EXPECT_EQ(canvas().view(), before);
}

TEST_F(CanvasTest, ArrowKeysPan)
{
    const TvGePoint2d before = canvas().view().center();
    QTest::keyClick(&canvas(), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_GT(canvas().view().center().x, before.x);
    QTest::keyClick(&canvas(), Qt::Key_Left);
    EXPECT_NEAR(canvas().view().center().x, before.x, 1e-6);
    QTest::keyClick(&canvas(), Qt::Key_Up);
    EXPECT_GT(canvas().view().center().y, before.y);
}

TEST_F(CanvasTest, APanShowsTheFormerPictureAtOnceWhereItBelongs)
{
    settle();
    const QImage before = canvas().raster().picture();
    window::DrawingRaster raster = canvas().raster();
    app::ViewTransform moved = canvas().view();
    moved.panBy(40, 0);
    raster.setView(moved, 1);
    ASSERT_FALSE(raster.isFinished());
    QImage shown(before.size(), QImage::Format_RGB32);
    QPainter painter(&shown);
    raster.paint(painter);
    painter.end();
    for (int y = 0; y < before.height(); y += 3)
        for (int x = 0; x + 40 < before.width(); x += 3)
            ASSERT_EQ(shown.pixel(x + 40, y), before.pixel(x, y)) << x << ' ' << y;
}

TEST_F(CanvasTest, ALargeDrawingIsPaintedInSlices)
{
    TvDbDatabase drawing;
    {
        TvDbObjectPointer<TvDbBlockTableRecord> model(drawing.modelSpaceId(), TvDb::kForWrite);
        for (int i = 0; i < 5000; ++i) {
            auto line = std::make_unique<TvDbLine>(TvGePoint3d(i, 0, 0), TvGePoint3d(0, i, 0));
            TvDbObjectId id;
            ASSERT_EQ(model->appendTvDbEntity(id, line.get()), TvStatus::Ok);
            line.release()->close();
        }
    }
    window::DrawingRaster raster;
    raster.setList(std::make_shared<gs::DisplayList>(gs::DisplayList::ofModel(drawing)));
    app::ViewTransform view({}, 1, 1600, 1200);
    view.fit({0, 0}, {5000, 5000});
    raster.setView(view, 1);
    int slices = 1;
    while (!raster.work(1))
        ++slices;
    EXPECT_GT(slices, 1);
    EXPECT_EQ(raster.picture().size(), QSize(1600, 1200));
}

TEST_F(CanvasTest, PicturesHaveThePixelsOfTheScreen)
{
    window::DrawingRaster raster;
    raster.setView(app::ViewTransform({}, 1, 100.5, 50), 2);
    while (!raster.work(10)) {
    }
    EXPECT_EQ(raster.picture().size(), QSize(201, 100));
    EXPECT_EQ(raster.picture().devicePixelRatio(), 2);
}

} // namespace
