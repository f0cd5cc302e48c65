#pragma once

#include <cstdint>

#include <base/tv_string.h>

/// The handle of an object in a drawing: 64 bits, 0 is none. Travels as plain hexadecimal text,
/// upper case, without leading zeros.
class TvDbHandle
{
public:
    TvDbHandle() = default;
    explicit TvDbHandle(std::uint64_t value) : m_value(value) {}
    /// From 1 to 16 hexadecimal digits in either case; anything else gives a null handle.
    explicit TvDbHandle(std::u16string_view text);

    bool isNull() const { return m_value == 0; }
    std::uint64_t value() const { return m_value; }
    /// Upper-case hexadecimal; "0" for a null handle.
    TvString text() const;
    void getIntoAsciiBuffer(TvString& out) const { out = text(); }

    friend bool operator==(TvDbHandle, TvDbHandle) = default;
    friend auto operator<=>(TvDbHandle, TvDbHandle) = default;

private:
    std::uint64_t m_value = 0;
};

namespace base {
/// The number that 1 to 16 hexadecimal digits stand for; false, and @p out alone, for anything
/// else.
bool parseHex(std::u16string_view text, std::uint64_t& out);
/// Upper-case hexadecimal without leading zeros; "0" for 0.
TvString hexText(std::uint64_t value);
} // namespace base
