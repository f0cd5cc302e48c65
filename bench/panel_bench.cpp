// The sheet list against what its work cannot do without: asking the disk about each drawing, and
// filling the tree.

#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <base/path_rules.h>
#include <core/status_pass.h>
#include <core/watch_poller.h>
#include <core/watch_table.h>
#include <panel/sheet_tree.h>
#include <sm/change_scope.h>
#include <sm/kv_db_util.h>

#include "ratio.h"

namespace {

namespace fs = std::filesystem;

constexpr int kSheets = 10'000, kDrawings = 1'000, kSubsets = 100;

/// A set of sheets, ten in each drawing, a hundred in each subset; made once.
class Scene
{
public:
    Scene()
    {
        std::string pattern = (fs::temp_directory_path() / "kv-bench-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
        for (int i = 0; i < kDrawings; ++i) {
            drawings.push_back((m_folder / ("drawing" + std::to_string(i) + ".dwg")).string());
            std::ofstream(drawings.back()) << "a drawing";
        }
        TvSmSheetSet* set = database.getSheetSet();
        for (int i = 0; i < kSubsets; ++i) {
            TvSmSubset* subset = set->createSubset(TvString().format(u"Level %d", i), u"");
            set->insertComponent(subset, nullptr);
            subsets.push_back(subset);
        }
        for (int i = 0; i < kSheets; ++i)
            addSheet(*subsets[static_cast<std::size_t>(i % kSubsets)], i);
        tree.setDatabase(&database);
        tree.Merge();
    }
    ~Scene()
    {
        tree.ClearTree();
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    /// Taken out of its subset, and put back at its end.
    void moveOneSheet()
    {
        TvSmSubset* subset = subsets[kSubsets / 2];
        const std::unique_ptr<TvSmEnumerator<TvSmComponent>> each(subset->getSheetEnumerator());
        subset->insertComponentAfter(each->next(), nullptr);
    }

    TvSmDatabase database;
    std::vector<std::string> drawings;
    std::vector<TvSmSubset*> subsets;
    panel::SheetTree tree;

private:
    void addSheet(TvSmSubset& subset, int number)
    {
        TvSmSheet* sheet = subset.createSheet(TvString().format(u"Sheet %d", number), u"");
        sheet->setNumber(TvString().format(u"A-%05d", number));
        subset.insertComponent(sheet, nullptr);
        auto* layout = new TvSmTvDbLayoutReference;
        layout->initNew(sheet, u"");
        layout->setFileName(
            base::pathFromNative(drawings[static_cast<std::size_t>(number % kDrawings)]));
        sheet->setLayoutReference(layout);
    }
    fs::path m_folder;
};

Scene& scene()
{
    static Scene made;
    return made;
}

void StatDrawings(benchmark::State& state)
{
    const std::vector<std::string>& drawings = scene().drawings;
    for (auto _ : state) {
        struct stat seen = {};
        for (const std::string& path : drawings)
            if (::stat(path.c_str(), &seen) != 0)
                std::abort();
        benchmark::DoNotOptimize(seen);
    }
}
BENCHMARK(StatDrawings)->Unit(benchmark::kMillisecond);

/// With the thread that asks the disk.
void StatusPass(benchmark::State& state)
{
    for (auto _ : state) {
        std::size_t told = 0;
        core::StatusPass pass(&scene().database,
                              [&](const TvString&, core::SheetImage) { ++told; });
        pass.finish();
        if (pass.drawingsAsked() != kDrawings || told != kSheets + kSubsets)
            std::abort();
    }
}
BENCHMARK(StatusPass)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime(); // two threads

constexpr int kWatched = 100;

/// Open sets, each in a folder of its own, that nobody changes.
class WatchedSets
{
public:
    WatchedSets()
    {
        std::string pattern = (fs::temp_directory_path() / "kv-bench-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
        TvSmSheetSetMgr& manager = *KvDbUtil::tarvGetSheetSetMgr();
        manager.registerEventHandler(&m_events);
        for (int i = 0; i < kWatched; ++i) {
            const fs::path folder = m_folder / ("house" + std::to_string(i));
            fs::create_directory(folder);
            files.push_back((folder / "house.dst").string());
            TvSmDatabase* set =
                manager.createDatabase(base::pathFromNative(files.back()), {}, true);
            if (!set || !set->save(0))
                std::abort();
            g_watchTable.at(set).takeFile();
        }
    }
    ~WatchedSets()
    {
        TvSmSheetSetMgr& manager = *KvDbUtil::tarvGetSheetSetMgr();
        while (!g_watchTable.empty())
            manager.closeDatabase(g_watchTable.begin()->first);
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    std::vector<std::string> files;

private:
    fs::path m_folder;
    CTvSmSheetSetEventsHandler m_events{&g_watchTable};
};

const WatchedSets& watchedSets()
{
    static const WatchedSets made;
    return made;
}

void StatWatched(benchmark::State& state)
{
    const std::vector<std::string>& files = watchedSets().files;
    for (auto _ : state) {
        struct stat seen = {};
        for (const std::string& path : files)
            if (::fstatat(AT_FDCWD, path.c_str(), &seen, 0) != 0)
                std::abort();
        benchmark::DoNotOptimize(seen);
    }
}
BENCHMARK(StatWatched)->Unit(benchmark::kMicrosecond);

void tickOver(benchmark::State& state, int trustMs)
{
    watchedSets();
    core::WatchPoller poller(10'000, core::WatchPoller::kSilentMs, trustMs);
    for (int i = 0; i < 3; ++i)
        poller.tick(false);
    for (auto _ : state)
        poller.tick(false);
}

/// As the panel ticks; the looks of every few seconds are in it.
void IdleTick(benchmark::State& state)
{
    tickOver(state, core::WatchPoller::kTrustMs);
}
BENCHMARK(IdleTick)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime(); // two threads

/// Where the system tells nothing: a look at each set and at who has its lock.
void TickThatLooks(benchmark::State& state)
{
    tickOver(state, 0);
}
BENCHMARK(TickThatLooks)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime();

void FillTree(benchmark::State& state)
{
    panel::SheetTree& tree = scene().tree;
    for (auto _ : state) {
        tree.ClearTree();
        tree.Merge();
        tree.ExpandAll(true);
    }
}
BENCHMARK(FillTree)->Unit(benchmark::kMillisecond);

void MergeOneMove(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        scene().moveOneSheet();
        state.ResumeTiming();
        if (!scene().tree.Merge())
            std::abort();
    }
}
BENCHMARK(MergeOneMove)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::vector<RatioRow> rows = {
        {"7 idle tick over 100 sets / a bare fstatat of each file", "IdleTick/process_time",
         "StatWatched", 1, 3, 0},
        {"  the same where the system tells nothing of changes", "TickThatLooks/process_time",
         "StatWatched", 1, 0, 0},
        {"8 status pass, 10,000 sheets of 1,000 drawings / a stat of each drawing",
         "StatusPass/process_time", "StatDrawings", 1, 5, 2},
        {"tree after one moved sheet of 10,000 / filling it, without a window", "MergeOneMove",
         "FillTree", 1, 0, 0},
    };
    return rows;
}
