#pragma once

#include <base/tv_string.h>

class TvSmDatabase;
class TvSmSheet;

namespace operations {

/// How the dialog of one sheet ended.
enum class RenameStep : int { Ok = 1, Cancel = 2, Next = 21, Previous = 22 };

/// What a walk over sheets asks of the window that it runs in.
class RenameWalkPorts
{
public:
    virtual ~RenameWalkPorts() = default;
    /// The sheet that is selected now; null when it is none, or gone.
    virtual TvSmSheet* selectedSheet() = 0;
    /// Shows the dialog. @param layoutName  gets the name that the layout has in the drawing.
    virtual RenameStep runDialog(TvSmSheet& sheet, TvString& layoutName) = 0;
    /// The sheet of that handle may be called otherwise now: after its dialog, and once more when
    /// the walk was taken back.
    virtual void labelChanged(const TvString& sheet) = 0;
    virtual void selectPrevious() = 0;
    virtual void selectNext() = 0;
};

/// Renames sheets one after the other until OK, which keeps all, or Cancel, which takes all back
/// but what was never applied.
///
/// Layouts and files change at each step, on disk; number and title with the lock, which spans the
/// walk. Taking back goes from the sheet that was left last to the first one, and stops at one that
/// is no sheet with a layout any more.
/// @param database  the current one; null and a locked one are a quiet no.
/// @return whether it was kept.
bool renameSheets(TvSmDatabase* database, RenameWalkPorts& ports);

} // namespace operations
