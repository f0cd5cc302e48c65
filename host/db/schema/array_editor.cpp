#include "db/record_editor.h"

#include <algorithm>
#include <bit>

namespace db {

namespace {

void putDefaults(std::uint64_t* words, const FieldDef& field, std::uint32_t count)
{
    const std::uint32_t stride = field.stride();
    for (std::uint32_t i = 0; i < count; ++i, words += stride) {
        if (field.structure)
            std::copy(field.structure->defaults.begin(), field.structure->defaults.end(), words);
        else
            std::fill(words, words + stride, 0);
    }
}

void fillFixedArray(Record& record, const FieldDef& field, std::uint32_t slot)
{
    if (field.storage == Storage::Bytes) {
        const std::vector<std::uint8_t> zeros(field.fixedCount);
        const Run run = appendBytes(record, zeros);
        record.words().data()[slot] = wordOf(run);
        return;
    }
    const std::uint32_t at = record.words().append(field.fixedCount * field.stride());
    putDefaults(record.words().data() + at, field, field.fixedCount);
    record.words().data()[slot] = wordOf({at, field.fixedCount});
    if (field.structure)
        for (std::uint32_t i = 0; i < field.fixedCount; ++i)
            fillFixedArrays(record, *field.structure, at + i * field.stride());
}

} // namespace

void fillFixedArrays(Record& record, const StructDef& def, std::uint32_t base)
{
    for (const FieldDef& field : def.fields) {
        if (field.storage == Storage::Struct)
            fillFixedArrays(record, *field.structure, base + field.slot);
        else if (field.fixedCount)
            fillFixedArray(record, field, base + field.slot);
    }
}

ArrayEditor::ArrayEditor(Record& record, const StructDef& def, std::uint32_t base,
                         const FieldDef& field)
    : ArrayView(record, field, arrayOf(record.words().data()[base + field.slot])),
      m_edited(&record), m_def(&def), m_base(base)
{
}

std::uint64_t& ArrayEditor::slot(const FieldDef& field)
{
    return m_edited->words().data()[m_base + field.slot];
}

void ArrayEditor::refresh()
{
    if (m_edited)
        m_run = arrayOf(slot(*m_field));
}

std::uint32_t ArrayEditor::size()
{
    refresh();
    return m_run.count;
}

std::uint64_t* ArrayEditor::element(std::uint32_t index, Storage storage)
{
    if (index >= size() || m_field->element != storage)
        return nullptr;
    return m_edited->words().data() + m_run.offset + index * m_field->stride();
}

RecordEditor ArrayEditor::operator[](std::uint32_t index)
{
    if (index >= size() || m_field->element != Storage::Struct)
        return {};
    return {*m_edited, *m_field->structure, m_run.offset + index * m_field->stride()};
}

bool ArrayEditor::setInteger(std::uint32_t index, std::int64_t value)
{
    std::uint64_t* word = element(index, Storage::Integer);
    if (!word || value < INT32_MIN || value > UINT32_MAX)
        return false;
    *word =
        static_cast<std::uint64_t>(value > INT32_MAX ? static_cast<std::int32_t>(value) : value);
    return true;
}

bool ArrayEditor::setReal(std::uint32_t index, double value)
{
    return setPoint(index, {value});
}

bool ArrayEditor::setPoint(std::uint32_t index, const Point& value)
{
    std::uint64_t* word = element(index, Storage::Real);
    if (!word)
        return false;
    const double parts[] = {value.x, value.y, value.z};
    for (std::uint32_t i = 0; i < m_field->stride(); ++i)
        word[i] = std::bit_cast<std::uint64_t>(parts[i]);
    return true;
}

bool ArrayEditor::setText(std::uint32_t index, std::u16string_view value)
{
    if (!element(index, Storage::Text) || value.size() >= 0xFFFF)
        return false;
    const std::u16string kept(value); // it may lie in the words that move
    const Run run = appendText(*m_edited, kept);
    *element(index, Storage::Text) = wordOf(run);
    return true;
}

bool ArrayEditor::setHandle(std::uint32_t index, std::uint64_t target)
{
    std::uint64_t* word = element(index, Storage::Handle);
    if (!word || target > kTargetMask)
        return false;
    *word = static_cast<std::uint64_t>(m_field->handleCode) << 60 | target;
    return true;
}

bool ArrayEditor::resize(std::uint32_t count)
{
    const std::uint32_t before = size();
    if (count < before)
        return apply({count, before - count, 0});
    return count == before || apply({before, 0, count - before});
}

bool ArrayEditor::insert(std::uint32_t index)
{
    return index <= size() && apply({index, 0, 1});
}

bool ArrayEditor::erase(std::uint32_t index)
{
    return index < size() && apply({index, 1, 0});
}

// All arrays with the same count change in the same way; those that a version or condition leaves
// out are as short as before and stay so.
bool ArrayEditor::apply(const Change& change)
{
    if (!m_edited || m_field->fixedCount)
        return false;
    const std::uint64_t count = std::uint64_t(size()) - change.removed + change.inserted;
    if (count * m_field->stride() >= kLargestCount)
        return false;
    const std::uint32_t before = size();
    if (m_field->count == FieldId::None) {
        applyTo(*m_field, change);
    } else {
        for (const FieldDef& field : m_def->fields)
            if (field.count == m_field->count && field.storage == Storage::Array &&
                (&field == m_field || arrayOf(slot(field)).count == before))
                applyTo(field, change);
        slot(*m_def->find(m_field->count)) = count;
    }
    refresh();
    return true;
}

void ArrayEditor::applyTo(const FieldDef& field, const Change& change)
{
    const Run before = arrayOf(slot(field));
    const std::uint32_t count = before.count - change.removed + change.inserted;
    makeRoom(field, count);
    Run run = runOf(slot(field));
    const std::uint32_t stride = field.stride();
    std::uint64_t* const elements = m_edited->words().data() + run.offset;
    const std::uint32_t tail = before.count - change.at - change.removed;
    std::memmove(elements + std::size_t(change.at + change.inserted) * stride,
                 elements + std::size_t(change.at + change.removed) * stride,
                 std::size_t(tail) * stride * sizeof(std::uint64_t));
    run.count = count | kHasRoom;
    slot(field) = wordOf(run);
    fill(field, change.at, change.inserted);
}

// Moves the elements to where there is room for so many, unless there is already.
void ArrayEditor::makeRoom(const FieldDef& field, std::uint32_t count)
{
    const Run marked = runOf(slot(field));
    const Run run = arrayOf(slot(field));
    WordBuffer& words = m_edited->words();
    if ((marked.count & kHasRoom) && words.data()[run.offset - 1] >= count)
        return;
    const std::uint32_t room = std::max(count, run.count) + run.count / 2;
    const std::uint32_t stride = field.stride();
    const std::uint32_t at = words.append(room * stride + 1) + 1;
    words.data()[at - 1] = room;
    std::copy_n(words.data() + run.offset, std::size_t(run.count) * stride, words.data() + at);
    slot(field) = wordOf({at, run.count | kHasRoom});
}

void ArrayEditor::fill(const FieldDef& field, std::uint32_t from, std::uint32_t count)
{
    const Run run = arrayOf(slot(field));
    const std::uint32_t at = run.offset + from * field.stride();
    putDefaults(m_edited->words().data() + at, field, count);
    if (field.structure)
        for (std::uint32_t i = 0; i < count; ++i)
            fillFixedArrays(*m_edited, *field.structure, at + i * field.stride());
}

} // namespace db
