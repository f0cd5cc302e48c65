#pragma once

#include <base/tv_string.h>

namespace cli {

/// A file's name as it can be typed, or pasted, into a shell's command line: in quotes where the
/// shell would take one of its characters for something else, and never like an option.
TvString shellWord(const TvString& name);

} // namespace cli
