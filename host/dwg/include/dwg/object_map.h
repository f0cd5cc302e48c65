#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <base/status.h>
#include <dwg/checksums.h>

namespace dwg {

/// Where an object lies: in AC1015 bytes from the file's begin, else from the begin of the objects
/// section.
struct ObjectLocation {
    std::uint64_t handle = 0;
    std::uint64_t offset = 0;

    friend bool operator==(const ObjectLocation&, const ObjectLocation&) = default;
};

/// The object map decides which objects a drawing has.
struct ObjectMap {
    std::vector<ObjectLocation> objects; ///< ascending handles, each once
    bool checksumsRight = true;
    bool inOrder = true; ///< false: handles were out of order or doubled (then the last one counts)
};

/// Reads the pages of @p section up to the terminating one; what follows that is not looked at.
///
/// @param mostObjects  how many objects the drawing has room for; a map with more is damaged.
base::Result<ObjectMap> readObjectMap(Bytes section, std::size_t mostObjects);

/// The section for @p objects, which stand in ascending order of their handles.
std::vector<std::uint8_t> writeObjectMap(std::span<const ObjectLocation> objects);

} // namespace dwg
