#pragma once

#include <cstdint>

namespace dwg {

/// A handle as it stands in a record: what kind of reference, and an absolute or relative value.
struct HandleReference {
    std::uint8_t code = 0; ///< 0 own, 2 soft owner, 3 hard owner, 4 soft pointer, 5 hard pointer,
                           ///< 6 next, 8 previous, 0xA plus value, 0xC minus value
    std::uint8_t size = 0; ///< bytes the value takes in the file, 0 to 8 (leading zeros are legal)
    std::uint64_t value = 0; ///< most significant byte first in the file

    /// The handle meant, in a record whose own handle is @p owner; 0 is none. Never to be trusted:
    /// it may point at nothing, and relative ones wrap around.
    std::uint64_t resolve(std::uint64_t owner) const
    {
        switch (code) {
        case 0x6: return owner + 1;
        case 0x8: return owner - 1;
        case 0xA: return owner + value;
        case 0xC: return owner - value;
        default: return value;
        }
    }
    bool isRelative() const { return code >= 6; }

    friend bool operator==(const HandleReference&, const HandleReference&) = default;
};

} // namespace dwg
