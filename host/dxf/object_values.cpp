#include <algorithm>
#include <bit>
#include <numbers>

#include "colors.h"
#include "object_reader.h"
#include "units.h"

#include <db/guard.h>

namespace dxf {

namespace {

constexpr std::size_t kLongestText = 0xFFFE; // units, with 16 bits of length and a NUL

struct IntegerRange {
    std::int64_t first, last;
};

// What fits a field, signed or not.
IntegerRange rangeOf(db::OpCode op)
{
    switch (op) {
    case db::OpCode::RawChar: return {-128, 255};
    case db::OpCode::RawShort:
    case db::OpCode::BitShort: return {-32768, 65535};
    case db::OpCode::BitLongLong: return {INT64_MIN, INT64_MAX};
    default: return {INT32_MIN, UINT32_MAX};
    }
}

std::int64_t cut(db::OpCode op, std::int64_t value)
{
    switch (op) {
    case db::OpCode::Bit: return value != 0;
    case db::OpCode::Bit2: return value & 3;
    case db::OpCode::RawChar:
    case db::OpCode::ZeroRun: return value & 0xFF;
    case db::OpCode::RawShort:
    case db::OpCode::BitShort: return static_cast<std::int16_t>(value);
    case db::OpCode::BitLongLong: return value;
    default: return static_cast<std::int32_t>(value);
    }
}

} // namespace

double ObjectReader::real(const Tag& tag)
{
    const auto value = realIn(tag.value);
    m_failed = m_failed || !value;
    return value.value_or(0);
}

std::int64_t ObjectReader::integer(const Tag& tag)
{
    const auto value = integerIn(tag.value);
    m_failed = m_failed || !value;
    return value.value_or(0);
}

std::uint64_t ObjectReader::handle(const Tag& tag)
{
    const auto value = handleIn(tag.value);
    m_failed = m_failed || !value;
    return value.value_or(0);
}

bool ObjectReader::appendHex(const Tag& tag, std::vector<std::uint8_t>& bytes)
{
    const std::string_view digits = trimmed(tag.value);
    m_failed = m_failed || digits.size() % 2 != 0;
    for (std::size_t at = 0; at + 1 < digits.size() && !m_failed; at += 2) {
        const auto byte = handleIn(digits.substr(at, 2));
        m_failed = !byte;
        bytes.push_back(static_cast<std::uint8_t>(byte.value_or(0)));
    }
    return !m_failed;
}

bool ObjectReader::takeField(Level& level, const Item& item, std::uint8_t component, const Tag& tag)
{
    const std::uint32_t slot = level.base + item.slot;
    if (item.kind == Item::Kind::Bits) {
        const std::int64_t value = integer(tag);
        for (const Item::Bit& bit : item.bits)
            words()[level.base + bit.slot] = (value & bit.value) != 0;
        return true;
    }
    bool done = false;
    switch (item.field->storage) {
    case db::Storage::Real:
        if (component < item.field->width)
            done = setReal(item.field->angle ? slot : slot + component, tag);
        else
            done = setReal(level.base + static_cast<std::uint32_t>(item.elevation), tag);
        if (item.field->angle && done)
            words()[slot] =
                std::bit_cast<std::uint64_t>(radiansOf(std::bit_cast<double>(words()[slot])));
        break;
    case db::Storage::Integer: done = setInteger(item, slot, tag); break;
    case db::Storage::Handle: done = setHandle(item, slot, tag); break;
    case db::Storage::Text: done = setText(slot, tag); break;
    case db::Storage::Bytes: return takeBytes(level, item, tag);
    case db::Storage::Struct: return takeColor(level, item, component, tag);
    default: return false;
    }
    if (done && !item.field->guards.empty())
        openGuards(level, item);
    return done;
}

bool ObjectReader::setReal(std::uint32_t slot, const Tag& tag)
{
    words()[slot] = std::bit_cast<std::uint64_t>(real(tag));
    return true;
}

bool ObjectReader::setInteger(const Item& item, std::uint32_t slot, const Tag& tag)
{
    const std::int64_t value = integer(tag);
    const IntegerRange range = rangeOf(item.op);
    if (value < range.first || value > range.last)
        m_failed = true;
    else if (item.convert == Convert::Lineweight)
        words()[slot] = static_cast<std::uint64_t>(lineweightCode(value));
    else
        words()[slot] = static_cast<std::uint64_t>(cut(item.op, value));
    return true;
}

bool ObjectReader::setHandle(const Item& item, std::uint32_t slot, const Tag& tag)
{
    const std::uint64_t target =
        item.convert == Convert::Name ? named(item.table, tag.value) : handle(tag);
    if (item.convert == Convert::Name && target == 0 && !trimmed(tag.value).empty())
        return false; // a name that leads nowhere is kept as it is
    words()[slot] = std::uint64_t(item.field->handleCode) << 60 | target;
    return true;
}

bool ObjectReader::setText(std::uint32_t slot, const Tag& tag)
{
    if (tag.value.empty()) {
        words()[slot] = 0;
        return true;
    }
    const std::u16string& decoded = text(tag);
    if (decoded.size() > kLongestText)
        return m_tooLong = true;
    const db::Run run = db::appendText(*m_record, decoded);
    words()[slot] = db::wordOf(run);
    return true;
}

void ObjectReader::setText(db::RecordEditor fields, db::FieldKey key, std::u16string_view value)
{
    if (value.size() > kLongestText)
        m_tooLong = true;
    else
        fields.setText(key, value);
}

// Bytes come in lines; they are put into the record once, when the last one was seen.
bool ObjectReader::takeBytes(const Level& level, const Item& item, const Tag& tag)
{
    const std::uint32_t slot = level.base + item.slot;
    if (m_bytesItem && m_bytesSlot != slot)
        flushBytes();
    m_bytesItem = &item;
    m_bytesSlot = slot;
    m_bytesBase = level.base + item.holderBase;
    return appendHex(tag, m_bytes);
}

void ObjectReader::flushBytes()
{
    if (!m_bytesItem)
        return;
    db::RecordEditor(*m_record, *m_bytesItem->holder, m_bytesBase)
        .setBytes(m_bytesItem->field->id, m_bytes);
    m_bytes.clear();
    m_bytesItem = nullptr;
}

bool ObjectReader::takeColor(Level& level, const Item& item, std::uint8_t component, const Tag& tag)
{
    db::RecordEditor color(*m_record, *item.field->structure, level.base + item.slot);
    if (item.convert == Convert::WideColor)
        setWideColor(color, integer(tag), version());
    else if (component == 0)
        setColorIndex(color, integer(tag), version());
    else if (component == 1)
        setTrueColor(color, integer(tag));
    else
        setColorName(color, text(tag));
    return true;
}

void ObjectReader::openGuards(const Level& level, const Item& item)
{
    const std::uint64_t* const value = words() + level.base + item.slot;
    const std::uint32_t offset = item.slot - item.holderBase;
    const auto defaults = item.holder->defaults.begin() + offset;
    if (std::equal(value, value + item.field->width, defaults))
        return;
    for (const db::Guard& guard : item.field->guards)
        db::open(guard, words()[level.base + item.holderBase + guard.slot]);
}

// ---- arrays of plain values

bool ObjectReader::takeArray(Level& level, const Item& item, std::uint8_t component, const Tag& tag)
{
    const std::uint32_t slot = level.base + item.slot;
    const auto at = static_cast<std::size_t>(&item - level.scope->items.data());
    std::uint32_t index = 0;
    if (item.field->fixedCount) {
        std::uint32_t& count = level.counts[item.counter];
        index = component == 0 ? count++ : count - 1;
        if (count >= item.field->fixedCount && component + 1 == item.components)
            level.used.set(at);
    } else {
        db::ArrayEditor array(*m_record, *item.holder, level.base + item.holderBase, *item.field);
        if (component == 0 && !array.resize(array.size() + 1))
            return false;
        index = array.size() - 1;
    }
    const db::Run run = db::arrayOf(words()[slot]);
    if (index >= run.count)
        return false;
    return setElement(item, run.offset + index * item.field->stride(), component, tag);
}

bool ObjectReader::setElement(const Item& item, std::uint32_t word, std::uint8_t component,
                              const Tag& tag)
{
    switch (item.field->element) {
    case db::Storage::Real:
        if (component >= item.field->width)
            return false;
        setReal(word + component, tag);
        if (item.field->angle)
            words()[word] =
                std::bit_cast<std::uint64_t>(radiansOf(std::bit_cast<double>(words()[word])));
        return true;
    case db::Storage::Integer: return setInteger(item, word, tag);
    case db::Storage::Handle: return setHandle(item, word, tag);
    case db::Storage::Text: return setText(word, tag);
    default: return false;
    }
}

// The first code begins a new element in all arrays; the others fill it.
bool ObjectReader::takeZip(Level& level, const Item& item, const Tag& tag)
{
    const auto* target = item.scope->targetOf(tag.code);
    if (!target)
        return false;
    const Item& part = item.scope->items[target->item];
    const bool begins = target->item == 0 && target->component == 0;
    db::ArrayEditor array(*m_record, *part.holder, level.base + part.holderBase, *part.field);
    if (begins && !array.resize(array.size() + 1))
        return false;
    if (array.size() == 0)
        return false;
    const db::Run run = db::arrayOf(words()[level.base + part.slot]);
    return setElement(part, run.offset + (run.count - 1) * part.field->stride(), target->component,
                      tag);
}

} // namespace dxf
