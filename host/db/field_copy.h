#pragma once

#include <functional>

#include <db/record_editor.h>

namespace db {

/// Copies the fields of @p from that @p to has too, structs and arrays included, but those for
/// which @p isLeftOut holds (asked at the top level only). Conditions of fields go along.
void copyFields(const RecordView& from, RecordEditor to,
                const std::function<bool(std::string_view)>& isLeftOut);

/// Whether a field belongs to what all objects or entities have: place, owner, extended data.
bool isCommonField(std::string_view name);

} // namespace db
