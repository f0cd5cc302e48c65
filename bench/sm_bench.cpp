// The sheet-set database against the bare XML parse, the bare disk and a bare table of the same
// run.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include <fcntl.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <base/path_rules.h>

#include <sm/change_scope.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "ratio.h"

namespace {

namespace fs = std::filesystem;

/// Made once: sets of 10,000 and 100,000 sheets with 6 custom properties and 1 view each.
class Sets
{
public:
    Sets()
    {
        std::string pattern = (fs::temp_directory_path() / "kv-bench-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
    }
    ~Sets()
    {
        std::error_code ignored;
        if (!std::getenv("KV_KEEP"))
            fs::remove_all(m_folder, ignored);
    }
    std::string path(std::int64_t sheets)
    {
        const std::string path = (m_folder / ("set" + std::to_string(sheets) + ".dst")).string();
        if (!fs::exists(path))
            make(path, sheets);
        return path;
    }
    fs::path folder() const { return m_folder; }

private:
    static void addSheet(TvSmSubset* subset, std::int64_t number, const std::string& folder)
    {
        const TvString title = TvString().format(u"General arrangement, level %d", number % 40);
        TvSmSheet* sheet = subset->createSheet(title, u"Issued for construction");
        subset->insertComponent(sheet, nullptr);
        sheet->setNumber(TvString().format(u"A-%05d", number));
        sheet->setTitle(title);
        auto* layout = new TvSmTvDbLayoutReference;
        layout->initNew(sheet, u"");
        layout->setFileName(TvString().format(u"%s/drawings/A-%04d.dwg", folder, number / 10));
        layout->setHandle(TvString().format(u"%X", 0x2A + number % 10));
        layout->setName(TvString().format(u"Layout%d", number % 10));
        sheet->setLayoutReference(layout);
        static const char16_t* const kNames[] = {u"Drawn by", u"Checked by", u"Scale",
                                                 u"Revision", u"Date",       u"Phase"};
        static const char16_t* const kValues[] = {u"M. Keller", u"S. Ortiz",   u"1:50",
                                                  u"C",         u"2024-05-17", u"Tender"};
        for (int at = 0; at < 6; ++at)
            sm::setTextProperty(sheet->getCustomProperties(), kNames[at], kValues[at], 2);
        auto* view = new TvSmSheetView;
        view->initNew(sheet->getSheetViews(), u"");
        view->setTitle(u"Plan");
        view->setNumber(u"1");
        sheet->getSheetViews()->add(view);
    }
    static void make(const std::string& path, std::int64_t sheets)
    {
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.createDatabase(base::pathFromNative(path), u"", true);
        db->getSheetSet()->setName(u"Tower");
        TvSmSubset* subset = nullptr;
        for (std::int64_t number = 0; number < sheets; ++number) {
            if (number % 100 == 0) {
                subset = db->getSheetSet()->createSubset(
                    TvString().format(u"Building part %d", number / 100), u"");
                db->getSheetSet()->insertComponent(subset, nullptr);
            }
            addSheet(subset, number, fs::path(path).parent_path().string());
        }
        if (!db->save(0))
            std::abort();
    }
    fs::path m_folder;
};

TvSmSheet* firstSheet(TvSmDatabase& db)
{
    for (TvSmComponent* subset : sm::each(db.getSheetSet()->getSheetEnumerator()))
        for (TvSmComponent* sheet :
             sm::each(static_cast<TvSmSubset*>(subset)->getSheetEnumerator()))
            return static_cast<TvSmSheet*>(sheet);
    std::abort();
}

Sets& sets()
{
    static Sets instance;
    return instance;
}

std::string bytesOf(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// --- 1a, 1b: open
// -------------------------------------------------------------------------------------------------

void ParseXml(benchmark::State& state)
{
    const std::string path = sets().path(state.range(0));
    for (auto _ : state) {
        pugi::xml_document document;
        benchmark::DoNotOptimize(document.load_file(path.c_str()));
    }
}
BENCHMARK(ParseXml)->Arg(10'000)->Unit(benchmark::kMillisecond);

void OpenSet(benchmark::State& state)
{
    const TvString path = base::pathFromNative(sets().path(state.range(0)));
    for (auto _ : state) {
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.openDatabase(path, false, 0);
        if (!db)
            std::abort();
        state.PauseTiming();
        manager.closeDatabase(db);
        state.ResumeTiming();
    }
}
BENCHMARK(OpenSet)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// --- 1c: durable commit
// -------------------------------------------------------------------------------------------

void WriteFlushRename(benchmark::State& state)
{
    const std::string bytes = bytesOf(sets().path(state.range(0)));
    const std::string target = (sets().folder() / "plain").string();
    const int folder = ::open(sets().folder().c_str(), O_RDONLY | O_DIRECTORY);
    for (auto _ : state) {
        const int file = ::open((target + ".new").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) ||
            ::fsync(file) != 0)
            std::abort();
        ::close(file);
        ::rename((target + ".new").c_str(), target.c_str());
        ::fsync(folder);
    }
    ::close(folder);
}
BENCHMARK(WriteFlushRename)->Arg(10'000)->UseRealTime()->Unit(benchmark::kMillisecond);

void CommitOneSheet(benchmark::State& state)
{
    const std::string copy = (sets().folder() / "commit.dst").string();
    fs::copy_file(sets().path(state.range(0)), copy, fs::copy_options::overwrite_existing);
    TvSmSheetSetMgr manager;
    TvSmDatabase* db = manager.openDatabase(base::pathFromNative(copy), false, 0);
    auto* sheet = firstSheet(*db);
    int count = 0;
    for (auto _ : state) {
        db->lockDb(db);
        if (!sheet->setTitle(TvString().format(u"Title %d", count++)) || !db->unlockDb(db, true))
            std::abort();
    }
}
BENCHMARK(CommitOneSheet)->Arg(10'000)->UseRealTime()->Unit(benchmark::kMillisecond);

// --- 1d: rollback
// -------------------------------------------------------------------------------------------------

using Seconds = std::chrono::duration<double>;

/// Times one side of change and rollback in a set that is in memory only.
template <bool kTimeRollback>
void changeAndRollBack(benchmark::State& state)
{
    TvSmDatabase db;
    db.load(base::pathFromNative(sets().path(state.range(0))));
    auto* sheet = firstSheet(db);
    const TvString title = u"Another title, long enough for the heap";
    constexpr int kChanges = 100; // in one lock, so that the clock's own cost does not show
    for (auto _ : state) {
        db.lockDb(&db);
        const auto start = std::chrono::steady_clock::now();
        for (int at = 0; at < kChanges; ++at)
            sheet->setTitle(at % 2 ? title : TvString(u"The other of two titles, long as well"));
        const auto changed = std::chrono::steady_clock::now();
        db.unlockDb(&db, false);
        const auto done = std::chrono::steady_clock::now();
        state.SetIterationTime(Seconds(kTimeRollback ? done - changed : changed - start).count() /
                               kChanges);
    }
}
void ChangeTitle(benchmark::State& state)
{
    changeAndRollBack<false>(state);
}
void RollBackTitle(benchmark::State& state)
{
    changeAndRollBack<true>(state);
}
BENCHMARK(ChangeTitle)->Arg(10'000)->UseManualTime()->Iterations(2000);
BENCHMARK(RollBackTitle)->Arg(10'000)->Arg(100'000)->UseManualTime()->Iterations(2000);

// --- 2a, 2b: find and walk
// ----------------------------------------------------------------------------------------

/// The 100,000 sheets, read once: over a million objects.
TvSmDatabase& bigSet()
{
    static TvSmSheetSetMgr manager;
    static TvSmDatabase* db =
        manager.openDatabase(base::pathFromNative(sets().path(100'000)), false, 0);
    return *db;
}

constexpr std::size_t kObjects = 900'000;

void RandomTableLoad(benchmark::State& state)
{
    // One pointer an object, and what the pointer leads to: the least that a lookup can do.
    struct Object {
        std::uint64_t fields[16];
    };
    std::vector<Object> objects(kObjects);
    std::vector<Object*> table(kObjects);
    for (std::size_t at = 0; at < kObjects; ++at)
        table[at] = &objects[at];
    std::mt19937_64 random(1);
    std::vector<std::uint32_t> order(1 << 16);
    for (std::uint32_t& index : order)
        index = static_cast<std::uint32_t>(random() % kObjects);
    std::size_t at = 0;
    std::uint64_t sum = 0;
    for (auto _ : state)
        sum += table[order[at++ & 0xFFFF]]->fields[3];
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(RandomTableLoad);

void FindByHandleText(benchmark::State& state)
{
    const TvSmDatabase& db = bigSet();
    std::mt19937_64 random(1);
    std::vector<TvString> handles(1 << 16);
    for (TvString& handle : handles)
        handle = TvString().format(u"g%X", 3 + random() % kObjects);
    std::size_t at = 0;
    for (auto _ : state) {
        if (!db.findObject(handles[at++ & 0xFFFF]))
            std::abort();
    }
}
BENCHMARK(FindByHandleText);

std::size_t countObjects()
{
    std::size_t count = 0;
    sm::forEachObject(&bigSet(), [&](TvSmPersist&) { ++count; });
    return count;
}

void ScanRecords(benchmark::State& state)
{
    struct Record {
        std::uint64_t fields[16];
    };
    const std::vector<Record> records(countObjects());
    for (auto _ : state) {
        std::uint64_t sum = 0;
        for (const Record& record : records)
            sum += record.fields[3];
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(ScanRecords)->Unit(benchmark::kMillisecond);

void WalkObjects(benchmark::State& state)
{
    const TvSmDatabase& db = bigSet();
    for (auto _ : state) {
        std::size_t sum = 0;
        sm::forEachObject(&db, [&](TvSmPersist& object) { sum += object.owner() != nullptr; });
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(WalkObjects)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::vector<RatioRow> rows = {
        {"1a open 10,000 sheets / bare XML parse of the file", "OpenSet/10000", "ParseXml/10000", 1,
         1.5, 0.4},
        {"1b open 100,000 sheets / 10 times 10,000", "OpenSet/100000", "OpenSet/10000", 10, 1.5,
         1.2},
        {"1c commit one of 10,000 sheets / write, flush, rename", "CommitOneSheet/10000/real_time",
         "WriteFlushRename/10000/real_time", 1, 4, 1.2},
        {"1d roll back one change / the change", "RollBackTitle/10000/iterations:2000/manual_time",
         "ChangeTitle/10000/iterations:2000/manual_time", 1, 10, 3},
        {"2a handle text to object, 900,000 objects / one table load", "FindByHandleText",
         "RandomTableLoad", 1, 40, 8},
        {"2b walk of all objects / linear scan of as many records", "WalkObjects", "ScanRecords", 1,
         8, 1.6},
    };
    return rows;
}
