// Fields: texts in pieces, and values whose groups depend on their kind. Tables of data.

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "hook_lists.h"
#include "long_text.h"
#include "object_writer.h"

namespace dxf {

namespace {

enum ValueType : std::int64_t { kString = 4, kPoint2d = 16, kPoint3d = 32 };

// ---- values: strings and points are bytes in records, and themselves in files

/// The string that the bytes are, if a file can tell it as text that leads back to them.
bool findText(std::span<const std::uint8_t> bytes, ObjectWriter& writer, std::u16string& text)
{
    const bool isWide = writer.version() >= db::Version::Ac1021;
    const std::size_t size = isWide ? 2 : 1; // of a unit
    if (bytes.empty() || bytes.size() % size != 0)
        return false;
    for (std::size_t at = 0; at < bytes.size(); at += size)
        text += static_cast<char16_t>(bytes[at] | (isWide ? bytes[at + 1] << 8 : 0));
    // One NUL, at the end; outside of ASCII what 8 bits mean depends on the drawing.
    if (text.find(u'\0') != text.size() - 1)
        return false;
    text.pop_back();
    if (!isWide && std::any_of(text.begin(), text.end(), [](char16_t c) { return c > 0x7E; }))
        return false;
    std::string coded;
    const TextCoding& coding = writer.out().coding();
    coding.encode(text, coded);
    return coding.decoded(coded) == text;
}

bool findPoint(std::span<const std::uint8_t> bytes, std::int64_t type, std::vector<double>& point)
{
    const std::size_t count = type == kPoint2d ? 2 : 3;
    if (bytes.size() != count * sizeof(double))
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t bits = 0;
        for (std::size_t byte = 8; byte-- > 0;)
            bits = bits << 8 | bytes[i * 8 + byte];
        point.push_back(std::bit_cast<double>(bits));
    }
    return std::all_of(point.begin(), point.end(), [](double x) { return std::isfinite(x); });
}

void writeValueBytes(ObjectWriter& writer)
{
    if (!writer.isStored("bytes"))
        return;
    const db::RecordView value = writer.frame();
    const auto bytes = value.bytes("bytes");
    const std::int64_t type = value.integer("type");
    std::u16string text;
    if (type == kString && findText(bytes, writer, text))
        return writeLongText(writer, 2, 1, text);
    std::vector<double> point;
    if ((type == kPoint2d || type == kPoint3d) && findPoint(bytes, type, point)) {
        for (std::size_t i = 0; i < point.size(); ++i)
            writer.real(11 + 10 * static_cast<int>(i), point[i]);
        return;
    }
    writer.integer(92, static_cast<std::int64_t>(bytes.size()));
    writer.out().hex(310, bytes);
}

bool setString(ObjectReader& reader, std::string_view raw)
{
    const TextCoding& coding = reader.context().coding();
    std::u16string text = coding.decoded(raw);
    std::vector<std::uint8_t> bytes;
    if (reader.version() < db::Version::Ac1021) {
        std::string coded;
        coding.encode(text, coded);
        bytes.assign(coded.begin(), coded.end());
        bytes.push_back(0);
    } else {
        text += u'\0';
        for (const char16_t unit : text) {
            bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
            bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
        }
    }
    return reader.frame().setBytes("bytes", bytes);
}

bool addCoordinate(ObjectReader& reader, const Tag& tag)
{
    db::RecordEditor value = reader.frame();
    const auto before = value.bytes("bytes");
    std::vector<std::uint8_t> bytes(before.begin(), before.end());
    if (bytes.size() != static_cast<std::size_t>(tag.code / 10 - 1) * sizeof(double))
        return false;
    const auto bits = std::bit_cast<std::uint64_t>(reader.real(tag));
    for (int byte = 0; byte < 8; ++byte)
        bytes.push_back(static_cast<std::uint8_t>(bits >> 8 * byte & 0xFF));
    return value.setBytes("bytes", bytes);
}

bool readValueBytes(ObjectReader& reader, const Tag& tag)
{
    const std::int64_t type = reader.frame().integer("type");
    if (tag.code > 2)
        return (type == kPoint2d || type == kPoint3d) && addCoordinate(reader, tag);
    if (type != kString)
        return false;
    std::string& raw = reader.scratch().raw;
    raw += tag.value;
    if (tag.code == 2)
        return true;
    return setString(reader, std::exchange(raw, {}));
}

bool readValueText(ObjectReader& reader, const Tag& tag)
{
    std::string& raw = reader.scratch().raw;
    raw += tag.value;
    if (tag.code == 302)
        reader.setText(reader.frame(), "text",
                       reader.context().coding().decoded(std::exchange(raw, {})));
    return true;
}

void writeValueText(ObjectWriter& writer)
{
    if (writer.isStored("text"))
        writeLongText(writer, 303, 302, writer.frame().text("text"));
}

bool readValueEnd(ObjectReader&, const Tag&)
{
    return true;
}

void writeValueEnd(ObjectWriter& writer)
{
    if (writer.version() >= db::Version::Ac1021)
        writer.raw(304, "ACVALUE_END");
}

// ---- texts whose first piece has a code of its own

enum LongText : std::size_t { kCode, kLastResult, kLongTexts };

bool readPiece(ObjectReader& reader, const Tag& tag, LongText which)
{
    auto& texts = reader.scratch().texts;
    texts.resize(kLongTexts);
    texts[which] += reader.text(tag);
    return true;
}

void finishPieces(ObjectReader& reader, LongText which, const char* field)
{
    const auto& texts = reader.scratch().texts;
    if (which < texts.size())
        reader.setText(reader.root(), field, texts[which]);
}

void writePieces(ObjectWriter& writer, int firstCode, int nextCode, std::u16string_view text)
{
    constexpr std::size_t kPiece = 250;
    const std::u16string resolved = TextCoding::resolved(text);
    std::u16string_view rest = resolved;
    int code = firstCode;
    do {
        const bool cutsPair = rest.size() > kPiece && (rest[kPiece] & 0xFC00) == 0xDC00;
        const std::size_t size = std::min(rest.size(), cutsPair ? kPiece - 1 : kPiece);
        writer.text(code, rest.substr(0, size));
        rest.remove_prefix(size);
        code = nextCode;
    } while (!rest.empty());
}

bool readCode(ObjectReader& reader, const Tag& tag)
{
    return readPiece(reader, tag, kCode);
}
void writeCode(ObjectWriter& writer)
{
    writePieces(writer, 2, 3, writer.root().text("code"));
}
void finishCode(ObjectReader& reader)
{
    finishPieces(reader, kCode, "code");
}

bool readLastResult(ObjectReader& reader, const Tag& tag)
{
    return readPiece(reader, tag, kLastResult);
}
void writeLastResult(ObjectWriter& writer)
{
    writePieces(writer, 301, 9, writer.root().text("value_string"));
}
void finishLastResult(ObjectReader& reader)
{
    finishPieces(reader, kLastResult, "value_string");
}

// ---- tables of data

/// Group codes of references by their kind, from 2 (owned softly) to 5 (pointed to hard).
constexpr int kReferenceCodes[] = {350, 360, 330, 340};
constexpr int kOtherReference = 331;

bool readDataReference(ObjectReader& reader, const Tag& tag)
{
    std::uint64_t kind = 0;
    for (std::size_t i = 0; i < std::size(kReferenceCodes); ++i)
        if (kReferenceCodes[i] == tag.code)
            kind = i + 2;
    db::RecordEditor column = reader.frame();
    db::ArrayEditor references = column.array("refs");
    const std::uint32_t at = references.add();
    if (!references.setHandle(at, reader.handle(tag)))
        return false;
    std::uint64_t* const words = reader.record().words().data();
    const std::uint32_t slot = column.base() + column.def()->find(db::fieldId("refs"))->slot;
    std::uint64_t& word = words[db::arrayOf(words[slot]).offset + at];
    word = (word & db::kTargetMask) | kind << 60;
    return true;
}

void writeDataReferences(ObjectWriter& writer)
{
    if (!writer.isStored("refs"))
        return;
    const db::RecordView column = writer.frame();
    const std::uint64_t* const words = writer.record().words().data();
    const std::uint32_t slot = column.base() + column.def()->find(db::fieldId("refs"))->slot;
    const db::Run run = db::arrayOf(words[slot]);
    for (std::uint32_t i = 0; i < run.count; ++i) {
        const std::uint64_t word = words[run.offset + i], kind = word >> 60;
        const bool isKnown = kind >= 2 && kind < 2 + std::size(kReferenceCodes);
        writer.handle(isKnown ? kReferenceCodes[kind - 2] : kOtherReference,
                      word & db::kTargetMask);
    }
}

const char* cellsOf(std::int64_t type)
{
    switch (type) {
    case 1: return "longs";
    case 2: return "reals";
    case 3: return "texts";
    case 4:
    case 5: return "points";
    case 10: return "bools";
    default: return "refs";
    }
}

// A column that has not as many cells as the table has rows is damaged.
void finishDataRows(ObjectReader& reader)
{
    const db::RecordEditor table = reader.root();
    const db::ArrayView columns = table.db::RecordView::array("cols");
    for (std::uint32_t i = 0; i < columns.size(); ++i)
        if (columns[i].array(cellsOf(columns[i].integer("type"))).size() != table.integer("n_rows"))
            return reader.fail();
}

constexpr Hook kHooks[] = {
    {"value_bytes", readValueBytes, writeValueBytes},
    {"value_text", readValueText, writeValueText},
    {"value_end", readValueEnd, writeValueEnd},
    {"field_code", readCode, writeCode, finishCode},
    {"field_string", readLastResult, writeLastResult, finishLastResult},
    {"data_references", readDataReference, writeDataReferences},
    {"data_rows", nullptr, nullptr, finishDataRows},
};

} // namespace

std::span<const Hook> fieldHooks()
{
    return kHooks;
}

} // namespace dxf
