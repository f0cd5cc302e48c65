#include "object_field_reader.h"

#include <algorithm>

namespace dwg {

using db::OpCode;
using db::Run;
using db::TextRun;

namespace {

// Values take more room than their bits; no real object comes near these limits. Above 64 times its
// size (8 words a byte) an object gets 32 MB at most.
std::uint64_t mostWordsFor(std::uint64_t layoutWords, std::uint64_t bytes)
{
    constexpr std::uint64_t kSmallObject = 8192;
    constexpr std::uint64_t kLargeObject = 4u << 20;
    return layoutWords + kSmallObject + std::min(64 * bytes, 8 * bytes + kLargeObject);
}

} // namespace

FieldReader::FieldReader(RecordStreams streams, Version version, const CodePage& codePage,
                         db::Record& record, std::size_t bytes)
    : m_streams(streams), m_texts(hasStringStream(version) ? &m_streams.strings : &m_streams.data),
      m_handles(&m_streams.handles), m_record(record), m_words(record.words()),
      m_at(record.words().data()), m_codePage(codePage), m_isWide(hasStringStream(version)),
      m_mostWords(mostWordsFor(record.words().size(), bytes)),
      m_mostItems(static_cast<std::int64_t>(bytes) * 8)
{
}

std::uint32_t FieldReader::append(std::uint64_t count)
{
    if (count > m_mostWords || m_words.size() + count > m_mostWords) {
        fail();
        return 0;
    }
    const std::uint32_t at = m_words.append(static_cast<std::uint32_t>(count));
    m_at = m_words.data();
    return at;
}

std::uint64_t FieldReader::absolute(unsigned code, std::uint64_t value)
{
    const std::uint64_t own = m_record.handle();
    std::uint64_t target = value;
    switch (code) {
    case 0x6: target = own + 1; break;
    case 0x8: target = own - 1; break;
    case 0xA: target = own + value; break;
    case 0xC: target = own - value; break;
    default: break;
    }
    const bool hasValue = (code == 0x6 || code == 0x8) && value != 0;
    if (target > db::kTargetMask || hasValue)
        fail();
    return target & db::kTargetMask;
}

void FieldReader::readRare(const db::Op& op, std::uint32_t slot)
{
    switch (op.code) {
    case OpCode::BitLongLong: return put(slot, m_streams.data.readBLL());
    case OpCode::Scale: return readScale(slot);
    case OpCode::DataHandle: return readHandle(m_streams.data, slot);
    case OpCode::ZeroRun: return readZeroRun(slot);
    case OpCode::ExtendedData: return readExtendedData(slot);
    case OpCode::XrecordItems: return readXrecord(slot);
    case OpCode::RestOfData: return readRest(m_streams.data, slot);
    case OpCode::RestOfStrings: return m_isWide ? readRest(m_streams.strings, slot) : put(slot, 0);
    case OpCode::RestOfHandleBits: return readRest(*m_handles, slot);
    case OpCode::RestOfHandles: return readRestOfHandles(slot);
    case OpCode::SatBlocks: return readSatBlocks(slot);
    case OpCode::SabBytes: return readSabBytes(slot);
    default: return fail();
    }
}

void FieldReader::readScale(std::uint32_t slot)
{
    BitReader& data = m_streams.data;
    Triple scale{1, 1, 1};
    switch (data.readBB()) {
    case 0:
        scale.x = data.readRD();
        scale.y = data.readDD(scale.x);
        scale.z = data.readDD(scale.x);
        break;
    case 1:
        scale.y = data.readDD(1);
        scale.z = data.readDD(1);
        break;
    case 2:
        scale.x = data.readRD();
        scale.y = scale.z = scale.x;
        break;
    default: break;
    }
    putTriple(slot, scale);
}

void FieldReader::readText(std::uint32_t slot)
{
    if (m_isWide)
        readWideText(slot);
    else
        readNarrowText(slot);
}

void FieldReader::readWideText(std::uint32_t slot)
{
    const std::uint32_t length = m_streams.hasStrings ? m_texts->readBS() : 0u;
    if (length > m_texts->remaining() / 16)
        return fail();
    const std::uint32_t at = append((length + 3) / 4);
    if (m_failed || length == 0)
        return put(slot, wordOf(Run{0, TextRun::kAsStored}));
    m_at[at + (length - 1) / 4] = 0; // the units behind the last one
    copyBytes(*m_texts, m_at + at, length * sizeof(char16_t));
    endWideText(slot, at, length);
}

void FieldReader::putWideText(std::uint32_t slot, Bytes bytes)
{
    const auto length = static_cast<std::uint32_t>(bytes.size() / 2);
    const std::uint32_t at = append((length + 3) / 4);
    if (m_failed || length == 0)
        return put(slot, wordOf(Run{0, TextRun::kAsStored}));
    m_at[at + (length - 1) / 4] = 0;
    std::memcpy(m_at + at, bytes.data(), bytes.size());
    endWideText(slot, at, length);
}

// A last NUL is told beside the text, not in it.
void FieldReader::endWideText(std::uint32_t slot, std::uint32_t at, std::uint32_t length)
{
    const auto* units = reinterpret_cast<const char16_t*>(m_at + at);
    const bool endsInNul = units[length - 1] == 0;
    put(slot, wordOf(Run{at, (length - endsInNul) | TextRun::kAsStored |
                                 (endsInNul ? TextRun::kEndsInNul : 0)}));
}

void FieldReader::readNarrowText(std::uint32_t slot)
{
    BitReader& reader = *m_texts;
    const std::uint32_t stored = reader.readBS();
    if (stored > reader.remaining() / 8)
        return fail();
    m_scratch.resize(stored);
    copyBytes(reader, m_scratch.data(), stored);
    putNarrowText(slot, m_scratch, m_codePage);
}

void FieldReader::putNarrowText(std::uint32_t slot, Bytes bytes, const CodePage& codePage)
{
    if (bytes.empty())
        return put(slot, wordOf(Run{0, TextRun::kAsStored}));
    if (CodePage::mayHoldEscapes(bytes))
        return keepBytes(slot, bytes, codePage);
    const auto stored = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t at = append((stored + 3) / 4);
    if (m_failed)
        return;
    auto* const units = reinterpret_cast<char16_t*>(m_at + at);
    m_at[at + (stored - 1) / 4] = 0;
    bool simple = true; // every byte one unit, and back
    for (std::uint32_t i = 0; i < stored; ++i) {
        units[i] = codePage.unitOf(bytes[i]);
        simple = simple && (units[i] != 0 || bytes[i] == 0);
    }
    if (!simple)
        return keepBytes(slot, bytes, codePage);
    const bool endsInNul = units[stored - 1] == 0;
    put(slot, wordOf(Run{at, (stored - endsInNul) | TextRun::kAsStored |
                                 (endsInNul ? TextRun::kEndsInNul : 0)}));
}

// Text of a code page with several bytes to a character, with bytes that mean nothing in it, or
// with escapes.
void FieldReader::keepBytes(std::uint32_t slot, Bytes bytes, const CodePage& codePage)
{
    const bool endsInNul = bytes.back() == 0;
    std::u16string text;
    const bool exact = codePage.decode(bytes.first(bytes.size() - endsInNul), text);
    const auto length = static_cast<std::uint32_t>(text.size());
    const std::uint64_t unitWords = (length + 3) / 4;
    const std::uint64_t keptWords = exact ? 0 : 1 + (bytes.size() + 7) / 8;
    const std::uint32_t at = append(unitWords + keptWords);
    if (m_failed)
        return;
    std::uint64_t* const words = m_at + at;
    std::fill(words, words + unitWords + keptWords, 0);
    std::memcpy(words, text.data(), length * sizeof(char16_t));
    std::uint32_t marks = TextRun::kAsStored | (endsInNul ? TextRun::kEndsInNul : 0);
    if (!exact) {
        marks |= TextRun::kKeepsBytes;
        words[unitWords] = bytes.size();
        std::memcpy(words + unitWords + 1, bytes.data(), bytes.size());
    }
    put(slot, wordOf(Run{at, length | marks}));
}

void FieldReader::readZeroRun(std::uint32_t slot)
{
    std::uint64_t count = 0;
    while (m_streams.data.readRC() != 0)
        ++count;
    put(slot, count);
}

// Six bytes at a time: the most that a reader gives at once, in whole UTF-16 units.
void FieldReader::copyBytes(BitReader& reader, void* out, std::size_t count)
{
    auto* bytes = static_cast<std::uint8_t*>(out);
    for (; count >= 6; count -= 6, bytes += 6) {
        const std::uint64_t six = reader.readBits(48);
        for (unsigned i = 0; i < 6; ++i)
            bytes[i] = static_cast<std::uint8_t>(six >> (40 - 8 * i));
    }
    for (; count > 0; --count)
        *bytes++ = reader.readRC();
}

Run FieldReader::readByteRun(std::int64_t count)
{
    if (count < 0 || static_cast<std::uint64_t>(count) > m_streams.data.remaining() / 8) {
        fail();
        return {};
    }
    if (count == 0)
        return {};
    const std::uint32_t at = append(static_cast<std::uint64_t>(count + 7) / 8);
    if (m_failed)
        return {};
    m_at[at + (count - 1) / 8] = 0;
    copyBytes(m_streams.data, m_at + at, static_cast<std::size_t>(count));
    return {at, static_cast<std::uint32_t>(count)};
}

void FieldReader::bytes(std::uint32_t slot, std::int64_t count)
{
    const Run run = readByteRun(count);
    put(slot, wordOf(run));
}

void FieldReader::chain(std::uint32_t slot, std::int64_t count)
{
    db::LoopInfo loop;
    loop.stride = 2;
    const std::uint32_t at = enter(slot, loop, count);
    if (!ok() || count == 0)
        return;
    BitReader& data = m_streams.data;
    put(at, data.readRLL());
    put(at + 1, data.readRLL());
    const auto end = static_cast<std::uint32_t>(count) * 2;
    for (std::uint32_t i = 2; i < end && !data.failed(); ++i)
        putReal(at + i, data.readDD(realAt(at + i - 2)));
}

std::uint32_t FieldReader::enter(std::uint32_t slot, const db::LoopInfo& loop, std::int64_t count)
{
    if (count < 0 || count > m_mostItems) {
        fail();
        return 0;
    }
    const auto items = static_cast<std::uint32_t>(count);
    if (items == 0) {
        put(slot, 0);
        return 0;
    }
    const std::uint32_t at = append(std::uint64_t(items) * loop.stride);
    if (m_failed)
        return 0;
    std::uint64_t* words = m_at + at;
    if (loop.element)
        for (std::uint32_t i = 0; i < items; ++i, words += loop.stride)
            std::copy(loop.element->defaults.begin(), loop.element->defaults.end(), words);
    put(slot, wordOf(Run{at, items}));
    return at;
}

void FieldReader::putList(std::uint32_t slot, std::span<const std::uint64_t> words,
                          std::uint32_t stride)
{
    if (words.empty())
        return put(slot, 0);
    const std::uint32_t at = append(words.size());
    if (m_failed)
        return;
    std::copy(words.begin(), words.end(), m_at + at);
    put(slot, wordOf(Run{at, static_cast<std::uint32_t>(words.size() / stride)}));
}

void FieldReader::readRestOfHandles(std::uint32_t slot)
{
    std::vector<std::uint64_t> handles;
    const std::uint32_t scratch = append(1);
    while (ok() && m_handles->remaining() >= 8) {
        readHandle(*m_handles, scratch);
        handles.push_back(m_at[scratch]);
    }
    if (ok())
        putList(slot, handles, 1);
}

void FieldReader::readRest(BitReader& reader, std::uint32_t slot)
{
    const std::size_t count = reader.remaining();
    const std::uint32_t at = append((count + 63) / 64);
    if (m_failed || count == 0 || count >= db::kLargestCount)
        return put(slot, 0);
    auto* const bytes = reinterpret_cast<std::uint8_t*>(m_at + at);
    m_at[at + (count - 1) / 64] = 0;
    copyBytes(reader, bytes, count / 8);
    if (const auto rest = static_cast<unsigned>(count % 8))
        bytes[count / 8] = static_cast<std::uint8_t>(reader.readBits(rest) << (8 - rest));
    put(slot, wordOf(Run{at, static_cast<std::uint32_t>(count)}));
}

void FieldReader::readSatBlocks(std::uint32_t slot)
{
    std::vector<std::uint64_t> blocks;
    for (;;) {
        const std::uint32_t size = m_streams.data.readBL();
        if (size == 0 || !ok())
            break;
        blocks.push_back(wordOf(readByteRun(size)));
    }
    if (ok())
        putList(slot, blocks, 1);
}

// Binary up to its end mark; its length is stored nowhere.
void FieldReader::readSabBytes(std::uint32_t slot)
{
    using namespace std::string_view_literals;
    static constexpr std::string_view kMarks[] = {"\x0E\x03"
                                                  "End\x0E\x02of\x0E\x04"
                                                  "ACIS\x0D\x04"
                                                  "data"sv,
                                                  "\x0E\x03"
                                                  "End\x0E\x02of\x0E\x03"
                                                  "ASM\x0D\x04"
                                                  "data"sv};
    std::string bytes;
    const auto ended = [&bytes] {
        return bytes.ends_with('a') && (bytes.ends_with(kMarks[0]) || bytes.ends_with(kMarks[1]));
    };
    while (!m_streams.data.failed() && !ended())
        bytes += static_cast<char>(m_streams.data.readRC());
    if (bytes.empty() || bytes.size() >= db::kLargestCount)
        return fail();
    const std::uint32_t at = append((bytes.size() + 7) / 8);
    if (m_failed)
        return;
    m_at[at + (bytes.size() - 1) / 8] = 0;
    std::memcpy(m_at + at, bytes.data(), bytes.size());
    put(slot, wordOf(Run{at, static_cast<std::uint32_t>(bytes.size())}));
}

} // namespace dwg
