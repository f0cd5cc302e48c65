#pragma once

#include <base/status.h>

class TvSmDatabase;

/// Makes the drawing of a new sheet: a copy of @p templatePath in which the layout
/// @p templateLayoutName, as @p layoutName, is the only one besides the model, and is shown. It
/// knows its sheet set, and has the current format, whatever the template had.
///
/// A file that is there is replaced. Nothing reaches the disk until the drawing is whole.
/// @param database     whose file the drawing notes; null is refused.
/// @param drawingPath  absolute.
/// @param handleText   the handle of the layout; left alone when it fails.
bool CreateSheetDrawingFromTemplate(const TvSmDatabase* database, const TvString& drawingPath,
                                    const TvString& layoutName, const TvString& templatePath,
                                    const TvString& templateLayoutName, TvString& handleText);

namespace operations {

struct SheetDrawing {
    TvString drawing; ///< path
    TvString layout;  ///< the name that the layout gets
    TvString templateDrawing, templateLayout;
    bool isTried = false;   ///< all is done but writing the file
    bool mustBeNew = false; ///< a file that is there is not replaced: Exists
};

/// The same with the reason why it did not work.
/// @return the handle of the layout, as text.
base::Result<TvString> makeSheetDrawing(const TvSmDatabase* database, const SheetDrawing& sheet);

} // namespace operations
