#include <db/local_time.h>

#include <ctime>

namespace db {

namespace {

constexpr std::int64_t kDayMs = 86'400'000;
constexpr std::int64_t kFirstDay = 1'721'426, kLastDay = 5'373'484; // years 1 to 9999

bool isInCalendar(const TvDbDate& date)
{
    return date.julianDay() >= kFirstDay && date.julianDay() <= kLastDay &&
           date.millisecondsOfDay() >= 0 && date.millisecondsOfDay() < kDayMs;
}

std::tm brokenDown(const TvDbDate& date)
{
    const TvDbDate::Calendar at = date.calendar();
    std::tm parts{};
    parts.tm_year = at.year - 1900;
    parts.tm_mon = at.month - 1;
    parts.tm_mday = at.day;
    parts.tm_hour = at.hour;
    parts.tm_min = at.minute;
    parts.tm_sec = at.second;
    parts.tm_isdst = -1; // to be found out
    return parts;
}

TvDbDate fromSeconds(std::int64_t seconds, std::int64_t milliseconds)
{
    return TvDbDate::fromUnixMilliseconds(seconds * 1000 + milliseconds);
}

} // namespace

TvDbDate localFromUtc(const TvDbDate& utc)
{
    if (!isInCalendar(utc))
        return utc;
    std::tm parts = brokenDown(utc);
    const std::time_t moment = ::timegm(&parts);
    std::tm local{};
    if (!::localtime_r(&moment, &local))
        return utc;
    return fromSeconds(::timegm(&local), utc.millisecondsOfDay() % 1000);
}

TvDbDate utcFromLocal(const TvDbDate& local)
{
    if (!isInCalendar(local))
        return local;
    std::tm parts = brokenDown(local);
    return fromSeconds(std::mktime(&parts), local.millisecondsOfDay() % 1000);
}

} // namespace db
