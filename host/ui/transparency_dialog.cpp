#include "transparency_dialog.h"

#include <QIntValidator>
#include <QLineEdit>

namespace ui {

namespace {

constexpr int kPercent = 10, kIsOn = 11; // ids
constexpr int kMostTransparent = 90;

} // namespace

TransparencyDialog::TransparencyDialog(bool isOn, int percent, QWidget* parent)
    : CTvUiDialog(kNumber, parent), m_isOn(isOn), m_percent(percent)
{
}

bool TransparencyDialog::OnInitDialog()
{
    if (auto* edit = Item<QLineEdit>(kPercent)) {
        auto* numbers = new QIntValidator(0, kMostTransparent, edit); // owned by the edit
        numbers->setLocale(QLocale::c());
        edit->setValidator(numbers);
        edit->setAlignment(Qt::AlignRight);
    }
    SetDlgItemText(kPercent, TvString().format(u"%d", m_percent));
    CheckDlgButton(kIsOn, m_isOn);
    FocusDlgItem(kPercent);
    return false;
}

void TransparencyDialog::OnOK()
{
    const auto* edit = Item<QLineEdit>(kPercent);
    if (!edit || !edit->hasAcceptableInput()) {
        FocusDlgItem(kPercent);
        return;
    }
    m_percent = edit->text().toInt();
    m_isOn = IsDlgButtonChecked(kIsOn);
    EndDialog(text::kIdOk);
}

} // namespace ui
