#pragma once

#include <db/record.h>

#include "space_path.h"

namespace gs {

/// Adds the edges of a body that its modeler left as text (drawings up to 2010): straight ones, and
/// pieces of circles and ellipses; other curves as the line between their ends.
/// @param solid  the fields of a solid, body or region. One that is kept in binary has no edges
/// here.
void addSolidEdges(SpacePath& path, const db::RecordView& solid);

} // namespace gs
