#include "missing_link_window.h"

#include <QApplication>

#include <core/missing_sheet_set_link_dialog.h>
#include <rx/resource_module.h>

namespace panel {

namespace {

std::optional<int> ask(const TvString& drawingPath, const TvString& sheetSetPath)
{
    if (!dynamic_cast<QApplication*>(QCoreApplication::instance()))
        return std::nullopt;
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    MissingLinkWindow window(drawingPath, sheetSetPath);
    const int answer = window.DoModal();
    return answer == CTvUiDialog::kFailed ? std::nullopt : std::optional(answer);
}

/// The question gets its window by linking this library.
[[gnu::constructor]] void onLoad()
{
    core::setMissingLinkWindow(&ask);
}

} // namespace

MissingLinkWindow::MissingLinkWindow(TvString drawingPath, TvString sheetSetPath)
    : CTvUiDialog(kNumber), m_drawingPath(std::move(drawingPath)),
      m_sheetSetPath(std::move(sheetSetPath))
{
}

bool MissingLinkWindow::OnInitDialog()
{
    SetDlgItemText(kDrawing, m_drawingPath);
    SetDlgItemText(kSheetSet, m_sheetSetPath);
    FocusDlgItem(text::kIdCancel); // Enter keeps what is there
    return false;
}

} // namespace panel
