#pragma once

#include <base/tv_string.h>

/// Where the program keeps what is the user's, by the customs of the desktop.
///
/// Each is the program's own folder below the one that a variable names (a relative value is
/// invalid and ignored), else below the user's home; empty when neither says where. None is made
/// here.
namespace base {

/// Preferences: $XDG_CONFIG_HOME/tarvik, else $HOME/.config/tarvik.
TvString configFolder();
/// What the user made or was given: $XDG_DATA_HOME/tarvik, else $HOME/.local/share/tarvik.
TvString dataFolder();
/// What the program remembers: $XDG_STATE_HOME/tarvik, else $HOME/.local/state/tarvik.
TvString stateFolder();
/// What may be deleted at any time: $XDG_CACHE_HOME/tarvik, else $HOME/.cache/tarvik.
TvString cacheFolder();
/// What lives as long as the user is logged in: $XDG_RUNTIME_DIR/tarvik; there is no other place.
TvString runtimeFolder();

} // namespace base
