#pragma once

#include <base/tv_string.h>

/// Everything that is remembered between two runs goes through these five. Keys begin with
/// "UserInterfaceSettings\", the name of a dialog, a backslash and the name of a value, or with
/// "Config\publish\". All live in one scope of the program's configuration; without a configuration
/// nothing is there and nothing is kept.

/// @return false, with @p out alone, when there is no such value; a value that is no text gives an
/// empty one.
bool ReadConfigText(const TvString& key, TvString& out);
/// True when it worked.
bool WriteConfigText(const TvString& key, const TvString& text);
/// @return false, with @p out alone, when there is no such value; a value that is no integer gives
/// 0.
bool ReadConfigInt(const TvString& key, int& out);
bool WriteConfigInt(const TvString& key, int value);
/// Removes a key and all below it. True when something went.
bool RemoveConfigItem(const TvString& key);
