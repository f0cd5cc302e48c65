#pragma once

#include <cstdint>
#include <string>

#include <db/record_editor.h>

namespace dxf {

// Colours of records other than entities: an index in 2000, else 32 bits with the kind on top.

/// The index of a file: 0 by block, 256 by layer, 257 none.
void setColorIndex(db::RecordEditor& color, std::int64_t index, db::Version version);
/// 24 bits.
void setTrueColor(db::RecordEditor& color, std::int64_t rgb);
/// "BOOK$NAME", or the name alone.
void setColorName(db::RecordEditor& color, std::u16string_view name);
/// All 32 bits; in 2000 the index that they tell besides.
void setWideColor(db::RecordEditor& color, std::int64_t value, db::Version version);

std::int64_t colorIndex(const db::RecordView& color, db::Version version);
bool isTrueColor(const db::RecordView& color);
std::u16string colorName(const db::RecordView& color);
std::int32_t wideColor(const db::RecordView& color, db::Version version);

/// The palette's colour, 24 bits.
std::uint32_t paletteColor(int index);
/// The index of the palette's colour that is nearest.
int nearestIndex(std::uint32_t rgb);

} // namespace dxf
