#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gs {

// Codes in texts. Each of these looks at the beginning of @p rest, and takes away what it read;
// when the code is not there, nothing is taken.

/// One character; half of a pair stands for U+FFFD. @pre @p rest is not empty.
char32_t takeCharacter(std::u16string_view& rest);
/// "%%d", "%%p", "%%c", "%%%", "%%nnn".
std::optional<char32_t> takePercentCharacter(std::u16string_view& rest);
/// "\U+XXXX" (two of them for a pair), "\M+nXXXX".
std::optional<char32_t> takeCharacterCode(std::u16string_view& rest);

/// "%%u", "%%o", "%%k": the small letter.
std::optional<char16_t> takePercentLine(std::u16string_view& rest);

/// A character of a line, and the lines at it.
struct LineCharacter {
    char32_t character = 0;
    bool isUnderlined = false;
    bool isOverlined = false;
    bool isStruck = false;
};

/// A single line of text, without its codes.
/// @param most  characters; the rest is left out.
std::vector<LineCharacter> decodedLine(std::u16string_view text, std::size_t most);

void appendUtf16(std::u16string& to, char32_t character);
std::u16string utf16Of(std::u32string_view text);

} // namespace gs
