#pragma once

#include <cstdint>

#include <db/schema.h>

namespace db {

/// The value of a guard whose field may hold anything but zero (`if columns:`).
constexpr std::int64_t kAnythingSet = -1;

/// Makes the field at @p word what the guard asks for; one that is so already keeps its value.
inline void open(const Guard& guard, std::uint64_t& word)
{
    const auto value = static_cast<std::uint64_t>(guard.value);
    switch (guard.rule) {
    case Guard::Rule::SetBits:
        if ((word & value) == 0)
            word |= guard.value == kAnythingSet ? 1 : value;
        break;
    case Guard::Rule::ClearBits: word &= ~value; break;
    case Guard::Rule::Equal: word = value; break;
    }
}

} // namespace db
