#include "data_storage.h"

#include <algorithm>
#include <string_view>

#include "byte_stream.h"

namespace dwg {

namespace {

constexpr std::uint32_t kMark = 0x6472616A;
constexpr std::uint16_t kSegmentMark = 0xD5AC;
constexpr std::size_t kHeadSize = 0x80, kSegmentHead = 0x30;
constexpr std::size_t kSegmentEntry = 12, kDataEntry = 12;
constexpr std::size_t kRecordSize = 0x14; // size, 1, handle, place of its bytes
constexpr std::uint8_t kPngMark[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t kBitmapHead = 40;
// Bytes that are too large for a record lie in segments of their own, one a page. In their place
// stands a list: this mark, u64 size of all, u32 number of pages, five u32 of sizes; for each page
// u32 segment, u32 size.
constexpr std::uint32_t kPagesMark = 0xBB106BB1;
constexpr std::size_t kPagesHead = 0x24, kPageEntry = 8;
// A page: u64 size of all, u64 its place therein, u32 its number, u32 number of pages, u64 size.
constexpr std::size_t kPageHead = 0x20;
constexpr std::string_view kPageName = "blob01";
constexpr std::uint64_t kLargestBody = 64U << 20;

bool isBody(Bytes bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return text.starts_with("ACIS BinaryFile") || text.starts_with("ASM BinaryFile");
}

} // namespace

DataStorage::DataStorage(Bytes section) : m_section(section)
{
    if (section.size() < kHeadSize || readU32(section.data()) != kMark)
        return;
    m_segmentCount = readU32(&section[0x20]);
    m_indexAt = std::uint64_t(readU32(&section[0x18])) + kSegmentHead;
    if (!fits(m_indexAt, std::uint64_t(m_segmentCount) * kSegmentEntry, section.size()))
        m_segmentCount = 0;
    const Bytes list = segment(readU32(&section[0x28]));
    if (list.size() < kSegmentHead + 8)
        return;
    const std::uint64_t most = (list.size() - kSegmentHead - 8) / kDataEntry;
    const std::uint64_t count = std::min<std::uint64_t>(readU32(&list[kSegmentHead]), most);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint8_t* entry = &list[kSegmentHead + 8 + i * kDataEntry];
        addRecord(readU32(entry), readU32(entry + 4));
    }
}

// Empty when there is none, or it does not look like one.
Bytes DataStorage::segment(std::uint32_t index) const
{
    if (index >= m_segmentCount)
        return {};
    const std::uint8_t* entry = &m_section[m_indexAt + std::uint64_t(index) * kSegmentEntry];
    const std::uint64_t offset = readU64(entry);
    const std::uint32_t size = readU32(entry + 8);
    if (offset == 0 || size < kSegmentHead || !fits(offset, size, m_section.size()) ||
        readU16(&m_section[offset]) != kSegmentMark)
        return {};
    return m_section.subspan(offset, size);
}

void DataStorage::addRecord(std::uint32_t index, std::uint32_t place)
{
    const Bytes bytes = segment(index);
    const std::uint64_t at = kSegmentHead + std::uint64_t(place);
    if (!fits(at, kRecordSize, bytes.size()) || readU32(&bytes[at]) != kRecordSize)
        return;
    const std::uint64_t dataAt =
        std::uint64_t(readU32(&bytes[0x24])) * 16 + readU32(&bytes[at + 16]);
    if (!fits(dataAt, 4, bytes.size()))
        return;
    const std::uint32_t size = readU32(&bytes[dataAt]);
    Bytes& data = m_data[readU64(&bytes[at + 8])];
    if (size == kPagesMark)
        data = bytes.subspan(dataAt);
    else
        data = fits(dataAt + 4, size, bytes.size()) ? bytes.subspan(dataAt + 4, size) : Bytes();
}

// Empty when they contradict each other.
std::vector<std::uint8_t> DataStorage::joinedPages(Bytes list) const
{
    const std::uint64_t whole = readU64(&list[4]), count = readU32(&list[12]);
    if (whole > kLargestBody || !fits(kPagesHead, count * kPageEntry, list.size()))
        return {};
    std::vector<std::uint8_t> joined;
    for (std::uint64_t i = 0; i < count; ++i) {
        const Bytes page = segment(readU32(&list[kPagesHead + i * kPageEntry]));
        if (page.size() < kSegmentHead + kPageHead ||
            !std::equal(kPageName.begin(), kPageName.end(), &page[2]))
            return {};
        const std::uint8_t* const head = &page[kSegmentHead];
        const std::uint64_t size = readU64(head + 24);
        if (readU64(head) != whole || readU64(head + 8) != joined.size() || size == 0 ||
            size > whole - joined.size() || !fits(kSegmentHead + kPageHead, size, page.size()))
            return {};
        const Bytes bytes = page.subspan(kSegmentHead + kPageHead, size);
        joined.insert(joined.end(), bytes.begin(), bytes.end());
    }
    if (joined.size() != whole)
        joined.clear();
    return joined;
}

std::vector<std::uint8_t> DataStorage::bodyOf(std::uint64_t handle) const
{
    const auto found = m_data.find(handle);
    if (found == m_data.end())
        return {};
    const Bytes bytes = found->second;
    if (isBody(bytes))
        return {bytes.begin(), bytes.begin() + std::min<std::size_t>(bytes.size(), kLargestBody)};
    if (bytes.size() < kPagesHead || readU32(bytes.data()) != kPagesMark)
        return {};
    std::vector<std::uint8_t> joined = joinedPages(bytes);
    return isBody(joined) ? joined : std::vector<std::uint8_t>();
}

db::Preview DataStorage::pictureOf(std::uint64_t handle) const
{
    const auto found = m_data.find(handle);
    if (found == m_data.end())
        return {};
    const Bytes bytes = found->second;
    db::Preview preview;
    if (bytes.size() > sizeof kPngMark &&
        std::equal(std::begin(kPngMark), std::end(kPngMark), bytes.begin()))
        preview.kind = db::Preview::Kind::Png;
    else if (bytes.size() > kBitmapHead && readU32(bytes.data()) == kBitmapHead)
        preview.kind = db::Preview::Kind::Bmp;
    if (preview.kind != db::Preview::Kind::None)
        preview.bytes.assign(bytes.begin(), bytes.end());
    return preview;
}

} // namespace dwg
