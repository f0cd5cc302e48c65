#include "group_sequence.h"

#include <algorithm>
#include <bit>

#include "colors.h"
#include "long_text.h"
#include "units.h"

namespace dxf {

namespace {

constexpr char16_t kFirstPrintable = 0x20;
constexpr std::size_t kLongestText = 0xFFFE; // units, with 16 bits of length and a NUL

bool isShortCode(int code)
{
    return (code >= 60 && code < 80) || (code >= 170 && code < 180) || (code >= 270 && code < 290);
}

// The text in bytes of UTF-16 that end in a NUL; empty when it is none that lines can hold.
std::optional<std::u16string> textOf(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < 2 || bytes.size() % 2 != 0)
        return {};
    std::u16string text;
    for (std::size_t at = 0; at < bytes.size(); at += 2)
        text += static_cast<char16_t>(bytes[at] | bytes[at + 1] << 8);
    if (text.back() != 0)
        return {};
    text.pop_back();
    const bool isPrintable =
        std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= kFirstPrintable; });
    return isPrintable ? std::optional(text) : std::nullopt;
}

} // namespace

std::optional<std::int64_t> fittedInteger(int code, std::int64_t value)
{
    if (!isShortCode(code))
        return value < INT32_MIN || value > UINT32_MAX
                   ? std::nullopt
                   : std::optional<std::int64_t>(static_cast<std::int32_t>(value));
    return value < INT16_MIN || value > UINT16_MAX
               ? std::nullopt
               : std::optional<std::int64_t>(static_cast<std::int16_t>(value));
}

Part GroupSequence::root() const
{
    return {&record().classDef()->layout(), 0};
}

Part GroupSequence::inner(Part part, db::FieldKey name) const
{
    const db::FieldDef* field = part.def->find(name.id());
    return {field->structure, part.base + field->slot};
}

Part GroupSequence::element(Part part, db::FieldKey array, std::uint32_t index) const
{
    const db::RecordView found = view(part).array(array)[index];
    return {found.def(), found.base()};
}

void GroupSequence::refuse()
{
    m_isOk = false;
    if (m_reader)
        m_reader->refuse();
    else
        m_writer->refuse();
}

const Tag* GroupSequence::take(int code)
{
    if (!m_isOk)
        return nullptr;
    if (!isNext(code)) {
        refuse();
        return nullptr;
    }
    const Tag* const tag = &m_rest.front();
    m_rest = m_rest.subspan(1);
    return tag;
}

void GroupSequence::mark(int code, std::string_view text)
{
    if (m_writer)
        m_writer->raw(code, text);
    else if (const Tag* tag = take(code); tag && trimmed(tag->value) != text)
        refuse();
}

void GroupSequence::fields(Part part, std::initializer_list<const char*> names)
{
    for (const char* name : names)
        field(part, name, part.def->find(db::fieldId(name))->dxf);
}

void GroupSequence::field(Part part, db::FieldKey name, int code)
{
    const db::FieldDef& field = *part.def->find(name.id());
    if (m_writer)
        write(part, field, code);
    else if (const Tag* tag = take(code))
        read(part, field, *tag, code);
}

void GroupSequence::write(Part part, const db::FieldDef& field, int code)
{
    const db::RecordView from = view(part);
    switch (field.storage) {
    case db::Storage::Integer: return m_writer->integer(code, from.integer(field.id));
    case db::Storage::Real:
        if (field.angle)
            return m_writer->angle(code, from.real(field.id));
        return m_writer->point(code, from.point(field.id), field.width);
    case db::Storage::Text: return m_writer->text(code, from.text(field.id));
    case db::Storage::Handle: return m_writer->handle(code, from.handle(field.id));
    case db::Storage::Struct: return writeColor(from.structure(field.id), code);
    default: return refuse();
    }
}

// The words are set as they are: what a field is stored for was told before it.
void GroupSequence::read(Part part, const db::FieldDef& field, const Tag& tag, int code)
{
    db::Record& to = m_reader->record();
    const std::uint32_t slot = part.base + field.slot;
    switch (field.storage) {
    case db::Storage::Integer: {
        const auto value = fittedInteger(code, m_reader->integer(tag));
        to.words().data()[slot] = static_cast<std::uint64_t>(value.value_or(0));
        return value ? void() : refuse();
    }
    case db::Storage::Real: {
        double parts[3] = {m_reader->real(tag)};
        for (int i = 1; i < field.width; ++i)
            if (const Tag* next = take(code + i * 10))
                parts[i] = m_reader->real(*next);
        if (field.angle)
            parts[0] = radiansOf(parts[0]);
        for (std::uint32_t i = 0; i < field.width; ++i)
            to.words().data()[slot + i] = std::bit_cast<std::uint64_t>(parts[i]);
        return;
    }
    case db::Storage::Text: {
        const std::u16string& text = m_reader->text(tag);
        if (text.size() > kLongestText)
            return refuse();
        const db::Run run = db::appendText(to, text);
        to.words().data()[slot] = text.empty() ? 0 : db::wordOf(run);
        return;
    }
    case db::Storage::Handle:
        to.words().data()[slot] = std::uint64_t(field.handleCode) << 60 | m_reader->handle(tag);
        return;
    case db::Storage::Struct: return readColor(editor(part).structure(field.id), tag);
    default: return refuse();
    }
}

// With the true colour and the name in every version: so it is kept in these.
void GroupSequence::writeColor(const db::RecordView& color, int code)
{
    m_writer->integer(code, colorIndex(color, version()));
    if (isTrueColor(color))
        m_writer->integer(code + kTrueColor, color.integer("value") & 0xFFFFFF);
    if (const std::u16string name = colorName(color); !name.empty())
        m_writer->text(code + kColorName, name);
}

void GroupSequence::readColor(db::RecordEditor color, const Tag& index)
{
    setColorIndex(color, m_reader->integer(index), version());
    if (isNext(index.code + kTrueColor))
        setTrueColor(color, m_reader->integer(*take(index.code + kTrueColor)));
    if (isNext(index.code + kColorName))
        setColorName(color, m_reader->text(*take(index.code + kColorName)));
}

std::uint32_t GroupSequence::count(Part part, const char* array, int code, std::uint32_t groups)
{
    if (m_writer) {
        const std::uint32_t size = view(part).array(array).size();
        m_writer->integer(code, size);
        return size;
    }
    const Tag* const tag = take(code);
    if (!tag)
        return 0;
    resize(part, array, m_reader->integer(*tag), groups);
    return m_isOk ? view(part).array(array).size() : 0;
}

void GroupSequence::resize(Part part, const char* array, std::int64_t count, std::uint32_t groups)
{
    if (m_writer || !m_isOk)
        return;
    const auto most = static_cast<std::int64_t>(m_rest.size() / groups);
    if (count < 0 || count > most ||
        !editor(part).array(array).resize(static_cast<std::uint32_t>(count)))
        refuse();
}

void GroupSequence::elements(Part part, const char* name, int code)
{
    const db::FieldDef& field = *part.def->find(db::fieldId(name));
    const std::uint32_t size = view(part).array(name).size();
    for (std::uint32_t i = 0; i < size && m_isOk; ++i) {
        const db::ArrayView from = view(part).array(name);
        if (m_writer) {
            switch (field.element) {
            case db::Storage::Integer: m_writer->integer(code, from.integer(i)); break;
            case db::Storage::Real: m_writer->real(code, from.real(i)); break;
            case db::Storage::Handle: m_writer->handle(code, from.handle(i)); break;
            default: writeColor(from[i], code);
            }
            continue;
        }
        const Tag* const tag = take(code);
        if (!tag)
            return;
        db::ArrayEditor to = editor(part).array(name);
        bool isDone = true;
        switch (field.element) {
        case db::Storage::Integer: {
            const auto value = fittedInteger(code, m_reader->integer(*tag));
            isDone = value && to.setInteger(i, *value);
            break;
        }
        case db::Storage::Real: isDone = to.setReal(i, m_reader->real(*tag)); break;
        case db::Storage::Handle: isDone = to.setHandle(i, m_reader->handle(*tag)); break;
        default: readColor(to[i], *tag);
        }
        if (!isDone)
            refuse();
    }
}

void GroupSequence::longText(Part part, db::FieldKey name, int firstCode, int lastCode)
{
    if (m_writer)
        return writeLongText(*m_writer, firstCode, lastCode, view(part).text(name));
    if (std::u16string text; takeLongText(text, firstCode, lastCode))
        m_reader->setText(editor(part), name, text);
}

bool GroupSequence::takeLongText(std::u16string& text, int firstCode, int lastCode)
{
    std::string raw;
    while (isNext(firstCode))
        raw += take(firstCode)->value;
    const Tag* const last = take(lastCode);
    if (!last)
        return false;
    raw += last->value;
    text = m_reader->text({lastCode, raw});
    return true;
}

// Bytes that are no text, or none that comes back as it is, are told as bytes.
void GroupSequence::textInBytes(Part part, db::FieldKey name, int firstCode, int lastCode)
{
    if (m_writer) {
        const auto text = textOf(view(part).bytes(name));
        std::string encoded;
        std::u16string back;
        if (text && version() >= db::Version::Ac1021) {
            m_writer->out().coding().encode(*text, encoded);
            m_writer->out().coding().decode(encoded, back);
        }
        if (!text || version() < db::Version::Ac1021 || back != *text)
            return bytes(part, name, 92, 310);
        return writeLongText(*m_writer, firstCode, lastCode, *text);
    }
    if (isNext(92))
        return bytes(part, name, 92, 310);
    std::u16string text;
    if (!takeLongText(text, firstCode, lastCode))
        return;
    if (version() < db::Version::Ac1021)
        return refuse(); // the code page that such bytes are in is not told
    std::vector<std::uint8_t> made;
    text += u'\0';
    for (const char16_t c : text) {
        made.push_back(static_cast<std::uint8_t>(c & 0xFF));
        made.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    if (!editor(part).setBytes(name, made))
        refuse();
}

void GroupSequence::bytes(Part part, db::FieldKey name, int countCode, int code)
{
    if (m_writer) {
        const auto all = view(part).bytes(name);
        m_writer->integer(countCode, static_cast<std::int64_t>(all.size()));
        return m_writer->hex(code, all);
    }
    const Tag* const count = take(countCode);
    std::vector<std::uint8_t> all;
    while (count && isNext(code) && m_reader->appendHex(*take(code), all)) {
    }
    if (!count || static_cast<std::int64_t>(all.size()) != m_reader->integer(*count) ||
        !editor(part).setBytes(name, all))
        refuse();
}

bool GroupSequence::when(Part part, db::FieldKey flag, int code)
{
    if (m_writer)
        return view(part).flag(flag);
    const bool is = m_isOk && isNext(code);
    if (is)
        editor(part).setInteger(flag, 1);
    return is;
}

void GroupSequence::optionalMark(int code, std::string_view text)
{
    if (m_writer || isNext(code))
        mark(code, text);
}

void GroupSequence::nameOrField(Part part, const char* name)
{
    constexpr int kTextStyle = 7;
    const db::FieldDef& field = *part.def->find(db::fieldId(name));
    if (field.dxf != kTextStyle)
        return this->field(part, name, field.dxf);
    if (m_writer)
        return m_writer->text(kTextStyle,
                              m_writer->nameOf(Table::TextStyle, view(part).handle(name)));
    const Tag* const tag = take(kTextStyle);
    if (!tag)
        return;
    const std::uint64_t style = m_reader->named(Table::TextStyle, tag->value);
    if (style == 0 && !trimmed(tag->value).empty())
        return refuse();
    editor(part).setHandle(name, style);
}

void GroupSequence::fieldUnless(Part part, db::FieldKey name, int code, std::int64_t expected)
{
    if (m_writer ? number(part, name) != expected : isNext(code))
        return field(part, name, code);
    if (m_reader)
        editor(part).setInteger(name, expected);
}

void GroupSequence::handleIfAny(Part part, db::FieldKey name, int code)
{
    if (m_writer ? view(part).handle(name) != 0 : isNext(code))
        field(part, name, code);
}

void GroupSequence::repeat(Part part, db::FieldKey name, int code)
{
    if (m_writer)
        m_writer->handle(code, view(part).handle(name));
    else if (isNext(code))
        take(code);
}

} // namespace dxf
