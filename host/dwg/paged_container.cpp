#include "paged_container.h"

#include <algorithm>
#include <cstring>

#include "byte_stream.h"
#include "lz2004.h"

namespace dwg {

using namespace paged;

namespace {

constexpr std::size_t kSmallestFile = 0x180;
constexpr std::uint32_t kHighestPageNumber = 1'000'000;
constexpr std::uint64_t kLargestSystemPage = 64u << 20;
constexpr std::uint32_t kMostDescriptors = 1000;
constexpr std::uint32_t kLargestPackedPage = 0x100000;
constexpr std::size_t kDescriptorSize = 0x60;
constexpr std::size_t kPageEntrySize = 16;

base::Status headerDamaged()
{
    return {base::Failure::Damaged, base::Reason::DwgHeaderDamaged};
}

base::Status pagesDamaged()
{
    return {base::Failure::Damaged, base::Reason::DwgPagesDamaged};
}

std::string textOf(const std::array<char, 64>& name)
{
    return {name.data(), ::strnlen(name.data(), name.size())};
}

} // namespace

base::Result<std::unique_ptr<PagedContainer>> PagedContainer::open(Bytes file)
{
    if (file.size() < kSmallestFile)
        return headerDamaged();
    if (readU32(file.data() + 0x18) & 3)
        return base::Status(base::Failure::Unsupported, base::Reason::DwgEncrypted);
    std::unique_ptr<PagedContainer> container(new PagedContainer(file));
    for (auto step : {&PagedContainer::readHeads, &PagedContainer::readPageMap,
                      &PagedContainer::readSectionMap})
        if (base::Status status = (container.get()->*step)(); !status)
            return status;
    if (container->indexOf(section::kSecurity) < container->m_sections.size())
        return base::Status(base::Failure::Unsupported, base::Reason::DwgEncrypted);
    container->m_objects = container->indexOf(section::kObjects);
    if (container->m_objects == container->m_sections.size())
        return base::Status(base::Failure::Damaged, base::Reason::DwgSectionMissing,
                            {TvString(section::kObjects)});
    container->m_buffers.resize(container->m_descriptors.size());
    return container;
}

// The block stands twice; either will do, but both should be there and the same.
base::Status PagedContainer::readHeads()
{
    const auto isRight = [](const std::optional<Head>& head) {
        return head && head->u32(Head::kChecksum) == head->checksum();
    };
    const auto first = readHead(m_file, kHeadAt);
    const auto second = readHead(m_file, m_file.size() - kHeadSize);
    if (!first && !second)
        return headerDamaged();
    if (!isRight(first))
        m_findings.push_back({FindingKind::FileHeaderChecksum, {}, 0});
    if (!isRight(second))
        m_findings.push_back({FindingKind::FileHeaderEnd, {}, 0});
    m_head = isRight(first) || !second ? *first : *second;
    return {};
}

base::Result<std::vector<std::uint8_t>> PagedContainer::systemPage(std::uint64_t address,
                                                                   std::uint32_t type)
{
    if (!fits(address, kSystemHead, m_file.size()))
        return pagesDamaged();
    const std::uint8_t* head = m_file.data() + address;
    const std::uint64_t size = readU32(head + 4), packedSize = readU32(head + 8);
    const bool isPossible = readU32(head) == type && readU32(head + 12) == 2 &&
                            fits(address + kSystemHead, packedSize, m_file.size()) &&
                            size <= kLargestSystemPage && size <= 256 * packedSize + 65536 &&
                            size <= mostUnpackedBytes(m_file.size());
    if (!isPossible)
        return pagesDamaged();
    const Bytes packed = m_file.subspan(address + kSystemHead, packedSize);
    std::array<std::uint8_t, kSystemHead> plain;
    std::copy_n(head, kSystemHead, plain.begin());
    putU32(&plain[16], 0);
    if (pageSum(pageSum(0, plain), packed) != readU32(head + 16))
        m_findings.push_back({FindingKind::PageChecksum, {}, 0});
    std::vector<std::uint8_t> out(size);
    if (!unpack2004(packed, out))
        return pagesDamaged();
    return out;
}

base::Status PagedContainer::readPageMap()
{
    const std::uint64_t address = m_head.u64(Head::kPageMapAddress);
    if (address > m_file.size())
        return pagesDamaged();
    const auto map = systemPage(address + kFirstPage, kPageMapType);
    if (!map)
        return map.status();
    return addPlaces(*map) ? base::Status() : pagesDamaged();
}

// Pages in the order of the file, each behind the other; a negative number is unused room.
bool PagedContainer::addPlaces(Bytes map)
{
    ByteReader reader(map);
    std::uint64_t address = kFirstPage;
    while (reader.remaining() >= 8) {
        const auto number = static_cast<std::int32_t>(reader.u32());
        const std::uint64_t size = reader.u32();
        const bool isGap = number < 0;
        if (isGap)
            reader.take(16); // its place in a tree that only in-place writers need
        // The last page's room may reach beyond the file's end, no other may begin there.
        if (size == 0 || size % kPageStep != 0 || address >= m_file.size() || number == 0 ||
            reader.failed())
            return false;
        if (!isGap && (static_cast<std::uint32_t>(number) > kHighestPageNumber ||
                       !m_places.emplace(number, Place{address, size}).second))
            return false;
        address += size;
    }
    return true;
}

base::Status PagedContainer::readSectionMap()
{
    const auto place = m_places.find(m_head.u32(Head::kSectionMapId));
    if (place == m_places.end())
        return pagesDamaged();
    const auto map = systemPage(place->second.address, kSectionMapType);
    if (!map)
        return map.status();
    if (!addDescriptors(*map))
        return pagesDamaged();
    if (m_promised > mostUnpackedBytes(m_file.size()))
        return {base::Failure::Damaged, base::Reason::DwgUnpacksTooLarge};
    const auto isHidden = [](const Descriptor& d) { return d.encrypted == 1; };
    if (std::any_of(m_descriptors.begin(), m_descriptors.end(), isHidden))
        return {base::Failure::Unsupported, base::Reason::DwgEncrypted};
    return {};
}

bool PagedContainer::addDescriptors(Bytes map)
{
    ByteReader reader(map);
    const std::uint32_t count = reader.u32();
    reader.take(16);
    if (count > kMostDescriptors)
        return false;
    std::uint64_t pages = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Bytes bytes = reader.take(kDescriptorSize);
        if (bytes.empty())
            return false;
        Descriptor descriptor;
        descriptor.size = readU64(&bytes[0]);
        const std::uint32_t pageCount = readU32(&bytes[8]);
        descriptor.pageSize = readU32(&bytes[12]);
        descriptor.unknown10 = readU32(&bytes[16]);
        descriptor.mode = readU32(&bytes[20]);
        descriptor.id = readU32(&bytes[24]);
        descriptor.encrypted = readU32(&bytes[28]);
        std::copy_n(bytes.begin() + 32, 64, descriptor.name.begin());
        pages += pageCount;
        if (pages > m_places.size() || !addPages(reader, pageCount, descriptor))
            return false;
        const std::string name = textOf(descriptor.name);
        if (name.empty())
            continue; // the one without content, which every file has
        if (!isPossible(descriptor) || indexOf(name) < m_sections.size())
            return false;
        m_promised += alignUp(descriptor.size, descriptor.pageSize);
        m_sections.push_back({name, descriptor.size});
        m_descriptors.push_back(std::move(descriptor));
    }
    return true;
}

bool PagedContainer::addPages(ByteReader& reader, std::uint32_t count, Descriptor& descriptor)
{
    if (count > reader.remaining() / kPageEntrySize)
        return false;
    descriptor.pages.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        Page page;
        page.number = reader.u32();
        page.packedSize = reader.u32();
        page.offset = reader.u64();
        const auto place = m_places.find(page.number);
        if (place == m_places.end())
            return false;
        page.address = place->second.address;
        page.diskSize = place->second.size;
        descriptor.pages.push_back(page);
    }
    std::sort(descriptor.pages.begin(), descriptor.pages.end(),
              [](const Page& a, const Page& b) { return a.offset < b.offset; });
    return true;
}

bool PagedContainer::isPossible(const Descriptor& descriptor) const
{
    const bool isPacked = descriptor.mode == 2;
    if ((!isPacked && descriptor.mode != 1) || descriptor.pageSize == 0)
        return false;
    if (descriptor.pageSize > (isPacked ? kLargestPackedPage : m_file.size()))
        return false;
    if (descriptor.size > mostUnpackedBytes(m_file.size()))
        return false;
    const Page* last = nullptr;
    for (const Page& page : descriptor.pages) {
        const bool isPlaced = page.offset % descriptor.pageSize == 0 &&
                              page.offset < descriptor.size &&
                              (!last || last->offset < page.offset);
        if (!isPlaced || page.diskSize < kDataHead || page.packedSize > page.diskSize - kDataHead)
            return false;
        last = &page;
    }
    return true;
}

Bytes PagedContainer::packedBytes(const Page& page) const
{
    const std::uint64_t at = page.address + kDataHead;
    return fits(at, page.packedSize, m_file.size()) ? m_file.subspan(at, page.packedSize) : Bytes();
}

bool PagedContainer::isSound(const Descriptor& descriptor, const Page& page) const
{
    const Bytes packed = packedBytes(page);
    if (packed.size() != page.packedSize)
        return false;
    const PageHead head = readPageHead(m_file.data() + page.address, page.address);
    return head.type == kDataPageType && head.sectionId == descriptor.id &&
           head.packedSize == page.packedSize && head.offset == page.offset &&
           head.headSum == headSumOf(head) && head.dataSum == pageSum(0, packed);
}

bool PagedContainer::unpackInto(const Descriptor& descriptor, const Page& page,
                                std::span<std::uint8_t> out) const
{
    const Bytes packed = packedBytes(page);
    if (packed.size() != page.packedSize)
        return false;
    if (descriptor.mode == 2)
        return unpack2004(packed, out);
    if (packed.size() > out.size())
        return false;
    std::copy(packed.begin(), packed.end(), out.begin());
    return true;
}

bool PagedContainer::makeBuffer(std::size_t section)
{
    if (m_buffers[section])
        return true;
    const Descriptor& descriptor = m_descriptors[section];
    // Zeroed by the system page by page as they are touched: pages that no one asks for cost
    // nothing.
    const std::uint64_t size =
        alignUp(std::max<std::uint64_t>(descriptor.size, 1), descriptor.pageSize);
    m_buffers[section].reset(static_cast<std::uint8_t*>(std::calloc(size, 1)));
    return m_buffers[section] != nullptr;
}

base::Result<Bytes> PagedContainer::unpacked(std::size_t section, std::size_t page)
{
    const std::uint64_t begin = m_descriptors[section].pages[page].offset;
    const std::uint64_t size = m_descriptors[section].pageSize;
    if (base::Status status = unpackRange(section, begin, begin + size); !status)
        return status;
    return Bytes(m_buffers[section].get() + begin, size);
}

base::Status PagedContainer::unpackRange(std::size_t section, std::uint64_t begin,
                                         std::uint64_t end)
{
    Descriptor& descriptor = m_descriptors[section];
    const std::string& name = m_sections[section].name;
    if (!makeBuffer(section))
        return {base::Failure::TooLarge, base::Reason::DwgUnpacksTooLarge};
    const std::uint64_t first = begin / descriptor.pageSize * descriptor.pageSize;
    auto page = std::lower_bound(descriptor.pages.begin(), descriptor.pages.end(), first,
                                 [](const Page& p, std::uint64_t at) { return p.offset < at; });
    for (; page != descriptor.pages.end() && page->offset < end; ++page) {
        if (page->state == Page::State::Packed) {
            if (!isSound(descriptor, *page))
                m_findings.push_back({FindingKind::PageChecksum, name, page->number});
            const std::span<std::uint8_t> out(m_buffers[section].get() + page->offset,
                                              descriptor.pageSize);
            const bool isWhole = unpackInto(descriptor, *page, out);
            page->state = isWhole ? Page::State::Unpacked : Page::State::Damaged;
            m_unpackedBytes += out.size();
            if (!isWhole)
                m_findings.push_back({FindingKind::PageUnreadable, name, page->number});
        }
        if (page->state == Page::State::Damaged)
            return sectionDamaged(name);
    }
    return {};
}

base::Result<Bytes> PagedContainer::section(std::size_t index)
{
    const std::uint64_t size = m_descriptors[index].size;
    if (base::Status status = unpackRange(index, 0, size); !status)
        return status;
    return Bytes(m_buffers[index].get(), size);
}

std::uint64_t PagedContainer::objectAreaSize() const
{
    return m_descriptors[m_objects].size;
}

base::Result<Bytes> PagedContainer::objectArea(std::uint64_t offset, std::uint64_t size)
{
    if (base::Status status = unpackRange(m_objects, offset, offset + size); !status)
        return status;
    return Bytes(m_buffers[m_objects].get() + offset, size);
}

std::uint16_t PagedContainer::codePage() const
{
    return readU16(m_file.data() + 0x13);
}

void PagedContainer::checkAll()
{
    for (std::size_t i = 0; i < m_descriptors.size(); ++i)
        for (std::size_t page = 0; page < m_descriptors[i].pages.size(); ++page)
            (void)unpacked(i, page); // what is wrong with it is among the findings then
}

bool PagedContainer::samePages(const Descriptor& mine, const Descriptor& theirs,
                               const PagedContainer& other, std::uint64_t begin,
                               std::uint64_t end) const
{
    const auto from = [&](const Descriptor& d) {
        return std::lower_bound(d.pages.begin(), d.pages.end(), begin / d.pageSize * d.pageSize,
                                [](const Page& p, std::uint64_t at) { return p.offset < at; });
    };
    const auto isInside = [&](const Descriptor& d, const Page* p) {
        return p != d.pages.data() + d.pages.size() && p->offset < end;
    };
    const Page* a = mine.pages.data() + (from(mine) - mine.pages.begin());
    const Page* b = theirs.pages.data() + (from(theirs) - theirs.pages.begin());
    for (; isInside(mine, a) && isInside(theirs, b); ++a, ++b) {
        const Bytes bytes = packedBytes(*a), others = other.packedBytes(*b);
        if (a->offset != b->offset || bytes.size() != a->packedSize ||
            !std::equal(bytes.begin(), bytes.end(), others.begin(), others.end()))
            return false;
    }
    return !isInside(mine, a) && !isInside(theirs, b);
}

bool PagedContainer::sameSection(std::string_view name, const Container& other) const
{
    const auto& pages = static_cast<const PagedContainer&>(other);
    const std::size_t mine = indexOf(name), theirs = other.indexOf(name);
    if (mine == m_sections.size() || theirs == other.sections().size())
        return false;
    const Descriptor& a = m_descriptors[mine];
    const Descriptor& b = pages.m_descriptors[theirs];
    return a.size == b.size && a.pageSize == b.pageSize && a.mode == b.mode &&
           samePages(a, b, pages, 0, a.size);
}

bool PagedContainer::sameObjectArea(std::uint64_t offset, std::uint64_t size,
                                    const Container& other) const
{
    const auto& pages = static_cast<const PagedContainer&>(other);
    const Descriptor& a = m_descriptors[m_objects];
    const Descriptor& b = pages.m_descriptors[pages.m_objects];
    return a.pageSize == b.pageSize && a.mode == b.mode &&
           samePages(a, b, pages, offset, offset + size);
}

} // namespace dwg
