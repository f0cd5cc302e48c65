#include "gs/visual_text.h"

#include "text_codes.h"
#include "text_directions.h"

namespace gs {

std::u16string visualText(std::u16string_view line)
{
    std::u32string text;
    for (std::u16string_view rest = line; !rest.empty();)
        text += takeCharacter(rest);
    const auto levels = levelsOf(text);
    if (levels.empty())
        return std::u16string(line);
    std::u32string out;
    for (const TextStretch& stretch : stretchesOf(text, levels)) {
        const auto own = stretch.own();
        if (!stretch.isRightToLeft) {
            out += own;
            continue;
        }
        out.append(own.rbegin(), own.rend());
    }
    return utf16Of(out);
}

} // namespace gs
