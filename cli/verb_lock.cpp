#include <nlohmann/json.hpp>

#include <base/publish.h>
#include <sm/environment.h>

#include "cli/lock_words.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

void row(Console& console, Word label, const TvString& value)
{
    constexpr int kLabelWidth = 10;
    TvString padded = words(label);
    while (padded.length() < kLabelWidth)
        padded += u' ';
    if (!value.isEmpty())
        console.line({{padded, Tone::Faint}, {value}});
}

void printOwner(const base::LockOwner& owner, Console& console)
{
    row(console, Word::LockLabelOwner, words(Word::LockUserAtHost, owner.user, owner.host));
    row(console, Word::LockLabelSince, utcText(owner.sinceNs));
    row(console, Word::LockLabelProgram, words(Word::LockProgram, owner.program, owner.pid));
    row(console, Word::LockLabelPurpose, owner.purpose);
}

Json jsonOf(const base::LockOwner& owner)
{
    return {{"user", jsonText(owner.user)},
            {"host", jsonText(owner.host)},
            {"since", jsonText(utcText(owner.sinceNs))},
            {"program", jsonText(owner.program)},
            {"pid", owner.pid},
            {"purpose", jsonText(owner.purpose)}};
}

/// The set itself is not read: the lock of a damaged one can be asked for as well.
ExitCode show(const LockRequest& request, Console& console)
{
    const TvString path = fullPath(request.file);
    if (const auto stamp = base::lookAt(sm::files(), sm::clock(), path); !stamp)
        refuse(stamp.status(), Doing::Reading);
    const base::LockInfo info = base::EditLock(sm::files(), sm::clock(), path).query();
    row(console, Word::LockLabelState, lockStateWords(info.state));
    if (info.owner)
        printOwner(*info.owner, console);
    console.document()["file"] = jsonText(path);
    console.document()["state"] = lockStateName(info.state);
    console.document()["canBeTaken"] = base::lockStatusOf(info.state) == 0;
    console.document()["owner"] = info.owner ? jsonOf(*info.owner) : Json();
    return ExitCode::Ok;
}

} // namespace

Outcome run(const LockRequest& request, Console& console)
{
    return attempt(console, [&] { return show(request, console); });
}

} // namespace cli
