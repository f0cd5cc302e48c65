#pragma once

#include <cstdint>
#include <optional>

#include <base/tv_string.h>

namespace operations {

/// Numbers of sheets that count up: "A-101", "A-102"; "009", "010".
///
/// What stands in front of the digits at the end stays; leading zeros keep the width as long as the
/// number fits into it.
class SheetNumbers
{
public:
    /// @param first  must end in a digit (0 to 9).
    /// @param step   from one to the next, 1 or more.
    /// @return none when it makes no sense.
    static std::optional<SheetNumbers> make(const TvString& first, int step);
    /// The number that comes @p index after the first one. There is no largest.
    TvString at(std::size_t index) const;

private:
    SheetNumbers(TvString prefix, TvString digits, int step)
        : m_prefix(std::move(prefix)), m_digits(std::move(digits)), m_step(step)
    {
    }
    TvString m_prefix;
    TvString m_digits;
    int m_step;
};

} // namespace operations
