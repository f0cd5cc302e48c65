#pragma once

#include <span>

#include "hooks.h"

namespace dxf {

std::span<const Hook> entityHooks();
std::span<const Hook> textHooks();
std::span<const Hook> curveHooks();
std::span<const Hook> hatchHooks();
std::span<const Hook> tableHooks();
std::span<const Hook> acadTableHooks();
std::span<const Hook> tableStyleHooks();
std::span<const Hook> objectHooks();
std::span<const Hook> fieldHooks();
std::span<const Hook> solidHooks();

} // namespace dxf
