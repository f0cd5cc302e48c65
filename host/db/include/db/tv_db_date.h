#pragma once

#include <compare>
#include <cstdint>

#include <base/tv_string.h>

/// A moment as drawings keep it: a julian day, which begins at midnight here, and the milliseconds
/// since. Which time zone it is in, its place says (drawings: UTC).
class TvDbDate
{
public:
    TvDbDate() = default;
    TvDbDate(std::int64_t julianDay, std::int64_t milliseconds)
        : m_day(julianDay), m_milliseconds(milliseconds)
    {
    }
    /// From 100 ns units since 1601-01-01, as file times count.
    static TvDbDate fromFileTime(std::uint64_t fileTime);
    /// From milliseconds since 1970-01-01.
    static TvDbDate fromUnixMilliseconds(std::int64_t milliseconds);

    std::int64_t julianDay() const { return m_day; }
    std::int64_t millisecondsOfDay() const { return m_milliseconds; }
    /// The part of the day that has passed, 0 to 1.
    double julianFraction() const { return static_cast<double>(m_milliseconds) / 86400000.0; }
    void setJulianDay(std::int64_t day) { m_day = day; }
    void setJulianFraction(double fraction);
    /// Never set: day 0.
    bool isNull() const { return m_day == 0 && m_milliseconds == 0; }

    struct Calendar {
        int year = 0, month = 0, day = 0; ///< proleptic Gregorian; month and day from 1
        int hour = 0, minute = 0, second = 0, millisecond = 0;
    };
    /// Formula: Fliegel and Van Flandern (1968), for days from 0 on.
    Calendar calendar() const;
    std::int64_t unixMilliseconds() const;
    /// "2026-11-21 14:05:09".
    TvString text() const;

    friend bool operator==(const TvDbDate&, const TvDbDate&) = default;
    friend auto operator<=>(const TvDbDate&, const TvDbDate&) = default;

private:
    std::int64_t m_day = 0;
    std::int64_t m_milliseconds = 0;
};
