#pragma once

#include <ui/tv_ui_dialog.h>

namespace panel {

/// The question whether a drawing is to forget a sheet set that cannot be opened: OK drops the
/// link, all else keeps it.
class MissingLinkWindow : public CTvUiDialog
{
public:
    static constexpr int kNumber = 48, kDrawing = 49, kSheetSet = 50;

    MissingLinkWindow(TvString drawingPath, TvString sheetSetPath);

protected:
    bool OnInitDialog() override;

private:
    TvString m_drawingPath, m_sheetSetPath;
};

} // namespace panel
