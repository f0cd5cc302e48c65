#pragma once

#include <cstdint>
#include <vector>

#include <db/tv_db_entity.h>

namespace db {

/// The body of a solid, region or surface as its modeler wrote it: text, or binary, which how it
/// begins tells. From its record (drawings up to 2010), or from where the file keeps it beside the
/// object (later ones).
///
/// @return empty for what has none, and for what was copied here from another drawing, whose body
/// stayed there. At most 64 MB of text, what is behind is left out.
/// @note reads the file's bytes anew each time.
std::vector<std::uint8_t> modelerData(const TvDbEntity& entity);

} // namespace db
