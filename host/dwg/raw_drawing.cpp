#include "dwg/raw_drawing.h"

#include <algorithm>

#include <base/tv_db_handle.h>

#include "byte_stream.h"
#include "coded_container.h"
#include "flat_container.h"
#include "paged_container.h"
#include "raw_check.h"

namespace dwg {

namespace {

constexpr std::size_t kSmallestRecord = 6; // size, one byte of data, checksum
constexpr std::size_t kMostSizeBytes = 16; // of the sizes that a record begins with

base::Status objectStatus(base::Failure failure, base::Reason reason, std::uint64_t handle)
{
    return {failure, reason, {base::hexText(handle)}};
}

template <class Kind>
base::Result<std::unique_ptr<Container>> openAs(Bytes file)
{
    auto container = Kind::open(file);
    if (!container)
        return container.status();
    return std::unique_ptr<Container>(std::move(*container));
}

base::Result<std::unique_ptr<Container>> openContainer(Version version, Bytes file)
{
    switch (version) {
    case Version::Ac1015: return openAs<FlatContainer>(file);
    case Version::Ac1021: return openAs<CodedContainer>(file);
    default: return openAs<PagedContainer>(file);
    }
}

} // namespace

RawDrawing::RawDrawing() = default;
RawDrawing::RawDrawing(RawDrawing&&) noexcept = default;
RawDrawing& RawDrawing::operator=(RawDrawing&&) noexcept = default;
RawDrawing::~RawDrawing() = default;

base::Result<RawDrawing> RawDrawing::open(std::vector<std::uint8_t> file)
{
    auto kept = std::make_unique<std::vector<std::uint8_t>>(std::move(file));
    auto drawing = openBorrowed(*kept);
    if (drawing)
        drawing->m_file = std::move(kept);
    return drawing;
}

base::Result<RawDrawing> RawDrawing::openBorrowed(Bytes file)
{
    const auto version = versionOf(file);
    if (!version)
        return base::Status(base::Failure::Unsupported, base::Reason::DwgNotDrawing);
    if (file.size() > kLargestFile)
        return base::Status(base::Failure::TooLarge, base::Reason::DwgTooLarge);
    RawDrawing drawing;
    drawing.m_version = *version;
    drawing.m_bytes = file;
    auto container = openContainer(*version, file);
    if (!container)
        return container.status();
    drawing.m_container = std::move(*container);
    if (base::Status status = drawing.readSections(); !status)
        return status;
    return drawing;
}

namespace {

// The plain part of a file header; what depends on the content is filled in by the writers.
std::vector<std::uint8_t> blankHead(Version version, std::uint16_t codePage)
{
    struct Release {
        Version version;
        std::size_t size;         // of the head
        std::uint8_t maintenance; // byte 0x0B
        std::uint8_t mark;        // byte 0x0C
        std::uint8_t application; // bytes 0x11 and 0x16
        std::uint8_t applicationMaintenance, copy, maintenanceCopy;
    };
    // clang-format off
    static constexpr Release kReleases[] = {
        {Version::Ac1015, 0x61,  0x0F, 1, 0x17, 0, 0,    0},
        {Version::Ac1018, 0x100, 0x68, 3, 0x21, 8, 0x21, 8},
        {Version::Ac1021, 0x480, 0x32, 3, 0x21, 8, 0x21, 8},
        {Version::Ac1024, 0x100, 0x6D, 3, 0x21, 8, 0x21, 8},
        {Version::Ac1027, 0x100, 0x7D, 3, 0x21, 8, 0x21, 8},
        {Version::Ac1032, 0x100, 0,    3, 0x21, 8, 0,    0},
    };
    // clang-format on
    const Release& release = *std::find_if(std::begin(kReleases), std::end(kReleases),
                                           [&](const auto& r) { return r.version == version; });
    std::vector<std::uint8_t> head(release.size);
    const std::string_view name = nameOf(version);
    std::copy(name.begin(), name.end(), head.begin());
    head[0x0B] = release.maintenance;
    head[0x0C] = release.mark;
    head[0x11] = release.application;
    head[0x12] = release.applicationMaintenance;
    putU16(&head[0x13], codePage);
    if (version == Version::Ac1015) {
        constexpr std::uint8_t kRecords = 6;
        head[0x15] = kRecords;
        for (std::uint8_t number = 0; number < kRecords; ++number)
            head[0x19 + 9 * number] = number;
        return head;
    }
    head[0x16] = release.copy;
    head[0x17] = release.maintenanceCopy;
    putU32(&head[0x28], 0x80);
    if (version == Version::Ac1021) {
        const auto page = coded::newHeaderPage();
        std::copy(page.begin(), page.end(), head.begin() + coded::kHeaderPageAt);
    }
    return head;
}

std::unique_ptr<Container> blankContainer(Version version, Bytes head)
{
    switch (version) {
    case Version::Ac1015: return FlatContainer::blank(head);
    case Version::Ac1021: return CodedContainer::blank(head);
    default: return PagedContainer::blank(head);
    }
}

} // namespace

RawDrawing RawDrawing::makeBlank(Version version, std::uint16_t codePage)
{
    RawDrawing drawing;
    drawing.m_version = version;
    drawing.m_file = std::make_unique<std::vector<std::uint8_t>>(blankHead(version, codePage));
    drawing.m_bytes = *drawing.m_file;
    drawing.m_container = blankContainer(version, drawing.m_bytes);
    drawing.m_header = HeaderVariables::makeDefault(version);
    drawing.m_classes = ClassTable::makeEmpty(version);
    return drawing;
}

base::Status RawDrawing::readSections()
{
    const auto headerBytes = section(section::kHeader);
    if (!headerBytes)
        return headerBytes.status();
    auto header = HeaderVariables::read(m_version, *headerBytes);
    if (!header)
        return header.status();
    m_header = std::move(*header);

    const auto classBytes = section(section::kClasses);
    if (!classBytes)
        return classBytes.status();
    auto classes = ClassTable::read(m_version, *classBytes);
    if (!classes)
        return classes.status();
    m_classes = std::move(*classes);

    const auto mapBytes = section(section::kHandles);
    if (!mapBytes)
        return mapBytes.status();
    auto map = readObjectMap(*mapBytes, m_container->objectAreaSize() / kSmallestRecord);
    if (!map)
        return map.status();
    m_map = std::move(*map);
    addSectionFindings(m_header, m_classes, m_map, m_findings);
    return {};
}

std::uint16_t RawDrawing::codePage() const
{
    return m_container->codePage();
}

const ObjectLocation* RawDrawing::find(std::uint64_t handle) const
{
    // Mostly the one behind the last.
    const std::size_t next = m_lastFound + 1;
    if (next < m_map.objects.size() && m_map.objects[next].handle == handle)
        return &m_map.objects[m_lastFound = next];
    const auto at = std::lower_bound(
        m_map.objects.begin(), m_map.objects.end(), handle,
        [](const ObjectLocation& object, std::uint64_t h) { return object.handle < h; });
    if (at == m_map.objects.end() || at->handle != handle)
        return nullptr;
    m_lastFound = static_cast<std::size_t>(at - m_map.objects.begin());
    return &*at;
}

base::Result<Bytes> RawDrawing::objectBytes(std::uint64_t handle) const
{
    const ObjectLocation* location = find(handle);
    if (!location)
        return objectStatus(base::Failure::NotFound, base::Reason::DwgObjectMissing, handle);
    return recordBytes(*m_container, m_version, *location);
}

base::Result<ObjectRecord> RawDrawing::object(std::uint64_t handle) const
{
    const auto bytes = objectBytes(handle);
    if (!bytes)
        return bytes.status();
    return parseRecord(m_version, *bytes);
}

base::Result<ObjectRecord> RawDrawing::object(const ObjectLocation& location) const
{
    const auto bytes = recordBytes(*m_container, m_version, location);
    if (!bytes)
        return bytes.status();
    return parseRecord(m_version, *bytes);
}

ObjectFront RawDrawing::front(const ObjectLocation& location) const
{
    const std::uint64_t area = m_container->objectAreaSize(), at = location.offset;
    if (at < m_container->objectAreaBegin() || at >= area)
        return {};
    const std::uint64_t room = area - at;
    const auto head = m_container->objectArea(at, std::min<std::uint64_t>(room, kMostFrontBytes));
    const ObjectFront front = head ? readFront(m_version, *head) : ObjectFront();
    return front.size <= room ? front : ObjectFront();
}

base::Result<Bytes> recordBytes(Container& container, Version version,
                                const ObjectLocation& location)
{
    const auto damaged = [&] {
        return objectStatus(base::Failure::Damaged, base::Reason::DwgObjectDamaged,
                            location.handle);
    };
    if (location.offset < container.objectAreaBegin())
        return damaged();
    const Bytes hand = container.atHand(location.offset, ~std::uint64_t(0));
    const std::uint64_t told =
        hand.size() >= kMostSizeBytes ? recordSize(version, hand.first(kMostSizeBytes)) : 0;
    if (told != 0 && told <= hand.size())
        return hand.first(told);
    const std::uint64_t area = container.objectAreaSize();
    if (location.offset >= area)
        return damaged();
    const std::uint64_t room = area - location.offset;
    const auto sizes =
        container.objectArea(location.offset, std::min<std::uint64_t>(room, kMostSizeBytes));
    if (!sizes)
        return sizes.status();
    const std::uint64_t size = recordSize(version, *sizes);
    if (size == 0 || size > room)
        return damaged();
    return container.objectArea(location.offset, size);
}

std::vector<std::string> RawDrawing::sectionNames() const
{
    std::vector<std::string> names;
    for (const Container::Section& section : m_container->sections())
        names.push_back(section.name);
    return names;
}

bool RawDrawing::hasSection(std::string_view name) const
{
    return m_container->indexOf(name) < m_container->sections().size();
}

base::Result<Bytes> RawDrawing::section(std::string_view name) const
{
    if (!hasSection(name))
        return base::Status(base::Failure::NotFound, base::Reason::DwgSectionMissing,
                            {TvString(name)});
    return m_container->section(m_container->indexOf(name));
}

std::vector<Finding> RawDrawing::findings() const
{
    std::vector<Finding> all = m_container->findings();
    all.insert(all.end(), m_findings.begin(), m_findings.end());
    return all;
}

std::vector<Finding> RawDrawing::check() const
{
    m_container->checkAll();
    std::vector<Finding> all = findings();
    addObjectFindings(*m_container, m_version, m_map.objects, all);
    return all;
}

} // namespace dwg
