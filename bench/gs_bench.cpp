// Display lists and the frames that are drawn from them, against the decoding of the same drawing
// and the time between two frames.

#include <cmath>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <db/record_editor.h>
#include <db/tv_db_layout.h>
#include <dwg/dwg_codec.h>
#include <gs/picture.h>

#include "made_drawing.h"
#include "ratio.h"

namespace {

using Buffer = std::vector<std::uint8_t>;

constexpr int kPlanEntities = 20'000;
constexpr std::size_t kLargeSize = 5u << 20;
constexpr int kWidth = 1600, kHeight = 1000;
constexpr double kFramesPerSecond = 60;
constexpr db::Version kVersion = db::Version::Ac1032;

/// A floor plan: rooms in rows, and in each the same number of things of its size: walls,
/// outlines, doors, fixtures, names.
class Plan
{
public:
    static constexpr int kThingsOfRoom = 20;
    static constexpr double kRoom = 6;

    Buffer withEntities(int count)
    {
        m_rooms = static_cast<int>(std::ceil(std::sqrt(count / double(kThingsOfRoom))));
        std::vector<db::Record> entities;
        for (int i = 0; i < count; ++i)
            entities.push_back(entity(i));
        return m_drawing.fileWith(std::move(entities));
    }

private:
    double within()
    {
        m_noise = std::fmod(m_noise * 16807, 2147483647.0);
        return m_noise / 2147483647.0;
    }

    db::Record entity(int index)
    {
        static constexpr const char* kClasses[] = {"LINE", "LINE", "LWPOLYLINE", "CIRCLE",
                                                   "ARC",  "LINE", "TEXT",       "LINE"};
        const int room = index / kThingsOfRoom;
        const double x = room % m_rooms * kRoom, y = room / m_rooms * kRoom;
        db::Record record = m_drawing.entity(kClasses[index % 8], index);
        db::RecordEditor edit(record);
        const double atX = x + within() * kRoom * 0.7, atY = y + within() * kRoom * 0.7;
        edit.setPoint("start", {atX, atY, 0});
        edit.setPoint("end", {atX + within() * kRoom * 0.3, atY + within() * kRoom * 0.3, 0});
        edit.setPoint("center", {atX + 0.5, atY + 0.5, 0});
        edit.setPoint("ins_pt", {atX, atY, 0});
        edit.setReal("radius", 0.1 + within() * 0.4);
        edit.setReal("height", 0.18);
        if (std::string_view(kClasses[index % 8]) == "ARC") {
            edit.setReal("start", within() * 3);
            edit.setReal("end", 3 + within() * 3);
        }
        if (record.has("points")) {
            db::ArrayEditor points = edit.array("points");
            points.resize(12);
            for (std::uint32_t i = 0; i < points.size(); ++i)
                points.setPoint(i, {atX + within() * kRoom * 0.3, atY + within() * kRoom * 0.3, 0});
        }
        return record;
    }

    MadeDrawing m_drawing{kVersion};
    double m_noise = 42;
    int m_rooms = 1;
};

const Buffer& planBytes()
{
    static const Buffer bytes = Plan().withEntities(kPlanEntities);
    return bytes;
}

const Buffer& largeBytes()
{
    static const Buffer bytes = [] {
        const std::size_t sample = Plan().withEntities(4'000).size();
        return Plan().withEntities(static_cast<int>(4'000 * kLargeSize / sample));
    }();
    return bytes;
}

std::unique_ptr<TvDbDatabase> opened(const Buffer& bytes)
{
    dwg::install();
    auto database = std::make_unique<TvDbDatabase>(false, true);
    require(database->readDwgBytes(bytes) == TvStatus::Ok);
    return database;
}

const gs::DisplayList& planList()
{
    static const gs::DisplayList list = gs::DisplayList::ofModel(*opened(planBytes()));
    return list;
}

// --- lists

void decode(benchmark::State& state, const Buffer& bytes)
{
    db::Record record;
    for (auto _ : state) {
        const auto file = codec().open(bytes);
        for (const std::uint64_t handle : (*file)->handles())
            require(bool((*file)->read(handle, record)));
    }
}

void decodePlan(benchmark::State& state)
{
    decode(state, planBytes());
}
BENCHMARK(decodePlan)->Repetitions(5)->Unit(benchmark::kMillisecond);

/// From the file's bytes: the objects are decoded on the way.
void listOfPlan(benchmark::State& state)
{
    gs::DisplayList::ofModel(*opened(planBytes())); // fonts are found once
    for (auto _ : state) {
        const auto database = opened(planBytes());
        benchmark::DoNotOptimize(gs::DisplayList::ofModel(*database));
    }
    state.counters["items"] = static_cast<double>(planList().items().size());
    state.counters["MB"] = static_cast<double>(planList().memory()) / 1e6;
}
BENCHMARK(listOfPlan)->Repetitions(5)->Unit(benchmark::kMillisecond);

/// When the drawing is open and was shown before.
void listAgain(benchmark::State& state)
{
    const auto database = opened(planBytes());
    gs::DisplayList::ofModel(*database);
    for (auto _ : state)
        benchmark::DoNotOptimize(gs::DisplayList::ofModel(*database));
}
BENCHMARK(listAgain)->Repetitions(5)->Unit(benchmark::kMillisecond);

// --- frames

void timeBetweenFrames(benchmark::State& state)
{
    for (auto _ : state)
        state.SetIterationTime(1 / kFramesPerSecond);
}
BENCHMARK(timeBetweenFrames)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

/// The view moves a little from frame to frame, as under a hand.
void frame(benchmark::State& state)
{
    const double zoom = static_cast<double>(state.range(0));
    const gs::DisplayList& list = planList();
    gs::View view = gs::View::fitting(list.extents(), kWidth, kHeight)
                        .zoomed(zoom, {kWidth / 2.0, kHeight / 2.0});
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t* context = cairo_create(surface);
    std::uint32_t drawn = 0;
    for (auto _ : state) {
        view = view.panned(1.3, 0.7);
        drawn = gs::play(list, view, context).drawn;
    }
    state.counters["drawn"] = drawn;
    cairo_destroy(context);
    cairo_surface_destroy(surface);
}
BENCHMARK(frame)->Arg(1)->Arg(4)->Arg(20)->Repetitions(5)->Unit(benchmark::kMillisecond);

// --- a large drawing, from its bytes to its picture

void decodeLarge(benchmark::State& state)
{
    decode(state, largeBytes());
}
BENCHMARK(decodeLarge)->Repetitions(5)->Unit(benchmark::kMillisecond);

/// What a sheet's picture costs: the drawing opened, its first sheet of paper listed and drawn.
void openAndShowSheet(benchmark::State& state)
{
    gs::DisplayList::ofModel(*opened(planBytes())); // fonts are found once
    for (auto _ : state) {
        const auto database = opened(largeBytes());
        const std::vector<TvDbObjectId> layouts = db::layoutsInTabOrder(*database);
        require(layouts.size() > 1 &&
                !gs::layoutPicture(*database, layouts[1], kWidth, kHeight).isEmpty());
    }
}
BENCHMARK(openAndShowSheet)->Repetitions(5)->Unit(benchmark::kMillisecond);

/// The same of its model, where everything is.
void openAndShowModel(benchmark::State& state)
{
    gs::DisplayList::ofModel(*opened(planBytes())); // fonts are found once
    for (auto _ : state) {
        const auto database = opened(largeBytes());
        require(!gs::layoutPicture(*database, {}, kWidth, kHeight).isEmpty());
    }
}
BENCHMARK(openAndShowModel)->Repetitions(5)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::string end = "/repeats:5";
    static const std::string between = "timeBetweenFrames/iterations:10/manual_time";
    static const std::vector<RatioRow> rows = {
        {"display list of 20,000 entities, opened for it, over their decode", "listOfPlan" + end,
         "decodePlan" + end, 1, 3, 2},
        {"display list of 20,000 entities, shown before, over their decode", "listAgain" + end,
         "decodePlan" + end, 1, 3, 2},
        {"a frame of all 20,000 entities over the time between frames", "frame/1" + end, between, 1,
         2, 1},
        {"a frame at four times that over the time between frames", "frame/4" + end, between, 1, 1,
         0.5},
        {"a frame at twenty times that over the time between frames", "frame/20" + end, between, 1,
         1, 0.25},
        {"5 MB opened, its first sheet listed and drawn, over its decode", "openAndShowSheet" + end,
         "decodeLarge" + end, 1, 3, 1},
        {"5 MB opened, its model listed and drawn, over its decode", "openAndShowModel" + end,
         "decodeLarge" + end, 1, 3, 2},
    };
    return rows;
}
