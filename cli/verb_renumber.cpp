#include <nlohmann/json.hpp>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"
#include "rename_effects.h"

namespace cli {

namespace {

using operations::RenameRecovery;
using operations::SheetNumbers;

SheetNumbers numbersOf(const RenumberRequest& request)
{
    const int step = request.step.value_or(1);
    if (step < 1)
        refuseUsage(Word::BadStep);
    const std::optional<SheetNumbers> numbers = SheetNumbers::make(*request.first, step);
    if (!numbers)
        refuseUsage(Word::BadFirstNumber, *request.first);
    return *numbers;
}

ExitCode renumber(const RenumberRequest& request, ChangedSet& set, const SheetNumbers& numbers,
                  Console& console)
{
    const TvSmSubset& scope =
        request.in.isEmpty() ? set.set() : subsetAt(set.database(), request.in);
    return showAndApply(set,
                        operations::planRename(operations::renumberTargets(
                            scope, numbers, {request.renameLayouts, request.renameFiles})),
                        console);
}

ExitCode undo(ChangedSet& set, Console& console)
{
    const base::Result<operations::RenamePlan> plan = operations::planRenameUndo(set.database());
    if (!plan && plan.status().failure() == base::Failure::NotFound)
        refuse(ExitCode::NoInput, Word::UndoNothing, set.database().getFileName());
    if (!plan)
        refuse(plan.status(), Doing::Reading);
    return showAndApply(set, *plan, console);
}

ExitCode work(const RenumberRequest& request, Console& console)
{
    requireHandleIfGiven(request.in);
    if (int(request.first.has_value()) + int(request.undo) + int(request.recover) != 1)
        refuseUsage(Word::RenumberNeedsFirst);
    const std::optional<SheetNumbers> numbers =
        request.first ? std::optional(numbersOf(request)) : std::nullopt;
    console.document()["file"] = jsonText(fullPath(request.file));
    ChangedSet set(request.file, request.change, console);
    if (numbers)
        return renumber(request, set, *numbers, console);
    if (request.undo)
        return undo(set, console);
    if (set.recovered() == RenameRecovery::Nothing)
        console.say(words(Word::RecoverNothing));
    return ExitCode::Ok;
}

} // namespace

Outcome run(const RenumberRequest& request, Console& console)
{
    return attempt(console, [&] { return work(request, console); });
}

} // namespace cli
