#include "object_field_writer.h"

#include <algorithm>

namespace dwg {

using db::OpCode;
using db::Run;
using db::TextRun;

FieldWriter::FieldWriter(const db::Record& record, Version version, const CodePage& codePage)
    : m_record(record), m_words(record.words().data()), m_codePage(codePage),
      m_texts(hasStringStream(version) ? &strings : &data), m_isWide(hasStringStream(version)),
      m_isSameVersion(static_cast<int>(record.version()) == static_cast<int>(version))
{
}

void FieldWriter::field(const db::Op& op, std::uint32_t slot)
{
    switch (op.code) {
    case OpCode::Bit: return data.writeBits(m_words[slot], 1);
    case OpCode::Bit2: return data.writeBits(m_words[slot], 2);
    case OpCode::RawChar: return data.writeBits(m_words[slot], 8);
    case OpCode::RawShort: return data.writeRS(static_cast<std::uint16_t>(m_words[slot]));
    case OpCode::RawLong: return data.writeRL(unsignedAt(slot));
    case OpCode::BitShort: return writeShort(slot);
    case OpCode::BitLong: return data.writeBL(unsignedAt(slot));
    case OpCode::BitLongLong: return data.writeBLL(m_words[slot]);
    case OpCode::RawDouble:
        for (unsigned i = 0; i < op.arity; ++i)
            data.writeRLL(m_words[slot + i]);
        return;
    case OpCode::BitDouble:
        for (unsigned i = 0; i < op.arity; ++i)
            data.writeBD(realAt(slot + i));
        return;
    case OpCode::DefaultDouble:
        for (unsigned i = 0; i < op.arity; ++i)
            data.writeDD(realAt(slot + i), realAt(slot - op.slot + op.a + i));
        return;
    case OpCode::Thickness: return data.writeBT(realAt(slot));
    case OpCode::Extrusion: return data.writeBE(tripleAt(slot));
    case OpCode::Text: return writeText(db::runOf(m_words[slot]));
    case OpCode::Handle: return writeHandle(*m_handles, m_words[slot], op.arity);
    default: return writeRare(op, slot);
    }
}

void FieldWriter::writeRare(const db::Op& op, std::uint32_t slot)
{
    switch (op.code) {
    case OpCode::Scale: return writeScale(tripleAt(slot));
    case OpCode::DataHandle: return writeHandle(data, m_words[slot], 0);
    case OpCode::ZeroRun: {
        for (std::uint32_t i = unsignedAt(slot); i > 0; --i)
            data.writeRC(1);
        return data.writeRC(0);
    }
    case OpCode::ExtendedData: return writeExtendedData(slot);
    case OpCode::XrecordItems: return writeXrecord(slot);
    case OpCode::RestOfData: return writeBits(data, slot);
    case OpCode::RestOfStrings: return m_isWide ? writeBits(strings, slot) : void();
    case OpCode::RestOfHandleBits: return writeBits(*m_handles, slot);
    case OpCode::RestOfHandles: return writeRestOfHandles(slot);
    case OpCode::SatBlocks: return writeSatBlocks(slot);
    case OpCode::SabBytes: return data.writeBytes(bytesAt(db::runOf(m_words[slot])));
    default: m_failed = true;
    }
}

// An integer of a record may be wider than 16 bits, when a caller has set it so.
void FieldWriter::writeShort(std::uint32_t slot)
{
    const auto value = static_cast<std::int64_t>(m_words[slot]);
    if (value < INT16_MIN || value > UINT16_MAX)
        m_failed = true;
    data.writeBS(static_cast<std::uint16_t>(value));
}

void FieldWriter::writeScale(const Triple& scale)
{
    const auto same = [](double a, double b) {
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    };
    const bool uniform = same(scale.x, scale.y) && same(scale.x, scale.z);
    if (same(scale.x, 1.0)) {
        data.writeBB(uniform ? 3 : 1);
    } else {
        data.writeBB(uniform ? 2 : 0);
        data.writeRD(scale.x);
    }
    if (uniform)
        return;
    data.writeDD(scale.y, scale.x);
    data.writeDD(scale.z, scale.x);
}

void FieldWriter::writeText(Run run)
{
    if (m_isWide)
        strings.writeTU(wideUnits(run));
    else
        data.writeT(narrowBytes(run, m_codePage, true));
}

std::u16string FieldWriter::wideUnits(Run run) const
{
    std::u16string units(textAt(run));
    if (m_isSameVersion && (run.count & TextRun::kEndsInNul))
        units += u'\0';
    return units;
}

// New texts are written with a NUL that counts, as most of them are found; but they stay as they
// were.
std::string FieldWriter::narrowBytes(Run run, const CodePage& codePage, bool newEndsInNul) const
{
    const bool asStored = m_isSameVersion && (run.count & TextRun::kAsStored);
    if (asStored && (run.count & TextRun::kKeepsBytes)) {
        const std::uint32_t at = run.offset + TextRun::unitWords(run);
        return {reinterpret_cast<const char*>(m_words + at + 1), m_words[at]};
    }
    std::string bytes = codePage.encode(textAt(run));
    const bool endsInNul =
        asStored ? (run.count & TextRun::kEndsInNul) != 0 : newEndsInNul && !bytes.empty();
    if (endsInNul)
        bytes += '\0';
    return bytes;
}

void FieldWriter::writeHandle(BitWriter& writer, std::uint64_t word, std::uint8_t code)
{
    const std::uint64_t target = word & db::kTargetMask;
    const auto stored = static_cast<std::uint8_t>(word >> 60);
    if (stored >= 6 && writeRelative(writer, stored, target))
        return;
    const bool storedHolds =
        stored != 0 && stored < 6 && (m_isSameVersion || code == db::kAnyHandleCode);
    if (storedHolds)
        code = stored;
    else if (code == db::kAnyHandleCode)
        code = 4;
    writer.writeH(code, target);
}

// False where this object's own handle does not allow it (any more).
bool FieldWriter::writeRelative(BitWriter& writer, std::uint8_t code, std::uint64_t target)
{
    const std::uint64_t own = m_record.handle();
    switch (code) {
    case 0x6: return target == own + 1 ? writer.writeH(code, 0), true : false;
    case 0x8: return target == own - 1 ? writer.writeH(code, 0), true : false;
    case 0xA: return target >= own ? writer.writeH(code, target - own), true : false;
    case 0xC: return target <= own ? writer.writeH(code, own - target), true : false;
    default: writer.writeH(code, target); return true;
    }
}

void FieldWriter::bytes(std::uint32_t slot, std::int64_t count)
{
    const Run run = db::runOf(m_words[slot]);
    if (run.count != count) {
        m_failed = true;
        return;
    }
    data.writeBytes(bytesAt(run));
}

std::uint32_t FieldWriter::enter(std::uint32_t slot, const db::LoopInfo&, std::int64_t count)
{
    const Run run = db::arrayOf(m_words[slot]);
    m_failed = m_failed || run.count != count;
    return run.offset;
}

void FieldWriter::chain(std::uint32_t slot, std::int64_t count)
{
    const std::uint32_t at = enter(slot, {}, count);
    if (!ok() || count == 0)
        return;
    data.writeRLL(m_words[at]);
    data.writeRLL(m_words[at + 1]);
    for (std::uint32_t i = 2; i < count * 2; ++i)
        data.writeDD(realAt(at + i), realAt(at + i - 2));
}

void FieldWriter::writeSatBlocks(std::uint32_t slot)
{
    const Run blocks = db::arrayOf(m_words[slot]);
    for (std::uint32_t i = 0; i < blocks.count; ++i) {
        const Run run = db::runOf(m_words[blocks.offset + i]);
        m_failed = m_failed || run.count == 0; // it would end the list
        data.writeBL(run.count);
        data.writeBytes(bytesAt(run));
    }
    data.writeBL(0);
}

void FieldWriter::writeRestOfHandles(std::uint32_t slot)
{
    const Run run = db::arrayOf(m_words[slot]);
    for (std::uint32_t i = 0; i < run.count; ++i)
        writeHandle(*m_handles, m_words[run.offset + i], db::kAnyHandleCode);
}

void FieldWriter::writeBits(BitWriter& writer, std::uint32_t slot)
{
    const Run run = db::runOf(m_words[slot]);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(m_words + run.offset);
    writer.appendBits({bytes, (run.count + 7) / 8}, 0, run.count);
}

} // namespace dwg
