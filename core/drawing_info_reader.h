#pragma once

#include <cstdint>
#include <memory>

#include <core/drawing_info_cache.h>

namespace core {

/// Reads a drawing's file.
/// @param apart  in another thread than that of the documents; then nobody is asked who has it.
/// @param time, size  of the file, looked at before: what is written meanwhile is read again.
/// @return null when it cannot be read.
std::unique_ptr<DrawingInfo> readDrawingInfo(const TvString& path, std::uint64_t time,
                                             std::int64_t size, bool apart);

} // namespace core
