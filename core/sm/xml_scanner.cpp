#include "xml_scanner.h"

#include <algorithm>

#include <base/tv_string.h>

namespace sm {

namespace {

enum CharClass : unsigned char { kNameStart = 1, kNameRest = 2, kBlank = 4 };

constexpr std::array<unsigned char, 256> makeClasses()
{
    std::array<unsigned char, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        const bool letter =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || c >= 0x80;
        const bool rest = letter || (c >= '0' && c <= '9') || c == '-' || c == '.';
        const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        classes[c] = static_cast<unsigned char>((letter ? kNameStart : 0) | (rest ? kNameRest : 0) |
                                                (blank ? kBlank : 0));
    }
    return classes;
}

constexpr std::array<unsigned char, 256> kClasses = makeClasses();

bool is(char c, CharClass wanted)
{
    return (kClasses[static_cast<unsigned char>(c)] & wanted) != 0;
}

using scan::kOnes;
using scan::loadWord;
using scan::zeroBytes;

std::string_view viewOf(const char* from, const char* to)
{
    return {from, static_cast<std::size_t>(to - from)};
}

bool isXmlControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 && !is(c, kBlank);
}

} // namespace

XmlScanner::XmlScanner(char* begin, char* end)
    : m_begin(begin), m_end(end), m_at(begin), m_tokenBegin(begin)
{
    if (viewOf(m_at, m_end).substr(0, 3) == "\xEF\xBB\xBF")
        m_at += 3;
}

void XmlScanner::skipBlanks()
{
    while (loadWord(m_at) == kOnes * ' ')
        m_at += 8;
    while (is(*m_at, kBlank))
        ++m_at;
}

XmlScanner::Token XmlScanner::next()
{
    m_tokenBegin = m_at;
    if (m_at == m_end)
        return Token::EndOfText;
    return *m_at == '<' ? scanMarkup() : scanText();
}

XmlScanner::Token XmlScanner::scanMarkup()
{
    const std::string_view rest = viewOf(m_at, m_end);
    switch (m_at[1]) {
    case '/': return scanEnd();
    case '?': return scanUntil("?>", 2, Token::Instruction);
    case '!':
        if (rest.substr(0, 4) == "<!--")
            return scanUntil("-->", 4, Token::Comment);
        if (rest.substr(0, 9) == "<![CDATA[")
            return m_isBlank = false, scanUntil("]]>", 9, Token::Text);
        return fail(rest.substr(0, 9) == "<!DOCTYPE" ? Problem::Doctype : Problem::Syntax);
    default: return scanStart();
    }
}

/// Checks what stands as it is: well-formed UTF-8 without control characters.
bool XmlScanner::checkPlainRun(const char* from, const char* to)
{
    if (std::any_of(from, to, isXmlControl)) {
        m_at = std::find_if(from, to, isXmlControl);
        m_problem = Problem::Syntax;
        return false;
    }
    if (!base::isWellFormedUtf8(viewOf(from, to))) {
        m_at = from;
        m_problem = Problem::Encoding;
        return false;
    }
    return true;
}

XmlScanner::Token XmlScanner::scanUntil(std::string_view end, std::size_t opening, Token token)
{
    const std::string_view rest = viewOf(m_at, m_end);
    const std::size_t found = rest.find(end, opening);
    if (found == std::string_view::npos)
        return fail(Problem::Syntax);
    const char* behind = m_at + found + end.size();
    if (!checkPlainRun(m_at, behind))
        return Token::Error;
    m_at = behind;
    return token;
}

XmlScanner::Token XmlScanner::scanText()
{
    skipBlanks();
    m_isBlank = *m_at == '<' || m_at == m_end;
    if (m_isBlank)
        return Token::Text;
    const void* found = std::memchr(m_at, '<', static_cast<std::size_t>(m_end - m_at));
    const char* end = found ? static_cast<const char*>(found) : m_end;
    if (!checkPlainRun(m_at, end))
        return Token::Error;
    m_at = end;
    return Token::Text;
}

bool XmlScanner::scanName()
{
    const char* from = m_at;
    if (!is(*m_at, kNameStart))
        return false;
    unsigned char seen = 0;
    for (; is(*m_at, kNameRest); ++m_at)
        seen |= static_cast<unsigned char>(*m_at);
    m_name = viewOf(from, m_at);
    return seen < 0x80 || base::isWellFormedUtf8(m_name);
}

XmlScanner::Token XmlScanner::scanEnd()
{
    m_at += 2;
    if (!scanName())
        return fail(Problem::Syntax);
    skipBlanks();
    if (*m_at != '>')
        return fail(Problem::Syntax);
    ++m_at;
    return Token::End;
}

XmlScanner::Token XmlScanner::scanStart()
{
    ++m_at;
    m_count = 0;
    if (!scanName())
        return fail(Problem::Syntax);
    m_attributesBegin = m_at;
    return Token::Start;
}

bool XmlScanner::scanAttributes()
{
    const std::string_view element = m_name;
    bool ok = true;
    for (;;) {
        const char* before = m_at;
        if (is(*m_at, kBlank) && is(*++m_at, kBlank))
            skipBlanks();
        if (*m_at == '>' || *m_at == '/')
            break;
        ok = m_at != before && scanAttribute();
        if (!ok)
            break;
    }
    m_name = element;
    if (ok && takeEndOfStart())
        return true;
    m_problem = m_problem == Problem::None ? Problem::Syntax : m_problem;
    return false;
}

/// The name up to its '='. Nearly always that is near and a quote follows; what the name is made of
/// is asked later.
bool XmlScanner::scanAttributeName(Attribute& attribute)
{
    const char* from = m_at;
    const std::uint64_t equals = zeroBytes(loadWord(m_at) ^ (kOnes * '='));
    if (equals != 0) {
        m_at += __builtin_ctzll(equals) / 8;
        if (m_at[1] == '"' && !is(m_at[-1], kBlank)) {
            attribute.name = viewOf(from, m_at);
            ++m_at;
            return m_at - 1 != from;
        }
        m_at = from;
    }
    if (!scanName())
        return false;
    attribute.name = m_name;
    skipBlanks();
    if (*m_at != '=')
        return false;
    ++m_at;
    skipBlanks();
    return *m_at == '"' || *m_at == '\'';
}

bool XmlScanner::scanAttribute()
{
    if (m_count == kMaxAttributes) {
        m_problem = Problem::TooManyAttributes;
        return false;
    }
    Attribute& attribute = m_attributes[m_count];
    if (!scanAttributeName(attribute))
        return false;
    const char quote = *m_at++;
    if (!scanValue(attribute, quote))
        return false;
    ++m_count;
    return true;
}

bool XmlScanner::checkName(const Attribute& attribute)
{
    const std::string_view name = attribute.name;
    if (is(name[0], kNameStart) &&
        std::all_of(name.begin(), name.end(), [](char c) { return is(c, kNameRest); }) &&
        base::isWellFormedUtf8(name))
        return true;
    m_at = name.data();
    m_problem = Problem::Syntax;
    return false;
}

/// The attributes of an element that nobody knows: nothing but their form is looked at.
bool XmlScanner::startUnknown()
{
    if (!scanAttributes() || duplicate())
        return false;
    return std::all_of(m_attributes.begin(),
                       m_attributes.begin() + static_cast<std::ptrdiff_t>(m_count),
                       [this](const Attribute& attribute) { return checkName(attribute); });
}

bool XmlScanner::scanValue(Attribute& attribute, char quote)
{
    const char* from = m_at;
    const std::uint64_t quotes = kOnes * static_cast<unsigned char>(quote);
    bool isAscii = true;
    attribute.isPlain = true;
    for (;;) {
        m_at = endOfPlainRun(m_at, quotes);
        if (*m_at == quote)
            break;
        if (*m_at == '<' || isXmlControl(*m_at))
            return false; // the end of the text is a control character too
        if (static_cast<unsigned char>(*m_at) >= 0x80)
            isAscii = false;
        else
            attribute.isPlain = false;
        ++m_at;
    }
    attribute.raw = viewOf(from, m_at);
    if (!isAscii && !base::isWellFormedUtf8(attribute.raw)) {
        m_at = from;
        m_problem = Problem::Encoding;
        return false;
    }
    ++m_at;
    return true;
}

const XmlScanner::Attribute* XmlScanner::find(std::string_view name) const
{
    for (std::size_t at = 0; at < m_count; ++at)
        if (m_attributes[at].name == name)
            return &m_attributes[at];
    return nullptr;
}

const XmlScanner::Attribute* XmlScanner::duplicate() const
{
    for (std::size_t at = 1; at < m_count; ++at)
        for (std::size_t before = 0; before < at; ++before)
            if (m_attributes[at].name == m_attributes[before].name)
                return &m_attributes[at];
    return nullptr;
}

// --- references
// -------------------------------------------------------------------------------------------------------

namespace {

/// The character that "#233" or "#xE9" stands for; 0 when XML does not allow it.
std::uint32_t numericReference(std::string_view digits)
{
    const bool isHex = digits.size() > 1 && digits[0] == 'x';
    if (isHex)
        digits.remove_prefix(1);
    if (digits.empty() || digits.size() > 8)
        return 0;
    std::uint64_t code = 0;
    for (char c : digits) {
        const unsigned letter = static_cast<unsigned char>(c) | 0x20u;
        if (c >= '0' && c <= '9')
            code = code * (isHex ? 16 : 10) + static_cast<unsigned>(c - '0');
        else if (isHex && letter >= 'a' && letter <= 'f')
            code = code * 16 + (letter - 'a' + 10);
        else
            return 0;
    }
    const bool allowed = code == 9 || code == 10 || code == 13 || (code >= 0x20 && code < 0xD800) ||
                         (code >= 0xE000 && code < 0xFFFE) || (code >= 0x10000 && code <= 0x10FFFF);
    return allowed ? static_cast<std::uint32_t>(code) : 0;
}

char* appendUtf8(char* out, std::uint32_t code)
{
    const auto put = [&out](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
    return out;
}

std::uint32_t characterOf(std::string_view reference)
{
    if (reference == "amp")
        return '&';
    if (reference == "lt")
        return '<';
    if (reference == "gt")
        return '>';
    if (reference == "quot")
        return '"';
    if (reference == "apos")
        return '\'';
    return !reference.empty() && reference[0] == '#' ? numericReference(reference.substr(1)) : 0;
}

} // namespace

/// From "&...;" at @p at to its character at @p out, which never is ahead: no reference is shorter
/// than what it stands for.
bool XmlScanner::appendReference(const char*& at, const char* end, char*& out)
{
    const char* semicolon = std::find(at, std::min(end, at + 12), ';');
    if (semicolon == end || *semicolon != ';')
        return false;
    const std::uint32_t code = characterOf(viewOf(at + 1, semicolon));
    if (code == 0)
        return false;
    out = appendUtf8(out, code);
    at = semicolon + 1;
    return true;
}

std::string_view XmlScanner::valueOf(const Attribute& attribute)
{
    if (attribute.isPlain)
        return attribute.raw;
    const char* at = attribute.raw.data();
    const char* end = at + attribute.raw.size();
    char* const from = m_begin + (at - m_begin);
    char* out = from;
    while (at != end) {
        if (*at == '&') {
            if (!appendReference(at, end, out)) {
                m_at = at;
                m_problem = Problem::Syntax;
                return {};
            }
        } else {
            *out++ = is(*at, kBlank) ? ' ' : *at;
            ++at;
        }
    }
    return viewOf(from, out);
}

// --- unknown elements
// ---------------------------------------------------------------------------------------------------

std::string_view XmlScanner::skipElement(int maxDepth)
{
    const char* begin = m_tokenBegin;
    std::vector<std::string_view> open;
    bool ok = startUnknown();
    if (ok && !m_isEmpty)
        open.push_back(m_name);
    while (ok && !open.empty()) {
        const Token token = next();
        ok = token != Token::Error && token != Token::EndOfText;
        if (token == Token::Start) {
            ok = startUnknown();
            if (ok && !m_isEmpty)
                open.push_back(m_name);
        } else if (token == Token::End) {
            ok = open.back() == m_name;
            open.pop_back();
        }
        if (static_cast<int>(open.size()) > maxDepth) {
            m_problem = Problem::TooDeep;
            return {};
        }
    }
    if (!ok) {
        m_problem = m_problem == Problem::None ? Problem::Syntax : m_problem;
        return {};
    }
    m_tokenBegin = begin;
    return viewOf(begin, m_at);
}

int XmlScanner::line() const
{
    return 1 + static_cast<int>(
                   std::count(static_cast<const char*>(m_begin), std::min(m_at, m_end), '\n'));
}

std::string_view XmlScanner::excerpt() const
{
    const std::string_view rest = viewOf(std::min(m_at, m_end), m_end);
    return rest.substr(0, std::min<std::size_t>(rest.find('\n'), 24));
}

} // namespace sm
