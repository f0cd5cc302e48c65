#include <core/not_available_yet.h>

#include <ed/user_prompts.h>

void core::sayNotAvailableYet(const TvString& what)
{
    constexpr int kNotAvailableYet = 8900; // text; 1: the command
    if (ed::UserPrompts* prompts = ed::userPrompts())
        prompts->say(kNotAvailableYet, {what});
}
