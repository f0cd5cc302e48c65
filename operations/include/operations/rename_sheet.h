#pragma once

#include <operations/rename_names.h>

class TvSmDatabase;
class TvSmSheet;

namespace operations {

/// What can be done to the controls in which a sheet is renamed.
struct RenameControls {
    bool layoutCheck = false, layoutPrefix = false;
    bool fileCheck = false, filePrefix = false;
    bool layoutField = false, fileField = false; ///< can be written
    bool previous = false, next = false;
};

/// How an attempt to rename ended. What is not said otherwise was told to the user here.
enum class RenameOutcome {
    Done,
    TextMissing,          ///< told by the caller
    UnsupportedCharacter, ///< told by the caller
    Duplicate,
    NoLayout,    ///< the sheet has none; nobody is told
    DrawingGone, ///< the names are those that the set knows now: show them
    FileExists,
    LayoutGone, ///< there is no layout any more: show it
    LayoutRefused,
};

/// Number and title of one sheet, the name of its layout and of its drawing's file, as they are and
/// as they are to be.
///
/// Invariants:
///  1. A check fails before anything is changed: texts, characters, duplicates, files.
///  2. The layout is renamed under the file's old name; then the file moves; number and title come
///     last, and reach the set's file only with the lock that the caller holds.
///  3. No file is ever overwritten, and none that somebody else uses is touched.
class SheetRename
{
public:
    /// Looks at the sheet and its drawing.
    /// @param sheet, database  not owned; outlive this.
    /// @return false for null, for a sheet without a layout, and without a document manager.
    bool load(TvSmSheet* sheet, TvSmDatabase* database);

    /// As loaded, or as the last attempt found it.
    const RenameNames& names() const { return m_names; }
    /// Of the drawing, without a final separator.
    const TvString& folder() const { return m_folder; }
    bool hasPrevious() const { return m_hasPrevious; }
    bool hasNext() const { return m_hasNext; }
    bool isDrawingMissing() const { return m_isDrawingMissing; }
    bool isLayoutMissing() const { return m_isLayoutMissing; }
    /// Somebody has the drawing open for writing.
    bool isLocked() const { return m_isLocked; }
    /// It is a document of this program.
    bool isOpenHere() const { return m_isOpenHere; }
    bool canRenameLayout() const
    {
        return !m_isDrawingMissing && !m_isLayoutMissing && (!m_isLocked || m_isOpenHere);
    }
    bool canRenameFile() const { return !m_isDrawingMissing && !m_isLocked; }

    RenameControls controls(const RenameOptions& options) const;
    /// Those of @p options that have an effect: a name that cannot change follows nothing.
    RenameOptions inForce(const RenameOptions& options) const;
    /// Checks what was typed, and does it. With Done the options are kept, too.
    /// @pre the database is locked by the caller; it is the current one.
    RenameOutcome apply(const RenameNames& typed, const RenameOptions& options);

private:
    void lookAtDrawing();
    bool lookAtLayout();
    RenameOutcome check(RenameNames& typed) const;
    RenameOutcome drawingGone();

    TvSmSheet* m_sheet = nullptr;       // not owned
    TvSmDatabase* m_database = nullptr; // not owned
    RenameNames m_names;
    TvString m_folder;
    TvString m_path; // resolved; empty when it leads nowhere
    bool m_hasPrevious = false, m_hasNext = false;
    bool m_isDrawingMissing = true, m_isLayoutMissing = true;
    bool m_isLocked = false, m_isOpenHere = false;
};

} // namespace operations
