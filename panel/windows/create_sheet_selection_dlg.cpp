#include "panel_windows/create_sheet_selection_dlg.h"

#include <resources/texts.h>

namespace {

constexpr int kCountPattern = 331;

} // namespace

CCreateSheetSelectionDlg::CCreateSheetSelectionDlg(TvSmDatabase* database,
                                                   std::vector<TvString> handles)
    : CTvUiDialog(kNumber), m_selection(database, std::move(handles))
{
}

bool CCreateSheetSelectionDlg::OnInitDialog()
{
    SetDlgItemText(kName, m_selection.proposedName());
    SetDlgItemText(kCount, TvString().format(text::find(kCountPattern), m_selection.sheetCount()));
    return true;
}

void CCreateSheetSelectionDlg::OnOK()
{
    if (m_selection.accept(GetDlgItemText(kName)))
        EndDialog(text::kIdOk);
    else
        FocusDlgItem(kName);
}
