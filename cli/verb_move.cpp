#include <nlohmann/json.hpp>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

void requireSense(const MoveRequest& request)
{
    requireHandle(request.handle);
    requireHandle(request.to);
    requirePlace(request.place);
}

TvString movedWords(const TvSmComponent& child, const TvSmSubset& from, const TvSmSubset& to)
{
    return &from == &to ? words(Word::MovedWithin, labelOf(child), labelOf(to))
                        : words(Word::Moved, labelOf(child), labelOf(from), labelOf(to));
}

ExitCode move(const MoveRequest& request, Console& console)
{
    requireSense(request);
    ChangedSet set(request.file, request.change, console);
    TvSmComponent& child = childAt(set.database(), request.handle);
    TvSmSubset& to = subsetAt(set.database(), request.to);
    TvSmSubset& from = parentOf(child);
    putAt(to, child, request.place);
    set.commit();
    console.line({{handleOf(child), Tone::Faint}, {u"  "}, {movedWords(child, from, to)}});
    console.document()["file"] = jsonText(fullPath(request.file));
    console.document()["moved"] = jsonOf(child);
    console.document()["from"] = jsonOf(from);
    console.document()["to"] = jsonOf(to);
    console.document()["dryRun"] = set.isDryRun();
    return ExitCode::Ok;
}

} // namespace

Outcome run(const MoveRequest& request, Console& console)
{
    return attempt(console, [&] { return move(request, console); });
}

} // namespace cli
