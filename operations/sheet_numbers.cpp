#include "operations/sheet_numbers.h"

namespace operations {

namespace {

bool isDigit(TvChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

} // namespace

std::optional<SheetNumbers> SheetNumbers::make(const TvString& first, int step)
{
    const std::u16string_view text = first.view();
    std::size_t from = text.size();
    while (from > 0 && isDigit(text[from - 1]))
        --from;
    if (from == text.size() || step < 1)
        return std::nullopt;
    return SheetNumbers(TvString(text.substr(0, from)), TvString(text.substr(from)), step);
}

/// On paper: digit by digit from the right, so that no number is too large.
TvString SheetNumbers::at(std::size_t index) const
{
    std::u16string digits(m_digits.view());
    std::uint64_t rest = static_cast<std::uint64_t>(index) * static_cast<std::uint64_t>(m_step);
    for (std::size_t i = digits.size(); i > 0 && rest > 0; --i) {
        rest += static_cast<std::uint64_t>(digits[i - 1] - u'0');
        digits[i - 1] = static_cast<TvChar>(u'0' + rest % 10);
        rest /= 10;
    }
    for (; rest > 0; rest /= 10)
        digits.insert(digits.begin(), static_cast<TvChar>(u'0' + rest % 10));
    return m_prefix + TvString(digits);
}

} // namespace operations
