#pragma once

#include <base/tv_string.h>

class TvEdCommandStack;

namespace ed {

/// The group of the host's own commands.
constexpr const TvChar* kHostCommandGroup = u"KV_HOST_CMDGROUP";

/// Puts the host's own commands into the stack, with names in the user's language: NEW, OPEN, SAVE,
/// QSAVE, SAVEAS, CLOSE, QUIT, LAYOUT, -VIEW, ZOOM, PAN, REGEN, AUDIT, SCRIPT, HELP, SETVAR, U,
/// UNDO, REDO and MREDO. They ask and tell through the command line. What has no user to answer is
/// cancelled, and what would lose changes is not done then.
/// @return false, and nothing added, when the group is there already.
bool addHostCommands(TvEdCommandStack& stack);

/// The command that a short or second name ("Z", "-LAYOUT") stands for; empty when there is none.
/// Without regard to case.
TvString aliasedCommand(const TvString& typed);

/// Whether the text of that number tells that one of these commands did not do what it was asked.
bool isRefusal(int text);

} // namespace ed
