#include "coded_container.h"

#include <algorithm>

#include "byte_stream.h"
#include "lz2007.h"
#include "reed_solomon.h"

namespace dwg {

using namespace coded;

namespace {

constexpr std::size_t kSmallestFile = 0x880;
constexpr std::uint64_t kLargestMap = 64u << 20;
constexpr std::uint64_t kLargestPackedPage = 16u << 20;
constexpr std::uint64_t kHighestId = 1'000'000;
constexpr std::size_t kMostDescriptors = 1000;
constexpr std::uint64_t kLongestName = 512; // bytes
constexpr std::size_t kPageEntrySize = 56;

base::Status pagesDamaged()
{
    return {base::Failure::Damaged, base::Reason::DwgPagesDamaged};
}

std::string plainName(const std::u16string& name)
{
    std::string text;
    for (const char16_t unit : name)
        if (unit != 0)
            text += unit < 0x80 ? static_cast<char>(unit) : '?';
    return text;
}

} // namespace

base::Result<std::unique_ptr<CodedContainer>> CodedContainer::open(Bytes file)
{
    if (file.size() < kSmallestFile)
        return base::Status(base::Failure::Damaged, base::Reason::DwgHeaderDamaged);
    if (readU32(file.data() + 0x18) & 3)
        return base::Status(base::Failure::Unsupported, base::Reason::DwgEncrypted);
    std::unique_ptr<CodedContainer> container(new CodedContainer(file));
    for (auto step : {&CodedContainer::readRecords, &CodedContainer::readPageMap,
                      &CodedContainer::readSectionMap})
        if (base::Status status = (container.get()->*step)(); !status)
            return status;
    if (base::Status status = container->findObjects(); !status)
        return status;
    if (container->indexOf(section::kSecurity) < container->m_sections.size())
        return base::Status(base::Failure::Unsupported, base::Reason::DwgEncrypted);
    return container;
}

namespace {

struct KnownSection {
    std::string_view name;
    std::uint64_t hash, pageSize, encoding;
};
// clang-format off
constexpr KnownSection kKnownSections[] = {
    {section::kRevHistory,     0x60A205B3, 0x1000, CodedContainer::kBlocks},
    {section::kObjects,        0x674C05A9, 0xF800, CodedContainer::kBlocks},
    {section::kObjFreeSpace,   0x77E2061F, 0xF800, CodedContainer::kBlocks},
    {section::kTemplate,       0x4A1404CE, 0x400,  CodedContainer::kBlocks},
    {section::kHandles,        0x3F6E0450, 0xF800, CodedContainer::kBlocks},
    {section::kClasses,        0x3F54045F, 0xF800, CodedContainer::kBlocks},
    {section::kAuxHeader,      0x54F0050A, 0x800,  CodedContainer::kBlocks},
    {section::kHeader,         0x32B803D9, 0x800,  CodedContainer::kBlocks},
    {section::kSummaryInfo,    0x717A060F, 0x80,   CodedContainer::kPlain},
    {section::kPreview,        0x40AA0473, 0x400,  CodedContainer::kPlain},
    {section::kVbaProject,     0x586E0544, 0x80,   CodedContainer::kPlain},
};
// clang-format on
constexpr std::size_t kNeededSections = 8; // the first ones

} // namespace

std::optional<CodedContainer::Descriptor> CodedContainer::newDescriptor(std::string_view name)
{
    for (const KnownSection& known : kKnownSections) {
        if (known.name != name)
            continue;
        Descriptor descriptor;
        descriptor.pageSize = known.pageSize;
        descriptor.hash = known.hash;
        descriptor.encoding = known.encoding;
        descriptor.name.assign(name.begin(), name.end());
        descriptor.name += u'\0';
        return descriptor;
    }
    return std::nullopt;
}

std::unique_ptr<CodedContainer> CodedContainer::blank(Bytes head)
{
    std::unique_ptr<CodedContainer> container(new CodedContainer(head));
    container->m_record = newRecord();
    for (std::size_t i = 0; i < kNeededSections; ++i) {
        auto descriptor = *newDescriptor(kKnownSections[i].name);
        descriptor.size = kKnownSections[i].name == section::kObjects ? kObjectsMark.size() : 0;
        container->keep(std::move(descriptor), std::string(kKnownSections[i].name));
    }
    (void)container->findObjects(); // just put there
    return container;
}

// The header page stands twice, at the begin and at the end; either will do, both should be right.
base::Status CodedContainer::readRecords()
{
    bool firstRight = false, secondRight = false;
    const auto first = readRecord(m_file, kHeaderPageAt, firstRight);
    const auto second = readRecord(m_file, m_file.size() - kHeaderPageSize, secondRight);
    if (!first && !second)
        return {base::Failure::Damaged, base::Reason::DwgHeaderDamaged};
    if (!firstRight)
        m_findings.push_back({FindingKind::FileHeaderChecksum, {}, 0});
    if (!secondRight)
        m_findings.push_back({FindingKind::FileHeaderEnd, {}, 0});
    m_record = firstRight || !second ? *first : *second;
    return {};
}

base::Status CodedContainer::readPageMap()
{
    const std::uint64_t most = std::min(kLargestMap, mostUnpackedBytes(m_file.size()));
    const std::uint64_t place = m_record.at(Record::kMapAt);
    if (place > m_file.size())
        return pagesDamaged();
    const auto map = readMap(m_file, kFirstPage + place, m_record.at(Record::kMapPackedSize),
                             m_record.at(Record::kMapSize), m_record.at(Record::kMapRepeat), most);
    if (map.empty() || !addPlaces(map))
        return pagesDamaged();
    if (crc64Mirrored(map) != m_record.at(Record::kMapCrc))
        m_findings.push_back({FindingKind::PageChecksum, {}, 0});
    return {};
}

// Pages in the order of the file, each behind the other; a negative id is an unused page.
bool CodedContainer::addPlaces(Bytes map)
{
    ByteReader reader(map);
    std::uint64_t address = kFirstPage;
    while (reader.remaining() >= 16) {
        const std::uint64_t size = reader.u64();
        const auto id = static_cast<std::int64_t>(reader.u64());
        if (size == 0 || !fits(address, size, m_file.size()) || id == 0)
            return false;
        const bool isUsed = id > 0;
        if (isUsed && (static_cast<std::uint64_t>(id) > kHighestId ||
                       !m_places.emplace(id, Place{address, size}).second))
            return false;
        address += size;
    }
    return true;
}

base::Status CodedContainer::readSectionMap()
{
    const std::uint64_t most = std::min(kLargestMap, mostUnpackedBytes(m_file.size()));
    const auto place = m_places.find(m_record.at(Record::kSectionsId));
    if (place == m_places.end())
        return pagesDamaged();
    const auto map =
        readMap(m_file, place->second.address, m_record.at(Record::kSectionsPackedSize),
                m_record.at(Record::kSectionsSize), m_record.at(Record::kSectionsRepeat), most);
    if (map.empty() || !addDescriptors(map))
        return pagesDamaged();
    if (crc64Mirrored(map) != m_record.at(Record::kSectionsCrc))
        m_findings.push_back({FindingKind::PageChecksum, {}, 0});
    if (promisedBytes() > mostUnpackedBytes(m_file.size()))
        return {base::Failure::Damaged, base::Reason::DwgUnpacksTooLarge};
    const auto isHidden = [](const Descriptor& d) { return d.encrypted == 1; };
    if (std::any_of(m_descriptors.begin(), m_descriptors.end(), isHidden))
        return {base::Failure::Unsupported, base::Reason::DwgEncrypted};
    return {};
}

bool CodedContainer::addDescriptors(Bytes map)
{
    ByteReader reader(map);
    std::uint64_t pages = 0;
    while (reader.remaining() >= 0x40) {
        Descriptor descriptor;
        descriptor.size = reader.u64();
        descriptor.pageSize = reader.u64();
        descriptor.encrypted = reader.u64();
        descriptor.hash = reader.u64();
        const std::uint64_t nameBytes = reader.u64();
        reader.u64();
        descriptor.encoding = reader.u64();
        const std::uint64_t pageCount = reader.u64();
        if (nameBytes % 2 != 0 || nameBytes > kLongestName)
            return false;
        for (std::uint64_t i = 0; i < nameBytes; i += 2)
            descriptor.name += static_cast<char16_t>(reader.u16());
        pages = pageCount > m_places.size() ? pageCount : pages + pageCount;
        if (pages > m_places.size() || !addPages(reader, pageCount, descriptor))
            return false;
        const std::string name = plainName(descriptor.name);
        if (name.empty())
            continue; // the one that ends the list
        if (!isPossible(descriptor) || indexOf(name) < m_sections.size() ||
            m_sections.size() >= kMostDescriptors)
            return false;
        keep(std::move(descriptor), name);
    }
    return true;
}

bool CodedContainer::addPages(ByteReader& reader, std::uint64_t count, Descriptor& descriptor)
{
    if (count > reader.remaining() / kPageEntrySize)
        return false;
    descriptor.pages.reserve(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        Page page;
        for (std::uint64_t* field : {&page.offset, &page.slot, &page.id, &page.size,
                                     &page.packedSize, &page.sum, &page.crc})
            *field = reader.u64();
        const auto place = m_places.find(page.id);
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

bool CodedContainer::isPossible(const Descriptor& descriptor) const
{
    const bool isPlain = descriptor.encoding == kPlain;
    const std::uint64_t most = mostUnpackedBytes(m_file.size());
    if ((!isPlain && descriptor.encoding != kBlocks) || descriptor.size > most)
        return false;
    std::uint64_t end = 0;
    for (const Page& page : descriptor.pages) {
        const std::uint64_t largest = isPlain ? page.diskSize : std::min(most, kLargestPackedPage);
        const bool isPlaced =
            page.offset >= end && page.offset < std::max<std::uint64_t>(descriptor.size, 1);
        if (!isPlaced || page.size == 0 || page.size > largest || page.packedSize == 0 ||
            page.packedSize > page.diskSize || (isPlain && page.packedSize != page.size) ||
            (!isPlain && blockBytes(page.packedSize) > page.diskSize))
            return false;
        end = page.offset + page.size;
    }
    return true;
}

void CodedContainer::keep(Descriptor descriptor, std::string name)
{
    std::vector<PageRange> ranges;
    for (const Page& page : descriptor.pages)
        ranges.push_back({page.offset, page.size, static_cast<std::uint32_t>(page.id)});
    addSection(std::move(name), descriptor.size, std::move(ranges));
    m_descriptors.push_back(std::move(descriptor));
}

Bytes CodedContainer::diskBytes(std::size_t section, std::size_t page) const
{
    const Page& place = m_descriptors[section].pages[page];
    return m_file.subspan(place.address, place.diskSize);
}

std::vector<std::uint8_t> CodedContainer::packedBytes(const Descriptor& descriptor,
                                                      const Page& page) const
{
    const Bytes disk = m_file.subspan(page.address, page.diskSize);
    if (descriptor.encoding == kPlain)
        return {disk.begin(), disk.begin() + static_cast<std::ptrdiff_t>(page.packedSize)};
    const std::uint64_t blocks = blockBytes(page.packedSize) / kBlockSize;
    return decodeInterleaved(BlockCode::Data, disk, blocks, page.packedSize);
}

bool CodedContainer::isSound(std::size_t section, std::size_t page) const
{
    const Page& place = m_descriptors[section].pages[page];
    return crc64Mirrored(packedBytes(m_descriptors[section], place)) == place.crc;
}

bool CodedContainer::unpackPage(std::size_t section, std::size_t page,
                                std::span<std::uint8_t> out) const
{
    const Page& place = m_descriptors[section].pages[page];
    const auto packed = packedBytes(m_descriptors[section], place);
    if (place.packedSize < place.size)
        return unpack2007(packed, out);
    std::fill(std::copy_n(packed.begin(), std::min(packed.size(), out.size()), out.begin()),
              out.end(), std::uint8_t(0));
    return true;
}

bool CodedContainer::isContentRight(std::size_t section, std::size_t page, Bytes content) const
{
    return pageSum2007(content) == m_descriptors[section].pages[page].sum;
}

std::uint16_t CodedContainer::codePage() const
{
    return readU16(m_file.data() + 0x13);
}

} // namespace dwg
