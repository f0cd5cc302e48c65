#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <base/status.h>

namespace dxf {

class FileWriter;

/// Reads @p bytes, which @p writer wrote, and compares: the objects that are there, and the groups
/// that each would be written as. Fails with Damaged, naming an object that differs.
base::Status verify(const std::vector<std::uint8_t>& bytes, const FileWriter& writer);

/// Whether two texts have the same groups; reals may differ in the last digits, since angles are
/// degrees there and radians in records.
bool sameGroups(std::string_view a, std::string_view b);

} // namespace dxf
