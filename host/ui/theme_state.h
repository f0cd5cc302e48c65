#pragma once

#include "ui/theme.h"

namespace ui {

/// What theme() answers from now on; whoever calls it dresses the application too.
void setTheme(Theme theme);

} // namespace ui
