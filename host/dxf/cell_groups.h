#pragma once

#include "group_sequence.h"

namespace dxf {

/// What tables, their styles and contents have in common, both ways.
void tellCellStyle(GroupSequence& groups, Part style);
/// A cell style with its name.
void tellNamedStyle(GroupSequence& groups, Part named);
void tellValue(GroupSequence& groups, Part value);
/// A whole TableContent, with the markers of its parts.
void tellTableContent(GroupSequence& groups, Part content);

} // namespace dxf
