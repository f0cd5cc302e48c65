#include "command_texts.h"

#include <resources/texts.h>

#include "ed/host_commands.h"
#include "ed/user_prompts.h"

namespace ed {

TvString textOf(Wording wording, const std::vector<TvString>& arguments)
{
    const std::vector<base::FormatArgument> packed(arguments.begin(), arguments.end());
    return TvString().formatArguments(text::find(static_cast<int>(wording)), packed);
}

void say(Wording wording, const std::vector<TvString>& arguments)
{
    if (UserPrompts* prompts = userPrompts())
        prompts->say(static_cast<int>(wording), arguments);
}

void say(const base::Status& status)
{
    if (UserPrompts* prompts = userPrompts(); prompts && !status)
        prompts->say(static_cast<int>(status.reason()), status.arguments());
}

bool isRefusal(int text)
{
    switch (static_cast<Wording>(text)) {
    case Wording::NoOption:
    case Wording::NoPoint:
    case Wording::NoNumber:
    case Wording::NoWholeNumber:
    case Wording::NoDrawing:
    case Wording::NotClosed:
    case Wording::StillLocked:
    case Wording::CannotSave:
    case Wording::CannotOpen:
    case Wording::CannotQuit:
    case Wording::NoDrawingName:
    case Wording::NoLayout:
    case Wording::NameTaken:
    case Wording::NameWrong:
    case Wording::ModelStays:
    case Wording::LastLayoutStays:
    case Wording::LayoutFailed:
    case Wording::NoView:
    case Wording::ViewFailed:
    case Wording::NoScale:
    case Wording::CannotShow:
    case Wording::ScriptNested:
    case Wording::NoVariable:
    case Wording::UndoBlocked:
    case Wording::NoUndoGroup: return true;
    default: return false;
    }
}

} // namespace ed
