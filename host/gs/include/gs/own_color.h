#pragma once

#include <cstdint>

namespace gs {

/// A colour that a piece of an object has in place of the object's own.
struct OwnColor {
    /// None: the object's colour.
    enum class Kind : std::uint8_t { None, ByLayer, ByBlock, Index, Rgb };

    Kind kind = Kind::None;
    std::uint32_t value = 0; ///< a number of the palette, 1 to 255; or 0xRRGGBB

    /// From a number of the palette: 0 is by block, 256 by layer, anything else out of range none.
    static OwnColor fromIndex(std::int64_t index);
    static OwnColor fromRgb(std::uint32_t rgb) { return {Kind::Rgb, rgb & 0xFFFFFF}; }
    /// From a colour as records of objects keep it ("value"; its highest byte says the kind).
    static OwnColor fromRecord(std::int64_t value);

    friend bool operator==(const OwnColor&, const OwnColor&) = default;
};

} // namespace gs
