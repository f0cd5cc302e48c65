#include "cli/shell_word.h"

#include <algorithm>

namespace cli {

namespace {

/// Characters beyond ASCII mean nothing to a shell.
bool isPlain(char16_t unit)
{
    const bool isLetter = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
    const bool isDigit = unit >= u'0' && unit <= u'9';
    return isLetter || isDigit || unit > 0x9F ||
           std::u16string_view(u"._/-+,:@%").find(unit) != std::u16string_view::npos;
}

/// Within single quotes only the single quote itself ends them.
std::u16string quoted(std::u16string_view text)
{
    std::u16string out = u"'";
    for (const char16_t unit : text) {
        if (unit == u'\'')
            out += u"'\\'";
        out += unit;
    }
    return out + u"'";
}

} // namespace

TvString shellWord(const TvString& name)
{
    std::u16string text(name.view());
    if (text.starts_with(u'-'))
        text.insert(0, u"./");
    const bool isWord = !text.empty() && std::all_of(text.begin(), text.end(), isPlain);
    return TvString(isWord ? text : quoted(text));
}

} // namespace cli
