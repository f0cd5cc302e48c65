// The codec of drawings against the bare file and bare scans of the same run.

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <db/record_editor.h>
#include <db/summary_record.h>
#include <dwg/bit_reader.h>
#include <dwg/dwg_codec.h>

#include <lz2004.h>
#include <paged_container.h>

#include "made_drawing.h"
#include "ratio.h"

namespace {

namespace fs = std::filesystem;
using Buffer = std::vector<std::uint8_t>;

constexpr int k2000 = 1015, k2018 = 1032;
constexpr std::size_t kWantedSize = 5u << 20;

/// Adds entities of several kinds to model space, as a plan has them: coordinates that fill their
/// bits.
class Plan
{
public:
    explicit Plan(db::Version version) : m_drawing(version) {}

    Buffer withEntities(int count)
    {
        std::vector<db::Record> entities;
        for (int i = 0; i < count; ++i)
            entities.push_back(entity(i));
        return m_drawing.fileWith(std::move(entities));
    }

private:
    double noise() { return (m_noise = m_noise * 6364136223846793005u + 1) * 0x1p-44; }

    db::Record entity(int index)
    {
        static constexpr const char* kClasses[] = {"LINE", "LINE",   "LWPOLYLINE", "CIRCLE",
                                                   "ARC",  "INSERT", "TEXT",       "LINE"};
        db::Record record = m_drawing.entity(kClasses[index % 8], index);
        db::RecordEditor edit(record);
        for (const char* field : {"start", "end", "center", "ins_pt"})
            edit.setPoint(field, {noise(), noise(), field[0] == 'i' ? noise() : 0});
        for (const char* field : {"radius", "start", "end", "height"})
            edit.setReal(field, noise());
        edit.setHandle("block", m_drawing.handle("BRPSPACE"));
        if (record.has("points")) {
            db::ArrayEditor points = edit.array("points");
            points.resize(12);
            for (std::uint32_t i = 0; i < points.size(); ++i)
                points.setPoint(i, {noise(), noise(), 0});
        }
        return record;
    }

    MadeDrawing m_drawing;
    std::uint64_t m_noise = 88172645463325252u;
};

/// Made once for each version, in memory and on disk.
class Drawing
{
public:
    explicit Drawing(int version)
    {
        const auto kind = static_cast<db::Version>(version);
        const std::size_t sample = Plan(kind).withEntities(4'000).size();
        bytes = Plan(kind).withEntities(static_cast<int>(4'000 * kWantedSize / sample));
        std::string pattern = (fs::temp_directory_path() / "kv-dwg-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
        path = (m_folder / "plan.dwg").string();
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        auto opened = codec().open(bytes);
        require(bool(opened));
        file = std::move(*opened);
    }
    ~Drawing()
    {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    Buffer bytes;
    std::string path;
    std::unique_ptr<db::DrawingFile> file;

private:
    fs::path m_folder;
};

Drawing& drawing(std::int64_t version)
{
    static std::map<std::int64_t, std::unique_ptr<Drawing>> made;
    std::unique_ptr<Drawing>& one = made[version];
    if (!one)
        one = std::make_unique<Drawing>(static_cast<int>(version));
    return *one;
}

Buffer readWhole(const std::string& path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const auto size = static_cast<std::size_t>(::lseek(file, 0, SEEK_END));
    ::lseek(file, 0, SEEK_SET);
    Buffer bytes(size);
    require(::read(file, bytes.data(), size) == static_cast<ssize_t>(size));
    ::close(file);
    return bytes;
}

void writeWhole(const std::string& path, const Buffer& bytes)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    require(::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    ::close(file);
}

// --- 4a: inventory

void readFile(benchmark::State& state)
{
    const Drawing& plan = drawing(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(readWhole(plan.path).data());
    state.counters["MB"] = static_cast<double>(plan.bytes.size()) / 1e6;
}
BENCHMARK(readFile)->Arg(k2000)->Arg(k2018)->Repetitions(5)->Unit(benchmark::kMillisecond);

/// Handle and class of each object, and the records of layouts, dictionaries, blocks and views.
std::size_t inventory(const db::DrawingFile& file)
{
    std::size_t found = 0;
    db::Record record;
    file.forEachKind([&](std::uint64_t handle, const db::ObjectKind* kind) {
        const std::string_view name = kind->className;
        if (name == "LAYOUT" || name == "DICTIONARY" || name == "BLOCK_HEADER" || name == "VIEW")
            found += bool(file.read(handle, record));
    });
    return found;
}

void takeInventory(benchmark::State& state)
{
    const Drawing& plan = drawing(state.range(0));
    for (auto _ : state) {
        const auto file = codec().open(readWhole(plan.path));
        require(inventory(**file) > 5);
    }
    state.counters["objects"] = static_cast<double>(plan.file->handles().size());
}
BENCHMARK(takeInventory)->Arg(k2000)->Arg(k2018)->Repetitions(5)->Unit(benchmark::kMillisecond);

// What no reader of a packed drawing can do without: the class of an object stands at its begin, so
// that each page with objects is unpacked, beside the map, the classes and the variables.
struct PackedPlan {
    struct Page {
        std::size_t at, packedSize; // in the file
        std::size_t size;
        bool isPacked;
    };

    PackedPlan()
    {
        const Buffer& bytes = drawing(k2018).bytes;
        const auto opened = dwg::PagedContainer::open(bytes);
        require(bool(opened));
        dwg::PagedContainer& container = **opened;
        for (const std::string_view name : {dwg::section::kObjects, dwg::section::kHandles,
                                            dwg::section::kClasses, dwg::section::kHeader}) {
            const std::size_t section = container.indexOf(name);
            const auto& descriptor = container.descriptors()[section];
            for (std::size_t i = 0; i < descriptor.pages.size(); ++i) {
                const dwg::Bytes packed = container.diskBytes(section, i);
                pages.push_back({static_cast<std::size_t>(packed.data() - bytes.data()),
                                 packed.size(), descriptor.pageSize, descriptor.mode == 2});
                packedBytes += packed.size();
                unpackedBytes += descriptor.pageSize;
            }
        }
        unpacked.resize(unpackedBytes);
    }

    std::vector<Page> pages;
    std::size_t packedBytes = 0, unpackedBytes = 0;
    Buffer unpacked;
};

void readAndUnpack(benchmark::State& state)
{
    static PackedPlan plan;
    const std::string& path = drawing(k2018).path;
    for (auto _ : state) {
        const Buffer bytes = readWhole(path);
        std::size_t to = 0;
        for (const PackedPlan::Page& page : plan.pages) {
            const dwg::Bytes packed = dwg::Bytes(bytes).subspan(page.at, page.packedSize);
            const std::span out = std::span(plan.unpacked).subspan(to, page.size);
            if (page.isPacked)
                require(dwg::unpack2004(packed, out));
            else
                std::copy(packed.begin(), packed.end(), out.begin());
            to += page.size;
        }
        benchmark::DoNotOptimize(plan.unpacked.data());
    }
    state.counters["unpacked/packed"] =
        static_cast<double>(plan.unpackedBytes) / static_cast<double>(plan.packedBytes);
}
BENCHMARK(readAndUnpack)->Repetitions(5)->Unit(benchmark::kMillisecond);

// --- 4b: decode everything

void scanBits(benchmark::State& state)
{
    const Drawing& plan = drawing(state.range(0));
    for (auto _ : state) {
        dwg::BitReader reader(plan.bytes);
        std::uint64_t sum = 0;
        while (reader.remaining() >= 8)
            sum += reader.readBits(8);
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(scanBits)->Arg(k2000)->Arg(k2018)->Repetitions(5)->Unit(benchmark::kMillisecond);

void decodeAll(benchmark::State& state)
{
    const Drawing& plan = drawing(state.range(0));
    db::Record record;
    for (auto _ : state)
        for (const std::uint64_t handle : plan.file->handles())
            require(bool(plan.file->read(handle, record)));
}
BENCHMARK(decodeAll)->Arg(k2000)->Arg(k2018)->Repetitions(5)->Unit(benchmark::kMillisecond);

// --- 4c: change one, save (neither is flushed to the disk)

void readAndWrite(benchmark::State& state)
{
    const Drawing& plan = drawing(state.range(0));
    for (auto _ : state)
        writeWhole(plan.path + ".new", readWhole(plan.path));
}
BENCHMARK(readAndWrite)->Arg(k2000)->Arg(k2018)->Repetitions(5)->Unit(benchmark::kMillisecond);

void changeOneAndSave(benchmark::State& state)
{
    const Drawing& plan = drawing(state.range(0));
    db::Record line;
    require(bool(plan.file->read(plan.file->handles().back(), line)));
    db::RecordEditor(line).setPoint("end", {1.5, 2.5, 3.5});
    db::RecordEditor(line).setReal("radius", 4.5);
    const std::map<std::uint64_t, const db::Record*> changed{{line.handle(), &line}};
    for (auto _ : state) {
        const auto file = codec().open(readWhole(plan.path));
        require(bool(file));
        const auto header = (*file)->header();
        db::Contents contents;
        contents.origin = file->get();
        contents.changed = &changed;
        contents.header = &*header;
        contents.handles = (*file)->handles();
        const auto bytes = codec().write(contents, (*file)->version());
        require(bool(bytes));
        writeWhole(plan.path + ".new", *bytes);
    }
}
BENCHMARK(changeOneAndSave)->Arg(k2000)->Arg(k2018)->Repetitions(5)->Unit(benchmark::kMillisecond);

// --- 4d: unpack; its budget is the rate that is printed, not a ratio

/// The drawing's bytes as they lie in the pages of 2004 and later.
struct Pages {
    static constexpr std::size_t kSize = 0x7400;

    Pages()
    {
        const Buffer& plain = drawing(k2000).bytes;
        for (std::size_t at = 0; at + kSize <= plain.size(); at += kSize)
            packed.push_back(dwg::pack2004(dwg::Bytes(plain).subspan(at, kSize)));
        unpacked.resize(packed.size() * kSize);
    }
    std::vector<Buffer> packed;
    Buffer unpacked;
};

Pages& pages()
{
    static Pages instance;
    return instance;
}

void unpackPages(benchmark::State& state)
{
    Pages& all = pages();
    for (auto _ : state)
        for (std::size_t i = 0; i < all.packed.size(); ++i)
            require(dwg::unpack2004(
                all.packed[i], std::span(all.unpacked).subspan(i * Pages::kSize, Pages::kSize)));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * all.unpacked.size()));
}
BENCHMARK(unpackPages)->Repetitions(5)->Unit(benchmark::kMillisecond);

void copyPages(benchmark::State& state)
{
    const Pages& all = pages();
    Buffer copy(all.unpacked.size());
    for (auto _ : state) {
        std::memcpy(copy.data(), all.unpacked.data(), copy.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * all.unpacked.size()));
}
BENCHMARK(copyPages)->Repetitions(5)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::vector<RatioRow> rows = [] {
        std::vector<RatioRow> all;
        for (const int version : {k2000, k2018}) {
            const std::string end = "/" + std::to_string(version) + "/repeats:5";
            const std::string name = ", AC" + std::to_string(version);
            // The budget over read() holds for drawings that are not packed; for packed ones see
            // below.
            all.push_back(version == k2000
                              ? RatioRow{"4a inventory over read()" + name, "takeInventory" + end,
                                         "readFile" + end, 1, 6, 3}
                              : RatioRow{"4a inventory over read()" + name, "takeInventory" + end,
                                         "readFile" + end});
            all.push_back({"4b decode of everything over a scan" + name, "decodeAll" + end,
                           "scanBits" + end, 1, 6, 2});
            all.push_back({"4c one change, saved, over read and write" + name,
                           "changeOneAndSave" + end, "readAndWrite" + end, 1, 5, 2});
        }
        const std::string inventory = "takeInventory/1032/repeats:5";
        const std::string floor = "readAndUnpack/repeats:5", read = "readFile/1032/repeats:5";
        all.push_back({"4a floor: read() and bare unpacking, AC1032", floor, read});
        all.push_back({"4a inventory over that floor, AC1032", inventory, floor, 1, 2, 1.5});
        return all;
    }();
    return rows;
}
