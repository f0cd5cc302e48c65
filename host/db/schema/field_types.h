#pragma once

#include <string_view>

#include "db/schema.h"

namespace db {

/// What a type of the tables is on the wire and in a record.
struct FieldType {
    std::string_view name;
    OpCode code;
    std::uint8_t arity; ///< values in a row; of a handle: the code to write
    Storage storage;
    bool angle = false;
};

/// The type called @p name; null when it is none of the wire's (then it is a struct).
const FieldType* fieldType(std::string_view name);

/// @p value as a field of type @p code holds it: cut to its bits and sign-extended.
std::int64_t normalised(OpCode code, std::int64_t value);

} // namespace db
