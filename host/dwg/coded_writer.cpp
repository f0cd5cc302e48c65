// How a file of 2007 is written anew. What holds of the bytes that are made:
//
// 1. A page whose content does not change is taken over as it lies, parity and all; nothing in it
// tells its place.
// 2. Key, check data and the seeds of the header stay as they were: programs exist that check them
// against
//    each other in ways of their own.
// 3. Page map and section map stand twice each; the page map first, the section map last, before
// the second
//    header page, which ends the file and is equal to the first.
// 4. Data pages have the ids from 3 on in the order of the file.
// 5. Addresses in the first 0x80 bytes tell the pages themselves, and the preview's absolute places
// move along.

#include <algorithm>
#include <cassert>
#include <deque>

#include "byte_stream.h"
#include "coded_container.h"
#include "lz2007.h"
#include "object_layout.h"
#include "preview_block.h"

namespace dwg {

using namespace coded;

namespace {

constexpr std::size_t kPreviewFieldAt = 0x0D;
constexpr std::uint64_t kFirstDataId = 3;

struct OutPage {
    std::uint64_t offset = 0, size = 0, slot = 0;
    std::uint64_t id = 0, address = 0;
    Bytes taken;   // an old page as it lies
    DataPage made; // or a new one; with the sums of either
    Bytes disk() const { return taken.empty() ? Bytes(made.bytes) : taken; }
};

struct OutSection {
    const CodedContainer::Descriptor* descriptor = nullptr;
    std::string name;
    std::uint64_t size = 0, pageSize = 0;
    std::uint64_t firstAddress = ~std::uint64_t(0); // of the old pages: gives the order
    std::vector<OutPage> pages;
};

class CodedWriter
{
public:
    CodedWriter(const SavePlan& plan, CodedContainer& source) : m_plan(plan), m_source(source) {}

    base::Result<std::vector<std::uint8_t>> write()
    {
        if (base::Status status = addSections(); !status)
            return status;
        if (base::Status status = makeSections(); !status)
            return status;
        placePages();
        movePreviewAlong();
        writeAll();
        return std::move(m_out.bytes);
    }

private:
    // Those that the source does not have; they stand before all others.
    base::Status addSections()
    {
        for (const auto& [name, payload] : m_plan.sections) {
            if (m_source.indexOf(name) < m_source.sections().size())
                continue;
            auto descriptor = CodedContainer::newDescriptor(name);
            if (!descriptor)
                return {base::Failure::Unsupported,
                        base::Reason::DwgSectionNotWritten,
                        {TvString(name)}}; // its hash is not known
            if (descriptor->encoding == CodedContainer::kPlain)
                descriptor->pageSize = alignUp(payload.size(), descriptor->pageSize);
            m_added.push_back(std::move(*descriptor));
            OutSection out{&m_added.back(), name, payload.size(), m_added.back().pageSize, 0, {}};
            for (std::uint64_t at = 0; at < payload.size(); at += out.pageSize)
                addPage(out, at,
                        Bytes(payload).subspan(
                            at, std::min<std::uint64_t>(out.pageSize, payload.size() - at)));
            m_sections.push_back(std::move(out));
        }
        return {};
    }

    base::Status makeSections()
    {
        if (base::Status status = layOutObjects(); !status)
            return status;
        for (std::size_t i = 0; i < m_source.descriptors().size(); ++i) {
            const auto& descriptor = m_source.descriptors()[i];
            OutSection out{&descriptor,         m_source.sections()[i].name, descriptor.size,
                           descriptor.pageSize, ~std::uint64_t(0),           {}};
            if (out.name == section::kSignature && !m_plan.changes.empty())
                continue; // it would sign what is no longer there
            for (const auto& page : descriptor.pages)
                out.firstAddress = std::min(out.firstAddress, page.address);
            const auto* changed = m_plan.changed(out.name);
            const Bytes payload = out.name == section::kObjects   ? Bytes(m_objects)
                                  : out.name == section::kHandles ? Bytes(m_handles)
                                  : changed                       ? Bytes(*changed)
                                                                  : Bytes();
            const auto status = payload.empty() ? takeOver(i, out) : cut(i, out, payload);
            if (!status)
                return status;
            m_sections.push_back(std::move(out));
        }
        return {};
    }

    // All objects behind each other. Pages in which nothing changed come out as they were.
    base::Status layOutObjects()
    {
        const auto layout = layoutCompact(m_plan);
        if (!layout)
            return layout.status();
        m_objects.resize(layout->size);
        const auto mark = m_source.objectArea(0, m_source.objectAreaBegin());
        if (!mark)
            return mark.status();
        const bool isNew = m_source.pages(m_source.indexOf(section::kObjects)).empty();
        std::copy(mark->begin(), mark->end(), m_objects.begin());
        if (isNew)
            std::copy(kObjectsMark.begin(), kObjectsMark.end(), m_objects.begin());
        for (const auto& write : layout->writes)
            std::copy_n(write.bytes, write.size, &m_objects[write.offset]);
        m_handles = writeObjectMap(layout->map);
        return {};
    }

    OutPage taken(std::size_t index, std::size_t page) const
    {
        const auto& old = m_source.descriptors()[index].pages[page];
        OutPage out;
        out.offset = old.offset;
        out.size = old.size;
        out.slot = old.slot;
        out.taken = m_source.diskBytes(index, page);
        out.made = {{}, old.packedSize, old.sum, old.crc};
        return out;
    }

    base::Status takeOver(std::size_t index, OutSection& out)
    {
        for (std::size_t i = 0; i < m_source.pages(index).size(); ++i) {
            if (m_source.isSound(index, i)) {
                out.pages.push_back(taken(index, i));
                continue;
            }
            if (!m_plan.repair)
                return {base::Failure::Damaged, base::Reason::DwgDamageNotSaved};
            const auto plain = m_source.unpacked(index, i);
            if (!plain)
                return plain.status();
            addPage(out, m_source.pages(index)[i].offset, *plain);
        }
        return {};
    }

    void addPage(OutSection& out, std::uint64_t offset, Bytes plain)
    {
        OutPage page;
        page.offset = offset;
        page.size = plain.size();
        page.slot = out.pageSize;
        page.made = out.descriptor->encoding == CodedContainer::kPlain
                        ? writePlainPage(plain, std::max<std::uint64_t>(out.pageSize, plain.size()))
                        : writePackedPage(plain);
        out.pages.push_back(std::move(page));
    }

    // The old pages serve as long as they have the same bytes at the same place; what follows is
    // cut anew.
    base::Status cut(std::size_t index, OutSection& out, Bytes payload)
    {
        const bool isPlain = out.descriptor->encoding == CodedContainer::kPlain;
        if (isPlain && payload.size() != out.size)
            out.pageSize = alignUp(payload.size(), out.name == section::kPreview ? 0x400 : 0x80);
        out.size = payload.size();
        const std::uint64_t step =
            isPlain ? out.pageSize : std::max<std::uint64_t>(out.pageSize, 0x400);
        for (std::uint64_t at = 0; at < payload.size();) {
            const std::size_t page = m_source.pageAt(index, at);
            if (isSame(index, page, payload.subspan(at))) {
                out.pages.push_back(taken(index, page));
            } else {
                const Bytes plain = payload.subspan(at, std::min(step, payload.size() - at));
                addPage(out, at, plain);
            }
            at += out.pages.back().size;
        }
        return {};
    }

    bool isSame(std::size_t index, std::size_t page, Bytes payload)
    {
        const auto& pages = m_source.pages(index);
        if (page >= pages.size() || pages[page].size > payload.size() ||
            !m_source.isSound(index, page))
            return false;
        const auto old = m_source.unpacked(index, page);
        return old && std::equal(old->begin(), old->end(), payload.begin());
    }

    void placePages()
    {
        for (OutSection& section : m_sections)
            m_order.push_back(&section);
        std::stable_sort(m_order.begin(), m_order.end(), [](const auto* a, const auto* b) {
            return a->firstAddress < b->firstAddress;
        });
        std::uint64_t count = 0, entries = 1;
        for (const OutSection* section : m_order) {
            count += section->pages.size();
            ++entries;
        }
        m_mapRoom = mapPageSize((count + 4) * 16);
        m_sectionsSize = entries * 0x40 + count * 56;
        for (const OutSection* section : m_order)
            m_sectionsSize += section->descriptor->name.size() * 2;
        std::uint64_t address = kFirstPage + 2 * m_mapRoom; // 3
        m_lastId = kFirstDataId - 1;
        for (OutSection* section : m_order)
            for (OutPage& page : section->pages) {
                page.id = ++m_lastId; // 4
                page.address = address;
                address += page.disk().size();
            }
    }

    OutSection* sectionNamed(std::string_view name)
    {
        for (OutSection& section : m_sections)
            if (section.name == name && !section.pages.empty())
                return &section;
        return nullptr;
    }

    std::uint32_t addressOf(std::string_view name)
    {
        const OutSection* section = sectionNamed(name);
        return section ? static_cast<std::uint32_t>(section->pages.front().address) : 0;
    }

    // The page lies in the clear, so its size does not depend on what stands in it (5).
    void movePreviewAlong()
    {
        OutSection* section = sectionNamed(section::kPreview);
        if (!section || section->descriptor->encoding != CodedContainer::kPlain)
            return;
        OutPage& page = section->pages.front();
        const bool isNew = m_plan.changed(section::kPreview) != nullptr;
        const std::uint64_t from = isNew ? 0 : readU32(&m_source.file()[kPreviewFieldAt]);
        const std::uint64_t to = page.address;
        if (from == to)
            return;
        const Bytes disk = page.disk();
        std::vector<std::uint8_t> block(disk.begin(),
                                        disk.begin() + static_cast<std::ptrdiff_t>(page.size));
        movePreview(block, from, to);
        const std::size_t room = disk.size();
        page.made = writePlainPage(block, section->pageSize);
        page.made.bytes.resize(room); // as placed
        page.taken = {};
    }

    std::vector<std::uint8_t> sectionMap() const
    {
        ByteWriter map;
        const auto put = [&](std::initializer_list<std::uint64_t> numbers) {
            for (const std::uint64_t number : numbers)
                map.u64(number);
        };
        for (const OutSection& section : m_sections) {
            const auto& old = *section.descriptor;
            put({section.size, section.pageSize, old.encrypted, old.hash, old.name.size() * 2, 0,
                 old.encoding, section.pages.size()});
            for (const char16_t unit : old.name)
                map.u16(unit);
            for (const OutPage& page : section.pages)
                put({page.offset, page.slot, page.id, page.size, page.made.packedSize,
                     page.made.sum, page.made.crc});
        }
        put({0, 0xF800, 0, 0, 0, 0, 4, 0});
        return std::move(map.bytes);
    }

    std::vector<std::uint8_t> pageMap(std::uint64_t sectionsRoom) const
    {
        ByteWriter map;
        const auto put = [&](std::uint64_t size, std::uint64_t id) {
            map.u64(size);
            map.u64(id);
        };
        put(m_mapRoom, pageMapId());
        put(m_mapRoom, pageMapId() + 1);
        for (const OutSection* section : m_order)
            for (const OutPage& page : section->pages)
                put(page.disk().size(), page.id);
        put(sectionsRoom, sectionMapId());
        put(sectionsRoom, sectionMapId() + 1);
        return std::move(map.bytes);
    }

    std::uint64_t sectionMapId() const { return m_lastId + 1; }
    std::uint64_t pageMapId() const { return m_lastId + 5; }

    void writeAll()
    {
        const auto sections = sectionMap();
        assert(sections.size() == m_sectionsSize);
        const std::size_t packedSize = pack2007(sections).size(); // 0: it stays as it is
        const std::uint64_t sectionsRoom =
            mapPageSize(packedSize != 0 ? packedSize : sections.size());
        const MapPage sectionsPage = writeMap(sections, sectionsRoom);
        const auto map = pageMap(sectionsRoom);
        const MapPage mapPage = writeMap(map, m_mapRoom);
        m_out.zeros(kFirstPage);
        m_out.append(mapPage.bytes);
        m_out.append(mapPage.bytes);
        for (const OutSection* section : m_order)
            for (const OutPage& page : section->pages) {
                assert(m_out.size() == page.address);
                m_out.append(page.disk());
            }
        m_out.append(sectionsPage.bytes);
        m_out.append(sectionsPage.bytes);
        writeHeader(recordFor(map, mapPage, sections, sectionsPage));
    }

    Record recordFor(Bytes map, const MapPage& mapPage, Bytes sections,
                     const MapPage& sectionsPage) const
    {
        Record record = m_source.record(); // 2
        record.put(Record::kFileSize, m_out.size() + kHeaderPageSize);
        record.put(Record::kSecondHeaderAt, m_out.size() - kFirstPage);
        record.put(Record::kMapAt, 0);
        record.put(Record::kMapCopyAt, m_mapRoom);
        record.put(Record::kMapId, pageMapId());
        record.put(Record::kMapCopyId, pageMapId() + 1);
        record.put(Record::kMapSize, map.size());
        record.put(Record::kMapPackedSize, mapPage.packedSize);
        record.put(Record::kMapPackedCrc, mapPage.packedCrc);
        record.put(Record::kMapCrc, mapPage.crc);
        record.put(Record::kMapRepeat, mapPage.repeat);
        record.put(Record::kPageCount, map.size() / 16);
        record.put(Record::kHighestId, pageMapId() + 1);
        record.put(Record::kSectionCount, m_sections.size() + 1);
        record.put(Record::kSectionsId, sectionMapId());
        record.put(Record::kSectionsCopyId, sectionMapId() + 1);
        record.put(Record::kSectionsSize, sections.size());
        record.put(Record::kSectionsPackedSize, sectionsPage.packedSize);
        record.put(Record::kSectionsPackedCrc, sectionsPage.packedCrc);
        record.put(Record::kSectionsCrc, sectionsPage.crc);
        record.put(Record::kSectionsRepeat, sectionsPage.repeat);
        return record;
    }

    void writeHeader(const Record& record)
    {
        const Bytes old = m_source.file().subspan(kHeaderPageAt, kHeaderPageSize);
        const auto page = writeRecord(old, record);
        m_out.append(page); // 3
        std::uint8_t* file = m_out.bytes.data();
        std::copy_n(m_source.file().begin(), kHeaderPageAt, file);
        std::copy(page.begin(), page.end(), file + kHeaderPageAt);
        putU32(file + kPreviewFieldAt, addressOf(section::kPreview)); // 5
        putU32(file + 0x20, addressOf(section::kSummaryInfo));
        putU32(file + 0x2C, addressOf(section::kAppInfo));
        putU32(file + 0x30, addressOf(section::kAppInfoHistory));
    }

    const SavePlan& m_plan;
    CodedContainer& m_source;
    ByteWriter m_out;
    std::deque<CodedContainer::Descriptor> m_added;
    std::vector<OutSection> m_sections; // in the order of the section map
    std::vector<OutSection*> m_order;   // in the order of the file
    std::vector<std::uint8_t> m_objects, m_handles;
    std::uint64_t m_mapRoom = 0, m_sectionsSize = 0, m_lastId = 0;
};

} // namespace

base::Result<std::vector<std::uint8_t>> writeCoded(const SavePlan& plan)
{
    return CodedWriter(plan, static_cast<CodedContainer&>(plan.source.container())).write();
}

} // namespace dwg
