#include "db/record_editor.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "db/guard.h"

namespace db {

namespace {

constexpr std::int64_t kSmallest = INT32_MIN;
constexpr std::int64_t kLargest = UINT32_MAX; // what a BL or RL can hold, signed or not

void putPoint(std::uint64_t* word, std::uint32_t width, const Point& value)
{
    const double parts[] = {value.x, value.y, value.z};
    for (std::uint32_t i = 0; i < width && i < 3; ++i)
        word[i] = std::bit_cast<std::uint64_t>(parts[i]);
}

// As decoding would give it back: 32 bits are signed, whatever the field means.
std::uint64_t integerWord(std::int64_t value)
{
    return static_cast<std::uint64_t>(value > INT32_MAX ? static_cast<std::int32_t>(value) : value);
}

bool fitsText(std::u16string_view value)
{
    return value.size() < 0xFFFF; // 16 bits of length on the wire, a NUL counted
}

std::uint64_t referenceWord(std::uint8_t code, std::uint64_t target)
{
    return static_cast<std::uint64_t>(code) << 60 | target;
}

} // namespace

Run appendBytes(Record& record, std::span<const std::uint8_t> value)
{
    if (value.empty())
        return {};
    const auto words = static_cast<std::uint32_t>((value.size() + 7) / 8);
    const std::uint32_t at = record.words().append(words);
    record.words().data()[at + words - 1] = 0;
    std::memcpy(record.words().data() + at, value.data(), value.size());
    return {at, static_cast<std::uint32_t>(value.size())};
}

Run appendText(Record& record, std::u16string_view value)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(value.data());
    Run run = appendBytes(record, {bytes, value.size() * 2});
    run.count = static_cast<std::uint32_t>(value.size());
    return run;
}

std::uint64_t* RecordEditor::slot(const FieldDef& field)
{
    return m_edited->words().data() + m_base + field.slot;
}

bool RecordEditor::isDefault(const FieldDef& field) const
{
    // The word of a null reference tells its kind all the same.
    if (field.storage == Storage::Handle)
        return (word(field) & kTargetMask) == m_def->defaults[field.slot];
    for (std::uint32_t i = 0; i < field.width; ++i)
        if (word(field, i) != m_def->defaults[field.slot + i])
            return false;
    return true;
}

void RecordEditor::openGuards(const FieldDef& field)
{
    if (isDefault(field))
        return;
    for (const Guard& guard : field.guards)
        open(guard, m_edited->words().data()[m_base + guard.slot]);
}

bool RecordEditor::setInteger(FieldKey key, std::int64_t value)
{
    const FieldDef* field = find(key, Storage::Integer);
    if (!field || (!field->wide && (value < kSmallest || value > kLargest)))
        return false;
    *slot(*field) = field->wide ? static_cast<std::uint64_t>(value) : integerWord(value);
    openGuards(*field);
    return true;
}

bool RecordEditor::setReal(FieldKey key, double value)
{
    return setPoint(key, {value});
}

bool RecordEditor::setPoint(FieldKey key, const Point& value)
{
    const FieldDef* field = find(key, Storage::Real);
    if (!field)
        return false;
    putPoint(slot(*field), field->width, value);
    openGuards(*field);
    return true;
}

bool RecordEditor::setDate(FieldKey key, std::int64_t day, std::int64_t milliseconds)
{
    const FieldDef* field = find(key, Storage::Integer);
    const auto fits = [](std::int64_t value) { return value >= 0 && value <= INT32_MAX; };
    if (!field || field->width != 2 || !fits(day) || !fits(milliseconds))
        return false;
    slot(*field)[0] = static_cast<std::uint64_t>(day);
    slot(*field)[1] = static_cast<std::uint64_t>(milliseconds);
    return true;
}

bool RecordEditor::setText(FieldKey key, std::u16string_view value)
{
    const FieldDef* field = find(key, Storage::Text);
    if (!field || !fitsText(value))
        return false;
    const std::u16string kept(value); // it may lie in the words that move
    *slot(*field) = 0;
    const Run run = appendText(*m_edited, kept);
    *slot(*field) = wordOf(run);
    openGuards(*field);
    return true;
}

bool RecordEditor::setHandle(FieldKey key, std::uint64_t target)
{
    const FieldDef* field = find(key, Storage::Handle);
    if (!field || target > kTargetMask)
        return false;
    *slot(*field) = referenceWord(field->handleCode, target);
    openGuards(*field);
    return true;
}

bool RecordEditor::setBytes(FieldKey key, std::span<const std::uint8_t> value)
{
    const FieldDef* field = find(key, Storage::Bytes);
    if (!field || value.size() >= kLargestCount)
        return false;
    const std::vector<std::uint8_t> kept(value.begin(), value.end());
    const Run run = appendBytes(*m_edited, kept);
    *slot(*field) = wordOf(run);
    openGuards(*field);
    if (const FieldDef* count = find(field->count, Storage::Integer))
        *slot(*count) = run.count;
    return true;
}

RecordEditor RecordEditor::structure(FieldKey key)
{
    const FieldDef* field = find(key, Storage::Struct);
    if (!field)
        return {};
    return {*m_edited, *field->structure, m_base + field->slot};
}

ArrayEditor RecordEditor::array(FieldKey key)
{
    const FieldDef* field = find(key, Storage::Array);
    return field ? ArrayEditor(*m_edited, *m_def, m_base, *field) : ArrayEditor();
}

} // namespace db
