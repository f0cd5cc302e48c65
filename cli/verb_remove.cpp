#include <nlohmann/json.hpp>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

void takeOut(TvSmComponent& child)
{
    TvSmSubset& parent = parentOf(child);
    if (auto* subset = tvrxCast<TvSmSubset>(&child))
        parent.removeSubset(subset);
    else
        parent.removeSheet(static_cast<TvSmSheet*>(&child));
}

void report(const TvSmComponent& child, const Counts& below, const RemoveRequest& request,
            Console& console)
{
    TvString text = labelOf(child);
    if (below.subsets + below.sheets > 0)
        text += TvString(u"  ") + words(Word::TreeHidden, below.subsets, below.sheets);
    console.line({{handleOf(child), Tone::Faint}, {u"  "}, {text}});
    console.document()["file"] = jsonText(fullPath(request.file));
    console.document()["removed"] = jsonOf(child);
    console.document()["subsetsBelow"] = below.subsets;
    console.document()["sheetsBelow"] = below.sheets;
    console.document()["dryRun"] = request.change.dryRun;
}

ExitCode remove(const RemoveRequest& request, Console& console)
{
    requireHandle(request.handle);
    ChangedSet set(request.file, request.change, console);
    if (set.database().findObject(request.handle) == &set.set())
        refuseUsage(Word::RemoveTheSet);
    TvSmComponent& child = childAt(set.database(), request.handle);
    const auto* subset = tvrxCast<TvSmSubset>(&child);
    const Counts below = subset ? countBelow(*subset) : Counts();
    takeOut(child);
    set.commit();
    report(child, below, request, console);
    return ExitCode::Ok;
}

} // namespace

Outcome run(const RemoveRequest& request, Console& console)
{
    return attempt(console, [&] { return remove(request, console); });
}

} // namespace cli
