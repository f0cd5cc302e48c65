#pragma once

#include <span>

#include <base/tv_string.h>
#include <db/tv_db_database.h>
#include <gs/picture.h>

namespace gs {

/// The picture in a file that @p database names: a PNG, a JPEG, or a bitmap that is not
/// packed.
///
/// Looked for where the name says, beside the drawing when that is relative, and by its last part
/// beside the drawing. Network paths are left alone.
/// @return null when there is none that can be read.
std::shared_ptr<const Picture> pictureOfFile(TvDbDatabase& database, const TvString& name);

/// The first picture among the bytes that another program left in a drawing; null without one.
std::shared_ptr<const Picture> pictureWithin(std::span<const std::uint8_t> bytes);

} // namespace gs
