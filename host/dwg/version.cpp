#include "dwg/version.h"

#include <array>
#include <string>
#include <utility>

namespace dwg {

namespace {

constexpr std::array<std::pair<std::string_view, Version>, 6> kVersions{{
    {"AC1015", Version::Ac1015},
    {"AC1018", Version::Ac1018},
    {"AC1021", Version::Ac1021},
    {"AC1024", Version::Ac1024},
    {"AC1027", Version::Ac1027},
    {"AC1032", Version::Ac1032},
}};

} // namespace

std::optional<Version> versionNamed(std::string_view name)
{
    for (const auto& [text, version] : kVersions)
        if (text == name)
            return version;
    return std::nullopt;
}

std::optional<Version> versionOf(std::span<const std::uint8_t> file)
{
    if (file.size() < 6)
        return std::nullopt;
    return versionNamed(std::string(file.begin(), file.begin() + 6));
}

std::string_view nameOf(Version version)
{
    for (const auto& [text, known] : kVersions)
        if (known == version)
            return text;
    return {};
}

} // namespace dwg
