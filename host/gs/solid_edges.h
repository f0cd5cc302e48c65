#pragma once

#include <cstdint>
#include <span>

#include "space_path.h"

namespace gs {

/// Adds the edges of a body as its modeler wrote it, in text or in binary: straight ones, pieces of
/// circles, ellipses and free curves; other curves as the line between their ends. Beside them some
/// lines on round faces (solid_outlines.h). What cannot be understood is left out.
/// @param body  any bytes; see db::modelerData.
/// @note O(bytes).
void addSolidEdges(SpacePath& path, std::span<const std::uint8_t> body);

} // namespace gs
