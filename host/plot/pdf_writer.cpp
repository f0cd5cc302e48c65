#include "pdf_writer.h"

#include <algorithm>
#include <cassert>
#include <iterator>

#include <fmt/format.h>

#include "inflate.h"

namespace plot {

namespace {

// The second line tells programs that copy files that this one is no text.
constexpr std::string_view kHeader = "%PDF-1.6\n%\xE2\xE3\xCF\xD3\n";
constexpr std::size_t kMostPacked = 100; // objects in one stream: readers unpack all to get one
constexpr int kPacking = 9;

} // namespace

PdfWriter::PdfWriter(TvString folder) : m_file(std::move(folder)), m_places(1)
{
    put(kHeader);
}

int PdfWriter::reserve()
{
    m_places.emplace_back();
    return static_cast<int>(m_places.size()) - 1;
}

void PdfWriter::write(int number, std::string_view object)
{
    assert(m_places[static_cast<std::size_t>(number)].kind == Place::kNowhere);
    m_packedStarts.emplace_back(number, m_packed.size());
    m_packed.append(object).push_back('\n');
    if (m_packedStarts.size() == kMostPacked)
        flushPacked();
}

int PdfWriter::write(std::string_view object)
{
    const int number = reserve();
    write(number, object);
    return number;
}

int PdfWriter::writeStream(std::string_view entries, std::string_view bytes, bool isPacked)
{
    const int number = reserve();
    putStream(number, entries, bytes, isPacked);
    return number;
}

void PdfWriter::put(std::string_view bytes)
{
    if (!m_status)
        return;
    m_hash.add(std::as_bytes(std::span(bytes)));
    m_status = m_file.add(bytes);
}

void PdfWriter::putStream(int number, std::string_view entries, std::string_view bytes,
                          bool isPacked)
{
    m_places[static_cast<std::size_t>(number)] = {Place::kInFile, 0, m_file.size()};
    std::string all = fmt::format("{} 0 obj\n<< {} {}/Length {} >>\nstream\n", number, entries,
                                  isPacked ? "/Filter /FlateDecode " : "", bytes.size());
    all.append(bytes).append("\nendstream\nendobj\n");
    put(all);
}

void PdfWriter::flushPacked()
{
    if (m_packedStarts.empty())
        return;
    const int holder = reserve();
    std::string all;
    for (std::size_t i = 0; i < m_packedStarts.size(); ++i) {
        const auto [number, start] = m_packedStarts[i];
        fmt::format_to(std::back_inserter(all), "{} {} ", number, start);
        m_places[static_cast<std::size_t>(number)] = {Place::kPacked, static_cast<std::uint8_t>(i),
                                                      static_cast<std::uint64_t>(holder)};
    }
    const std::size_t first = all.size();
    all += m_packed;
    putStream(holder, fmt::format("/Type /ObjStm /N {} /First {}", m_packedStarts.size(), first),
              deflated(all, kPacking), true);
    m_packed.clear();
    m_packedStarts.clear();
}

/// A row for each object, each as its difference to the one above: that packs well.
std::string PdfWriter::rowsOfPlaces(int width) const
{
    constexpr char kAsDifference = 2;
    std::string rows, row, above(static_cast<std::size_t>(width) + 2, '\0');
    for (const Place& place : m_places) {
        row.assign(1, static_cast<char>(place.kind));
        for (int i = width - 1; i >= 0; --i)
            row += static_cast<char>(place.at >> (8 * i) & 0xFF);
        row += static_cast<char>(place.index);
        rows += kAsDifference;
        for (std::size_t i = 0; i < row.size(); ++i)
            rows += static_cast<char>(row[i] - above[i]);
        above.swap(row);
    }
    return rows;
}

base::Status PdfWriter::finish(int root, int info)
{
    flushPacked();
    const std::uint64_t start = m_file.size();
    const int table = reserve();
    m_places.back() = {Place::kInFile, 0, start};
    int width = 1;
    while (start >> (8 * width) != 0)
        ++width;
    const base::ContentHash hash = m_hash.result();
    putStream(table,
              fmt::format("/Type /XRef /Size {0} /W [1 {1} 1] /DecodeParms << /Columns {2} "
                          "/Predictor 12 >> /Root {3} 0 R /Info {4} 0 R "
                          "/ID [<{5:016x}{6:016x}> <{5:016x}{6:016x}>]",
                          m_places.size(), width, width + 2, root, info, hash.high, hash.low),
              deflated(rowsOfPlaces(width), kPacking), true);
    put(fmt::format("startxref\n{}\n%%EOF\n", start));
    return m_status;
}

std::string pdfReference(int number)
{
    return fmt::format("{} 0 R", number);
}

std::string pdfText(const TvString& text)
{
    const auto isPlain = [](TvChar unit) { return unit >= 0x20 && unit < 0x7F; };
    if (std::ranges::all_of(text.view(), isPlain)) {
        std::string plain = "(";
        for (const TvChar unit : text.view()) {
            if (unit == u'(' || unit == u')' || unit == u'\\')
                plain += '\\';
            plain += static_cast<char>(unit);
        }
        return plain + ")";
    }
    std::string digits = "<FEFF";
    for (const TvChar unit : text.view())
        fmt::format_to(std::back_inserter(digits), "{:04X}", static_cast<unsigned>(unit));
    return digits + ">";
}

std::string pdfReal(double value, int decimals)
{
    std::string text = fmt::format("{:.{}f}", value, decimals);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

} // namespace plot
