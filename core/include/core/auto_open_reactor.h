#pragma once

#include <vector>

#include <base/tv_db_handle.h>
#include <base/tv_string.h>
#include <ed/tv_editor.h>

class TvDbDatabase;
class TvSmSubset;

/// Opens the sheet set of a drawing that is opened, keeps the views of its sheets in step with it,
/// and lets the palettes follow the theme.
///
/// Listens from its making to its end. What it writes into drawings is no part of their history,
/// and what it finds wrong is no error: only a link that leads nowhere is asked about.
class TvEdAutoOpenSheetSetReactor : public TvEditorReactor
{
    TVRX_DECLARE_MEMBERS(TvEdAutoOpenSheetSetReactor)

    TvEdAutoOpenSheetSetReactor();
    /// Leaves the open drawings, too.
    ~TvEdAutoOpenSheetSetReactor() override;

    /// Null arguments are nothing. Views are synchronised in any case; the set is looked for when
    /// SSLOCATE and SSMAUTOOPEN are on and something stands on one of the paper layouts:
    ///  - among the sets that are open: the drawing is told its set, which is shown;
    ///  - by the set that the drawing names: opened and shown, when the drawing is a sheet of it;
    ///    otherwise the drawing forgets it.
    void endDwgOpen(const TvChar* path, TvDbDatabase* database) override;
    /// Named views may have changed with VIEW and by going back and forth in history.
    void commandEnded(const TvChar* name) override;
    void sysVarChanged(const TvChar* name) override;
    void documentClosing(TvDbDatabase* database) override;
};

namespace core {

struct PaperLayout {
    TvString name;
    TvDbHandle handle;
};

/// The layouts of a drawing that can be sheets, in the order of its dictionary. Empty for null.
std::vector<PaperLayout> populatedLayouts(const TvDbDatabase* database);

} // namespace core

/// The first sheet below @p subset, at any depth and in order, that stands in that drawing and on
/// one of @p layouts.
/// @param match  that layout; alone when there is none.
bool FindSheetForOpeningDrawing(const TvSmSubset* subset, const TvString& path,
                                const std::vector<core::PaperLayout>& layouts,
                                core::PaperLayout& match);
