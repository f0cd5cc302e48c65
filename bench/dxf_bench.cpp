// Reading drawings in text form, against cutting the same text into groups and parsing its reals.

#include <charconv>
#include <cstdlib>
#include <map>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include <dxf/dxf_codec.h>

#include "ratio.h"

namespace {

void add(std::string& text, int code, std::string_view value)
{
    text += std::to_string(code);
    text += '\n';
    text += value;
    text += '\n';
}

void addReal(std::string& text, int code, double value)
{
    char digits[32];
    add(text, code, {digits, std::to_chars(digits, digits + sizeof digits, value).ptr});
}

void addEntityHead(std::string& text, const char* name, std::uint64_t handle, std::uint64_t layer)
{
    char digits[20];
    add(text, 0, name);
    add(text, 5, {digits, std::to_chars(digits, digits + sizeof digits, handle, 16).ptr});
    add(text, 330, "1F");
    add(text, 100, "AcDbEntity");
    add(text, 8, "Layer" + std::to_string(layer));
}

/// What plans are made of: mostly lines and polylines, texts here and there.
class Plan
{
public:
    std::string make(std::size_t bytes)
    {
        for (const auto& [code, value] : {std::pair(0, "SECTION"),
                                          {2, "HEADER"},
                                          {9, "$ACADVER"},
                                          {1, "AC1032"},
                                          {9, "$HANDSEED"},
                                          {5, "FFFFFFF"},
                                          {0, "ENDSEC"},
                                          {0, "SECTION"},
                                          {2, "ENTITIES"}})
            add(m_text, code, value);
        while (m_text.size() < bytes)
            addEntity();
        for (const auto& [code, value] : {std::pair(0, "ENDSEC"), {0, "EOF"}})
            add(m_text, code, value);
        return std::move(m_text);
    }

private:
    double coordinate() { return std::uniform_real_distribution<double>(0, 100000)(m_random); }
    void addPoint(int code)
    {
        addReal(m_text, code, coordinate());
        addReal(m_text, code + 10, coordinate());
        addReal(m_text, code + 20, 0);
    }
    void addEntity()
    {
        const auto kind = m_random() % 10;
        const char* const name = kind < 6 ? "LINE" : kind < 9 ? "LWPOLYLINE" : "TEXT";
        addEntityHead(m_text, name, m_handle++, m_random() % 40);
        if (kind < 6) {
            add(m_text, 100, "AcDbLine");
            addPoint(10);
            addPoint(11);
        } else if (kind < 9) {
            add(m_text, 100, "AcDbPolyline");
            add(m_text, 90, "12");
            add(m_text, 70, "1");
            for (int i = 0; i < 12; ++i) {
                addReal(m_text, 10, coordinate());
                addReal(m_text, 20, coordinate());
            }
        } else {
            add(m_text, 100, "AcDbText");
            addPoint(10);
            addReal(m_text, 40, 2.5);
            add(m_text, 1, "Room " + std::to_string(m_handle));
            add(m_text, 100, "AcDbText");
        }
    }

    std::string m_text;
    std::minstd_rand m_random;
    std::uint64_t m_handle = 0x1000;
};

const std::vector<std::uint8_t>& plan(std::int64_t megabytes)
{
    static std::map<std::int64_t, std::vector<std::uint8_t>> made;
    std::vector<std::uint8_t>& bytes = made[megabytes];
    if (bytes.empty()) {
        const std::string text = Plan().make(static_cast<std::size_t>(megabytes) << 20);
        bytes.assign(text.begin(), text.end());
    }
    return bytes;
}

bool isReal(int code)
{
    return (code >= 10 && code < 60) || (code >= 110 && code < 150) || (code >= 210 && code < 240);
}

/// The least that any reader does.
void cutIntoGroups(benchmark::State& state)
{
    const auto& bytes = plan(state.range(0));
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (auto unused : state) {
        double sum = 0;
        std::string_view rest = text;
        const auto line = [&] {
            const auto stop = rest.find('\n');
            const std::string_view found = rest.substr(0, stop);
            rest.remove_prefix(stop + 1);
            return found;
        };
        while (!rest.empty()) {
            const std::string_view codeLine = line(), value = line();
            int code = 0;
            std::from_chars(codeLine.data(), codeLine.data() + codeLine.size(), code);
            double real = 0;
            if (isReal(code))
                std::from_chars(value.data(), value.data() + value.size(), real);
            sum += real;
        }
        benchmark::DoNotOptimize(sum);
    }
}

/// The file and every object in it.
void readDrawing(benchmark::State& state)
{
    const auto& bytes = plan(state.range(0));
    for (auto unused : state) {
        const auto file = dxf::DxfCodec().open(bytes);
        if (!file)
            std::abort();
        db::Record record;
        for (const std::uint64_t handle : (*file)->handles())
            if (!(*file)->read(handle, record))
                std::abort();
    }
}

BENCHMARK(cutIntoGroups)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(readDrawing)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::vector<RatioRow> rows = {
        {"4e read 10 MB of text / cut into groups, reals parsed", "readDrawing/10",
         "cutIntoGroups/10", 1, 6, 2.5},
        {"4e read 50 MB of text / 5 x 10 MB", "readDrawing/50", "readDrawing/10", 5, 1.5, 1.2},
    };
    return rows;
}
