#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

class TvString;

namespace base {

/// One argument of TvString::format, with its kind: a pattern is checked against what was really
/// passed. Texts are looked at, not copied: an argument lives no longer than the call it is made
/// for.
class FormatArgument
{
public:
    enum class Kind { None, Signed, Unsigned, Real, Character, Utf16, Utf8, Wide };

    FormatArgument() = default;
    template <class T>
    requires std::integral<T>
    explicit FormatArgument(T value)
    {
        if constexpr (std::is_same_v<T, char16_t> || std::is_same_v<T, char32_t> ||
                      std::is_same_v<T, char> || std::is_same_v<T, wchar_t>) {
            m_kind = Kind::Character;
            m_unsigned = static_cast<std::uint64_t>(value);
        } else if constexpr (std::is_signed_v<T>) {
            m_kind = Kind::Signed;
            m_signed = value;
            m_bytes = sizeof(T);
        } else {
            m_kind = Kind::Unsigned;
            m_unsigned = value;
            m_bytes = sizeof(T);
        }
    }
    template <class T>
    requires std::is_enum_v<T>
    explicit FormatArgument(T value) : FormatArgument(static_cast<std::underlying_type_t<T>>(value))
    {
    }
    explicit FormatArgument(double value) : m_kind(Kind::Real), m_real(value) {}
    explicit FormatArgument(const char16_t* text) : FormatArgument(viewOf(text)) {}
    explicit FormatArgument(std::u16string_view text) : m_kind(Kind::Utf16), m_utf16(text) {}
    explicit FormatArgument(const std::u16string& text) : FormatArgument(std::u16string_view(text))
    {
    }
    explicit FormatArgument(const char* utf8)
        : FormatArgument(utf8 ? std::string_view(utf8) : std::string_view())
    {
    }
    explicit FormatArgument(std::string_view utf8) : m_kind(Kind::Utf8), m_utf8(utf8) {}
    explicit FormatArgument(const std::string& utf8) : FormatArgument(std::string_view(utf8)) {}
    explicit FormatArgument(const wchar_t* text)
        : m_kind(Kind::Wide), m_wide(text ? std::wstring_view(text) : std::wstring_view())
    {
    }
    explicit FormatArgument(const TvString& text);

    Kind kind() const { return m_kind; }
    std::int64_t signedValue() const { return m_signed; }
    std::uint64_t unsignedValue() const { return m_unsigned; }
    double realValue() const { return m_real; }
    std::u16string_view utf16() const { return m_utf16; }
    std::string_view utf8() const { return m_utf8; }
    std::wstring_view wide() const { return m_wide; }
    /// Width in bytes of the integer as passed: "%x" of a negative int shows 8 digits, not 16.
    int bytes() const { return m_bytes; }

private:
    static std::u16string_view viewOf(const char16_t* text)
    {
        return text ? std::u16string_view(text) : std::u16string_view();
    }

    Kind m_kind = Kind::None;
    int m_bytes = 8;
    union {
        std::int64_t m_signed = 0;
        std::uint64_t m_unsigned;
        double m_real;
    };
    std::u16string_view m_utf16;
    std::string_view m_utf8;
    std::wstring_view m_wide;
};

} // namespace base
