#include "modeler_tokens.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>

namespace gs {

namespace {

using Kind = ModelerValue::Kind;

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kEndsToken = " \t\r\n#";

enum Tag : std::uint8_t {
    kChar = 2,
    kShort = 3,
    kLong = 4,
    kFloat = 5,
    kDouble = 6,
    kText8 = 7,
    kText16 = 8,
    kText32 = 9,
    kTrue = 10,
    kFalse = 11,
    kPointer = 12,
    kName = 13,
    kNamePart = 14,
    kOpen = 15,
    kClose = 16,
    kEnd = 17,
    kLiteral = 18,
    kPosition = 19,
    kVector = 20,
    kEnumeration = 21,
    kPair = 22,
    kLong64 = 23,
};

template <class Number>
std::optional<Number> wholeTokenAs(std::string_view token)
{
    Number number{};
    const char* const end = token.data() + token.size();
    const auto read = std::from_chars(token.data(), end, number);
    return read.ptr == end && read.ec == std::errc() ? std::optional(number) : std::nullopt;
}

void putReal(double number, ModelerValue& out)
{
    // What is no number keeps its place, but nobody counts with it.
    out.kind = std::isfinite(number) ? Kind::Number : Kind::Word;
    out.number = std::isfinite(number) ? number : 0;
}

std::string_view textOf(std::span<const std::uint8_t> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

bool ModelerText::next(ModelerValue& out)
{
    m_position = std::min(m_text.find_first_not_of(kBlanks, m_position), m_text.size());
    if (m_position == m_text.size())
        return false;
    out = {};
    switch (m_text[m_position]) {
    case '#': out.kind = Kind::End; return ++m_position, true;
    case '{': out.kind = Kind::Open; return ++m_position, true;
    case '}': out.kind = Kind::Close; return ++m_position, true;
    default: break;
    }
    const std::size_t end = std::min(m_text.find_first_of(kEndsToken, m_position), m_text.size());
    const std::string_view token = m_text.substr(m_position, end - m_position);
    m_position = end;
    out.kind = Kind::Word;
    out.word = token;
    if (token == "forward" || token == "reversed") {
        out.kind = Kind::Flag;
        out.number = token == "reversed" ? 1 : 0;
    } else if (token.front() == '@') {
        out.word = counted(token);
    } else if (token.front() == '$') {
        if (const auto target = wholeTokenAs<std::int64_t>(token.substr(1)); target) {
            out.kind = Kind::Pointer;
            out.number = static_cast<double>(*target);
        }
    } else if (const auto number = wholeTokenAs<double>(token); number) {
        putReal(*number, out);
    }
    return true;
}

void ModelerText::passHead()
{
    std::size_t name = 0;
    bool isName = false;
    ModelerValue value;
    while (next(value) && value.kind != Kind::End) {
        if (isName && value.kind == Kind::Pointer)
            return seek(name);
        isName = value.kind == Kind::Word && !value.word.empty() &&
                 std::isalpha(static_cast<unsigned char>(value.word[0]));
        name = m_position - value.word.size();
    }
    seek(0);
}

/// A text that tells its length first may hold what ends others.
std::string_view ModelerText::counted(std::string_view token)
{
    const auto length = wholeTokenAs<std::size_t>(token.substr(1));
    if (!length)
        return token;
    const std::string_view rest = m_text.substr(m_position);
    const std::string_view word = rest.substr(std::min<std::size_t>(rest.size(), 1), *length);
    m_position += std::min(rest.size(), 1 + word.size());
    return word;
}

bool ModelerBytes::recognises(std::span<const std::uint8_t> bytes)
{
    const std::string_view text = textOf(bytes.first(std::min<std::size_t>(bytes.size(), 16)));
    return text.starts_with("ACIS BinaryFile") || text.starts_with("ASM BinaryFile");
}

ModelerBytes::ModelerBytes(std::span<const std::uint8_t> bytes) : m_bytes(bytes)
{
    constexpr std::string_view kMarkEnd = "BinaryFile";
    const std::size_t mark = recognises(bytes) ? bytes[1] == 'S' ? 4 : 5 : bytes.size();
    const std::size_t behind = mark + kMarkEnd.size();
    if (behind >= bytes.size()) {
        m_position = bytes.size();
        return;
    }
    const bool isWide = bytes[behind] == '8', tellsWidth = isWide || bytes[behind] == '4';
    const std::size_t likely = isWide ? 8 : 4;
    if ((tellsWidth && passHead(behind + 1, likely)) || passHead(behind, 4) || passHead(behind, 8))
        return;
    m_position = bytes.size();
}

/// Four whole numbers without tags; then the maker, versions and units, and the first record.
bool ModelerBytes::passHead(std::size_t from, std::size_t width)
{
    constexpr std::size_t kNumbers = 4, kMostValues = 16;
    m_width = width;
    ModelerBytes::seek(from + kNumbers * width);
    ModelerValue value;
    for (std::size_t i = 0; i < kMostValues && m_position < m_bytes.size(); ++i) {
        const std::uint8_t tag = m_bytes[m_position];
        if (i > 0 && (tag == kName || tag == kNamePart)) {
            ModelerBytes::seek(m_position);
            return true;
        }
        if ((i == 0 && tag != kText8) || !next(value) ||
            (value.kind != Kind::Word && value.kind != Kind::Number))
            return false;
    }
    return false;
}

void ModelerBytes::seek(std::size_t position)
{
    m_position = position;
    m_realAt = m_realCount = 0;
    m_literal = ModelerText({});
}

bool ModelerBytes::take(std::size_t count, std::uint64_t& out)
{
    if (m_position > m_bytes.size() || count > m_bytes.size() - m_position)
        return false;
    out = 0;
    for (std::size_t i = count; i-- > 0;)
        out = out << 8 | m_bytes[m_position + i];
    m_position += count;
    return true;
}

bool ModelerBytes::takeWord(std::size_t lengthSize, ModelerValue& out)
{
    std::uint64_t length = 0;
    if (!take(lengthSize, length) || length > m_bytes.size() - m_position)
        return false;
    out.word = textOf(m_bytes.subspan(m_position, length));
    m_position += length;
    return true;
}

bool ModelerBytes::takeWhole(std::size_t size, Kind kind, ModelerValue& out)
{
    std::uint64_t bits = 0;
    if (!take(size, bits))
        return false;
    const auto unused = static_cast<unsigned>(64 - 8 * size);
    out.kind = kind;
    out.number = static_cast<double>(static_cast<std::int64_t>(bits << unused) >> unused);
    return true;
}

bool ModelerBytes::takeReals(std::size_t count, ModelerValue& out)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t bits = 0;
        if (!take(sizeof bits, bits))
            return false;
        m_reals[i] = std::bit_cast<double>(bits);
    }
    m_realCount = count;
    m_realAt = 1;
    putReal(m_reals[0], out);
    return true;
}

/// What is left of a value that stands for several.
bool ModelerBytes::nextPending(ModelerValue& out)
{
    if (m_realAt < m_realCount) {
        putReal(m_reals[m_realAt++], out);
        return true;
    }
    if (!m_literal.next(out))
        return false;
    if (out.kind == Kind::End || out.kind == Kind::Open || out.kind == Kind::Close)
        out.kind = Kind::Word; // a letter like any other, within a text
    return true;
}

bool ModelerBytes::next(ModelerValue& out)
{
    out = {};
    if (nextPending(out))
        return true;
    for (;;) {
        std::uint64_t tag = 0, bits = 0;
        out = {};
        if (!take(1, tag))
            return false;
        out.kind = Kind::Word;
        switch (tag) {
        case kChar: return takeWhole(1, Kind::Number, out);
        case kShort: return takeWhole(2, Kind::Number, out);
        case kLong:
        case kEnumeration: return takeWhole(m_width, Kind::Number, out);
        case kLong64: return takeWhole(8, Kind::Number, out);
        case kPointer: return takeWhole(m_width, Kind::Pointer, out);
        case kFloat:
            if (!take(4, bits))
                return false;
            putReal(std::bit_cast<float>(static_cast<std::uint32_t>(bits)), out);
            return true;
        case kDouble: return takeReals(1, out);
        case kPair: return takeReals(2, out);
        case kPosition:
        case kVector: return takeReals(3, out);
        case kName:
        case kText8: return takeWord(1, out);
        case kText16: return takeWord(2, out);
        case kText32: return takeWord(m_width, out);
        case kNamePart: out.kind = Kind::NamePart; return takeWord(1, out);
        case kTrue:
        case kFalse:
            out.kind = Kind::Flag;
            out.number = tag == kTrue ? 1 : 0;
            return true;
        case kOpen: out.kind = Kind::Open; return true;
        case kClose: out.kind = Kind::Close; return true;
        case kEnd: out.kind = Kind::End; return true;
        case kLiteral:
            if (!takeWord(m_width, out))
                return false;
            m_literal = ModelerText(out.word);
            if (nextPending(out))
                return true;
            break; // an empty one
        default: return false;
        }
    }
}

std::unique_ptr<ModelerTokens> modelerTokens(std::span<const std::uint8_t> body)
{
    if (ModelerBytes::recognises(body))
        return std::make_unique<ModelerBytes>(body);
    auto text = std::make_unique<ModelerText>(textOf(body));
    text->passHead();
    return text;
}

} // namespace gs
