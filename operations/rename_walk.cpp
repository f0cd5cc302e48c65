#include "operations/rename_walk.h"

#include <vector>

#include <sm/change_scope.h>
#include <sm/tv_sm_sheet.h>

#include "operations/rename_drawing.h"
#include "operations/rename_layout.h"

namespace operations {

namespace {

/// A sheet as it was before its dialog.
struct Visited {
    TvString handle;
    TvString fileName, layoutName;
};

TvSmTvDbLayoutReference* layoutOf(TvSmDatabase& database, const TvString& handle)
{
    const auto* sheet = tvrxCast<TvSmSheet>(database.findObject(handle));
    return sheet ? sheet->getLayoutReference() : nullptr;
}

bool takeBack(TvSmDatabase& database, const Visited& before)
{
    TvSmTvDbLayoutReference* layout = layoutOf(database, before.handle);
    if (!layout)
        return false;
    RenameSheetDrawing(layout->getFileName(), before.fileName);
    if (layout->getName().compare(before.layoutName) != 0)
        RenameLayoutOfSheet(layout, before.layoutName);
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

} // namespace

bool renameSheets(TvSmDatabase* database, RenameWalkPorts& ports)
{
    sm::ChangeScope scope(database);
    if (!scope)
        return false;
    std::vector<Visited> visited;
    bool isLastApplied = true; // of a walk that met something else than a sheet
    while (TvSmSheet* sheet = ports.selectedSheet()) {
        const TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
        if (!layout)
            break;
        Visited& now =
            visited.emplace_back(sheet->objectId().getHandle(), layout->getFileName(), TvString());
        const RenameStep step = ports.runDialog(*sheet, now.layoutName);
        if (step == RenameStep::Cancel) {
            isLastApplied = false;
            break;
        }
        ports.labelChanged();
        if (step == RenameStep::Ok)
            return scope.commit();
        step == RenameStep::Previous ? ports.selectPrevious() : ports.selectNext();
    }
    takeAllBack(*database, std::move(visited), isLastApplied);
    return false;
}

} // namespace operations
