#include "dwg/header_variables.h"

#include <algorithm>

#include "framed_section.h"
#include "header_fields.h"

namespace dwg {

namespace {

constexpr std::size_t kLargestRecord = 64 * 1024;

const HeaderField& definitionOf(std::size_t index)
{
    return headerFields()[index];
}

bool standsIn(const HeaderField& field, Version version)
{
    return field.since <= version && version <= field.until && field.kind != HeaderKind::Tail;
}

bool isStringKind(HeaderKind kind)
{
    return kind == HeaderKind::Text || kind == HeaderKind::Color;
}

bool fitsKind(HeaderKind kind, std::int64_t value)
{
    switch (kind) {
    case HeaderKind::Bit: return value == 0 || value == 1;
    case HeaderKind::Byte: return value >= 0 && value <= 0xFF;
    case HeaderKind::Short: return value >= -0x8000 && value <= 0x7FFF;
    case HeaderKind::Long: return value >= INT32_MIN && value <= INT32_MAX;
    default: return value >= 0 && value >> 56 == 0;
    }
}

base::Status damaged()
{
    return {base::Failure::Damaged, base::Reason::DwgSectionDamaged, {u"AcDb:Header"}};
}

} // namespace

// Up to 2004 strings and handles stand among the data; then all three are one stream.
struct HeaderVariables::Reader {
    Version version;
    RecordStreams streams;

    bool isSplit() const { return hasStringStream(version); }
    BitReader& data() { return streams.data; }
    BitReader& strings() { return isSplit() ? streams.strings : streams.data; }
    BitReader& handles() { return isSplit() ? streams.handles : streams.data; }
    Spot spot() const
    {
        return {streams.data.position(), streams.strings.position(), streams.handles.position()};
    }

    RawText text()
    {
        if (!isSplit())
            return {strings().readT(), {}};
        return {{}, streams.hasStrings ? strings().readTU() : std::u16string()};
    }
    HeaderColor color()
    {
        HeaderColor color;
        color.index = static_cast<std::int16_t>(data().readBS());
        if (version == Version::Ac1015)
            return color;
        color.rgb = data().readBL();
        color.flags = data().readRC();
        if (color.flags & 1)
            color.name = text();
        if (color.flags & 2)
            color.book = text();
        return color;
    }
    DateStamp date()
    {
        const std::uint32_t day = data().readBL();
        return {day, data().readBL()};
    }
    Triple pair()
    {
        const double x = data().readRD();
        return {x, data().readRD(), 0};
    }
    HeaderValue value(HeaderKind kind)
    {
        switch (kind) {
        case HeaderKind::Bit: return std::int64_t(data().readB());
        case HeaderKind::Byte: return std::int64_t(data().readRC());
        case HeaderKind::Short: return std::int64_t(static_cast<std::int16_t>(data().readBS()));
        case HeaderKind::Long: return std::int64_t(static_cast<std::int32_t>(data().readBL()));
        case HeaderKind::Wide: return static_cast<std::int64_t>(data().readBLL());
        case HeaderKind::Real: return data().readBD();
        case HeaderKind::Point: return data().read3BD();
        case HeaderKind::Pair: return pair();
        case HeaderKind::Text: return text();
        case HeaderKind::Date: return date();
        case HeaderKind::Color: return color();
        case HeaderKind::Seed: return data().readH();
        default: return handles().readH();
        }
    }
};

struct HeaderVariables::Writer {
    Version version;
    BitWriter dataBits, stringBits, handleBits;
    bool anyText = false;

    bool isSplit() const { return hasStringStream(version); }
    BitWriter& data() { return dataBits; }
    BitWriter& strings() { return isSplit() ? stringBits : dataBits; }
    BitWriter& handles() { return isSplit() ? handleBits : dataBits; }

    void text(const RawText& text)
    {
        anyText = anyText || !text.empty();
        if (isSplit())
            return strings().writeTU(text.wide);
        strings().writeT(text.narrow);
    }
    // The names of a colour come from the strings; the rest from the data.
    void colorNames(const HeaderColor& color)
    {
        if (color.flags & 1)
            text(color.name);
        if (color.flags & 2)
            text(color.book);
    }
    void color(const HeaderColor& color)
    {
        data().writeBS(static_cast<std::uint16_t>(color.index));
        if (version == Version::Ac1015)
            return;
        data().writeBL(color.rgb);
        data().writeRC(color.flags);
        colorNames(color);
    }
    void date(const DateStamp& date)
    {
        data().writeBL(date.day);
        data().writeBL(date.milliseconds);
    }
    void pair(const Triple& pair)
    {
        data().writeRD(pair.x);
        data().writeRD(pair.y);
    }
    void integer(HeaderKind kind, std::int64_t value)
    {
        switch (kind) {
        case HeaderKind::Bit: return data().writeB(value != 0);
        case HeaderKind::Byte: return data().writeRC(static_cast<std::uint8_t>(value));
        case HeaderKind::Short: return data().writeBS(static_cast<std::uint16_t>(value));
        case HeaderKind::Long: return data().writeBL(static_cast<std::uint32_t>(value));
        default: return data().writeBLL(static_cast<std::uint64_t>(value));
        }
    }
    void value(HeaderKind kind, const HeaderValue& value)
    {
        switch (kind) {
        case HeaderKind::Real: return data().writeBD(std::get<double>(value));
        case HeaderKind::Point: return data().write3BD(std::get<Triple>(value));
        case HeaderKind::Pair: return pair(std::get<Triple>(value));
        case HeaderKind::Text: return text(std::get<RawText>(value));
        case HeaderKind::Date: return date(std::get<DateStamp>(value));
        case HeaderKind::Color: return color(std::get<HeaderColor>(value));
        case HeaderKind::Seed: return data().writeHExact(std::get<HandleReference>(value));
        case HeaderKind::Handle:
        case HeaderKind::StyleHandle:
        case HeaderKind::HardOwner: return handles().writeHExact(std::get<HandleReference>(value));
        default: return integer(kind, std::get<std::int64_t>(value));
        }
    }
};

base::Result<HeaderVariables> HeaderVariables::read(Version version, Bytes section)
{
    HeaderVariables variables;
    variables.m_version = version;
    const auto frame = readFrame(version, section, kVariablesBegin);
    if (!frame || frame->record.size() > kLargestRecord)
        return damaged();
    variables.m_section.assign(section.begin(), section.end());
    variables.m_recordAt = static_cast<std::size_t>(frame->record.data() - section.data());
    variables.m_recordSize = frame->record.size();
    variables.m_trailingAt = section.size() - frame->trailing.size();
    variables.m_hasHighSize = frame->hasHighSize;
    variables.m_checksumRight = frame->checksumRight && frame->endSentinelRight;
    Reader reader{version, splitRecord(version, frame->record, frame->beginBit, frame->endBit)};
    variables.m_hasStrings = reader.streams.hasStrings || !reader.isSplit();
    if (!variables.readFields(reader))
        return damaged();
    return variables;
}

bool HeaderVariables::readFields(Reader& reader)
{
    const auto fields = headerFields();
    m_fields.reserve(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!standsIn(fields[i], m_version))
            continue;
        if (fields[i].kind == HeaderKind::StyleHandle && integer("CEPSNTYPE") != 3)
            continue;
        const Spot spot = reader.spot();
        m_fields.push_back({i, reader.value(fields[i].kind), spot, false});
        if (reader.streams.failed())
            return false;
    }
    m_end = reader.spot();
    readTail(reader);
    return true;
}

void HeaderVariables::readTail(Reader& reader)
{
    std::uint16_t words[4];
    for (std::uint16_t& word : words)
        word = reader.handles().readBS();
    if (!reader.handles().failed())
        std::copy(std::begin(words), std::end(words), m_tail);
}

HeaderVariables HeaderVariables::makeDefault(Version version)
{
    HeaderVariables variables;
    variables.m_version = version;
    variables.m_hasHighSize = hasHandleStreamSize(version);
    const auto fields = headerFields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (standsIn(fields[i], version) && fields[i].kind != HeaderKind::StyleHandle)
            variables.m_fields.push_back({i, standardValue(fields[i], version), {}, true});
    return variables;
}

const HeaderVariables::Field* HeaderVariables::fieldNamed(std::string_view name) const
{
    const auto named = [&](const Field& f) { return definitionOf(f.definition).name == name; };
    const auto found = std::find_if(m_fields.begin(), m_fields.end(), named);
    return found == m_fields.end() ? nullptr : &*found;
}

const HeaderValue* HeaderVariables::find(std::string_view name) const
{
    const Field* field = fieldNamed(name);
    return field ? &field->value : nullptr;
}

std::int64_t HeaderVariables::integer(std::string_view name) const
{
    const HeaderValue* value = find(name);
    const auto* number = value ? std::get_if<std::int64_t>(value) : nullptr;
    return number ? *number : 0;
}

std::uint64_t HeaderVariables::handle(std::string_view name) const
{
    const HeaderValue* value = find(name);
    const auto* handle = value ? std::get_if<HandleReference>(value) : nullptr;
    return handle ? handle->resolve(0) : 0;
}

bool HeaderVariables::set(std::string_view name, HeaderValue value)
{
    const Field* found = fieldNamed(name);
    if (!found || found->value.index() != value.index())
        return false;
    Field& field = m_fields[static_cast<std::size_t>(found - m_fields.data())];
    const HeaderField& definition = definitionOf(field.definition);
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        const bool changesWhatFollows =
            definition.name == "CEPSNTYPE" &&
            (*number == 3) != (std::get<std::int64_t>(field.value) == 3);
        if (changesWhatFollows || !fitsKind(definition.kind, *number))
            return false;
    }
    if (field.value == value)
        return true;
    field.value = std::move(value);
    field.changed = true;
    return true;
}

bool HeaderVariables::setHandle(std::string_view name, std::uint64_t value)
{
    const HeaderValue* old = find(name);
    const auto* handle = old ? std::get_if<HandleReference>(old) : nullptr;
    if (!handle)
        return false;
    const auto bytes = static_cast<std::uint8_t>((std::bit_width(value) + 7) / 8);
    return handle->value == value || set(name, HandleReference{handle->code, bytes, value});
}

bool HeaderVariables::isChanged() const
{
    return m_section.empty() ||
           std::any_of(m_fields.begin(), m_fields.end(), [](const Field& f) { return f.changed; });
}

std::vector<std::string_view> HeaderVariables::names() const
{
    std::vector<std::string_view> names;
    for (const Field& field : m_fields)
        names.push_back(definitionOf(field.definition).name);
    return names;
}

void HeaderVariables::writeField(Writer& writer, std::size_t index) const
{
    const Field& field = m_fields[index];
    const HeaderField& definition = definitionOf(field.definition);
    if (field.changed)
        return writer.value(definition.kind, field.value);
    const Spot end = index + 1 < m_fields.size() ? m_fields[index + 1].spot : m_end;
    writer.data().appendBits(record(), field.spot.data, end.data);
    if (!writer.isSplit())
        return;
    writer.handles().appendBits(record(), field.spot.handles, end.handles);
    if (m_hasStrings) {
        writer.anyText = writer.anyText || isStringKind(definition.kind);
        return writer.strings().appendBits(record(), field.spot.strings, end.strings);
    }
    // No string was stored since all were empty; if one is not any more, each must be spelt out.
    if (const auto* text = std::get_if<RawText>(&field.value))
        writer.text(*text);
    if (const auto* color = std::get_if<HeaderColor>(&field.value))
        writer.colorNames(*color);
}

std::vector<std::uint8_t> HeaderVariables::section() const
{
    if (!isChanged() && m_checksumRight)
        return m_section;
    Writer writer{m_version, {}, {}, {}};
    if (writer.isSplit())
        writer.data().writeRL(0);
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        writeField(writer, i);
    for (const std::uint16_t word : m_tail)
        writer.handles().writeBS(word);
    if (writer.isSplit()) {
        appendStrings(writer.data(), writer.anyText ? writer.stringBits : BitWriter());
        writer.data().patchRL(0, static_cast<std::uint32_t>(writer.data().bitCount()));
        writer.data().append(writer.handleBits);
    }
    if (writer.data().failed() || writer.handleBits.failed())
        return {};
    return writeFrame(kVariablesBegin, writer.data().take(), m_hasHighSize,
                      Bytes(m_section).subspan(m_trailingAt));
}

} // namespace dwg
