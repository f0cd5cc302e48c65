#include "cli/words.h"

#include <resources/texts.h>

namespace cli {

TvString patternOf(Word word)
{
    return TvString(text::find(static_cast<int>(word)));
}

} // namespace cli
