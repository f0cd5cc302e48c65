#pragma once

#include "ui/tv_ui_dialog.h"

namespace ui {

/// Asks how far a palette set can be seen through, in percent.
class TransparencyDialog : public CTvUiDialog
{
public:
    static constexpr int kNumber = 10001;

    TransparencyDialog(bool isOn, int percent, QWidget* parent);
    bool isOn() const { return m_isOn; }
    int percent() const { return m_percent; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    bool m_isOn;
    int m_percent;
};

} // namespace ui
