#pragma once

class CSheetSetDlg;

namespace panel {

/// Puts in what makes and manages selections of sheets: their dialogs are windows.
void addSelectionCommands(CSheetSetDlg& page);

} // namespace panel
