#include "operations_windows/create_new_sheet_dialog.h"

#include <QEvent>
#include <QLineEdit>

#include <sm/limits.h>

#include "operations_windows/select_template_dialog.h"
#include "operations_windows/tarv_un_supported_char_dlg.h"

CCreateNewSheetDialog::CCreateNewSheetDialog(QWidget* parent, TvSmSubset* subset)
    : CTvUiDialog(kNumber, parent), m_sheet(*subset, *this)
{
    SetHelpTopic(u"SHEETSET_DIA03");
}

bool CCreateNewSheetDialog::OnInitDialog()
{
    if (!m_sheet.begin()) {
        EndDialog(text::kIdCancel);
        return true;
    }
    auto *number = Item<QLineEdit>(kSheetNumber), *title = Item<QLineEdit>(kTitle);
    number->setMaxLength(sm::kMaxNumberLength);
    title->setMaxLength(sm::kMaxNameLength);
    for (QLineEdit* edit : {number, title})
        connect(edit, &QLineEdit::textChanged, this, [this] { composeFileName(); });
    GetDlgItem(kFileName)->installEventFilter(this);
    SetDlgItemText(kFolder, m_sheet.folder());
    SetDlgItemText(kTemplate, m_sheet.sheetTemplate().label());
    CheckDlgButton(kOpen, operations::NewSheet::opensInEditor());
    return true;
}

void CCreateNewSheetDialog::composeFileName()
{
    if (const std::optional<TvString> name =
            m_sheet.fileNameFor(GetDlgItemText(kSheetNumber), GetDlgItemText(kTitle)))
        SetDlgItemText(kFileName, *name);
}

bool CCreateNewSheetDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn)
        m_sheet.fileNameIsOwn();
    return CTvUiDialog::eventFilter(watched, event);
}

bool CCreateNewSheetDialog::chooseTemplate(operations::SheetTemplate& out)
{
    CSelectTemplateDialog dialog;
    if (dialog.DoModal() != text::kIdOk)
        return false;
    out = {dialog.GetLayoutName(), dialog.GetDrawingPath()};
    return true;
}

void CCreateNewSheetDialog::tellUnsupportedCharacters()
{
    CTarvUnSupportedCharDlg(this).DoModal();
}

void CCreateNewSheetDialog::OnOK()
{
    const operations::NewSheet::Answer answer = m_sheet.accept(
        {GetDlgItemText(kSheetNumber), GetDlgItemText(kTitle), GetDlgItemText(kFileName)},
        IsDlgButtonChecked(kOpen));
    if (answer.isDone)
        return EndDialog(text::kIdOk);
    switch (answer.focus) {
    case operations::NewSheetField::None: break;
    case operations::NewSheetField::Number: FocusDlgItem(kSheetNumber); break;
    case operations::NewSheetField::Title: FocusDlgItem(kTitle); break;
    case operations::NewSheetField::FileName: FocusDlgItem(kFileName); break;
    }
}
