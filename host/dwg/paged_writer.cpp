// How a file of the 2004 family is written anew. What holds of the bytes that are made:
//
// 1. A page whose content does not change is taken over packed as it is; only its place in the
// file, and with it
//    the mask of its head, changes. Its checksums must be right, or it is packed anew with consent,
//    or not at all.
// 2. Pages lie in the order of the old file, numbered from 1, each at a multiple of 0x20; there are
// no gaps.
// 3. A packed page unpacks to exactly its section's page size; the last one is filled up with
// zeros. A page of
//    zeros is not written.
// 4. Ids, names, sizes and flags of a section stay as they were.
// 5. Addresses in the first 0x80 bytes point behind the heads of the pages that they mean, and the
// preview's
//    own absolute places move along.
// 6. The page map is the last page, its copy of the masked head ends the file.

#include <algorithm>
#include <cassert>
#include <cstring>
#include <optional>

#include "byte_stream.h"
#include "lz2004.h"
#include "object_layout.h"
#include "paged_container.h"
#include "preview_block.h"

namespace dwg {

using namespace paged;

namespace {

constexpr std::size_t kPreviewFieldAt = 0x0D;
constexpr std::size_t kVbaFieldAt = 0x24;

// A page as it will be written.
struct OutPage {
    std::uint64_t offset = 0;         // in the section
    Bytes body;                       // what stands behind the head, without the filling
    std::vector<std::uint8_t> owned;  // the body, where it is made here
    std::optional<std::uint32_t> sum; // over the body, where it is known
    std::uint32_t number = 0;         // in the new file
    std::uint64_t address = 0, diskSize = 0;
};

struct OutSection {
    PagedContainer::Descriptor descriptor; // its pages are the old ones
    std::uint64_t firstAddress = 0;        // of the old pages: gives the order
    std::vector<OutPage> pages;
};

bool isZero(Bytes bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == 0; });
}

std::string nameOf(const PagedContainer::Descriptor& descriptor)
{
    return {descriptor.name.data(), ::strnlen(descriptor.name.data(), descriptor.name.size())};
}

class PagedWriter
{
public:
    PagedWriter(const SavePlan& plan, PagedContainer& source) : m_plan(plan), m_source(source) {}

    base::Result<std::vector<std::uint8_t>> write()
    {
        if (base::Status status = makeSections(); !status)
            return status;
        placePages();
        if (base::Status status = movePreviewAlong(); !status)
            return status;
        writePages();
        writeMaps();
        writeHeader();
        return std::move(m_out.bytes);
    }

private:
    base::Status makeSections()
    {
        for (std::size_t i = 0; i < m_source.descriptors().size(); ++i) {
            const auto& descriptor = m_source.descriptors()[i];
            const std::string& name = m_source.sections()[i].name;
            if (name == section::kSignature && !m_plan.changes.empty())
                continue; // it would sign what is no longer there
            OutSection out{descriptor, ~std::uint64_t(0), {}};
            for (const auto& page : descriptor.pages)
                out.firstAddress = std::min(out.firstAddress, page.address);
            if (base::Status status = fillSection(name, i, out); !status)
                return status;
            m_sections.push_back(std::move(out));
        }
        for (const auto& [name, payload] : m_plan.sections)
            if (m_source.indexOf(name) == m_source.sections().size())
                addSection(name, payload);
        return cutHandles();
    }

    base::Status fillSection(const std::string& name, std::size_t index, OutSection& out)
    {
        if (name == section::kObjects)
            return cutObjects(index, out);
        if (name == section::kHandles)
            return {}; // known when the objects are placed
        if (const auto* changed = m_plan.changed(name))
            return cut(index, out, *changed);
        if (name == section::kPreview)
            return cutOldPreview(index, out);
        return takeOver(index, out);
    }

    // The old page as it is (1).
    base::Status takePage(std::size_t index, std::size_t page, OutSection& out)
    {
        const auto& descriptor = m_source.descriptors()[index];
        const auto& old = descriptor.pages[page];
        if (m_source.isSound(index, page)) {
            OutPage taken;
            taken.offset = old.offset;
            taken.body = m_source.diskBytes(index, page);
            taken.sum = m_source.pageHead(index, page).dataSum; // found right just now
            out.pages.push_back(std::move(taken));
            return {};
        }
        if (!m_plan.repair)
            return {base::Failure::Damaged, base::Reason::DwgDamageNotSaved};
        const auto plain = m_source.unpacked(index, page);
        if (!plain)
            return plain.status();
        addPage(out, old.offset, *plain);
        return {};
    }

    base::Status takeOver(std::size_t index, OutSection& out)
    {
        for (std::size_t i = 0; i < m_source.descriptors()[index].pages.size(); ++i)
            if (base::Status status = takePage(index, i, out); !status)
                return status;
        return {};
    }

    // One page of @p plain bytes, which are as many as the section's page size or fewer (3).
    void addPage(OutSection& out, std::uint64_t offset, Bytes plain)
    {
        std::vector<std::uint8_t> whole(plain.begin(), plain.end());
        whole.resize(out.descriptor.pageSize);
        OutPage page;
        page.offset = offset;
        page.owned = out.descriptor.mode == 2 ? pack2004(whole) : std::move(whole);
        page.body = page.owned;
        out.pages.push_back(std::move(page));
    }

    // A new content for a section; pages that are the same as before are taken over.
    base::Status cut(std::size_t index, OutSection& out, Bytes payload)
    {
        auto& descriptor = out.descriptor;
        const bool hasOtherSize = descriptor.size != payload.size();
        descriptor.size = payload.size();
        if (descriptor.mode == 1 && hasOtherSize)
            descriptor.pageSize = static_cast<std::uint32_t>(
                alignUp(payload.size(), nameOf(descriptor) == section::kPreview ? 0x400 : 0x80));
        for (std::uint64_t at = 0; at < payload.size(); at += descriptor.pageSize) {
            const Bytes plain = payload.subspan(
                at, std::min<std::uint64_t>(descriptor.pageSize, payload.size() - at));
            if (isZero(plain) && descriptor.mode == 2)
                continue;
            if (base::Status status = addOrTake(index, out, at, plain); !status)
                return status;
        }
        return {};
    }

    base::Status addOrTake(std::size_t index, OutSection& out, std::uint64_t at, Bytes plain)
    {
        const auto& old = m_source.descriptors()[index];
        const std::size_t page = m_source.pageAt(index, at);
        if (page < old.pages.size() && old.pageSize == out.descriptor.pageSize &&
            m_source.isSound(index, page)) {
            const auto before = m_source.unpacked(index, page);
            if (before && std::equal(plain.begin(), plain.end(), before->begin()) &&
                isZero(before->subspan(plain.size())))
                return takePage(index, page, out);
        }
        addPage(out, at, plain);
        return {};
    }

    void addSection(const std::string& name, const std::vector<std::uint8_t>& payload)
    {
        OutSection out;
        std::memcpy(out.descriptor.name.data(), name.data(),
                    std::min(name.size(), out.descriptor.name.size() - 1));
        // Those that programs look for at an address of the header are stored plain.
        const bool isPlain = name == section::kSummaryInfo || name == section::kPreview ||
                             name == section::kAppInfo || name == section::kAppInfoHistory;
        out.descriptor.mode = isPlain ? 1 : 2;
        out.descriptor.pageSize = kUsualPage;
        out.descriptor.id = 8;
        for (const OutSection& other : m_sections)
            out.descriptor.id = std::max(out.descriptor.id, other.descriptor.id);
        ++out.descriptor.id;
        out.descriptor.size = payload.size();
        if (isPlain)
            out.descriptor.pageSize = static_cast<std::uint32_t>(
                alignUp(payload.size(), name == section::kPreview ? 0x400 : 0x80));
        for (std::uint64_t at = 0; at < payload.size(); at += out.descriptor.pageSize)
            addPage(out, at,
                    Bytes(payload).subspan(
                        at, std::min<std::uint64_t>(out.descriptor.pageSize, payload.size() - at)));
        m_sections.insert(m_sections.begin(), std::move(out));
    }

    base::Status cutOldPreview(std::size_t index, OutSection& out)
    {
        const auto old = m_source.section(index);
        if (!old)
            return m_plan.repair ? old.status() : takeOver(index, out);
        m_preview.assign(old->begin(), old->end());
        return cut(index, out, m_preview);
    }

    base::Status cutObjects(std::size_t index, OutSection& out)
    {
        auto layout = shouldCompact(m_plan) ? layoutCompact(m_plan) : layoutInPlace(m_plan);
        if (!layout)
            return layout.status();
        m_map = std::move(layout->map);
        const std::uint64_t pageSize = out.descriptor.pageSize;
        const std::uint64_t before = out.descriptor.size;
        out.descriptor.size = layout->size;
        const auto writes = writesOfPages(*layout, pageSize);
        for (std::uint64_t i = 0; i < writes.size(); ++i) {
            // What lay behind the new end must go.
            const bool isCut = layout->size < before && i + 1 == writes.size();
            const bool isKept = writes[i].empty() && !isCut && !isFirstOfNew(index, i);
            const auto status = isKept ? keepPage(index, out, i * pageSize)
                                       : remakePage(index, out, i * pageSize, *layout, writes[i]);
            if (!status)
                return status;
        }
        return {};
    }

    using Writes = std::vector<const ObjectLayout::Write*>;

    // The writes that touch each page, in their order.
    static std::vector<Writes> writesOfPages(const ObjectLayout& layout, std::uint64_t pageSize)
    {
        std::vector<Writes> pages(alignUp(layout.size, pageSize) / pageSize);
        for (const auto& write : layout.writes)
            for (std::uint64_t at = write.offset / pageSize * pageSize;
                 write.size != 0 && at < write.offset + write.size; at += pageSize)
                pages[at / pageSize].push_back(&write);
        return pages;
    }

    bool isFirstOfNew(std::size_t index, std::uint64_t page) const
    {
        return page == 0 && m_source.descriptors()[index].pages.empty();
    }

    base::Status keepPage(std::size_t index, OutSection& out, std::uint64_t at)
    {
        const std::size_t page = m_source.pageAt(index, at);
        return page < m_source.descriptors()[index].pages.size() ? takePage(index, page, out)
                                                                 : base::Status();
    }

    base::Status remakePage(std::size_t index, OutSection& out, std::uint64_t at,
                            const ObjectLayout& layout, const Writes& writes)
    {
        const std::uint64_t pageSize = out.descriptor.pageSize;
        std::vector<std::uint8_t> plain(pageSize);
        const std::size_t page = m_source.pageAt(index, at);
        if (page < m_source.descriptors()[index].pages.size()) {
            const auto old = m_source.unpacked(index, page);
            if (!old)
                return old.status();
            std::copy(old->begin(), old->end(), plain.begin());
        } else if (at == 0) {
            std::copy(kObjectsMark.begin(), kObjectsMark.end(), plain.begin());
        }
        for (const ObjectLayout::Write* write : writes) {
            const std::uint64_t begin = std::max(write->offset, at);
            const std::uint64_t end = std::min(write->offset + write->size, at + pageSize);
            if (write->bytes)
                std::memcpy(&plain[begin - at], write->bytes + (begin - write->offset),
                            end - begin);
            else
                std::memset(&plain[begin - at], 0, end - begin);
        }
        if (at + pageSize > layout.size)
            std::fill(plain.begin() + static_cast<std::ptrdiff_t>(layout.size - at), plain.end(),
                      std::uint8_t(0));
        return isZero(plain) ? base::Status() : addOrTake(index, out, at, plain);
    }

    base::Status cutHandles()
    {
        for (OutSection& out : m_sections) {
            if (nameOf(out.descriptor) != section::kHandles)
                continue;
            m_handles = writeObjectMap(m_map);
            return cut(m_source.indexOf(section::kHandles), out, m_handles);
        }
        return {base::Failure::Damaged, base::Reason::DwgObjectMapDamaged};
    }

    // Numbers and places of all pages (2).
    void placePages()
    {
        for (OutSection& section : m_sections)
            m_order.push_back(&section);
        std::stable_sort(m_order.begin(), m_order.end(), [](const auto* a, const auto* b) {
            return a->firstAddress < b->firstAddress;
        });
        std::uint64_t address = kFirstPage;
        for (OutSection* section : m_order)
            for (OutPage& page : section->pages) {
                page.number = ++m_pageCount;
                page.address = address;
                page.diskSize = alignUp(kDataHead + page.body.size(), kPageStep);
                address += page.diskSize;
            }
        m_sectionMapAt = address;
    }

    OutPage* firstPageOf(std::string_view name)
    {
        for (OutSection& section : m_sections)
            if (nameOf(section.descriptor) == name && !section.pages.empty())
                return &section.pages.front();
        return nullptr;
    }

    std::uint32_t addressOf(std::string_view name)
    {
        const OutPage* page = firstPageOf(name);
        return page ? static_cast<std::uint32_t>(page->address + kDataHead) : 0;
    }

    // The preview is stored plain, so its size does not depend on what stands in it (5).
    base::Status movePreviewAlong()
    {
        OutPage* page = firstPageOf(section::kPreview);
        if (!page || (page->owned.empty() && m_preview.empty()))
            return {};
        page->owned.assign(page->body.begin(), page->body.end());
        page->sum.reset();
        const bool isNew = m_plan.changed(section::kPreview) != nullptr;
        const std::uint64_t from = isNew ? 0 : readU32(&m_source.file()[kPreviewFieldAt]);
        movePreview(page->owned, from, addressOf(section::kPreview));
        page->body = page->owned;
        return {};
    }

    void writePages()
    {
        m_out.bytes.reserve(m_sectionMapAt + 0x4000);
        m_out.zeros(kFirstPage);
        for (OutSection* section : m_order)
            for (const OutPage& page : section->pages) {
                assert(m_out.size() == page.address); // 2
                PageHead head;
                head.type = kDataPageType;
                head.sectionId = section->descriptor.id;
                head.packedSize = static_cast<std::uint32_t>(page.body.size());
                head.diskSize = static_cast<std::uint32_t>(page.diskSize);
                head.offset = page.offset;
                head.dataSum = page.sum ? *page.sum : pageSum(0, page.body);
                m_out.append(writePageHead(head, page.address));
                m_out.append(page.body);
                fillUpTo(page.address + page.diskSize);
            }
    }

    void fillUpTo(std::uint64_t end)
    {
        for (std::size_t i = 0; m_out.size() < end; ++i)
            m_out.u8(magicByte(i));
    }

    std::vector<std::uint8_t> sectionMap() const
    {
        ByteWriter map;
        const auto count = static_cast<std::uint32_t>(m_sections.size() + 1);
        for (const std::uint32_t word : {count, 2u, 0x7400u, 0u, count})
            map.u32(word);
        for (const std::uint32_t word : {0u, 0u, 0u, 0x7400u, 1u, 2u, 0u, 0u})
            map.u32(word); // the section without content
        map.zeros(64);
        for (const OutSection& section : m_sections) {
            const auto& descriptor = section.descriptor;
            map.u64(descriptor.size);
            for (const std::uint32_t word :
                 {static_cast<std::uint32_t>(section.pages.size()), descriptor.pageSize,
                  descriptor.unknown10, descriptor.mode, descriptor.id, descriptor.encrypted})
                map.u32(word);
            for (const char c : descriptor.name)
                map.u8(static_cast<std::uint8_t>(c));
            for (const OutPage& page : section.pages) {
                map.u32(page.number);
                map.u32(static_cast<std::uint32_t>(page.body.size()));
                map.u64(page.offset);
            }
        }
        return std::move(map.bytes);
    }

    // A page of the shell itself, with the empty head that follows it.
    void writeSystemPage(std::uint32_t type, Bytes plain)
    {
        const auto packed = pack2004(plain);
        std::array<std::uint8_t, kSystemHead> head{};
        putU32(&head[0], type);
        putU32(&head[4], static_cast<std::uint32_t>(plain.size()));
        putU32(&head[8], static_cast<std::uint32_t>(packed.size()));
        putU32(&head[12], 2);
        putU32(&head[16], pageSum(pageSum(0, head), packed));
        m_out.append(head);
        m_out.append(packed);
        for (const std::uint32_t word : {type, 0u, 0u, 2u, 0u})
            m_out.u32(word);
    }

    // Two numbers between the data pages and the maps stay unused, as other programs do it.
    std::uint32_t sectionMapId() const { return m_pageCount + 3; }
    std::uint32_t pageMapId() const { return m_pageCount + 4; }

    void writeMaps()
    {
        writeSystemPage(kSectionMapType, sectionMap());
        m_pageMapAt = alignUp(m_out.size(), kPageStep);
        fillUpTo(m_pageMapAt);
        ByteWriter map;
        for (const OutSection* section : m_order)
            for (const OutPage& page : section->pages) {
                map.u32(page.number);
                map.u32(static_cast<std::uint32_t>(page.diskSize));
            }
        map.u32(sectionMapId());
        map.u32(static_cast<std::uint32_t>(m_pageMapAt - m_sectionMapAt));
        // The map holds its own room, which must be fixed before it is packed.
        const std::uint64_t most = (map.size() + 8) * 9 / 8;
        m_pageMapRoom = alignUp(kSystemHead + most + 0x60 + kSystemHead + kHeadSize, kPageStep);
        map.u32(pageMapId());
        map.u32(static_cast<std::uint32_t>(m_pageMapRoom));
        writeSystemPage(kPageMapType, map.bytes);
    }

    void writeHeader()
    {
        const std::uint64_t secondCopyAt = m_out.size();
        Head head = newHead();
        head.put32(Head::kLastPageId, pageMapId());
        head.put64(Head::kEnd, m_pageMapAt + m_pageMapRoom - kFirstPage);
        head.put64(Head::kSecondCopy, secondCopyAt);
        head.put32(Head::kEntryCount, m_pageCount + 2);
        head.put32(Head::kPageMapId, pageMapId());
        head.put64(Head::kPageMapAddress, m_pageMapAt - kFirstPage);
        head.put32(Head::kSectionMapId, sectionMapId());
        head.put32(Head::kHighestId, pageMapId());
        const auto masked = maskedHead(head);
        m_out.append(masked); // 6
        assert(m_out.size() <= m_pageMapAt + m_pageMapRoom);

        std::uint8_t* file = m_out.bytes.data();
        std::copy_n(m_source.file().begin(), kHeadAt, file);
        std::copy(masked.begin(), masked.end(), file + kHeadAt);
        for (std::size_t at = kHeadAt + kHeadSize; at < kFirstPage; ++at)
            file[at] = magicByte(at);
        putU32(file + kPreviewFieldAt, addressOf(section::kPreview)); // 5
        putU32(file + 0x20, addressOf(section::kSummaryInfo));
        putU32(file + 0x2C, addressOf(section::kAppInfo));
        putU32(file + 0x30, addressOf(section::kAppInfoHistory));
        if (readU32(file + kVbaFieldAt) != 0)
            putU32(file + kVbaFieldAt, addressOf(section::kVbaProject));
    }

    const SavePlan& m_plan;
    PagedContainer& m_source;
    ByteWriter m_out;
    std::vector<OutSection> m_sections; // in the order of the section map
    std::vector<OutSection*> m_order;   // in the order of the file
    std::vector<ObjectLocation> m_map;
    std::vector<std::uint8_t> m_handles, m_preview;
    std::uint32_t m_pageCount = 0;
    std::uint64_t m_sectionMapAt = 0, m_pageMapAt = 0, m_pageMapRoom = 0;
};

} // namespace

base::Result<std::vector<std::uint8_t>> writePaged(const SavePlan& plan)
{
    return PagedWriter(plan, static_cast<PagedContainer&>(plan.source.container())).write();
}

} // namespace dwg
