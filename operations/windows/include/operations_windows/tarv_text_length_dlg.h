#pragma once

#include <ui/tv_ui_dialog.h>

/// Tells that a name is missing, or is nothing but blanks. Asks nothing.
class CTarvTextLengthDlg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 118;

    explicit CTarvTextLengthDlg(QWidget* parent = nullptr) : CTvUiDialog(kNumber, parent) {}

protected:
    /// The words stand in a panel that is painted.
    QWidget* MakeControl(const text::ControlTemplate& row, QWidget* parent) override;
};
