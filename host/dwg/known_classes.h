#pragma once

#include <optional>
#include <string_view>

#include "dwg/class_table.h"

namespace dwg {

/// How a drawing of @p version names the class with this DXF name; nullopt when we do not know it.
/// Its number is not given yet, nor are there any objects.
std::optional<ClassRecord> knownClass(Version version, std::string_view dxfName);

} // namespace dwg
