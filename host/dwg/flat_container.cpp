#include "flat_container.h"

#include <algorithm>

#include "byte_stream.h"
#include "preview_block.h"
#include "sentinels.h"

namespace dwg {

namespace {

constexpr std::size_t kRecordsAt = 0x19;
constexpr std::size_t kRecordSize = 9;
constexpr std::size_t kSmallestFile = 0x61;

base::Status headerDamaged()
{
    return {base::Failure::Damaged, base::Reason::DwgHeaderDamaged};
}

} // namespace

std::string FlatContainer::nameOfRecord(std::uint8_t number)
{
    static constexpr std::string_view kNames[] = {section::kHeader,   section::kClasses,
                                                  section::kHandles,  section::kObjFreeSpace,
                                                  section::kTemplate, section::kAuxHeader};
    if (number < std::size(kNames))
        return std::string(kNames[number]);
    return "Record:" + std::to_string(number);
}

base::Result<std::unique_ptr<FlatContainer>> FlatContainer::open(Bytes file)
{
    if (file.size() < kSmallestFile)
        return headerDamaged();
    std::unique_ptr<FlatContainer> container(new FlatContainer(file));
    if (!container->readRecords())
        return headerDamaged();
    container->addSections();
    container->addPreview();
    container->findSecondHeader();
    container->m_area = file.data();
    container->m_atHandBegin = kSmallestFile;
    container->m_atHandEnd = file.size();
    return container;
}

std::unique_ptr<FlatContainer> FlatContainer::blank(Bytes head)
{
    std::unique_ptr<FlatContainer> container(new FlatContainer(head));
    container->readRecords();
    container->m_findings.clear(); // the header is completed when it is written
    return container;
}

bool FlatContainer::readRecords()
{
    const std::size_t count = readU32(m_file.data() + 0x15);
    if (count < 3 || count > 16)
        return false;
    const std::size_t end = kRecordsAt + count * kRecordSize;
    if (end + 18 > m_file.size())
        return false;
    for (std::size_t at = kRecordsAt; at < end; at += kRecordSize)
        m_records.push_back({m_file[at], readU32(&m_file[at + 1]), readU32(&m_file[at + 5])});
    if (crc16(m_file.first(end)) != readU16(&m_file[end]))
        m_findings.push_back({FindingKind::FileHeaderChecksum, {}, 0});
    if (!standsAt(kFileHeaderEnd, m_file, end + 2))
        m_findings.push_back({FindingKind::FileHeaderEnd, {}, 0});
    return true;
}

void FlatContainer::addSections()
{
    for (const Record& record : m_records) {
        const std::string name = nameOfRecord(record.number);
        if (record.size == 0 || indexOf(name) < m_sections.size())
            continue;
        const bool isInFile = fits(record.offset, record.size, m_file.size());
        if (!isInFile)
            m_findings.push_back({FindingKind::SectionOutsideFile, name, 0});
        m_sections.push_back({name, record.size});
        m_places.push_back({record.offset, record.size, isInFile});
    }
}

void FlatContainer::addPreview()
{
    const std::uint32_t address = readU32(m_file.data() + 0x0D);
    if (address == 0)
        return;
    const Bytes block = address < m_file.size() ? previewBlockAt(m_file.subspan(address)) : Bytes();
    if (block.empty()) {
        m_findings.push_back({FindingKind::PreviewWrong, std::string(section::kPreview), 0});
        return;
    }
    m_previewAddress = address;
    m_sections.push_back({std::string(section::kPreview), block.size()});
    m_places.push_back({address, block.size(), true});
}

void FlatContainer::findSecondHeader()
{
    const auto map = std::find_if(m_records.begin(), m_records.end(),
                                  [](const Record& r) { return r.number == 2; });
    const std::uint64_t from = map == m_records.end() ? 0 : std::uint64_t(map->offset) + map->size;
    const std::size_t at =
        from < m_file.size() ? findSentinel(kSecondHeaderBegin, m_file, from) : m_file.size();
    m_secondHeader = readSecondHeader(m_file, at);
    if (!m_secondHeader || !m_secondHeader->checksumRight)
        m_findings.push_back({FindingKind::SecondHeaderWrong, {}, 0});
}

Bytes FlatContainer::recordBytes(const Record& record) const
{
    return fits(record.offset, record.size, m_file.size())
               ? m_file.subspan(record.offset, record.size)
               : Bytes();
}

base::Result<Bytes> FlatContainer::section(std::size_t index)
{
    const Place& place = m_places[index];
    if (!place.isInFile)
        return sectionDamaged(m_sections[index].name);
    return m_file.subspan(place.offset, place.size);
}

std::uint64_t FlatContainer::objectAreaBegin() const
{
    return kSmallestFile;
}

base::Result<Bytes> FlatContainer::objectArea(std::uint64_t offset, std::uint64_t size)
{
    return m_file.subspan(offset, size);
}

std::uint16_t FlatContainer::codePage() const
{
    return readU16(m_file.data() + 0x13);
}

} // namespace dwg
