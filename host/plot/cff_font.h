#pragma once

#include <map>
#include <string>

#include "page_content.h"

namespace plot {

/// A font of the letters that a document uses, as a compact font program: a letter's number is its
/// character's place in the plane. Capitals are 1000 units high.
/// @param name  its name in the file, plain letters.
std::string cffFont(const std::map<std::uint16_t, UsedLetter>& letters, const std::string& name);

/// The width of a letter in units of the font.
int cffWidth(const UsedLetter& letter);

} // namespace plot
