#include "base/path_rules.h"

#include <cstdint>

namespace base {

namespace {

/// Bytes that are no UTF-8 travel as U+DC80..U+DCFF, one for each byte.
constexpr char16_t kEscapeBase = 0xDC00;

bool isHighSurrogate(char16_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(char16_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

bool isEscapedByte(char16_t unit)
{
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

void appendUtf8(std::string& out, char32_t code)
{
    const auto byte = [&out](char32_t value) { out += static_cast<char>(value); };
    if (code < 0x80)
        return byte(code);
    if (code < 0x800)
        byte(0xC0 | code >> 6);
    else if (code < 0x10000)
        byte(0xE0 | code >> 12), byte(0x80 | (code >> 6 & 0x3F));
    else
        byte(0xF0 | code >> 18), byte(0x80 | (code >> 12 & 0x3F)), byte(0x80 | (code >> 6 & 0x3F));
    byte(0x80 | (code & 0x3F));
}

void appendUtf16(std::u16string& out, char32_t code)
{
    if (code < 0x10000) {
        out += static_cast<char16_t>(code);
        return;
    }
    out += static_cast<char16_t>(0xD7C0 + (code >> 10));
    out += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
}

struct Decoded {
    char32_t code = 0;
    std::size_t length = 0; ///< 0: what stands here is no UTF-8.
};

/// How a first byte begins: how many follow, its own bits, the least code that needs that many.
struct Lead {
    std::size_t following;
    char32_t bits;
    char32_t least;
};

Lead leadOf(unsigned char byte)
{
    if (byte < 0x80)
        return {0, byte, 0};
    if (byte >> 5 == 0x06)
        return {1, char32_t(byte & 0x1F), 0x80};
    if (byte >> 4 == 0x0E)
        return {2, char32_t(byte & 0x0F), 0x800};
    if (byte >> 3 == 0x1E)
        return {3, char32_t(byte & 0x07), 0x10000};
    return {0, 0, 0x110000}; // more than any code: never well-formed
}

/// The code at @p at. Overlong forms, surrogates and codes beyond U+10FFFF are no UTF-8.
Decoded decodeAt(std::string_view text, std::size_t at)
{
    const Lead lead = leadOf(static_cast<unsigned char>(text[at]));
    if (lead.following >= text.size() - at)
        return {};
    char32_t code = lead.bits;
    for (std::size_t i = 1; i <= lead.following; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0) != 0x80)
            return {};
        code = code << 6 | (byte & 0x3F);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < lead.least || code > 0x10FFFF || isSurrogate)
        return {};
    return {code, lead.following + 1};
}

} // namespace

std::string nativePath(const TvString& path)
{
    const std::u16string_view text = path;
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            appendUtf8(out, 0x10000 + ((unit & 0x3FFu) << 10) + (text[i + 1] & 0x3FFu));
            ++i;
        } else if (isEscapedByte(unit)) {
            out += static_cast<char>(unit - kEscapeBase);
        } else {
            // Another lone surrogate gets three bytes of its own: it must not turn into a name that
            // some other text has.
            appendUtf8(out, unit);
        }
    }
    return out;
}

TvString pathFromNative(std::string_view native)
{
    std::u16string out;
    out.reserve(native.size());
    for (std::size_t i = 0; i < native.size();) {
        const Decoded decoded = decodeAt(native, i);
        if (decoded.length)
            appendUtf16(out, decoded.code);
        else
            out += static_cast<char16_t>(kEscapeBase + static_cast<unsigned char>(native[i]));
        i += decoded.length ? decoded.length : 1;
    }
    return TvString(std::move(out));
}

} // namespace base
