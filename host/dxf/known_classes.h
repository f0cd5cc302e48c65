#pragma once

#include <map>
#include <string>
#include <vector>

#include <db/drawing_file.h>

namespace dxf {

/// Adds those classes that a file must name, because objects of them are there (@p counts, by
/// name), and that the list lacks.
void addKnownClasses(std::vector<db::ClassEntry>& entries,
                     const std::map<std::string, std::uint32_t>& counts);

} // namespace dxf
