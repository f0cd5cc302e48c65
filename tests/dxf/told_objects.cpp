#include "told_objects.h"

#include <algorithm>

#include <map>

#include <db/record_editor.h>
#include <db/summary_record.h>

#include "accepted.h"
#include "drawing_tools.h"
#include "form.h"

namespace {

bool fits(std::string_view pattern, std::string_view name)
{
    return pattern.ends_with('*') ? name.starts_with(pattern.substr(0, pattern.size() - 1))
                                  : pattern == name;
}

/// "dashes[3].scale: 1 / 0" is about "dashes[].scale".
std::string fieldOf(std::string_view difference)
{
    std::string field;
    bool isInBrackets = false;
    for (const char c : difference.substr(0, difference.find(':'))) {
        isInBrackets = c == '[' || (isInBrackets && c != ']');
        if (!isInBrackets || c == '[')
            field += c;
    }
    return field;
}

bool canBeTold(const db::DrawingFile& file, std::uint64_t handle, db::Record& record)
{
    const auto kind = file.kind(handle);
    return kind && kind->classDef && file.read(handle, record) &&
           (dxf::hasForm(*kind->classDef, file.version()) ||
            kind->classDef->kind() == db::ClassKind::Control);
}

} // namespace

bool isAccepted(std::string_view className, std::string_view difference)
{
    const std::string field = fieldOf(difference);
    return std::any_of(std::begin(kAccepted), std::end(kAccepted), [&](const Accepted& one) {
        return fits(one.className, className) && fits(one.field, field);
    });
}

std::vector<std::filesystem::path> allDrawings()
{
    std::vector<std::filesystem::path> found;
    for (const auto& folder : {drawingsFolder(), std::filesystem::path(KV_TEST_DATA) / "dwg"})
        if (std::filesystem::is_directory(folder))
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                if (entry.path().extension() == ".dwg")
                    found.push_back(entry.path());
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.filename() < b.filename(); });
    // The minimal ones are in both folders.
    const auto end = std::unique(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return a.filename() == b.filename();
    });
    found.erase(end, found.end());
    return found;
}

namespace {

// With what is owned by what is away.
void addOwned(const db::DrawingFile& file, std::set<std::uint64_t>& away)
{
    std::multimap<std::uint64_t, std::uint64_t> owned;
    for (const std::uint64_t handle : file.handles())
        if (db::Record record; file.read(handle, record))
            owned.emplace(record.handle("owner"), handle);
    // What hangs on nothing, too: real drawings have such leftovers.
    for (const auto& [owner, handle] : owned)
        if (owner != 0 && !file.kind(owner))
            away.insert(handle);
    std::vector<std::uint64_t> owners(away.begin(), away.end());
    while (!owners.empty()) {
        const auto [begin, end] = owned.equal_range(owners.back());
        owners.pop_back();
        for (auto at = begin; at != end; ++at)
            if (away.insert(at->second).second)
                owners.push_back(at->second);
    }
}

} // namespace

std::set<std::uint64_t> takeUntoldAway(const db::DrawingFile& file, Edit& edit)
{
    const std::set<std::uint64_t> away = untoldObjects(file);
    for (const std::uint64_t handle : away)
        edit.erase(handle);
    for (const std::uint64_t handle : file.handles()) {
        db::Record record;
        if (away.contains(handle) || !file.read(handle, record))
            continue;
        if (away.contains(record.handle("xdict"))) {
            db::RecordEditor object(edit.change(handle));
            object.setHandle("xdict", 0);
            object.setInteger("xdict_missing", 1);
        }
        if (!record.has("keys"))
            continue;
        const db::ArrayView values = record.array("values");
        for (std::uint32_t i = 0; i < values.size(); ++i)
            if (away.contains(values.handle(i)))
                db::removeEntry(edit.change(handle), values.handle(i));
    }
    return away;
}

std::set<std::uint64_t> untoldObjects(const db::DrawingFile& file)
{
    std::set<std::uint64_t> away, placed;
    for (const std::uint64_t handle : file.handles()) {
        db::Record record;
        if (!canBeTold(file, handle, record)) {
            away.insert(handle);
            continue;
        }
        EXPECT_TRUE(db::fillOwnedFromChain(file, record));
        for (const char* list : {"owned", "attribs", "vertices"}) {
            const db::ArrayView entities = record.array(list);
            for (std::uint32_t i = 0; i < entities.size(); ++i)
                placed.insert(entities.handle(i));
        }
        for (const char* part : {"block_entity", "endblk_entity", "seqend"})
            placed.insert(record.handle(part));
    }
    for (const std::uint64_t handle : file.handles())
        if (const auto kind = file.kind(handle); kind && kind->isEntity && !placed.contains(handle))
            away.insert(handle);
    addOwned(file, away);
    return away;
}

std::vector<std::string> lostBetween(const db::DrawingFile& before, const db::DrawingFile& after,
                                     const std::set<std::uint64_t>& away)
{
    std::vector<std::string> lost;
    for (const std::uint64_t handle : before.handles()) {
        const auto kind = before.kind(handle);
        // The oldest version's second list of viewports is not told; it is made when needed.
        if (away.contains(handle) || !kind || kind->className.starts_with("VPENT_HDR"))
            continue;
        const std::string name(kind->className);
        const std::string where =
            name + " " + TvString().format(u"%X", std::int64_t(handle)).utf8();
        db::Record left, right;
        // What is not understood is kept as its groups.
        if (before.read(handle, left).failure() == base::Failure::Unsupported) {
            if (!after.kind(handle))
                lost.push_back(where);
            continue;
        }
        const base::Status done = after.read(handle, right);
        if (!done || !before.read(handle, left)) {
            lost.push_back(where + " " + told(done));
            continue;
        }
        if (!db::fillOwnedFromChain(before, left) || !db::fillOwnedFromChain(after, right))
            lost.push_back(where + " chain");
        for (const std::string& difference : differences(left, right, away))
            if (!isAccepted(name, difference))
                lost.push_back(where + " " + difference);
    }
    return lost;
}
