#pragma once

#include <base/tv_db_handle.h>

/// The identity of a persistent object: a number that is unique in its database, stable across save
/// and load, and never given to another object.
class TvSmObjectId
{
public:
    TvSmObjectId() = default;
    explicit TvSmObjectId(std::uint64_t number) : m_number(number) {}

    /// The handle as text: the letter g and hexadecimal digits in upper case ("g1A"); empty for an
    /// object that has none (a container, a database, an object before initNew).
    TvString getHandle() const;
    bool isNull() const { return m_number == 0; }

    friend bool operator==(TvSmObjectId, TvSmObjectId) = default;

private:
    std::uint64_t m_number = 0;
};

namespace sm {
/// The number behind a handle text; 0 when it is none. Digits in either case; without the letter g
/// it is no handle.
std::uint64_t handleNumber(std::u16string_view handleText);
std::uint64_t handleNumber(std::string_view handleText);
/// Handles at or above this are refused: nobody gets there by counting.
constexpr std::uint64_t kHandleLimit = std::uint64_t(1) << 60;
} // namespace sm
