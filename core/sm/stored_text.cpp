#include "sm/stored_text.h"

#include "xml_scanner.h"

namespace sm {

namespace {

/// Whether XML 1.0 can carry the unit on its own (surrogates are looked at in pairs elsewhere).
bool isPlainXmlUnit(TvChar unit)
{
    if (unit < 0x20)
        return unit == u'\t' || unit == u'\n' || unit == u'\r';
    return !(unit >= 0xD800 && unit <= 0xDFFF) && unit != 0xFFFE && unit != 0xFFFF;
}

template <class Unit>
bool isHexDigit(Unit unit)
{
    return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'F') ||
           (unit >= 'a' && unit <= 'f');
}

/// Whether "\uXXXX;" stands at @p at.
template <class View>
bool isMarkAt(const View& text, std::size_t at)
{
    if (at + 7 > text.size() || text[at] != '\\' || text[at + 1] != 'u' || text[at + 6] != ';')
        return false;
    for (std::size_t digit = at + 2; digit < at + 6; ++digit)
        if (!isHexDigit(text[digit]))
            return false;
    return true;
}

void appendMark(std::string& out, TvChar unit)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        out += kDigits[(unit >> shift) & 15];
    out += ';';
}

bool isPairAt(std::u16string_view text, std::size_t at)
{
    return at + 1 < text.size() && text[at] >= 0xD800 && text[at] <= 0xDBFF &&
           text[at + 1] >= 0xDC00 && text[at + 1] <= 0xDFFF;
}

bool needsMarks(std::u16string_view text)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (isPairAt(text, at))
            ++at;
        else if (!isPlainXmlUnit(text[at]) || isMarkAt(text, at))
            return true;
    }
    return false;
}

} // namespace

std::string fileUtf8(const TvString& text)
{
    const std::u16string_view units = text.view();
    if (!needsMarks(units))
        return base::utf8FromUtf16(units);
    std::string out;
    std::size_t plainFrom = 0;
    const auto flush = [&](std::size_t end) {
        out += base::utf8FromUtf16(units.substr(plainFrom, end - plainFrom));
        plainFrom = end + 1;
    };
    for (std::size_t at = 0; at < units.size(); ++at) {
        if (isPairAt(units, at)) {
            ++at;
        } else if (!isPlainXmlUnit(units[at]) || isMarkAt(units, at)) {
            flush(at);
            appendMark(out, units[at]);
        }
    }
    flush(units.size());
    return out;
}

TvString textFromFile(std::string_view utf8)
{
    if (utf8.find("\\u") == std::string_view::npos)
        return TvString(utf8);
    std::u16string out;
    std::size_t plainFrom = 0;
    for (std::size_t at = 0; at + 7 <= utf8.size(); ++at) {
        if (!isMarkAt(utf8, at))
            continue;
        out += base::utf16FromUtf8(utf8.substr(plainFrom, at - plainFrom));
        unsigned unit = 0;
        for (std::size_t digit = at + 2; digit < at + 6; ++digit) {
            const char c = utf8[digit];
            unit = unit * 16 + static_cast<unsigned>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
        }
        out += static_cast<TvChar>(unit);
        at += 6;
        plainFrom = at + 1;
    }
    out += base::utf16FromUtf8(utf8.substr(plainFrom));
    return TvString(std::move(out));
}

namespace {

/// What a byte becomes in an attribute; null: itself.
constexpr std::array<const char*, 256> makeEscapes()
{
    std::array<const char*, 256> escapes{};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['"'] = "&quot;";
    escapes['\t'] = "&#9;";
    escapes['\n'] = "&#10;";
    escapes['\r'] = "&#13;";
    return escapes;
}

constexpr std::array<const char*, 256> kEscapes = makeEscapes();

/// How many bytes at the start of @p utf8 need no escape, counted by whole words of eight.
std::size_t endOfPlainWords(std::string_view utf8)
{
    std::size_t at = 0;
    for (; at + 8 <= utf8.size(); at += 8) {
        const std::uint64_t word = scan::loadWord(utf8.data() + at);
        const std::uint64_t escaped = scan::zeroBytes(word ^ (scan::kOnes * '&')) |
                                      scan::zeroBytes(word ^ (scan::kOnes * '<')) |
                                      scan::zeroBytes(word ^ (scan::kOnes * '>')) |
                                      scan::zeroBytes(word ^ (scan::kOnes * '"')) |
                                      ((word - scan::kOnes * 0x20) & ~word & scan::kHighs);
        if (escaped != 0)
            break;
    }
    return at;
}

} // namespace

void appendXmlEscaped(std::string& out, std::string_view utf8)
{
    std::size_t plainFrom = 0;
    for (std::size_t at = endOfPlainWords(utf8); at < utf8.size(); ++at) {
        const char* escape = kEscapes[static_cast<unsigned char>(utf8[at])];
        if (!escape)
            continue;
        out.append(utf8, plainFrom, at - plainFrom);
        out += escape;
        plainFrom = at + 1;
    }
    out.append(utf8, plainFrom);
}

std::string_view StoredText::fileView(std::string& room) const
{
    if (m_kind == Kind::Slice)
        return slice();
    room = m_kind == Kind::Owned ? fileUtf8(owned()) : std::string();
    return room;
}

bool StoredText::isEmpty() const
{
    switch (m_kind) {
    case Kind::Slice: return m_size == 0;
    case Kind::Owned: return owned().isEmpty();
    case Kind::Unset: break;
    }
    return true;
}

TvString StoredText::text() const
{
    switch (m_kind) {
    case Kind::Slice: return textFromFile(slice());
    case Kind::Owned: return owned();
    case Kind::Unset: break;
    }
    return {};
}

bool StoredText::equals(const TvString& other) const
{
    if (m_kind == Kind::Owned)
        return owned() == other;
    if (m_kind == Kind::Slice && m_size < static_cast<std::size_t>(other.length()))
        return false; // UTF-8 never has fewer bytes than UTF-16 has units
    return text() == other;
}

void StoredText::assign(const TvString& text)
{
    const TvString* fresh = new TvString(text);
    clear();
    m_data = fresh;
    m_kind = Kind::Owned;
}

void StoredText::own()
{
    if (m_kind == Kind::Slice)
        assign(text());
}

void StoredText::swap(StoredText& other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_kind, other.m_kind);
}

void StoredText::appendXml(std::string& out) const
{
    if (m_kind == Kind::Slice)
        appendXmlEscaped(out, slice());
    else if (m_kind == Kind::Owned)
        appendXmlEscaped(out, fileUtf8(owned()));
}

} // namespace sm
