#include "text_codes.h"

#include <algorithm>
#include <array>

#include <unicode/ucnv.h>

namespace gs {

namespace {

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

int hexDigit(char16_t unit)
{
    if (isDigit(unit))
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    return unit >= u'A' && unit <= u'F' ? unit - u'A' + 10 : -1;
}

/// Four hexadecimal digits at @p at.
std::optional<std::uint32_t> hexAt(std::u16string_view text, std::size_t at)
{
    if (text.size() < at + 4)
        return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        if (hexDigit(text[i]) < 0)
            return std::nullopt;
        value = value * 16 + static_cast<std::uint32_t>(hexDigit(text[i]));
    }
    return value;
}

bool isHighHalf(char32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowHalf(char32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}
char32_t joined(char32_t high, char32_t low)
{
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

constexpr char32_t kNoCharacter = 0xFFFD;

/// A character of one of the code pages with two bytes for a letter.
char32_t multibyte(std::uint32_t page, std::uint32_t code)
{
    static constexpr std::array<const char*, 6> kPages = {
        nullptr, "windows-932", "windows-950", "windows-949", "ibm-1363", "windows-936"};
    if (page == 0 || page >= kPages.size())
        return kNoCharacter;
    const char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
    const bool isOneByte = code < 0x100;
    UErrorCode error = U_ZERO_ERROR;
    char16_t units[4] = {};
    UConverter* converter = ucnv_open(kPages[page], &error);
    const std::int32_t count = ucnv_toUChars(converter, units, 4, isOneByte ? bytes + 1 : bytes,
                                             isOneByte ? 1 : 2, &error);
    ucnv_close(converter);
    return U_SUCCESS(error) && count >= 1 ? units[0] : kNoCharacter;
}

/// Numbers that stroke fonts have given to signs since before Unicode.
char32_t numbered(char32_t number)
{
    switch (number) {
    case 127: return U'\u00B0';
    case 128: return U'\u00B1';
    case 129: return U'\u00D8';
    default: return number;
    }
}

/// How many units at the beginning stand for themselves.
std::size_t plainUnits(std::u16string_view text)
{
    const auto isPlain = [](char16_t unit) {
        return unit >= u' ' && unit < 0xD800 && unit != u'%' && unit != u'\\';
    };
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) -
                                    text.begin());
}

} // namespace

char32_t takeCharacter(std::u16string_view& rest)
{
    const char32_t first = rest.front();
    rest.remove_prefix(1);
    if (isHighHalf(first) && !rest.empty() && isLowHalf(rest.front())) {
        const char32_t low = rest.front();
        rest.remove_prefix(1);
        return joined(first, low);
    }
    return isHighHalf(first) || isLowHalf(first) ? kNoCharacter : first;
}

std::optional<char32_t> takePercentCharacter(std::u16string_view& rest)
{
    if (rest.size() < 3 || rest[0] != u'%' || rest[1] != u'%')
        return std::nullopt;
    char32_t character = 0;
    std::size_t length = 3;
    switch (rest[2]) {
    case u'd':
    case u'D': character = U'\u00B0'; break;
    case u'p':
    case u'P': character = U'\u00B1'; break;
    case u'c':
    case u'C': character = U'\u00D8'; break;
    case u'%': character = U'%'; break;
    default:
        if (rest.size() < 5 || !isDigit(rest[2]) || !isDigit(rest[3]) || !isDigit(rest[4]))
            return std::nullopt;
        length = 5;
        character = numbered(static_cast<char32_t>((rest[2] - u'0') * 100 + (rest[3] - u'0') * 10 +
                                                   (rest[4] - u'0')));
    }
    rest.remove_prefix(length);
    return character;
}

std::optional<char32_t> takeCharacterCode(std::u16string_view& rest)
{
    if (rest.size() < 7 || rest[0] != u'\\' || rest[2] != u'+')
        return std::nullopt;
    if (rest[1] == u'M' || rest[1] == u'm') {
        const auto code = hexAt(rest, 4);
        if (!code || !isDigit(rest[3]))
            return std::nullopt;
        const char32_t character = multibyte(static_cast<std::uint32_t>(rest[3] - u'0'), *code);
        rest.remove_prefix(8);
        return character;
    }
    const auto code = rest[1] == u'U' || rest[1] == u'u' ? hexAt(rest, 3) : std::nullopt;
    if (!code)
        return std::nullopt;
    rest.remove_prefix(7);
    if (isHighHalf(*code) && rest.size() >= 7 && rest[0] == u'\\' && rest[2] == u'+')
        if (const auto low = hexAt(rest, 3); low && isLowHalf(*low)) {
            rest.remove_prefix(7);
            return joined(*code, *low);
        }
    return isHighHalf(*code) || isLowHalf(*code) ? kNoCharacter : char32_t(*code);
}

std::optional<char16_t> takePercentLine(std::u16string_view& rest)
{
    if (rest.size() < 3 || rest[0] != u'%' || rest[1] != u'%')
        return std::nullopt;
    const auto what = static_cast<char16_t>(rest[2] | 0x20); // in small letters
    if (what != u'u' && what != u'o' && what != u'k')
        return std::nullopt;
    rest.remove_prefix(3);
    return what;
}

std::vector<LineCharacter> decodedLine(std::u16string_view text, std::size_t most)
{
    std::vector<LineCharacter> line;
    LineCharacter state;
    line.reserve(std::min(text.size(), most));
    while (!text.empty() && line.size() < most) {
        if (const std::size_t count = plainUnits(text.substr(0, most - line.size())); count > 0) {
            const std::size_t before = line.size();
            line.resize(before + count);
            LineCharacter* const to = line.data() + before;
            for (std::size_t i = 0; i < count; ++i)
                to[i] = {text[i], state.isUnderlined, state.isOverlined, state.isStruck};
            text.remove_prefix(count);
            continue;
        }
        if (const auto sign = takePercentCharacter(text)) {
            state.character = *sign;
        } else if (const auto code = takeCharacterCode(text)) {
            state.character = *code;
        } else if (const auto what = takePercentLine(text)) {
            bool& flag = *what == u'u'   ? state.isUnderlined
                         : *what == u'o' ? state.isOverlined
                                         : state.isStruck;
            flag = !flag;
            continue;
        } else {
            state.character = takeCharacter(text);
        }
        if (state.character >= U' ')
            line.push_back(state);
    }
    return line;
}

void appendUtf16(std::u16string& to, char32_t character)
{
    if (character >= 0x10000) {
        to += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
        to += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    } else {
        to += static_cast<char16_t>(character);
    }
}

std::u16string utf16Of(std::u32string_view text)
{
    const bool isPlain =
        std::all_of(text.begin(), text.end(), [](char32_t c) { return c < 0x10000; });
    std::u16string out;
    if (isPlain) {
        out.resize(text.size());
        std::transform(text.begin(), text.end(), out.begin(),
                       [](char32_t c) { return static_cast<char16_t>(c); });
        return out;
    }
    out.reserve(text.size());
    for (const char32_t character : text)
        appendUtf16(out, character);
    return out;
}

} // namespace gs
