#pragma once

#include <base/tv_string.h>

class TvApDocument;

namespace ed {

/// Saves, under its own name when @p path is empty, and tells what came of it.
bool saveNamed(TvApDocument& document, const TvString& path, int version);
/// Asks for name and version first. False when it was not saved.
bool saveUnderAskedName(TvApDocument& document);

/// Whether the document may be closed now: what was changed was saved, or the user does not want
/// it. Without anybody to ask: not.
bool mayClose(TvApDocument& document);

/// A file that the user typed, in full; with the extension when it has none.
TvString absoluteFile(const TvString& typed, const TvChar* extension);

} // namespace ed
