#pragma once

#include <string>
#include <string_view>

namespace dxf {

/// The name of a block as its record holds it: that of paper spaces and anonymous blocks ("*D12",
/// "*Paper_Space3") without the number.
std::u16string_view baseBlockName(std::u16string_view name);

/// Whether blocks of this name have a number.
bool isNumberedBlock(std::u16string_view baseName);

} // namespace dxf
