#include "raw_check.h"

#include <algorithm>

namespace dwg {

namespace {

struct Extent {
    std::uint64_t begin = 0, end = 0, handle = 0;
};

// Tells what is wrong with one object; its place if it has one.
Extent checkObject(Container& container, Version version, const ObjectLocation& location,
                   std::vector<Finding>& findings)
{
    const auto add = [&](FindingKind kind) { findings.push_back({kind, {}, location.handle}); };
    const auto bytes = recordBytes(container, version, location);
    const auto record =
        bytes ? parseRecord(version, *bytes) : base::Result<ObjectRecord>(bytes.status());
    if (!record) {
        add(FindingKind::ObjectUnreadable);
        return {};
    }
    if (!record->checksumRight())
        add(FindingKind::ObjectChecksum);
    if (record->handle != location.handle)
        add(FindingKind::ObjectHandle);
    return {location.offset, location.offset + bytes->size(), location.handle};
}

void addOverlaps(std::vector<Extent>& extents, std::vector<Finding>& findings)
{
    std::sort(extents.begin(), extents.end(),
              [](const Extent& a, const Extent& b) { return a.begin < b.begin; });
    std::uint64_t end = 0;
    for (const Extent& extent : extents) {
        if (extent.begin < end)
            findings.push_back({FindingKind::ObjectsOverlap, {}, extent.handle});
        end = std::max(end, extent.end);
    }
}

} // namespace

void addSectionFindings(const HeaderVariables& header, const ClassTable& classes,
                        const ObjectMap& map, std::vector<Finding>& findings)
{
    const auto add = [&](bool wrong, FindingKind kind, std::string_view name) {
        if (wrong)
            findings.push_back({kind, std::string(name), 0});
    };
    add(!header.checksumRight(), FindingKind::SectionChecksum, section::kHeader);
    add(!classes.checksumRight(), FindingKind::SectionChecksum, section::kClasses);
    add(!map.checksumsRight, FindingKind::SectionChecksum, section::kHandles);
    add(!map.inOrder, FindingKind::MapOrder, section::kHandles);
    const bool seedUsed = !map.objects.empty() && map.objects.back().handle >= header.handSeed();
    add(seedUsed, FindingKind::SeedTooLow, section::kHeader);
}

void addObjectFindings(Container& container, Version version,
                       const std::vector<ObjectLocation>& objects, std::vector<Finding>& findings)
{
    std::vector<Extent> extents;
    for (const ObjectLocation& location : objects) {
        const Extent extent = checkObject(container, version, location, findings);
        if (extent.end != 0)
            extents.push_back(extent);
    }
    addOverlaps(extents, findings);
}

} // namespace dwg
