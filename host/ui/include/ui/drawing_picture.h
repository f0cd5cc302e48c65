#pragma once

#include <QImage>

#include <db/tv_db_object_id.h>

class TvDbDatabase;

namespace ui {

/// Drawings beyond so many bytes get no picture but the one that they keep: to draw one takes long.
constexpr std::int64_t kLargestDrawnFile = std::int64_t(8) << 20;

/// The picture of a layout: the one that the drawing keeps of it, else drawn now.
/// @param longestSide  pixels, of one that is drawn.
/// @return null for what is no layout, and when there is nothing to show.
QImage layoutPicture(TvDbObjectId layout, int longestSide = 256);

/// The picture of a drawing's file: the one that it keeps, else drawn now from what it holds.
/// @return null for what is no drawing, shows nothing, or is too large to be drawn (above).
QImage drawingPicture(const TvString& path, int longestSide = 256);

} // namespace ui
