#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace db {

/// The name of a field as a small number: equal names have equal numbers, in every class.
///
/// Make one from text once (`static const FieldId kOwner = fieldId("owner")`) where a field is
/// asked for often; a number compares and hashes in no time.
enum class FieldId : std::uint16_t { None = 0 };

/// The number of @p name, given out at its first use. Thread-safe.
FieldId fieldId(std::string_view name);
/// The name behind @p id; empty for None. Lives as long as the program.
std::string_view fieldName(FieldId id);

/// What accessors take for a field: its name or its number.
class FieldKey
{
public:
    FieldKey(FieldId id) : m_id(id) {}
    FieldKey(std::string_view name) : m_id(fieldId(name)) {}
    FieldKey(const char* name) : m_id(fieldId(name)) {}

    FieldId id() const { return m_id; }

private:
    FieldId m_id;
};

} // namespace db
