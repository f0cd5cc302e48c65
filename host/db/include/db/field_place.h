#pragma once

#include <bit>

#include <db/record.h>

namespace db {

/// Where a field lies in the records of a class, for those who ask many records for the same few
/// fields: looked for once, it costs no more than a look at memory.
///
/// @pre every record that is asked is of the class that the field was looked for in.
class FieldPlace
{
public:
    /// Of no field: all answers are 0.
    FieldPlace() = default;
    /// A field of @p of, which lies at @p base of the record (0: it is the class itself).
    /// @param storage  how it is going to be asked for; stored otherwise it is no field.
    FieldPlace(const StructDef& of, FieldKey key, Storage storage, std::uint32_t base = 0)
    {
        if (const FieldDef* const field = of.find(key.id()); field && field->storage == storage)
            m_slot = base + field->slot;
    }

    std::int64_t integer(const Record& record) const
    {
        return static_cast<std::int64_t>(word(record));
    }
    double real(const Record& record) const { return std::bit_cast<double>(word(record)); }
    /// The object referred to; 0 is none.
    std::uint64_t handle(const Record& record) const { return word(record) & kTargetMask; }

private:
    static constexpr std::uint32_t kNowhere = ~std::uint32_t(0);

    std::uint64_t word(const Record& record) const
    {
        return m_slot == kNowhere ? 0 : record.words().data()[m_slot];
    }

    std::uint32_t m_slot = kNowhere;
};

} // namespace db
