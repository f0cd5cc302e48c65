#pragma once

#include <functional>

#include <db/record.h>

namespace db {

/// One reference of a record to another object.
struct Reference {
    ReferenceKind kind;   ///< what the table says; where that is open, what is stored
    std::uint64_t target; ///< never 0; may not exist
};

/// Calls @p visit for every reference that the record's version would write, in the order of its
/// table: owner and reactors, fields, arrays, items of extended data and of xrecords. Null
/// references are left out; so are handles in bytes that are kept undecoded.
/// @return false when the record contradicts itself, so that it could not be written either.
bool forEachReference(const Record& record, const std::function<void(const Reference&)>& visit);

/// The same, and each reference points to what @p target gives for it (0: null). Used when objects
/// are copied into another drawing.
bool retargetReferences(Record& record,
                        const std::function<std::uint64_t(const Reference&)>& target);

} // namespace db
