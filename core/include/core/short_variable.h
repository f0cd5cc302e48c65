#pragma once

#include <cstdint>
#include <optional>

#include <base/tv_string.h>

namespace core {

/// The value of a system variable that is a short integer; nullopt when it cannot be read.
std::optional<std::int16_t> shortVariable(const TvChar* name);

} // namespace core
