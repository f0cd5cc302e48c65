#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

namespace dxf {

/// One group of a file: a code, and its value as the file spells it (without the line's end).
struct Tag {
    int code = 0;
    std::string_view value;
};

/// Walks over the groups of a text in place; nothing is copied.
class TagScanner
{
public:
    explicit TagScanner(std::string_view text) : m_at(text.data()), m_end(text.data() + text.size())
    {
    }

    /// The next group; false at the end of the text, or at what is no group.
    bool next(Tag& tag)
    {
        if (m_at == m_end || !readCode(tag.code) || m_at == m_end)
            return false;
        const char* const begin = m_at;
        const char* const stop = lineEnd(begin);
        m_at = stop == m_end ? stop : stop + 1;
        tag.value = {begin, static_cast<std::size_t>(stop - begin)};
        if (!tag.value.empty() && tag.value.back() == '\r')
            tag.value.remove_suffix(1);
        return true;
    }

    /// Where the next group begins. When next() failed: where it failed, short of the end when a
    /// line is no group code or has no value.
    const char* at() const { return m_at; }

private:
    static constexpr std::uint64_t kLow = 0x0101010101010101u;
    static constexpr std::uint64_t kHigh = 0x8080808080808080u;

    // By words of eight bytes: lines are short, and a call for each would cost more than the
    // search.
    const char* lineEnd(const char* at) const
    {
        while (m_end - at >= 8) {
            std::uint64_t word;
            std::memcpy(&word, at, sizeof word);
            const std::uint64_t x = word ^ (kLow * '\n');
            const std::uint64_t hit = (x - kLow) & ~x & kHigh;
            if (hit)
                return at + (__builtin_ctzll(hit) >> 3);
            at += 8;
        }
        while (at != m_end && *at != '\n')
            ++at;
        return at;
    }

    bool readCode(int& code)
    {
        const char* at = m_at;
        while (at != m_end && (*at == ' ' || *at == '\t'))
            ++at;
        const bool negative = at != m_end && *at == '-';
        at += negative;
        int value = 0;
        const char* const digits = at;
        while (at != m_end && static_cast<unsigned char>(*at - '0') < 10 && value < 100000)
            value = value * 10 + (*at++ - '0');
        if (at == digits)
            return false;
        while (at != m_end && (*at == ' ' || *at == '\t' || *at == '\r'))
            ++at;
        if (at == m_end || *at != '\n')
            return false;
        code = negative ? -value : value;
        m_at = at + 1;
        return true;
    }

    const char* m_at;
    const char* m_end;
};

/// What values of a group code are.
enum class ValueKind : std::uint8_t { Text, Handle, Real, Integer, Bytes };

/// By the ranges of codes that all objects share.
ValueKind valueKind(int code);

/// The number in @p text, spaces around it allowed; nullopt for anything else.
std::optional<std::int64_t> integerIn(std::string_view text);
/// The same for a real; what is not finite is none.
std::optional<double> realIn(std::string_view text);
/// The same for hexadecimal digits, up to 60 bits.
std::optional<std::uint64_t> handleIn(std::string_view text);

/// Without spaces and tabs at both ends.
std::string_view trimmed(std::string_view text);

} // namespace dxf
