#pragma once

#include <vector>

#include <base/content_hash.h>
#include <base/file_ops.h>
#include <base/status.h>

namespace operations {

/// How far a rename of several drawings has come. Numbers are stored: add, never renumber.
enum class RenameStage : int {
    Staging = 1,  ///< new contents are written beside the drawings; nothing else was touched
    Leaving = 2,  ///< drawings leave their names, one after the other
    Arriving = 3, ///< all have left; they take their new names, then the set is written
    Done = 4,     ///< the set has the new names: what is left over may go
};

/// What is changed by one rename, as it is kept on disk beside the set while it runs, and behind it
/// so that it can be taken back.
///
/// Form: lines of UTF-8, fields between tabs. The first line is "kvsheetset-rename 1"; the last one
/// "end" and the hash of all before it. In a field %, control characters, blanks and halves of
/// surrogates stand as "%" and four hexadecimal digits of the UTF-16 unit. Lines:
///
///     token   32 hexadecimal digits, in the names of all temporary files
///     stage   RenameStage
///     before  hash of the set's file that the change was made from (low, high)
///     drawing old path, new path, 1 if its content changes, hash of the new one
///     sheet   handle, old and new number, old and new title, drawing (-1: none), layout handle,
///             old and new layout name
///
/// Invariants:
///  1. The journal is on disk, flushed, before anything that it tells of happens; each stage is
///     written before its first step and replaces the former one atomically.
///  2. While it is there, whoever may write the set brings everything to the old state or to the
///     new one, before he does anything else (recoverRename).
///  3. Until the set's file is written everything goes back; from then on nothing does.
///  4. A file is moved only to a name that is free, and only files of ours, known by token and
///     number, are removed: the new content of a drawing that goes back, and the former content of
///     one whose set was written. What somebody made of a new content meanwhile is kept beside it,
///     as "NAME (recovered ...)".
///  5. In the stage Leaving no drawing has its new name; in the stage Arriving each one's new
///     content is at its new name or at its temporary one, never at both or neither.
struct RenameJournal {
    struct Drawing {
        TvString oldPath, newPath;
        bool hasNewContent = false;
        base::ContentHash newContent; ///< of that; known from the stage Leaving on
    };
    struct Sheet {
        TvString handle, oldNumber, newNumber, oldTitle, newTitle;
        int drawing = -1;
        TvString layoutHandle, oldLayout, newLayout;
        friend bool operator==(const Sheet&, const Sheet&) = default;
    };
    std::string token;
    RenameStage stage = RenameStage::Staging;
    base::ContentHash before;
    std::vector<Drawing> drawings;
    std::vector<Sheet> sheets;

    /// Where a drawing's new content waits, in the drawing's folder; of a drawing that only moves,
    /// the drawing itself.
    std::string stagedPath(std::size_t drawing) const;
    /// Where the former content waits while the new one is at its place.
    std::string asidePath(std::size_t drawing) const;
};

/// Hidden, beside the set.
TvString renameJournalPath(const TvString& setPath);
/// The last rename that was done, in the same form.
TvString renameUndoPath(const TvString& setPath);

std::string journalText(const RenameJournal& journal);
/// None when it is no journal of ours, or damaged; never fails otherwise, whatever the bytes.
std::optional<RenameJournal> parseJournal(std::string_view text);

/// Writes it whole, and flushes it.
base::Status writeJournal(base::FileOps& ops, const TvString& path, const RenameJournal& journal);
/// NotFound when there is none; Damaged when it makes no sense.
base::Result<RenameJournal> readJournal(base::FileOps& ops, const TvString& path);

} // namespace operations
