#include "lazy_sections.h"

#include <algorithm>

namespace dwg {

namespace {

constexpr std::uint64_t kNoEnd = ~std::uint64_t(0);

} // namespace

void LazySections::addSection(std::string name, std::uint64_t size, std::vector<PageRange> pages)
{
    std::uint64_t room = std::max<std::uint64_t>(size, 1);
    for (const PageRange& page : pages)
        room = std::max(room, page.end());
    m_promised += room;
    m_sections.push_back({std::move(name), size});
    m_pages.push_back(std::move(pages));
    m_bufferSizes.push_back(room);
    m_buffers.emplace_back();
}

base::Status LazySections::findObjects()
{
    m_objects = indexOf(section::kObjects);
    if (m_objects < m_sections.size())
        return {};
    return {base::Failure::Damaged, base::Reason::DwgSectionMissing, {TvString(section::kObjects)}};
}

std::size_t LazySections::firstPageReaching(std::size_t section, std::uint64_t offset) const
{
    const auto& pages = m_pages[section];
    // Mostly all are of one size, and none is left out.
    const std::uint64_t size = pages.empty() ? 0 : pages.front().size;
    const std::uint64_t guess = size != 0 ? offset / size : 0;
    if (guess < pages.size() && pages[guess].offset <= offset && offset < pages[guess].end() &&
        (guess == 0 || pages[guess - 1].end() <= offset))
        return guess;
    const auto found = std::partition_point(
        pages.begin(), pages.end(), [&](const PageRange& page) { return page.end() <= offset; });
    return static_cast<std::size_t>(found - pages.begin());
}

std::size_t LazySections::pageAt(std::size_t section, std::uint64_t offset) const
{
    const std::size_t page = firstPageReaching(section, offset);
    const bool isThere = page < m_pages[section].size() && m_pages[section][page].offset == offset;
    return isThere ? page : m_pages[section].size();
}

base::Status LazySections::unpackOne(std::size_t section, std::size_t page)
{
    PageRange& range = m_pages[section][page];
    const std::string& name = m_sections[section].name;
    if (range.state == PageState::Packed) {
        const std::span<std::uint8_t> out(m_buffers[section].get() + range.offset, range.size);
        const bool isWhole = unpackPage(section, page, out);
        if (!isSound(section, page) || (isWhole && !isContentRight(section, page, out)))
            m_findings.push_back({FindingKind::PageChecksum, name, range.number});
        range.state = isWhole ? PageState::Unpacked : PageState::Damaged;
        m_unpackedBytes += range.size;
        if (!isWhole) {
            std::fill(out.begin(), out.end(), std::uint8_t(0));
            m_findings.push_back({FindingKind::PageUnreadable, name, range.number});
        }
    }
    return range.state == PageState::Damaged ? sectionDamaged(name) : base::Status();
}

// What no one asks for costs nothing: memory of the system is made as it is touched. Only what no
// page fills must be zero.
base::LargeMemory LazySections::bufferFor(std::size_t section) const
{
    std::uint64_t filled = 0;
    for (const PageRange& page : m_pages[section])
        filled = page.offset <= filled ? std::max(filled, page.end()) : filled;
    return base::makeLargeMemory(m_bufferSizes[section], filled < m_bufferSizes[section]);
}

base::Status LazySections::unpackRange(std::size_t section, std::uint64_t begin, std::uint64_t end)
{
    auto& buffer = m_buffers[section];
    if (!buffer)
        buffer = bufferFor(section);
    if (!buffer)
        return {base::Failure::TooLarge, base::Reason::DwgUnpacksTooLarge};
    for (std::size_t page = firstPageReaching(section, begin);
         page < m_pages[section].size() && m_pages[section][page].offset < end; ++page)
        if (base::Status status = unpackOne(section, page); !status)
            return status;
    return {};
}

base::Result<Bytes> LazySections::section(std::size_t index)
{
    const std::uint64_t size = m_sections[index].size;
    if (base::Status status = unpackRange(index, 0, size); !status)
        return status;
    return Bytes(m_buffers[index].get(), size);
}

void LazySections::keepAtHand(std::uint64_t begin, std::uint64_t end)
{
    const auto& pages = m_pages[m_objects];
    m_area = m_buffers[m_objects].get();
    // Pages are mostly asked for one behind the other: the piece grows.
    if (begin < m_atHandBegin || begin > m_atHandEnd)
        m_atHandBegin = begin;
    std::uint64_t reach = begin;
    for (std::size_t page = firstPageReaching(m_objects, begin);
         page < pages.size() && pages[page].offset <= reach && reach < end; ++page)
        reach = std::max(reach, pages[page].end());
    m_atHandEnd = std::min(std::max(reach, begin), m_sections[m_objects].size);
}

base::Result<Bytes> LazySections::objectArea(std::uint64_t offset, std::uint64_t size)
{
    if (const Bytes bytes = atHand(offset, size); bytes.size() == size && size > 0)
        return bytes;
    if (base::Status status = unpackRange(m_objects, offset, offset + size); !status)
        return status;
    keepAtHand(offset, offset + size);
    return Bytes(m_buffers[m_objects].get() + offset, size);
}

base::Result<Bytes> LazySections::unpacked(std::size_t section, std::size_t page)
{
    const PageRange range = m_pages[section][page];
    if (base::Status status = unpackRange(section, range.offset, range.end()); !status)
        return status;
    return Bytes(m_buffers[section].get() + range.offset, range.size);
}

void LazySections::checkAll()
{
    for (std::size_t i = 0; i < m_sections.size(); ++i)
        for (std::size_t page = 0; page < m_pages[i].size(); ++page)
            (void)unpacked(i, page); // what is wrong with it is among the findings then
}

// Where the first page begins that is not the same in both, and not before @p offset.
std::uint64_t LazySections::samePagesUntil(std::size_t mine, std::size_t theirs,
                                           const LazySections& other, std::uint64_t offset) const
{
    const auto& a = m_pages[mine];
    const auto& b = other.m_pages[theirs];
    std::size_t i = firstPageReaching(mine, offset), k = other.firstPageReaching(theirs, offset);
    for (; i < a.size() && k < b.size(); ++i, ++k) {
        if (a[i].offset != b[k].offset || a[i].size != b[k].size)
            break;
        const Bytes bytes = diskBytes(mine, i), others = other.diskBytes(theirs, k);
        if (bytes.empty() || !std::equal(bytes.begin(), bytes.end(), others.begin(), others.end()))
            break;
    }
    const std::uint64_t mineAt = i < a.size() ? a[i].offset : kNoEnd;
    const std::uint64_t theirsAt = k < b.size() ? b[k].offset : kNoEnd;
    return std::max(offset, std::min(mineAt, theirsAt));
}

bool LazySections::sameSection(std::string_view name, const Container& other) const
{
    const std::size_t mine = indexOf(name), theirs = other.indexOf(name);
    return mine < m_sections.size() && theirs < other.sections().size() &&
           m_sections[mine].size == other.sections()[theirs].size &&
           samePagesUntil(mine, theirs, static_cast<const LazySections&>(other), 0) == kNoEnd;
}

std::uint64_t LazySections::sameObjectsUntil(std::uint64_t offset, const Container& other) const
{
    const auto& lazy = static_cast<const LazySections&>(other);
    return samePagesUntil(m_objects, lazy.m_objects, lazy, offset);
}

} // namespace dwg
