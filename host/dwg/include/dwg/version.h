#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace dwg {

/// The format of a drawing, by the six bytes that it begins with. The number is the one in those
/// bytes, so that "2010 and later" reads `version >= Version::Ac1024`.
enum class Version : std::uint16_t {
    Ac1015 = 1015, ///< 2000: flat container, strings of 8 bits
    Ac1018 = 1018, ///< 2004: paged container, strings of 8 bits
    Ac1021 = 1021, ///< 2007: Reed-Solomon pages, strings in a stream of their own
    Ac1024 = 1024, ///< 2010
    Ac1027 = 1027, ///< 2013
    Ac1032 = 1032, ///< 2018
};

/// The version that @p file begins with; nullopt when it is none of ours.
std::optional<Version> versionOf(std::span<const std::uint8_t> file);
/// The version with this name ("AC1032"); nullopt when it is none of ours.
std::optional<Version> versionNamed(std::string_view name);
/// "AC1015" and so on: the first six bytes of a file.
std::string_view nameOf(Version version);

/// From 2007 on the strings of a record stand together behind its data, as UTF-16.
constexpr bool hasStringStream(Version version)
{
    return version >= Version::Ac1021;
}
/// From 2010 on a record tells the size of its handle stream in front, and its type is coded as OT.
constexpr bool hasHandleStreamSize(Version version)
{
    return version >= Version::Ac1024;
}

} // namespace dwg
