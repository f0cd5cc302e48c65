#include <db/convert.h>

namespace db {

namespace {

constexpr std::size_t kEscapeLength = 7; // \U+XXXX

int hexDigit(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    const char16_t lower = unit | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

// The unit that @p escape stands for; 0 when it is none.
char16_t escapedUnit(std::u16string_view escape)
{
    if (escape.size() < kEscapeLength || escape[0] != u'\\' || (escape[1] | 0x20) != u'u' ||
        escape[2] != u'+')
        return 0;
    int unit = 0;
    for (std::size_t i = 3; i < kEscapeLength; ++i) {
        const int digit = hexDigit(escape[i]);
        if (digit < 0)
            return 0;
        unit = unit << 4 | digit;
    }
    return static_cast<char16_t>(unit);
}

} // namespace

std::u16string withoutEscapes(std::u16string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char16_t unit = escapedUnit(text.substr(at, kEscapeLength));
        out += unit ? unit : text[at];
        at += unit ? kEscapeLength : 1;
    }
    return out;
}

} // namespace db
