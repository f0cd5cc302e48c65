#pragma once

#include <rx/module_loader.h>

/// A text of the resource module; empty when there is no such text, or no resource module.
TvString LoadResourceText(int number);
/// The same, at most 1023 units of it; "Missing string!" when there is no such text.
TvString LoadResourceTextChecked(int number);

namespace module {

/// The resource module of this module: loaded with the module itself, before any message.
rx::ModuleLoader::Handle resourceModule();
/// Loads it, unless it is there. Missing it is silent.
void loadResourceModule();
/// Nothing when it is not there.
void freeResourceModule();

} // namespace module
