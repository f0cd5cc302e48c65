#include <db/tv_db_date.h>

#include <cmath>

namespace {

constexpr std::int64_t kDayMs = 86'400'000;
constexpr std::int64_t kUnixEpochDay = 2'440'588;     // 1970-01-01
constexpr std::int64_t kFileTimeEpochDay = 2'305'814; // 1601-01-01

/// A day and what is left over, both counted from @p epochDay, for times before it too.
TvDbDate fromMilliseconds(std::int64_t epochDay, std::int64_t milliseconds)
{
    std::int64_t days = milliseconds / kDayMs;
    std::int64_t rest = milliseconds % kDayMs;
    if (rest < 0) {
        rest += kDayMs;
        --days;
    }
    return {epochDay + days, rest};
}

} // namespace

TvDbDate TvDbDate::fromFileTime(std::uint64_t fileTime)
{
    return fromMilliseconds(kFileTimeEpochDay, static_cast<std::int64_t>(fileTime / 10'000));
}

TvDbDate TvDbDate::fromUnixMilliseconds(std::int64_t milliseconds)
{
    return fromMilliseconds(kUnixEpochDay, milliseconds);
}

void TvDbDate::setJulianFraction(double fraction)
{
    const double milliseconds = std::floor(fraction * static_cast<double>(kDayMs) + 0.5);
    if (!(milliseconds >= 0))
        m_milliseconds = 0;
    else
        m_milliseconds =
            milliseconds >= kDayMs ? kDayMs - 1 : static_cast<std::int64_t>(milliseconds);
}

TvDbDate::Calendar TvDbDate::calendar() const
{
    Calendar out;
    // Days far out of any calendar (damaged files) are cut where the formula ends.
    const std::int64_t day = m_day < 0 ? 0 : m_day > 5'373'484 ? 5'373'484 : m_day;
    std::int64_t l = day + 68569;
    const std::int64_t n = 4 * l / 146097;
    l -= (146097 * n + 3) / 4;
    const std::int64_t i = 4000 * (l + 1) / 1461001;
    l -= 1461 * i / 4 - 31;
    const std::int64_t j = 80 * l / 2447;
    out.day = static_cast<int>(l - 2447 * j / 80);
    out.month = static_cast<int>(j + 2 - 12 * (j / 11));
    out.year = static_cast<int>(100 * (n - 49) + i + j / 11);
    const std::int64_t rest = m_milliseconds < 0 || m_milliseconds >= kDayMs ? 0 : m_milliseconds;
    out.hour = static_cast<int>(rest / 3'600'000);
    out.minute = static_cast<int>(rest / 60'000 % 60);
    out.second = static_cast<int>(rest / 1000 % 60);
    out.millisecond = static_cast<int>(rest % 1000);
    return out;
}

std::int64_t TvDbDate::unixMilliseconds() const
{
    return (m_day - kUnixEpochDay) * kDayMs + m_milliseconds;
}

TvString TvDbDate::text() const
{
    const Calendar at = calendar();
    return TvString().format(TvString(u"%04d-%02d-%02d %02d:%02d:%02d"), at.year, at.month, at.day,
                             at.hour, at.minute, at.second);
}
