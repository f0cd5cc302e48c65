// What holds of every save, whatever the version:
//
// 1. A record that was not changed keeps every bit, its checksum included, be it right or wrong.
// 2. The next free handle is above every handle of the map, in each place that stores it.
// 3. Nothing unreadable is written again: what cannot be copied whole makes the save fail.
// 4. A save that changes nothing keeps the counter of saves, too.
// 5. Bytes leave this file only after they were read back and compared with the plan.

#include "dwg/raw_save.h"

#include <algorithm>

#include <base/tv_db_handle.h>

#include "aux_header.h"
#include "save_plan.h"
#include "verify.h"

namespace dwg {

namespace {

base::Status recordInvalid(std::uint64_t handle)
{
    return {base::Failure::Usage, base::Reason::DwgRecordInvalid, {base::hexText(handle)}};
}

base::Status sectionNotWritten(std::string_view name)
{
    return {base::Failure::Usage, base::Reason::DwgSectionNotWritten, {TvString(name)}};
}

bool isRecordOf(Version version, std::uint64_t handle, const std::vector<std::uint8_t>& bytes)
{
    const auto record = parseRecord(version, bytes);
    return record && record->frame.size() == bytes.size() && record->checksumRight() &&
           record->handle == handle && handle != 0;
}

// Sections that follow from the objects and variables are changed through those alone.
bool mayReplace(std::string_view name)
{
    return name != section::kHeader && name != section::kHandles && name != section::kObjects;
}

base::Status checkChanges(const RawDrawing& drawing, const RawChanges& changes)
{
    for (const auto& [handle, bytes] : changes.objects)
        if (changes.erased.count(handle) || !isRecordOf(drawing.version(), handle, bytes))
            return recordInvalid(handle);
    for (const std::uint64_t handle : changes.erased)
        if (!drawing.find(handle))
            return recordInvalid(handle);
    for (const auto& [name, bytes] : changes.sections)
        if (!mayReplace(name) || bytes.empty())
            return sectionNotWritten(name);
    if (changes.header && changes.header->version() != drawing.version())
        return sectionNotWritten(section::kHeader);
    return {};
}

std::uint64_t highestHandle(const RawDrawing& drawing, const RawChanges& changes)
{
    std::uint64_t highest = changes.objects.empty() ? 0 : changes.objects.rbegin()->first;
    for (auto at = drawing.objects().rbegin(); at != drawing.objects().rend(); ++at)
        if (!changes.erased.count(at->handle))
            return std::max(highest, at->handle);
    return highest;
}

bool isSection(const RawDrawing& drawing, std::string_view name,
               const std::vector<std::uint8_t>& bytes)
{
    const auto before = drawing.section(name);
    return before && std::equal(bytes.begin(), bytes.end(), before->begin(), before->end());
}

// Whether the file is to hold anything else than it does: equal records never come here.
bool isAnyOther(const SavePlan& plan)
{
    return !plan.changes.objects.empty() || !plan.changes.erased.empty() ||
           std::any_of(plan.sections.begin(), plan.sections.end(), [&](const auto& section) {
               return !isSection(plan.source, section.first, section.second);
           });
}

base::Result<SavePlan> makePlan(const RawDrawing& drawing, const RawChanges& changes,
                                const SaveOptions& options)
{
    if (base::Status status = checkChanges(drawing, changes); !status)
        return status;
    SavePlan plan{drawing, changes, changes.sections,
                  changes.header ? *changes.header : drawing.header(), options.repair};
    const std::uint64_t highest = highestHandle(drawing, changes);
    if (plan.header.handSeed() <= highest) // 2
        plan.header.setHandle("HANDSEED", highest + 1);
    if (changes.header || plan.header.isChanged() || !plan.header.checksumRight()) {
        auto bytes = plan.header.section();
        if (bytes.empty())
            return sectionNotWritten(section::kHeader);
        plan.sections[std::string(section::kHeader)] = std::move(bytes);
    }
    if (!drawing.classes().checksumRight() && !plan.changed(section::kClasses))
        plan.sections[std::string(section::kClasses)] = drawing.classes().section();
    const auto aux = drawing.section(section::kAuxHeader);
    if (aux && !plan.changed(section::kAuxHeader) && isAnyOther(plan)) { // 4
        std::vector<std::uint8_t> bytes(aux->begin(), aux->end());
        updateAuxHeader(bytes, drawing.header(), plan.header);
        plan.sections[std::string(section::kAuxHeader)] = std::move(bytes);
    }
    return plan;
}

base::Result<std::vector<std::uint8_t>> writePlan(const SavePlan& plan)
{
    switch (plan.source.version()) {
    case Version::Ac1015: return writeFlat(plan);
    case Version::Ac1021: return writeCoded(plan);
    default: return writePaged(plan);
    }
}

} // namespace

std::vector<PlannedObject> objectsInFileOrder(const SavePlan& plan)
{
    const auto& records = plan.changes.objects;
    std::vector<PlannedObject> objects;
    objects.reserve(plan.source.objects().size() + records.size());
    for (const ObjectLocation& location : plan.source.objects()) {
        if (plan.changes.erased.count(location.handle))
            continue;
        const auto changed = records.find(location.handle);
        objects.push_back({location.handle, location.offset,
                           changed == records.end() ? nullptr : &changed->second});
    }
    const auto byOffset = [](const auto& a, const auto& b) { return a.oldOffset < b.oldOffset; };
    if (!std::is_sorted(objects.begin(), objects.end(), byOffset)) // mostly they are
        std::stable_sort(objects.begin(), objects.end(), byOffset);
    for (const auto& [handle, bytes] : records)
        if (!plan.source.find(handle))
            objects.push_back({handle, 0, &bytes});
    return objects;
}

base::Result<std::vector<std::uint8_t>> save(const RawDrawing& drawing, const RawChanges& changes,
                                             const SaveOptions& options)
{
    const auto found = drawing.findings();
    const bool forbidden =
        std::any_of(found.begin(), found.end(), [](const Finding& f) { return f.forbidsSave(); });
    if (forbidden && !options.repair) // 3
        return base::Status(base::Failure::Damaged, base::Reason::DwgDamageNotSaved);
    const auto plan = makePlan(drawing, changes, options);
    if (!plan)
        return plan.status();
    auto bytes = writePlan(*plan);
    if (!bytes)
        return bytes;
    if (base::Status status = verifyPlan(*plan, *bytes); !status) // 5
        return status;
    return bytes;
}

base::Status verifySaved(const RawDrawing& drawing, const RawChanges& changes,
                         const std::vector<std::uint8_t>& saved)
{
    const auto plan = makePlan(drawing, changes, {});
    return plan ? verifyPlan(*plan, saved) : plan.status();
}

} // namespace dwg
