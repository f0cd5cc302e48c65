#pragma once

#include <optional>
#include <vector>

#include <operations/sheet_numbers.h>

class TvSmSheet;
class TvSmSubset;

namespace operations {

/// What stands in the way of a change.
enum class Clash {
    None,
    NumberTooLong,
    NumberCharacters, ///< holds one that no number may
    TitleMissing,
    TitleTooLong,
    TitleCharacters,
    Duplicate,      ///< another sheet of the subset has number and title
    NoLayout,       ///< the sheet has none, so neither layout nor file can be renamed
    DrawingMissing, ///< or its location leads nowhere
    DrawingUnreadable,
    DrawingInUse, ///< about: by whom
    DrawingReadOnly,
    DrawingLinked, ///< a link, or a file of several names: new content would part them
    LayoutMissing,
    LayoutName,  ///< no layout may be called so
    LayoutTaken, ///< another layout of the drawing is called so
    FileName,    ///< no file may be called so
    FilePathTooLong,
    FileExists, ///< about: the file
    FileTwice,  ///< another drawing would be called so
    Stale,      ///< the sheet is not any more what it was when that was noted
};

/// What one sheet is to be called. What is not given stays.
struct SheetTarget {
    TvSmSheet* sheet = nullptr; ///< not owned
    std::optional<TvString> number, title;
    std::optional<TvString> layout;
    std::optional<TvString>
        file; ///< name with extension; of the first sheet that names its drawing
};

/// What becomes of a sheet.
struct SheetEffect {
    TvString handle;
    TvString oldNumber, newNumber, oldTitle, newTitle;
    TvString layoutHandle, oldLayout, newLayout; ///< names in the drawing, where it was looked at
    int drawing = -1;                            ///< its place among the drawings; -1: none
    Clash clash = Clash::None;
    TvString about; ///< who or what stands in the way, where that is known
    bool changesLayout() const { return oldLayout != newLayout; }
};

/// What becomes of a drawing's file.
struct DrawingEffect {
    TvString oldPath, newPath; ///< absolute; both the same when it stays
    bool changesLayouts = false;
    Clash clash = Clash::None;
    TvString about;
    bool moves() const { return oldPath != newPath; }
};

/// All effects of a rename of sheets, worked out and not yet done. A value.
struct RenamePlan {
    std::vector<SheetEffect> sheets;
    std::vector<DrawingEffect> drawings; ///< only those that change, or should
    bool hasClash() const;
    bool changesAnything() const;
};

/// Works out what renaming does, and what stands in its way. Changes nothing.
///
/// Names count at the end: two sheets, layouts or files may exchange theirs. Drawings are read
/// where a layout is to be renamed, and looked at where a file is.
/// @note O(n log n) in the sheets of the set; reads each drawing once.
RenamePlan planRename(const std::vector<SheetTarget>& targets);

/// How the sheets of a subset are to be numbered.
struct RenumberOptions {
    bool renamesLayouts = false; ///< to "number title"
    bool renamesFiles = false;   ///< to "number title.dwg", of the first sheet in each
};
/// New numbers for all sheets below @p scope, in the order of the tree.
std::vector<SheetTarget> renumberTargets(const TvSmSubset& scope, const SheetNumbers& numbers,
                                         const RenumberOptions& options);

} // namespace operations
