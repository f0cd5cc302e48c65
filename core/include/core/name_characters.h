#pragma once

#include <base/tv_string.h>

/// Whether @p text holds a character that no sheet, subset or selection may have in its name:
/// backslash, less-than, greater-than, slash, question mark, double quote, colon, semicolon,
/// asterisk, bar, comma, equals sign or back-quote.
bool HasUnsupportedSheetChar(const TvString& text);
/// The same, but for the comma.
bool HasUnsupportedNameChar(const TvString& text);
