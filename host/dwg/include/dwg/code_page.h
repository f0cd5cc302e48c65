#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace dwg {

/// The 8-bit text of drawings up to 2004, by the code page number in the file's header.
///
/// What the code page does not have stands as `\U+XXXX`, a UTF-16 unit in capital digits: writing
/// makes these escapes, and reading makes the characters of them. Any other escape (`\M+nXXXX`, one
/// in small digits, one of a character that the code page has) is left as it stands, since writing
/// would not give it again.
class CodePage
{
public:
    /// The code page with this number in a drawing's header; unknown numbers mean Windows-1252.
    /// Made at its first use, lives as long as the program; thread-safe.
    static const CodePage& numbered(int number);

    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

    /// Its number in drawings; that of Windows-1252 for those made of an unknown number.
    int number() const { return m_number; }
    /// @p bytes as UTF-16, never longer than they; false when writing it would give other bytes.
    /// Bytes that mean nothing become U+FFFD.
    bool decode(std::span<const std::uint8_t> bytes, std::u16string& out) const;
    /// The unit of one byte, where every byte stands for itself and leads back to itself; 0 where
    /// not.
    char16_t unitOf(std::uint8_t byte) const { return m_units[byte]; }
    std::string encode(std::u16string_view text) const;
    /// Whether @p bytes may hold escapes, which decode() resolves.
    static bool mayHoldEscapes(std::span<const std::uint8_t> bytes);

private:
    CodePage(int number, const char* converterName);

    bool decodeMultibyte(std::span<const std::uint8_t> bytes, std::u16string& out) const;
    bool decodeSingle(std::span<const std::uint8_t> bytes, std::u16string& out) const;
    bool has(char16_t unit) const;
    void resolveEscapes(std::u16string& text) const;
    void appendUnit(std::u16string_view text, std::size_t& at, std::string& out) const;

    int m_number;
    const char* m_name;
    bool m_isMultibyte = false;
    std::array<char16_t, 256> m_units{}; // 0: none, or not there and back
    std::unordered_map<char16_t, std::uint8_t> m_bytes;
};

} // namespace dwg
