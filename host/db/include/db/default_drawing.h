#pragma once

#include <vector>

#include <db/record.h>

namespace db {

/// What a new drawing counts in.
enum class Measurement { Imperial, Metric };

/// The objects of a drawing.
struct DrawingContent {
    Record header;               ///< HEADER_VARIABLES
    std::vector<Record> objects; ///< ascending by handle
};

/// A new drawing: symbol tables with what every drawing has (layer 0, three linetypes, a text and a
/// dimension style, the active viewport), the named dictionaries, model space, and two empty paper
/// layouts, Layout1 being the paper space that is shown first.
///
/// It is the least that any reader expects; styles of tables, leaders, materials and so on are made
/// by whoever first needs them. No dates are set.
DrawingContent makeDefaultDrawing(Version version, Measurement measurement);

} // namespace db
