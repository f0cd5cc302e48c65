#include "operations/rename_walk.h"

#include <ranges>
#include <vector>

#include <core/rename_drawing.h>
#include <core/watch_poller.h>
#include <sm/change_scope.h>
#include <sm/tv_sm_sheet.h>

#include "operations/rename_drawing.h"
#include "operations/rename_layout.h"

namespace operations {

namespace {

/// Where a sheet's drawing is, and what its layout is called.
struct Place {
    TvString path; ///< where it was found; empty when it leads nowhere
    TvString layoutName;
};

/// A sheet on the walk.
struct Visited {
    TvString handle;
    Place before; ///< its dialog; the layout's name as that has found it
    Place after;
};

TvSmTvDbLayoutReference* layoutOf(TvSmDatabase& database, const TvString& handle)
{
    const auto* sheet = tvrxCast<TvSmSheet>(database.findObject(handle));
    return sheet ? sheet->getLayoutReference() : nullptr;
}

bool takeBack(TvSmDatabase& database, const Visited& visited)
{
    TvSmTvDbLayoutReference* layout = layoutOf(database, visited.handle);
    if (!layout)
        return false;
    RenameSheetDrawing(layout->resolveFileName(), visited.before.path);
    if (layout->getName().compare(visited.before.layoutName) != 0)
        RenameLayoutOfSheet(layout, visited.before.layoutName);
    return true;
}

/// The one on which the user gave up was not applied.
void takeAllBack(TvSmDatabase& database, std::vector<Visited> visited, bool isLastApplied)
{
    if (!visited.empty() && !isLastApplied)
        visited.pop_back();
    while (!visited.empty() && takeBack(database, visited.back()))
        visited.pop_back();
}

/// The set could not be written, and has its former names again: the drawings follow it.
/// Layouts come last, since a sheet finds its drawing only where that was at first.
void followRolledBack(TvSmDatabase& database, const std::vector<Visited>& visited)
{
    const auto fromTheLast = std::views::reverse(visited);
    for (const Visited& each : fromTheLast)
        if (each.after.path != each.before.path)
            core::moveDrawing(each.after.path, each.before.path);
    for (const Visited& each : fromTheLast)
        if (each.after.layoutName != each.before.layoutName)
            RenameLayoutOfSheet(layoutOf(database, each.handle), each.before.layoutName);
}

/// What renameSheets() does, but for the labels once the set has its former names again.
bool walk(TvSmDatabase* database, RenameWalkPorts& ports, std::vector<Visited>& visited)
{
    sm::ChangeScope scope(core::answering(database));
    if (!scope)
        return false;
    bool isLastApplied = true; // of a walk that met something else than a sheet
    while (TvSmSheet* sheet = ports.selectedSheet()) {
        const TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
        if (!layout)
            break;
        Visited& now = visited.emplace_back();
        now.handle = sheet->objectId().getHandle();
        now.before.path = layout->resolveFileName();
        const RenameStep step = ports.runDialog(*sheet, now.before.layoutName);
        if (step == RenameStep::Cancel) {
            isLastApplied = false;
            break;
        }
        ports.labelChanged(now.handle);
        if (const TvSmTvDbLayoutReference* changed = layoutOf(*database, now.handle))
            now.after = {changed->resolveFileName(), changed->getName()};
        else
            now.after = now.before;
        if (step == RenameStep::Ok) {
            if (scope.commit())
                return true;
            followRolledBack(*database, visited);
            return false;
        }
        step == RenameStep::Previous ? ports.selectPrevious() : ports.selectNext();
    }
    takeAllBack(*database, visited, isLastApplied);
    return false;
}

} // namespace

bool renameSheets(TvSmDatabase* database, RenameWalkPorts& ports)
{
    std::vector<Visited> visited;
    if (walk(database, ports, visited))
        return true;
    for (const Visited& each : visited)
        ports.labelChanged(each.handle);
    return false;
}

} // namespace operations
