#include "base/tv_string.h"

namespace {

constexpr char32_t kReplacement = 0xfffd;

bool isSurrogate(char32_t point)
{
    return point >= 0xd800 && point <= 0xdfff;
}

bool isLead(char16_t unit)
{
    return unit >= 0xd800 && unit <= 0xdbff;
}

bool isTrail(char16_t unit)
{
    return unit >= 0xdc00 && unit <= 0xdfff;
}

unsigned byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

/// The bytes that may follow a lead byte: how many, and the range of the first of them, which is
/// what excludes overlong forms, surrogates and values above U+10FFFF.
struct Sequence {
    std::size_t followers = 0; ///< 0: no lead byte at all.
    unsigned low = 0x80;
    unsigned high = 0xbf;
};

Sequence sequenceOf(unsigned lead)
{
    if (lead >= 0xc2 && lead <= 0xdf)
        return {1};
    if (lead >= 0xe0 && lead <= 0xef)
        return {2, lead == 0xe0 ? 0xa0u : 0x80u, lead == 0xed ? 0x9fu : 0xbfu};
    if (lead >= 0xf0 && lead <= 0xf4)
        return {3, lead == 0xf0 ? 0x90u : 0x80u, lead == 0xf4 ? 0x8fu : 0xbfu};
    return {};
}

/// One code point of UTF-8.
struct Decoded {
    char32_t point = kReplacement;
    std::size_t bytes =
        1; ///< Ill-formed: as many as could have begun a code point, so at least one.
    bool wellFormed = false;
};

Decoded decodeUtf8(std::string_view text, std::size_t at)
{
    const unsigned lead = byteAt(text, at);
    if (lead < 0x80)
        return {lead, 1, true};
    const Sequence sequence = sequenceOf(lead);
    char32_t point = lead & (0x3fu >> sequence.followers);
    Sequence allowed = sequence;
    for (std::size_t i = 1; i <= sequence.followers; ++i) {
        const unsigned byte = at + i < text.size() ? byteAt(text, at + i) : 0;
        if (byte < allowed.low || byte > allowed.high)
            return {kReplacement, i, false};
        point = (point << 6) | (byte & 0x3fu);
        allowed = {};
    }
    return sequence.followers ? Decoded{point, sequence.followers + 1, true} : Decoded{};
}

std::size_t asciiRun(std::string_view text, std::size_t from)
{
    std::size_t end = from;
    while (end < text.size() && byteAt(text, end) < 0x80)
        ++end;
    return end;
}

void appendUtf16(std::u16string& out, char32_t point)
{
    if (point > 0x10ffff)
        point = kReplacement;
    if (point >= 0x10000) {
        out.push_back(static_cast<char16_t>(0xd7c0 + (point >> 10)));
        point = 0xdc00 + (point & 0x3ff);
    }
    out.push_back(static_cast<char16_t>(point));
}

void appendUtf8(std::string& out, char32_t point)
{
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (point < 0x80)
        return put(point);
    if (point < 0x800) {
        put(0xc0 | (point >> 6));
    } else if (point < 0x10000) {
        put(0xe0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3f));
    } else {
        put(0xf0 | (point >> 18));
        put(0x80 | ((point >> 12) & 0x3f));
        put(0x80 | ((point >> 6) & 0x3f));
    }
    put(0x80 | (point & 0x3f));
}

bool breaksDisplay(char16_t unit)
{
    return unit < 0x20 || (unit >= 0x7f && unit <= 0x9f) || // C0, DEL, C1
           unit == 0x2028 || unit == 0x2029 ||              // line and paragraph separator
           (unit >= 0x202a && unit <= 0x202e) ||            // embeddings and overrides of direction
           (unit >= 0x2066 && unit <= 0x2069);              // isolates
}

} // namespace

namespace base {

std::u16string utf16FromUtf8(std::string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = asciiRun(text, at);
        out.append(text.begin() + static_cast<std::ptrdiff_t>(at),
                   text.begin() + static_cast<std::ptrdiff_t>(end));
        at = end;
        if (at < text.size()) {
            const Decoded decoded = decodeUtf8(text, at);
            appendUtf16(out, decoded.point);
            at += decoded.bytes;
        }
    }
    return out;
}

std::string utf8FromUtf16(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t point = text[at];
        if (isLead(text[at]) && at + 1 < text.size() && isTrail(text[at + 1]))
            point = 0x10000 + ((point - 0xd800) << 10) + (text[++at] - 0xdc00u);
        appendUtf8(out, isSurrogate(point) ? kReplacement : point);
    }
    return out;
}

std::u16string utf16FromWide(std::wstring_view text)
{
    std::u16string out;
    out.reserve(text.size());
    for (const wchar_t unit : text)
        appendUtf16(out, static_cast<char32_t>(unit));
    return out;
}

bool isWellFormedUtf8(std::string_view text)
{
    for (std::size_t at = asciiRun(text, 0); at < text.size(); at = asciiRun(text, at)) {
        const Decoded decoded = decodeUtf8(text, at);
        if (!decoded.wellFormed)
            return false;
        at += decoded.bytes;
    }
    return true;
}

TvString escapedForDisplay(const TvString& text)
{
    TvString out;
    for (const TvChar unit : text.view()) {
        if (!breaksDisplay(unit))
            out += unit;
        else if (unit < 0x100)
            out += TvString().format(u"\\x%02X", unit);
        else
            out += TvString().format(u"\\u{%04X}", unit);
    }
    return out;
}

} // namespace base
