#include "told_objects.h"

#include <algorithm>

#include "accepted.h"
#include "drawing_tools.h"
#include "form.h"
#include "record_difference.h"

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

bool isAccepted(std::string_view className, std::string_view difference)
{
    const std::string field = fieldOf(difference);
    return std::any_of(std::begin(kAccepted), std::end(kAccepted), [&](const Accepted& one) {
        return fits(one.className, className) && fits(one.field, field);
    });
}

bool canBeTold(const db::DrawingFile& file, std::uint64_t handle, db::Record& record)
{
    const auto kind = file.kind(handle);
    return kind && kind->classDef && file.read(handle, record) &&
           (dxf::hasForm(*kind->classDef) || kind->classDef->kind() == db::ClassKind::Control);
}

} // namespace

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
