#pragma once

#include <db/program_runner.h>
#include <db/record.h>

#include "dwg/code_page.h"
#include "dwg/record_streams.h"
#include "object_items.h"

namespace dwg {

/// Reads the values of a record's fields from its streams; run by db::ProgramRunner.
class FieldReader
{
public:
    /// @p bytes: size of the whole object; what its values may take is bounded by that.
    FieldReader(RecordStreams streams, Version version, const CodePage& codePage,
                db::Record& record, std::size_t bytes);
    FieldReader(const FieldReader&) = delete;
    FieldReader& operator=(const FieldReader&) = delete;

    /// Up to 2004 the handles of the header variables stand among the data.
    void readHandlesFromData() { m_handles = &m_streams.data; }
    RecordStreams& streams() { return m_streams; }

    const std::uint64_t* words() const { return m_at; }
    bool ok() const { return !m_failed && !m_streams.failed(); }
    void bytes(std::uint32_t slot, std::int64_t count);
    void chain(std::uint32_t slot, std::int64_t count);
    std::uint32_t enter(std::uint32_t slot, const db::LoopInfo& loop, std::int64_t count);

    [[gnu::always_inline]] void field(const db::Op& op, std::uint32_t slot)
    {
        BitReader& data = m_streams.data;
        switch (op.code) {
        case db::OpCode::Bit: return put(slot, data.readBits(1));
        case db::OpCode::Bit2: return put(slot, data.readBits(2));
        case db::OpCode::RawChar: return put(slot, data.readRC());
        case db::OpCode::RawShort: return putSigned(slot, static_cast<std::int16_t>(data.readRS()));
        case db::OpCode::RawLong: return putSigned(slot, static_cast<std::int32_t>(data.readRL()));
        case db::OpCode::BitShort: return putSigned(slot, static_cast<std::int16_t>(data.readBS()));
        case db::OpCode::BitLong: return putSigned(slot, static_cast<std::int32_t>(data.readBL()));
        case db::OpCode::RawDouble:
            for (unsigned i = 0; i < op.arity; ++i)
                put(slot + i, data.readRLL());
            return;
        case db::OpCode::BitDouble:
            for (unsigned i = 0; i < op.arity; ++i)
                putReal(slot + i, data.readBD());
            return;
        case db::OpCode::DefaultDouble: {
            const std::uint32_t standard = slot - op.slot + op.a;
            for (unsigned i = 0; i < op.arity; ++i)
                putReal(slot + i, data.readDD(realAt(standard + i)));
            return;
        }
        case db::OpCode::Thickness: return putReal(slot, data.readBT());
        case db::OpCode::Extrusion: return putTriple(slot, data.readBE());
        case db::OpCode::Text: return readText(slot);
        case db::OpCode::Handle: return readHandle(*m_handles, slot);
        default: return readRare(op, slot);
        }
    }

private:
    void put(std::uint32_t slot, std::uint64_t value) { m_at[slot] = value; }
    void putSigned(std::uint32_t slot, std::int64_t value)
    {
        put(slot, static_cast<std::uint64_t>(value));
    }
    void putReal(std::uint32_t slot, double value)
    {
        put(slot, std::bit_cast<std::uint64_t>(value));
    }
    void putTriple(std::uint32_t slot, const Triple& value)
    {
        putReal(slot, value.x);
        putReal(slot + 1, value.y);
        putReal(slot + 2, value.z);
    }
    double realAt(std::uint32_t slot) const { return std::bit_cast<double>(m_at[slot]); }

    void readHandle(BitReader& reader, std::uint32_t slot)
    {
        const auto head = static_cast<unsigned>(reader.readBits(8));
        const unsigned size = head & 0xF;
        if (size > 7)
            return fail(); // no drawing has so many objects; and the top bits hold the code
        const std::uint64_t value = reader.readBits(size * 8);
        const unsigned code = head >> 4;
        put(slot, std::uint64_t(code) << 60 | (code < 6 ? value : absolute(code, value)));
    }

    void readRare(const db::Op& op, std::uint32_t slot);
    std::uint64_t absolute(unsigned code, std::uint64_t value);
    void readScale(std::uint32_t slot);
    void readText(std::uint32_t slot);
    void readNarrowText(std::uint32_t slot);
    void putNarrowText(std::uint32_t slot, Bytes bytes, const CodePage& codePage);
    void putWideText(std::uint32_t slot, Bytes bytes);
    void endWideText(std::uint32_t slot, std::uint32_t at, std::uint32_t length);
    void readWideText(std::uint32_t slot);
    void readZeroRun(std::uint32_t slot);
    void readExtendedData(std::uint32_t slot);
    void readXrecord(std::uint32_t slot);
    void readContent(std::uint32_t slot, std::size_t size, bool isExtended);
    void putItem(std::uint32_t item, const GroupItem& value);
    void readRestOfHandles(std::uint32_t slot);
    void readRest(BitReader& reader, std::uint32_t slot);
    void readSatBlocks(std::uint32_t slot);
    void readSabBytes(std::uint32_t slot);

    void keepBytes(std::uint32_t slot, Bytes bytes, const CodePage& codePage);
    db::Run putBytes(Bytes bytes);
    db::Run readByteRun(std::int64_t count);
    static void copyBytes(BitReader& reader, void* out, std::size_t count);
    void putList(std::uint32_t slot, std::span<const std::uint64_t> words, std::uint32_t stride);
    /// The first of @p count more words; 0, and failed, where that is too much.
    std::uint32_t append(std::uint64_t count);
    void fail() { m_failed = true; }

    RecordStreams m_streams;
    BitReader* m_texts;
    BitReader* m_handles;
    db::Record& m_record;
    db::WordBuffer& m_words;
    std::uint64_t* m_at; // the record's words, where they are now
    const CodePage& m_codePage;
    bool m_isWide;
    bool m_isExtended = false; // the items being read
    bool m_failed = false;
    std::vector<std::uint8_t> m_scratch;
    std::uint64_t m_mostWords; // the record may take
    std::int64_t m_mostItems;  // an array may have: more do not fit into the bits there are
};

} // namespace dwg
