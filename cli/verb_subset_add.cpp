#include <nlohmann/json.hpp>

#include <sm/limits.h>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

void requireSense(const SubsetAddRequest& request)
{
    if (request.name.isEmpty())
        refuseUsage(Word::NameEmpty);
    requireFits(u"NAME", request.name, sm::kMaxNameLength);
    requireHandleIfGiven(request.in);
    requirePlace(request.place);
}

TvSmSubset& parentFor(ChangedSet& set, const SubsetAddRequest& request)
{
    const TvString neighbour =
        request.place.before.isEmpty() ? request.place.after : request.place.before;
    if (!request.in.isEmpty())
        return subsetAt(set.database(), request.in);
    return neighbour.isEmpty() ? set.set() : parentOf(childAt(set.database(), neighbour));
}

ExitCode add(const SubsetAddRequest& request, Console& console)
{
    requireSense(request);
    ChangedSet set(request.file, request.change, console);
    TvSmSubset& parent = parentFor(set, request);
    TvSmSubset& added = *parent.createSubset(request.name, {});
    putAt(parent, added, request.place);
    set.commit();
    console.line({{handleOf(added)}});
    console.document()["file"] = jsonText(fullPath(request.file));
    console.document()["handle"] = jsonText(handleOf(added));
    console.document()["name"] = jsonText(request.name);
    console.document()["parent"] = jsonOf(parent);
    console.document()["dryRun"] = set.isDryRun();
    return ExitCode::Ok;
}

} // namespace

Outcome run(const SubsetAddRequest& request, Console& console)
{
    return attempt(console, [&] { return add(request, console); });
}

} // namespace cli
