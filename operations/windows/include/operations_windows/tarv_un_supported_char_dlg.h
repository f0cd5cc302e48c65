#pragma once

#include <ui/tv_ui_dialog.h>

/// Tells that a name holds a character that it may not, and which those are. Asks nothing.
class CTarvUnSupportedCharDlg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 119;

    explicit CTarvUnSupportedCharDlg(QWidget* parent = nullptr) : CTvUiDialog(kNumber, parent) {}

protected:
    bool OnInitDialog() override;
};
