#pragma once

#include "group_sequence.h"

namespace dxf {

/// What tables, their styles and contents have in common, both ways.
void tellCellStyle(GroupSequence& groups, Part style);
/// A cell style with its name.
void tellNamedStyle(GroupSequence& groups, Part named);
void tellValue(GroupSequence& groups, Part value);
/// A whole TableContent; @p markerCode: of the markers between its parts, 100 where it is an object
/// of its own.
void tellTableContent(GroupSequence& groups, Part content, int markerCode);

} // namespace dxf
