#include "base/tv_db_handle.h"

namespace {

constexpr std::size_t kMaxDigits = 16; // of 64 bits

/// The value of a hexadecimal digit in either case; -1 for any other unit.
int digitValue(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    return -1;
}

} // namespace

namespace base {

bool parseHex(std::u16string_view text, std::uint64_t& out)
{
    if (text.empty() || text.size() > kMaxDigits)
        return false;
    std::uint64_t value = 0;
    for (const char16_t unit : text) {
        const int digit = digitValue(unit);
        if (digit < 0)
            return false;
        value = value << 4 | static_cast<std::uint64_t>(digit);
    }
    out = value;
    return true;
}

TvString hexText(std::uint64_t value)
{
    char16_t digits[kMaxDigits];
    std::size_t begin = kMaxDigits;
    do {
        digits[--begin] = u"0123456789ABCDEF"[value & 0xf];
        value >>= 4;
    } while (value != 0);
    return TvString(digits + begin, kMaxDigits - begin);
}

} // namespace base

TvDbHandle::TvDbHandle(std::u16string_view text)
{
    base::parseHex(text, m_value);
}

TvString TvDbHandle::text() const
{
    return base::hexText(m_value);
}
