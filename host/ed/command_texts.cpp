#include "command_texts.h"

#include <resources/texts.h>

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

} // namespace ed
