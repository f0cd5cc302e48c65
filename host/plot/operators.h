#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include <gs/growing_buffer.h>

namespace plot {

/// The operators of a page, written without a locale and in few bytes.
class Operators
{
public:
    static constexpr std::size_t kLongestNumber = 12;

    Operators& text(std::string_view bytes)
    {
        std::memcpy(m_bytes.grow(bytes.size()), bytes.data(), bytes.size());
        return *this;
    }
    /// A whole number and a blank.
    Operators& number(std::int32_t value)
    {
        char* const from = m_bytes.grow(kLongestNumber);
        char* to = write(from, value);
        *to++ = ' ';
        cut(to);
        return *this;
    }
    /// A number with as many decimals as count, up to three, and a blank.
    Operators& real(double value);
    /// Two whole numbers and an operator of one letter.
    Operators& point(std::int32_t x, std::int32_t y, char op)
    {
        char* to = write(m_bytes.grow(2 * kLongestNumber + 2), x);
        *to++ = ' ';
        to = write(to, y);
        *to++ = ' ';
        *to++ = op;
        *to++ = '\n';
        cut(to);
        return *this;
    }
    std::string_view view() const { return {m_bytes.begin(), m_bytes.size()}; }
    std::size_t size() const { return m_bytes.size(); }

private:
    static char* write(char* to, std::int32_t value)
    {
        std::uint32_t left = static_cast<std::uint32_t>(value);
        if (value < 0) {
            *to++ = '-';
            left = 0 - left;
        }
        char digits[10];
        int count = 0;
        do {
            digits[count++] = static_cast<char>('0' + left % 10);
            left /= 10;
        } while (left != 0);
        while (count > 0)
            *to++ = digits[--count];
        return to;
    }
    void cut(const char* end) { m_bytes.shrinkTo(static_cast<std::size_t>(end - m_bytes.begin())); }

    gs::GrowingBuffer<char> m_bytes;
};

inline Operators& Operators::real(double value)
{
    constexpr double kMost = 2'000'000; // times 1000 it is still a whole number of 32 bits
    value = value > kMost ? kMost : value < -kMost ? -kMost : value;
    const auto thousandths = static_cast<std::int32_t>(std::lround(value * 1000));
    if (thousandths < 0)
        text("-");
    const std::int32_t size = std::abs(thousandths);
    std::int32_t part = size % 1000;
    if (size >= 1000 || part == 0) {
        number(size / 1000);
        m_bytes.shrinkTo(m_bytes.size() - 1);
    }
    if (part != 0) {
        char digits[4] = {'.', static_cast<char>('0' + part / 100),
                          static_cast<char>('0' + part / 10 % 10),
                          static_cast<char>('0' + part % 10)};
        std::size_t count = 4;
        while (digits[count - 1] == '0')
            --count;
        text({digits, count});
    }
    return text(" ");
}

} // namespace plot
