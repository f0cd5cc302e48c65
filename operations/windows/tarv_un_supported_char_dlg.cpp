#include "operations_windows/tarv_un_supported_char_dlg.h"

bool CTarvUnSupportedCharDlg::OnInitDialog()
{
    constexpr int kHeading = 10; // id
    if (QWidget* heading = GetDlgItem(kHeading)) {
        QFont font = heading->font();
        font.setBold(true);
        heading->setFont(font);
    }
    return true;
}
