#include "app/words.h"

#include <resources/texts.h>

namespace app {

TvString textOf(int number, const std::vector<TvString>& arguments)
{
    const char16_t* pattern = text::find(number);
    if (!pattern)
        return TvString(text::find(static_cast<int>(Word::UnknownReason)));
    std::vector<base::FormatArgument> values;
    values.reserve(arguments.size());
    for (const TvString& argument : arguments)
        values.emplace_back(argument);
    return TvString().formatArguments(pattern, values);
}

TvString textOf(Word word, const std::vector<TvString>& arguments)
{
    return textOf(static_cast<int>(word), arguments);
}

TvString textOf(const base::Status& status)
{
    return textOf(static_cast<int>(status.reason()), status.arguments());
}

} // namespace app
