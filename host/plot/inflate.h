#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace plot {

/// Unpacks a zlib stream. nullopt for a damaged one, and for more than @p limit bytes.
std::optional<std::string> inflated(std::span<const std::byte> packed, std::size_t limit);
/// Packs into a zlib stream. @param level  1 (fast) to 9.
std::string deflated(std::string_view bytes, int level);

} // namespace plot
