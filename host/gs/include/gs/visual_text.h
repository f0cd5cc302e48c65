#pragma once

#include <string>
#include <string_view>

namespace gs {

/// The characters of a line as they stand from left to right; where that is against the direction
/// of reading, marks stand before their letters. A line that runs from left to right throughout is
/// given back as it is.
std::u16string visualText(std::u16string_view line);

} // namespace gs
