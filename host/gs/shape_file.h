#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include <gs/path.h>

namespace gs {

/// Figures by number, each told in a small language of strokes.
class ShapeFile
{
public:
    /// From the bytes of a compiled file of shapes; nullopt for what is none. A shape whose bytes
    /// reach beyond the file is left out.
    static std::optional<ShapeFile> fromBytes(std::span<const std::byte> bytes);

    /// The strokes of a shape, in units of its own; null when there is none of that number. The
    /// answer stays where it is. What a shape draws ends where its strokes make no sense, or go on
    /// without end.
    const Path* shape(std::uint16_t number);

private:
    friend class ShapePen;

    std::span<const std::uint8_t> strokesOf(std::uint16_t number) const;

    std::vector<std::uint8_t> m_bytes;
    struct Range {
        std::size_t at = 0, length = 0;
    };
    std::unordered_map<std::uint16_t, Range> m_strokes;
    std::unordered_map<std::uint16_t, Path> m_drawn;
};

} // namespace gs
