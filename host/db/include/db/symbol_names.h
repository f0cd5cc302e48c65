#pragma once

#include <base/tv_string.h>

namespace db {

/// Whether users may give that name to layouts, views and other things with names: 1 to 255 units,
/// no blank at either end, none of the characters <>/\":;?*|,=`, and none that nobody sees: control
/// characters, those that turn the direction of text, and halves of pairs.
///
/// Names that drawings bring along are what they are; this is asked before one is given.
bool isSymbolName(const TvString& name);

} // namespace db
