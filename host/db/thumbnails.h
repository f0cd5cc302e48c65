#pragma once

#include <db/drawing_file.h>
#include <db/tv_db_object.h>

namespace db {

/// A picture from bytes, by how they begin; none when they are no picture that we know.
Preview previewFromBytes(std::span<const std::uint8_t> bytes);

/// The picture that the drawing keeps for a layout or view: newer files beside its record, older
/// ones as an xrecord in its extension dictionary, whose name ends with @p nameEnd (what stands
/// before that depends on who wrote it).
Preview thumbnailOf(const TvDbObject& object, std::u16string_view nameEnd);

} // namespace db
