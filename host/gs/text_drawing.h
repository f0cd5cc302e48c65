#pragma once

#include "scene.h"
#include "text_tools.h"

namespace gs {

/// Puts the letters of a text into the list, and what can be searched for.
void drawTextShape(Scene& scene, TextShape&& shape);

} // namespace gs
