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
    if (base::Status status = container->findObjects(); !status)
        return status;
    return container;
}

std::unique_ptr<PagedContainer> PagedContainer::blank(Bytes head)
{
    // Programs find these by their ids, which count down to the first.
    static constexpr std::string_view kNames[] = {
        section::kRevHistory, section::kObjects, section::kObjFreeSpace, section::kTemplate,
        section::kHandles,    section::kClasses, section::kAuxHeader,    section::kHeader};
    std::unique_ptr<PagedContainer> container(new PagedContainer(head));
    auto id = static_cast<std::uint32_t>(std::size(kNames));
    for (const std::string_view name : kNames) {
        Descriptor descriptor;
        descriptor.size = name == section::kObjects ? kObjectsMark.size() : 0;
        descriptor.pageSize = kUsualPage;
        descriptor.id = id--;
        std::copy(name.begin(), name.end(), descriptor.name.begin());
        container->keep(std::move(descriptor), std::string(name));
    }
    (void)container->findObjects(); // just put there
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
    if (promisedBytes() > mostUnpackedBytes(m_file.size()))
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
        keep(std::move(descriptor), name);
    }
    return true;
}

void PagedContainer::keep(Descriptor descriptor, std::string name)
{
    std::vector<PageRange> ranges;
    for (const Page& page : descriptor.pages)
        ranges.push_back({page.offset, descriptor.pageSize, page.number});
    addSection(std::move(name), descriptor.size, std::move(ranges));
    m_descriptors.push_back(std::move(descriptor));
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

Bytes PagedContainer::diskBytes(std::size_t section, std::size_t page) const
{
    const Page& place = m_descriptors[section].pages[page];
    const std::uint64_t at = place.address + kDataHead;
    return fits(at, place.packedSize, m_file.size()) ? m_file.subspan(at, place.packedSize)
                                                     : Bytes();
}

PageHead PagedContainer::pageHead(std::size_t section, std::size_t page) const
{
    const std::uint64_t address = m_descriptors[section].pages[page].address;
    return readPageHead(m_file.data() + address, address);
}

bool PagedContainer::isSound(std::size_t section, std::size_t page) const
{
    const Descriptor& descriptor = m_descriptors[section];
    const Page& place = descriptor.pages[page];
    const Bytes packed = diskBytes(section, page);
    if (packed.empty() || packed.size() != place.packedSize)
        return false;
    const PageHead head = pageHead(section, page);
    return head.type == kDataPageType && head.sectionId == descriptor.id &&
           head.packedSize == place.packedSize && head.offset == place.offset &&
           head.headSum == headSumOf(head) && head.dataSum == pageSum(0, packed);
}

bool PagedContainer::unpackPage(std::size_t section, std::size_t page,
                                std::span<std::uint8_t> out) const
{
    const Bytes packed = diskBytes(section, page);
    if (m_descriptors[section].mode == 2)
        return unpack2004(packed, out);
    if (packed.empty() || packed.size() > out.size())
        return false;
    std::fill(std::copy(packed.begin(), packed.end(), out.begin()), out.end(), std::uint8_t(0));
    return true;
}

std::uint16_t PagedContainer::codePage() const
{
    return readU16(m_file.data() + 0x13);
}

} // namespace dwg
