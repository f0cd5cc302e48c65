// What a frame of the drawing view costs while the user pans and zooms a drawing of 20,000
// entities, against a copy of the picture's bytes; and the longest slice in which the picture is
// painted anew.

#include <cstring>

#include <QPainter>

#include <benchmark/benchmark.h>

#include <db/tv_db_curves.h>
#include <db/tv_db_symbol_table.h>
#include <window/drawing_raster.h>

#include "ratio.h"

namespace {

constexpr int kEntities = 20'000, kWidth = 1920, kHeight = 1080;
constexpr int kSliceMs = 8;

std::shared_ptr<const gs::DisplayList> largeList()
{
    static const std::shared_ptr<const gs::DisplayList> list = [] {
        TvDbDatabase drawing;
        TvDbObjectPointer<TvDbBlockTableRecord> model(drawing.modelSpaceId(), TvDb::kForWrite);
        for (int i = 0; i < kEntities; ++i) {
            const double x = i % 200, y = i / 200;
            auto line =
                std::make_unique<TvDbLine>(TvGePoint3d(x, y, 0), TvGePoint3d(x + 0.8, y + 0.6, 0));
            TvDbObjectId id;
            if (model->appendTvDbEntity(id, line.get()) == TvStatus::Ok)
                line.release()->close();
        }
        model->close();
        return std::make_shared<gs::DisplayList>(gs::DisplayList::ofModel(drawing));
    }();
    return list;
}

app::ViewTransform wholeView()
{
    app::ViewTransform view({}, 1, kWidth, kHeight);
    const gs::Box& all = largeList()->extents();
    view.fit({all.lowX, all.lowY}, {all.highX, all.highY});
    return view;
}

window::DrawingRaster finished()
{
    window::DrawingRaster raster;
    raster.setList(largeList());
    raster.setView(wholeView(), 1);
    while (!raster.work(1000)) {
    }
    return raster;
}

void copyPicture(benchmark::State& state)
{
    const QImage picture = finished().picture();
    QImage target = picture.copy();
    for (auto _ : state) {
        std::memcpy(target.bits(), picture.constBits(),
                    static_cast<std::size_t>(picture.sizeInBytes()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyPicture);

template <class Move>
void frames(benchmark::State& state, Move move)
{
    window::DrawingRaster raster = finished();
    app::ViewTransform view = wholeView();
    QImage screen(kWidth, kHeight, QImage::Format_RGB32);
    int step = 0;
    for (auto _ : state) {
        move(view, ++step % 2 ? 1 : -1);
        raster.setView(view, 1);
        QPainter painter(&screen);
        raster.paint(painter);
    }
}

void panFrame(benchmark::State& state)
{
    frames(state, [](app::ViewTransform& view, int way) { view.panBy(way * 17, way * 9); });
}
BENCHMARK(panFrame);

void zoomFrame(benchmark::State& state)
{
    frames(state, [](app::ViewTransform& view, int way) {
        view.zoomAt({700, 300}, way > 0 ? 1.2 : 1 / 1.2);
    });
}
BENCHMARK(zoomFrame);

void paintAnew(benchmark::State& state)
{
    window::DrawingRaster raster = finished();
    app::ViewTransform view = wholeView();
    int step = 0;
    for (auto _ : state) {
        view.panBy(++step % 2 ? 17 : -17, 0);
        raster.setView(view, 1);
        while (!raster.work(kSliceMs)) {
        }
    }
}
BENCHMARK(paintAnew);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::vector<RatioRow> rows = {
        {"a frame of a pan, 20,000 entities, 1920 x 1080", "panFrame", "copyPicture", 1, 8, 3},
        {"a frame of a zoom", "zoomFrame", "copyPicture", 1, 0, 0},
        {"the whole picture painted anew", "paintAnew", "copyPicture", 1, 0, 0},
    };
    return rows;
}
