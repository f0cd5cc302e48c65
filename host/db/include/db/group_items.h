#pragma once

#include <cstdint>
#include <optional>

#include <db/record.h>

namespace db {

/// Extended data and xrecords are lists of items: a group code as in DXF, and a value whose kind
/// follows from the code.
///
/// In records: an object's "eed" is an array of { app, items, data }, an XRECORD's "content" is
/// { items, data }. An item has "code" (extended data: 1000 and up), and beside it, by its kind,
/// "integer", "point" (a real: its x), "text", "handle" or "bytes". "data" is empty, but for lists
/// that do not follow the rules: those are kept there as they are, and have no items.
enum class ItemKind : std::uint8_t {
    Text,  ///< text; integer: the code page it was read in, 0 for the drawing's own
    Point, ///< three reals
    Real,
    Short, ///< 16 bits, signed
    Long,  ///< 32 bits, signed
    Wide,  ///< 64 bits
    Byte,  ///< 8 bits, unsigned
    Brace, ///< integer: 0 opens, 1 closes a group of extended data
    Binary,
    Handle,
};

/// Where the parts lie, for codecs.
struct ItemSlots {
    static constexpr std::uint32_t kCode = 0, kInteger = 1, kPoint = 2, kText = 5, kHandle = 6,
                                   kBytes = 7, kSize = 8;
};
struct ContentSlots {
    static constexpr std::uint32_t kItems = 0, kData = 1, kApplication = 2, kExtendedSize = 3;
};

/// The kind of an xrecord's item; nullopt for codes that cannot stand there.
std::optional<ItemKind> xrecordItemKind(int code);
/// The kind of an item of extended data, 1000 to 1071.
std::optional<ItemKind> extendedItemKind(int code);
/// What the handle of an item does to its target; nullopt where it is just a number.
std::optional<ReferenceKind> itemReferenceKind(int code);

} // namespace db
