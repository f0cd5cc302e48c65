#pragma once

#include <string>

namespace cli {

/// @p text in lines of at most 74 columns, each behind @p indent blanks and with an end of line.
std::string wrappedText(const std::string& text, std::size_t indent);

} // namespace cli
