// How an AC1015 file is laid out anew. What holds of the bytes that are made:
//
// 1. Every piece that a record of the source names is there once, under the same number.
// 2. The objects stand in their old order behind the four bytes CA 0D 00 00, without gaps between
// them.
// 3. Every absolute place (records, map, preview entries, free space, second header) tells where
// its piece
//    now lies.
// 4. The file's last piece is the template, when there is one.
// 5. Checksums are computed last, over what is then in place.

#include <algorithm>
#include <cassert>

#include "byte_stream.h"
#include "flat_container.h"
#include "preview_block.h"
#include "raw_check.h"
#include "save_plan.h"
#include "sentinels.h"

namespace dwg {

namespace {

constexpr std::size_t kRecordsAt = 0x19;
constexpr std::size_t kPreviewFieldAt = 0x0D;
constexpr std::size_t kFreeSpaceOffsetAt =
    16; // where the free space tells the begin of the objects

enum RecordNumber : std::uint8_t {
    kVariables = 0,
    kClasses = 1,
    kMap = 2,
    kFreeSpace = 3,
    kTemplate = 4,
    kAuxHeader = 5,
    kFirstUnknown = 6
};

class FlatWriter
{
public:
    FlatWriter(const SavePlan& plan, const FlatContainer& source) : m_plan(plan), m_source(source)
    {
    }

    base::Result<std::vector<std::uint8_t>> write()
    {
        takeRecords();
        m_out.bytes.reserve(m_source.file().size() + m_plan.addedBytes());
        m_out.zeros(kRecordsAt + m_records.size() * 9 + 18);
        appendPiece(kAuxHeader);
        appendPreview();
        appendPiece(kVariables);
        appendPiece(kClasses);
        if (base::Status status = appendObjects(); !status)
            return status;
        appendPiece(kFreeSpace);
        for (unsigned number = kFirstUnknown; number <= 0xFF; ++number)
            appendPiece(static_cast<std::uint8_t>(number));
        appendEnd();
        patchFreeSpace();
        finishHeader();
        return std::move(m_out.bytes);
    }

private:
    // The records of the source, each number once (1), and those that a change adds.
    void takeRecords()
    {
        for (const FlatContainer::Record& record : m_source.records())
            if (!recordOf(record.number))
                m_records.push_back({record.number, 0, 0});
        for (const std::uint8_t number : {kFreeSpace, kTemplate, kAuxHeader})
            if (!recordOf(number) && m_plan.changed(FlatContainer::nameOfRecord(number)))
                m_records.push_back({number, 0, 0});
    }

    FlatContainer::Record* recordOf(std::uint8_t number)
    {
        const auto found = std::find_if(m_records.begin(), m_records.end(),
                                        [&](const auto& r) { return r.number == number; });
        return found == m_records.end() ? nullptr : &*found;
    }

    Bytes payloadOf(std::uint8_t number) const
    {
        if (const auto* changed = m_plan.changed(FlatContainer::nameOfRecord(number)))
            return *changed;
        for (const FlatContainer::Record& record : m_source.records())
            if (record.number == number)
                return m_source.recordBytes(record);
        return {};
    }

    void place(std::uint8_t number, Bytes payload)
    {
        FlatContainer::Record* record = recordOf(number);
        if (!record || payload.empty())
            return;
        record->offset = static_cast<std::uint32_t>(m_out.size());
        record->size = static_cast<std::uint32_t>(payload.size());
        m_out.append(payload);
    }

    void appendPiece(std::uint8_t number) { place(number, payloadOf(number)); }

    void appendPreview()
    {
        std::vector<std::uint8_t> block;
        std::uint64_t from = 0;
        if (const auto* changed = m_plan.changed(section::kPreview)) {
            block = *changed;
        } else if (m_source.previewAddress() != 0) {
            const Bytes old = previewBlockAt(m_source.file().subspan(m_source.previewAddress()));
            block.assign(old.begin(), old.end());
            from = m_source.previewAddress();
        }
        if (block.empty())
            return;
        m_previewAt = m_out.size();
        movePreview(block, from, m_previewAt);
        m_out.append(block);
    }

    base::Status appendObjects()
    {
        m_out.append(kObjectsMark);
        m_objectsAt = m_out.size();
        std::vector<ObjectLocation> map;
        for (const PlannedObject& object : objectsInFileOrder(m_plan)) {
            map.push_back({object.handle, m_out.size()});
            if (object.record) {
                m_out.append(*object.record);
                continue;
            }
            const auto bytes = recordBytes(m_plan.source.container(), Version::Ac1015,
                                           {object.handle, object.oldOffset});
            if (!bytes)
                return bytes.status();
            m_out.append(*bytes);
        }
        const auto byHandle = [](const auto& a, const auto& b) { return a.handle < b.handle; };
        if (!std::is_sorted(map.begin(), map.end(), byHandle)) // mostly it is
            std::sort(map.begin(), map.end(), byHandle);
        place(kMap, writeObjectMap(map));
        return {};
    }

    // Second header and template: each tells where the other lies, and the size of the first
    // depends on the numbers in it. It settles at once; the bound is for the reader's peace.
    void appendEnd()
    {
        const Bytes end = payloadOf(kTemplate);
        const std::size_t secondAt = m_out.size();
        std::vector<std::uint8_t> second;
        for (int round = 0; round < 4; ++round) {
            FlatContainer::Record* record = recordOf(kTemplate);
            if (record && !end.empty()) {
                record->offset = static_cast<std::uint32_t>(secondAt + second.size());
                record->size = static_cast<std::uint32_t>(end.size());
            }
            second = writeSecondHeader(secondHeader(secondAt));
        }
        m_out.append(second);
        place(kTemplate, end);
        assert(end.empty() || m_out.size() == recordOf(kTemplate)->offset + end.size()); // 4
    }

    SecondHeader secondHeader(std::size_t at)
    {
        SecondHeader header = m_source.secondHeader().value_or(SecondHeader());
        if (header.fileHead.empty())
            header = newSecondHeader();
        header.ownOffset = static_cast<std::uint32_t>(at);
        setHandle(header, 0, m_plan.header.handSeed());
        for (SecondHeader::Section& section : header.sections) {
            const FlatContainer::Record* record = recordOf(section.number);
            const bool isTold = section.offset != 0 || section.size != 0;
            if (record && isTold)
                section = {section.number, record->offset, record->size};
        }
        return header;
    }

    SecondHeader newSecondHeader()
    {
        const Bytes file = m_source.file();
        SecondHeader header;
        header.fileHead.assign(file.begin(), file.begin() + 13);
        header.application = readU16(&file[0x11]);
        header.codePage = m_source.codePage();
        for (const FlatContainer::Record& record : m_records)
            header.sections.push_back({record.number, record.offset, record.size});
        header.handles = secondHeaderHandles(m_plan.header);
        return header;
    }

    void patchFreeSpace()
    {
        const FlatContainer::Record* record = recordOf(kFreeSpace);
        if (record && record->size >= kFreeSpaceOffsetAt + 4)
            putU32(&m_out.bytes[record->offset + kFreeSpaceOffsetAt],
                   static_cast<std::uint32_t>(m_objectsAt));
    }

    void finishHeader()
    {
        std::uint8_t* head = m_out.bytes.data();
        std::copy_n(m_source.file().begin(), kRecordsAt, head);
        putU32(head + kPreviewFieldAt, static_cast<std::uint32_t>(m_previewAt));
        putU32(head + kRecordsAt - 4, static_cast<std::uint32_t>(m_records.size()));
        std::size_t at = kRecordsAt;
        for (const FlatContainer::Record& record : m_records) {
            head[at] = record.number;
            putU32(head + at + 1, record.offset);
            putU32(head + at + 5, record.size);
            at += 9;
        }
        putU16(head + at, crc16(Bytes(m_out.bytes).first(at)));
        std::copy(kFileHeaderEnd.begin(), kFileHeaderEnd.end(), head + at + 2);
    }

    const SavePlan& m_plan;
    const FlatContainer& m_source;
    ByteWriter m_out;
    std::vector<FlatContainer::Record> m_records;
    std::size_t m_previewAt = 0;
    std::size_t m_objectsAt = 0;
};

} // namespace

base::Result<std::vector<std::uint8_t>> writeFlat(const SavePlan& plan)
{
    return FlatWriter(plan, static_cast<const FlatContainer&>(plan.source.container())).write();
}

} // namespace dwg
