#include "text_directions.h"

#include <algorithm>
#include <memory>
#include <numeric>

#include <unicode/ubidi.h>
#include <unicode/uchar.h>

#include "text_codes.h"

namespace gs {

namespace {

struct Range {
    char32_t first, last;
};

// The first one is where quick looks end.
constexpr char32_t kFirstChanged = 0x300;
constexpr Range kChanged[] = {
    {0x300, 0x36F},     // marks
    {0x483, 0x489},     // Cyrillic marks
    {0x590, 0x109F},    // Hebrew, Arabic and their neighbours; India to Burma
    {0x1100, 0x11FF},   // parts of Korean syllables
    {0x135D, 0x135F},   // Ethiopic marks
    {0x1700, 0x1CFF},   // Philippines to Mongolia
    {0x1DC0, 0x1DFF},   // marks
    {0x200B, 0x200F},   // joiners and directions
    {0x202A, 0x202E},   // directions
    {0x2060, 0x206F},   // joiners and directions
    {0x20D0, 0x20FF},   // marks for signs
    {0x2CEF, 0x2CF1},   // Coptic marks
    {0x2D7F, 0x2D7F},   // Tifinagh joiner
    {0x2DE0, 0x2DFF},   // Cyrillic marks
    {0x302A, 0x302F},   // tones
    {0x3099, 0x309A},   // Japanese voicing
    {0xA66F, 0xA67D},   // Cyrillic marks
    {0xA69E, 0xA69F},   // the same
    {0xA6F0, 0xA6F1},   // Bamum marks
    {0xA800, 0xABFF},   // India to Java, parts of Korean syllables
    {0xD7B0, 0xD7FF},   // the latter
    {0xFB1D, 0xFDFF},   // Hebrew and Arabic forms
    {0xFE00, 0xFE0F},   // which form is meant
    {0xFE20, 0xFE2F},   // marks
    {0xFE70, 0xFEFF},   // Arabic forms
    {0x10800, 0x11FFF}, // old scripts from right to left, India
    {0x16AF0, 0x16AF4}, // Bassa marks
    {0x16B00, 0x16B8F}, // Hmong
    {0x16F00, 0x16F9F}, // Miao
    {0x1BC00, 0x1BCAF}, // shorthand
    {0x1D165, 0x1D1AD}, // marks of music
    {0x1DA00, 0x1DAAF}, // signs of hands
    {0x1E000, 0x1EFFF}, // Glagolitic marks, Africa, Arabia
    {0xE0000, 0xE0FFF}, // which form is meant
};

UChar32 asIcu(char32_t character)
{
    return static_cast<UChar32>(character);
}

bool isRightToLeft(char32_t character)
{
    if (character < 0x590)
        return false;
    switch (u_charDirection(asIcu(character))) {
    case U_RIGHT_TO_LEFT:
    case U_RIGHT_TO_LEFT_ARABIC:
    case U_ARABIC_NUMBER:
    case U_RIGHT_TO_LEFT_EMBEDDING:
    case U_RIGHT_TO_LEFT_OVERRIDE:
    case U_RIGHT_TO_LEFT_ISOLATE: return true;
    default: return false;
    }
}

struct BidiEnd {
    void operator()(UBiDi* bidi) const { ubidi_close(bidi); }
};

} // namespace

bool isChangedByNeighbours(char32_t character)
{
    if (character < kFirstChanged)
        return false;
    const Range* const found =
        std::lower_bound(std::begin(kChanged), std::end(kChanged), character,
                         [](const Range& range, char32_t c) { return range.last < c; });
    return found != std::end(kChanged) && found->first <= character;
}

bool isChangedByNeighbours(std::u32string_view text)
{
    for (const char32_t character : text)
        if (character >= kFirstChanged && isChangedByNeighbours(character))
            return true;
    return false;
}

bool isUnseen(char32_t character)
{
    return character >= kFirstChanged &&
           u_hasBinaryProperty(asIcu(character), UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

char32_t mirrored(char32_t character)
{
    return static_cast<char32_t>(u_charMirror(asIcu(character)));
}

std::size_t endOfGroup(std::u32string_view text, std::size_t first, std::size_t end)
{
    const auto belongs = [](char32_t character) {
        return character >= kFirstChanged &&
               ((U_GET_GC_MASK(asIcu(character)) & U_GC_M_MASK) != 0 || isUnseen(character));
    };
    std::size_t at = first + 1;
    while (at < end && belongs(text[at]))
        ++at;
    return std::min(at, end);
}

bool isJoining(char32_t character)
{
    if (character < 0x600)
        return false;
    switch (u_getIntPropertyValue(asIcu(character), UCHAR_JOINING_TYPE)) {
    case U_JT_DUAL_JOINING:
    case U_JT_LEFT_JOINING:
    case U_JT_RIGHT_JOINING:
    case U_JT_JOIN_CAUSING: return true;
    default: return false;
    }
}

std::vector<std::uint8_t> levelsOf(std::u32string_view text)
{
    if (std::none_of(text.begin(), text.end(), isRightToLeft))
        return {};
    const std::u16string units = utf16Of(text);
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UBiDi, BidiEnd> bidi(ubidi_open());
    if (!bidi)
        return {};
    ubidi_setPara(bidi.get(), units.data(), static_cast<std::int32_t>(units.size()),
                  UBIDI_DEFAULT_LTR, nullptr, &error);
    const UBiDiLevel* const found = ubidi_getLevels(bidi.get(), &error);
    if (U_FAILURE(error) || !found)
        return {};
    std::vector<std::uint8_t> levels;
    levels.reserve(text.size());
    std::size_t unit = 0;
    for (const char32_t character : text) {
        levels.push_back(found[unit]);
        unit += character < 0x10000 ? 1 : 2;
    }
    return levels;
}

std::uint8_t levelOfLine(std::u32string_view text)
{
    for (const char32_t character : text)
        switch (u_charDirection(asIcu(character))) {
        case U_LEFT_TO_RIGHT: return 0;
        case U_RIGHT_TO_LEFT:
        case U_RIGHT_TO_LEFT_ARABIC: return 1;
        default: break;
        }
    return 0;
}

std::vector<std::uint32_t> visualOrder(std::span<const std::uint8_t> levels)
{
    std::vector<std::int32_t> order(levels.size());
    ubidi_reorderVisual(levels.data(), static_cast<std::int32_t>(levels.size()), order.data());
    return {order.begin(), order.end()};
}

std::vector<TextStretch> stretchesOf(std::u32string_view text, std::span<const std::uint8_t> levels)
{
    if (levels.size() != text.size())
        return {{text, 0, text.size(), false}};
    std::vector<TextStretch> stretches;
    std::vector<std::uint8_t> levelOf;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (i > 0 && levels[i] == levels[i - 1]) {
            ++stretches.back().count;
        } else {
            stretches.push_back({text, i, 1, levels[i] % 2 == 1});
            levelOf.push_back(levels[i]);
        }
    std::vector<TextStretch> ordered;
    ordered.reserve(stretches.size());
    for (const std::uint32_t number : visualOrder(levelOf))
        ordered.push_back(stretches[number]);
    return ordered;
}

} // namespace gs
