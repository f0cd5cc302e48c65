#pragma once

#include <base/tv_string.h>

namespace operations {

/// What is typed for a sheet.
struct RenameNames {
    TvString number, title;
    TvString layout; ///< in the drawing
    TvString file;   ///< of the drawing, with its extension
};

/// Which names follow number and title.
struct RenameOptions {
    bool layoutMatchesSheet = false; ///< the layout is called as the sheet is
    bool layoutHasNumber = false;    ///< with its number in front; only with the one above
    bool fileMatchesSheet = false;
    bool fileHasNumber = false;

    /// As they were kept at the last rename; all off before the first.
    static RenameOptions stored();
    void store() const;
    friend bool operator==(const RenameOptions&, const RenameOptions&) = default;
};

/// "12 Plan"; the title alone when there is no number.
TvString nameOfSheet(const TvString& number, const TvString& title);

/// The names follow the number: those with the number in front are made anew, with a blank in front
/// of the title even where the number is empty.
void followNumber(RenameNames& names, const RenameOptions& options);
/// The names follow the title; an empty number stands in no name.
void followTitle(RenameNames& names, const RenameOptions& options);
/// Both, the title last, so that its rule has the last word.
void followSheet(RenameNames& names, const RenameOptions& options);

} // namespace operations
