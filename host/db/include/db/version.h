#pragma once

#include <cstddef>
#include <cstdint>

namespace db {

/// The format of a drawing; the number is the one in the file's first six bytes ("AC1032").
enum class Version : std::uint16_t {
    Ac1015 = 1015,
    Ac1018 = 1018,
    Ac1021 = 1021,
    Ac1024 = 1024,
    Ac1027 = 1027,
    Ac1032 = 1032,
};

inline constexpr Version kVersions[] = {Version::Ac1015, Version::Ac1018, Version::Ac1021,
                                        Version::Ac1024, Version::Ac1027, Version::Ac1032};
inline constexpr std::size_t kVersionCount = 6;

/// Position of @p version in kVersions.
constexpr std::size_t indexOf(Version version)
{
    switch (version) {
    case Version::Ac1015: return 0;
    case Version::Ac1018: return 1;
    case Version::Ac1021: return 2;
    case Version::Ac1024: return 3;
    case Version::Ac1027: return 4;
    default: return 5;
    }
}

/// From 2007 on the strings of a record stand together behind its data, as UTF-16.
constexpr bool hasWideText(Version version)
{
    return version >= Version::Ac1021;
}

} // namespace db
