#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace sm {

/// The first eight bytes of a name, for a comparison in one step.
///
/// @pre eight bytes may be read from its start, as from any place of a scanned text.
inline std::uint64_t nameKey(std::string_view name)
{
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t key;
    std::memcpy(&key, name.data(), sizeof key);
    return name.size() >= 8 ? key : key & ((std::uint64_t(1) << 8 * name.size()) - 1);
}
/// The same of a name in the program.
constexpr std::uint64_t nameKeyOf(std::string_view name)
{
    std::uint64_t key = 0;
    for (std::size_t at = 0; at < name.size() && at < 8; ++at)
        key |= std::uint64_t(static_cast<unsigned char>(name[at])) << 8 * at;
    return key;
}

/// Walks the text of an XML document token by token, and refuses what is not well formed.
///
/// A sheet set is read from one end to the other once, and each of its elements becomes an object:
/// a tree in between would cost more than all the rest. So this reads in place, allocates nothing,
/// and decodes an attribute only when it is taken. It knows elements, attributes, comments, CDATA,
/// processing instructions, and the references that XML has built in; a document type declaration
/// is refused, and with it every entity of one's own. The text is UTF-8.
class XmlScanner
{
public:
    enum class Token { Start, End, Text, Comment, Instruction, EndOfText, Error };
    enum class Problem { None, Syntax, Doctype, Encoding, TooDeep, TooManyAttributes };

    struct Attribute {
        std::string_view name;
        std::string_view raw; ///< As it stands in the text.
        bool isPlain;         ///< raw is the value: nothing to decode.
    };

    /// Attributes of one element: far more than any has, few enough to compare each with each.
    static constexpr std::size_t kMaxAttributes = 100;
    /// Bytes behind the text that may be read; they must be 0.
    static constexpr std::size_t kPadding = 16;

    /// @param begin  the text; not owned; decoded in place; kPadding bytes of 0 behind @p end.
    XmlScanner(char* begin, char* end);

    /// The next token. A Start token ends behind the element's name: scanAttributes() or the
    /// expecting way goes on from there.
    Token next();
    /// Of a Start or End token.
    std::string_view name() const { return m_name; }
    /// The rest of a Start token. False, with the problem set, when it is not well formed.
    bool scanAttributes();

    // A file of ours has its attributes in a fixed order, so a reader asks for the one that it
    // expects next: found, the name is compared once and nothing is noted. Whatever comes otherwise
    // is scanned again from the start of the element.

    /// An attribute as it begins: blank, name, equals sign, quote.
    struct Opening {
        constexpr Opening(std::string_view name) : size(name.size() + 3)
        {
            text[0] = ' ';
            for (std::size_t at = 0; at < name.size(); ++at)
                text[at + 1] = name[at];
            text[size - 2] = '=';
            text[size - 1] = '"';
            key = nameKeyOf({text, size});
            mask = size >= 8 ? ~std::uint64_t(0) : (std::uint64_t(1) << 8 * size) - 1;
        }
        char text[24] = {};
        std::size_t size;
        std::uint64_t key = 0; ///< The first eight units.
        std::uint64_t mask = 0;
    };
    /// Takes the attribute if it comes next and has nothing to decode; otherwise nothing happens.
    bool takeExpected(const Opening& opening, std::string_view& value);
    /// Takes the end of the start tag if it comes next.
    bool takeEndOfStart();
    /// Back behind the element's name.
    void rewindStart() { m_at = m_attributesBegin; }

    /// Of a Start token whose attributes were scanned: no End token will follow.
    bool isEmptyElement() const { return m_isEmpty; }
    std::span<const Attribute> attributes() const { return {m_attributes.data(), m_count}; }
    const Attribute* find(std::string_view name) const;
    /// Names are taken as far as their '='. One that the caller does not know by heart may hold
    /// what no name does: false, with the problem set.
    bool checkName(const Attribute& attribute);
    /// An attribute of the element that stands on it twice; null when there is none. O(attributes
    /// squared), of at most 100.
    const Attribute* duplicate() const;
    /// The value of an attribute of the current token, decoded in place: valid as long as the text.
    /// Empty, with the problem set, when it holds a reference that XML does not know.
    std::string_view valueOf(const Attribute& attribute);
    /// The token as it stands in the text.
    std::string_view raw() const
    {
        return {m_tokenBegin, static_cast<std::size_t>(m_at - m_tokenBegin)};
    }
    bool isBlankText() const { return m_isBlank; }
    /// From a Start token, its attributes not scanned yet, behind the matching end; gives the whole
    /// element as it stands. Empty, with the problem set, when it is not well formed.
    std::string_view skipElement(int maxDepth);

    Problem problem() const { return m_problem; }
    /// The line, from 1, that the scanner has come to. @note O(text).
    int line() const;
    /// A few characters of the text where the scanner stands.
    std::string_view excerpt() const;

private:
    Token fail(Problem problem)
    {
        m_problem = problem;
        return Token::Error;
    }
    Token scanMarkup();
    Token scanStart();
    Token scanEnd();
    Token scanText();
    Token scanUntil(std::string_view end, std::size_t opening, Token token);
    bool scanName();
    bool scanAttribute();
    bool scanAttributeName(Attribute& attribute);
    bool startUnknown();
    bool scanValue(Attribute& attribute, char quote);
    const char* endOfPlainRun(const char* from, std::uint64_t quotes) const;
    bool checkPlainRun(const char* from, const char* to);
    void skipBlanks();
    static bool appendReference(const char*& at, const char* end, char*& out);

    char* const m_begin;
    const char* const m_end;
    const char* m_at;
    const char* m_tokenBegin;
    const char* m_attributesBegin = nullptr;
    std::string_view m_name;
    std::array<Attribute, kMaxAttributes> m_attributes;
    std::size_t m_count = 0;
    bool m_isEmpty = false;
    bool m_isBlank = false;
    Problem m_problem = Problem::None;
};

namespace scan {

inline constexpr std::uint64_t kOnes = 0x0101010101010101u;
inline constexpr std::uint64_t kHighs = 0x8080808080808080u;

inline std::uint64_t loadWord(const char* at)
{
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

/// High bits of the bytes of @p word that are 0; bytes behind the first one found may be marked by
/// mistake.
inline std::uint64_t zeroBytes(std::uint64_t word)
{
    return (word - kOnes) & ~word & kHighs;
}

/// High bits of the bytes that end or interrupt a plain run of a value: the quote, '&', '<',
/// control characters, and all that is not ASCII. The first mark is right.
inline std::uint64_t specialBytes(std::uint64_t word, std::uint64_t quotes)
{
    return zeroBytes(word ^ quotes) | zeroBytes(word ^ (kOnes * '&')) |
           zeroBytes(word ^ (kOnes * '<')) | ((word - kOnes * 0x20) & ~word & kHighs) |
           (word & kHighs);
}

} // namespace scan

/// The first byte from @p from on that is no plain part of a value.
inline const char* XmlScanner::endOfPlainRun(const char* from, std::uint64_t quotes) const
{
    std::uint64_t special = scan::specialBytes(scan::loadWord(from), quotes);
    while (special == 0) {
        from += 8;
        special = scan::specialBytes(scan::loadWord(from), quotes);
    }
    return from + std::countr_zero(special) / 8;
}

inline bool XmlScanner::takeExpected(const Opening& opening, std::string_view& value)
{
    if ((scan::loadWord(m_at) & opening.mask) != opening.key ||
        (opening.size > 8 && std::memcmp(m_at + 8, opening.text + 8, opening.size - 8) != 0))
        return false;
    const char* from = m_at + opening.size;
    const char* end = endOfPlainRun(from, scan::kOnes * '"');
    if (*end != '"')
        return false;
    value = {from, static_cast<std::size_t>(end - from)};
    m_at = end + 1;
    return true;
}

inline bool XmlScanner::takeEndOfStart()
{
    m_isEmpty = *m_at == '/';
    if (m_at[m_isEmpty] != '>')
        return false;
    m_at += 1 + m_isEmpty;
    return true;
}

} // namespace sm
