#pragma once

/// All words for people, by number. A text is a printf-style pattern for TvString::format.
///
/// Ranges: 300-8999 the module's own numbers, 21000-21999 reasons of failures, 22000-22999 the
/// command-line tool, 23000-23999 the host. Numbers are forever.
namespace text {

/// UTF-16 pattern of text @p number in the language in force, or in English; null when there is no
/// such text.
const char16_t* find(int number);

/// Takes a language by its tag ("en"); false, and no change, when there are no texts in it.
bool setLanguage(const char* tag);

/// Every number there is, in ascending order, for the tests that hold the tables against each
/// other.
int count();
int numberAt(int index);

} // namespace text
