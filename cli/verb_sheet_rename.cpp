#include <nlohmann/json.hpp>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"
#include "rename_effects.h"

namespace cli {

namespace {

TvSmSheet& sheetAt(const TvSmDatabase& database, const TvString& handle)
{
    TvSmComponent& component = componentAt(database, handle);
    auto* sheet = tvrxCast<TvSmSheet>(&component);
    if (!sheet)
        refuseUsage(Word::NotASheet, handle, kindWords(kindOf(component)));
    return *sheet;
}

ExitCode rename(const SheetRenameRequest& request, Console& console)
{
    requireHandle(request.handle);
    if (!request.number && !request.title && !request.layout && !request.drawing)
        refuseUsage(Word::RenameNothingGiven);
    console.document()["file"] = jsonText(fullPath(request.file));
    ChangedSet set(request.file, request.change, console);
    operations::SheetTarget target;
    target.sheet = &sheetAt(set.database(), request.handle);
    target.number = request.number;
    target.title = request.title;
    target.layout = request.layout;
    target.file = request.drawing;
    if (target.file && !target.file->endsWithNoCase(u".dwg"))
        *target.file += u".dwg";
    return showAndApply(set, operations::planRename({target}), console);
}

} // namespace

Outcome run(const SheetRenameRequest& request, Console& console)
{
    return attempt(console, [&] { return rename(request, console); });
}

} // namespace cli
