#pragma once

#include <optional>

#include "command_texts.h"

class TvApDocument;
class TvDbDatabase;

namespace ed {

// What several commands need to ask. Each gives false or nothing when the user gave up, which
// cancels the command.

/// The working drawing; tells so when there is none.
TvDbDatabase* askedDrawing();
/// The current document; tells so when there is none.
TvApDocument* askedDocument();

/// A line with blanks, trimmed; @p standard for an empty one.
std::optional<TvString> askLine(Wording prompt, const TvString& standard = {});
/// A keyword. @param globals  the same words as those of @p keys, as they are in every language.
std::optional<TvString> askKeyword(Wording prompt, Wording keys, const TvChar* globals,
                                   const TvChar* standard);
/// Yes or no.
std::optional<bool> askYesNo(Wording prompt, bool standard);
/// The list for tvedInitGet().
TvString keywordList(Wording keys, const TvChar* globals);

/// Whether files are asked for at the command line: by FILEDIA, or while a script runs.
bool asksFilesInLine();

struct FileAsking {
    Wording title, prompt;
    TvString standard; ///< for an empty answer; a dialog begins there
    const TvChar* extensions;
    const TvChar* dialogName;
    bool isForSaving = false;
    bool mayBeSeveral = false;
};
/// Files, absolute, with the first extension where they have none. Empty when the user gave up.
std::vector<TvString> askFiles(const FileAsking& asking);

/// A whole number for a text.
TvString numberText(int number);

} // namespace ed
