#pragma once

#include <cstdint>

#include <db/record.h>

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
    /// The same of a colour's structure; records of AC1015 have the number of the palette alone.
    static OwnColor fromRecord(const db::RecordView& color, db::Version version);

    friend bool operator==(const OwnColor&, const OwnColor&) = default;
};

} // namespace gs
