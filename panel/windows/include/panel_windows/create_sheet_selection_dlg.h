#pragma once

#include <panel/new_selection.h>
#include <ui/tv_ui_dialog.h>

/// Makes a named selection of what is selected in the tree. Whoever runs it holds the set's lock,
/// and keeps the change when it ends with OK.
class CCreateSheetSelectionDlg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 58, kName = 59, kCount = 60;

    /// @param database  not null; outlives the dialog. @param handles  of subsets and sheets.
    CCreateSheetSelectionDlg(TvSmDatabase* database, std::vector<TvString> handles);

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    panel::NewSelection m_selection;
};
