#include "db/record.h"

#include <algorithm>
#include <bit>

#include "db/record_editor.h"

namespace db {

namespace {

Point pointAt(const std::uint64_t* word, std::uint8_t width)
{
    Point point{std::bit_cast<double>(word[0])};
    if (width > 1)
        point.y = std::bit_cast<double>(word[1]);
    if (width > 2)
        point.z = std::bit_cast<double>(word[2]);
    return point;
}

std::u16string_view textAt(const Record& record, std::uint64_t word)
{
    const Run run = runOf(word);
    const auto* units = reinterpret_cast<const char16_t*>(record.words().data() + run.offset);
    return {units, TextRun::length(run)};
}

} // namespace

void WordBuffer::grow(std::uint32_t count)
{
    const std::uint64_t wanted = std::uint64_t(m_size) + count;
    const std::uint64_t roomy = std::max<std::uint64_t>(wanted, m_capacity + m_capacity / 2 + 16);
    reserve(static_cast<std::uint32_t>(std::min<std::uint64_t>(roomy, 0xFFFFFFFFu)));
}

Record::Record(const ClassDef& of)
{
    reset(of, 0);
    fillFixedArrays(*this, of.layout(), 0);
}

void Record::reset(const ClassDef& of, std::uint32_t more)
{
    m_class = &of;
    m_handle = 0;
    m_typeNumber = of.typeNumber();
    m_padding = {};
    m_words.assign(of.layout().defaults, more);
}

const FieldDef* RecordView::find(FieldKey key, Storage storage) const
{
    const FieldDef* field = m_def ? m_def->find(key.id()) : nullptr;
    return field && field->storage == storage ? field : nullptr;
}

std::uint64_t RecordView::word(const FieldDef& field, std::uint32_t part) const
{
    return m_record->words().data()[m_base + field.slot + part];
}

std::int64_t RecordView::integer(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Integer);
    return field ? static_cast<std::int64_t>(word(*field)) : 0;
}

double RecordView::real(FieldKey key) const
{
    return point(key).x;
}

Point RecordView::point(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Real);
    return field ? pointAt(m_record->words().data() + m_base + field->slot, field->width) : Point();
}

std::array<std::int64_t, 2> RecordView::date(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Integer);
    if (!field || field->width != 2)
        return {};
    return {static_cast<std::int64_t>(word(*field)), static_cast<std::int64_t>(word(*field, 1))};
}

std::u16string_view RecordView::text(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Text);
    return field ? textAt(*m_record, word(*field)) : std::u16string_view();
}

std::uint64_t RecordView::handle(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Handle);
    return field ? word(*field) & kTargetMask : 0;
}

std::span<const std::uint8_t> RecordView::bytes(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Bytes);
    if (!field)
        return {};
    const Run run = runOf(word(*field));
    return {reinterpret_cast<const std::uint8_t*>(m_record->words().data() + run.offset),
            run.count};
}

BitRun RecordView::bits(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Bits);
    if (!field)
        return {};
    const Run run = runOf(word(*field));
    return {{m_record->words().data() + run.offset, (run.count + 63) / 64}, run.count};
}

RecordView RecordView::structure(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Struct);
    return field ? RecordView(*m_record, *field->structure, m_base + field->slot) : RecordView();
}

ArrayView RecordView::array(FieldKey key) const
{
    const FieldDef* field = find(key, Storage::Array);
    return field ? ArrayView(*m_record, *field, arrayOf(word(*field))) : ArrayView();
}

RecordView ArrayView::operator[](std::uint32_t index) const
{
    if (index >= m_run.count || m_field->element != Storage::Struct)
        return {};
    return {*m_record, *m_field->structure, m_run.offset + index * m_field->stride()};
}

std::uint64_t ArrayView::word(std::uint32_t index, std::uint32_t part) const
{
    if (index >= m_run.count || part >= m_field->stride())
        return 0;
    return m_record->words().data()[m_run.offset + index * m_field->stride() + part];
}

std::int64_t ArrayView::integer(std::uint32_t index) const
{
    const bool isInteger = m_field && m_field->element == Storage::Integer;
    return isInteger ? static_cast<std::int64_t>(word(index)) : 0;
}

double ArrayView::real(std::uint32_t index) const
{
    return point(index).x;
}

Point ArrayView::point(std::uint32_t index) const
{
    if (!m_field || m_field->element != Storage::Real || index >= m_run.count)
        return {};
    return pointAt(m_record->words().data() + m_run.offset + index * m_field->stride(),
                   m_field->width);
}

std::u16string_view ArrayView::text(std::uint32_t index) const
{
    const bool isText = m_field && m_field->element == Storage::Text && index < m_run.count;
    return isText ? textAt(*m_record, word(index)) : std::u16string_view();
}

std::uint64_t ArrayView::handle(std::uint32_t index) const
{
    const bool isHandle = m_field && m_field->element == Storage::Handle;
    return isHandle ? word(index) & kTargetMask : 0;
}

} // namespace db
