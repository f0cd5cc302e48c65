#pragma once

#include <map>
#include <string>
#include <vector>

#include "container.h"
#include "dwg/raw_save.h"

namespace dwg {

/// What the writer of a container is to make: decided once, the same for every version.
struct SavePlan {
    const RawDrawing& source;
    const RawChanges& changes;
    /// Contents of sections that differ from the source's, or that it does not have; without the
    /// objects and their map, which follow from where the objects come to lie.
    std::map<std::string, std::vector<std::uint8_t>> sections;
    /// The final header variables, whose section is among the sections if it differs.
    HeaderVariables header;
    /// Whether wrong checksums may become right ones.
    bool repair = false;

    const std::vector<std::uint8_t>* changed(std::string_view name) const
    {
        const auto found = sections.find(std::string(name));
        return found == sections.end() ? nullptr : &found->second;
    }
    /// How much the file can grow beyond the source, at most.
    std::size_t addedBytes() const
    {
        std::size_t sum = 0;
        for (const auto& [name, bytes] : sections)
            sum += bytes.size();
        for (const auto& [handle, bytes] : changes.objects)
            sum += bytes.size() + kMostMapBytes;
        return sum;
    }
    static constexpr std::size_t kMostMapBytes = 24; ///< of an entry in the map of objects
};

/// One object of the file to be made.
struct PlannedObject {
    std::uint64_t handle = 0;
    std::uint64_t oldOffset = 0;                       // where it was; meaningless when it is new
    const std::vector<std::uint8_t>* record = nullptr; // null: as it was
};

/// The objects in the order of the source file, those that are erased left out, new ones behind in
/// the order of their handles.
std::vector<PlannedObject> objectsInFileOrder(const SavePlan& plan);

/// The writers of the containers.
base::Result<std::vector<std::uint8_t>> writeFlat(const SavePlan& plan);
base::Result<std::vector<std::uint8_t>> writePaged(const SavePlan& plan);
base::Result<std::vector<std::uint8_t>> writeCoded(const SavePlan& plan);

} // namespace dwg
