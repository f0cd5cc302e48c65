#include "operations_windows/rename_and_renumber_dwg_dlg.h"

#include <QLineEdit>
#include <QPushButton>

#include <sm/limits.h>
#include <sm/tv_sm_sheet.h>

#include "operations_windows/tarv_text_length_dlg.h"
#include "operations_windows/tarv_un_supported_char_dlg.h"

using operations::RenameOptions;
using operations::RenameOutcome;

namespace {

struct CheckRow {
    int id;
    bool RenameOptions::*option;
};
constexpr CheckRow kChecks[] = {
    {CRenameAndRenumberDwgDlg::kRenameLayout, &RenameOptions::layoutMatchesSheet},
    {CRenameAndRenumberDwgDlg::kLayoutPrefix, &RenameOptions::layoutHasNumber},
    {CRenameAndRenumberDwgDlg::kRenameDrawing, &RenameOptions::fileMatchesSheet},
    {CRenameAndRenumberDwgDlg::kDrawingPrefix, &RenameOptions::fileHasNumber},
};

/// A longer text than one may type stays whole as long as nobody touches it.
void limit(QLineEdit* edit, int length)
{
    if (edit)
        edit->setMaxLength(std::max(length, static_cast<int>(edit->text().size())));
}

void setWritable(QLineEdit* edit, bool isWritable, bool isUsable)
{
    if (!edit)
        return;
    edit->setReadOnly(!isWritable);
    edit->setEnabled(isUsable);
}

} // namespace

CRenameAndRenumberDwgDlg::CRenameAndRenumberDwgDlg(TvSmSheet* sheet, TvSmDatabase* database,
                                                   QWidget* parent)
    : CTvUiDialog(kNumber, parent), m_options(RenameOptions::stored())
{
    SetHelpTopic(u"SHEETSET_DIA08");
    LoadSheet(sheet, database);
}

bool CRenameAndRenumberDwgDlg::LoadSheet(TvSmSheet* sheet, TvSmDatabase* database)
{
    m_isLoaded = m_sheet.load(sheet, database);
    return m_isLoaded;
}

bool CRenameAndRenumberDwgDlg::OnInitDialog()
{
    RefreshControls();
    limitEdits();
    for (const auto& [id, rule] : {std::pair(kNumberEdit, &operations::followNumber),
                                   std::pair(kTitleEdit, &operations::followTitle)})
        if (auto* edit = Item<QLineEdit>(id))
            connect(edit, &QLineEdit::textChanged, this,
                    [this, apply = rule] { Guarded([&] { follow(apply); }); });
    follow(&operations::followSheet);
    const int standard = m_sheet.hasNext() ? kNextButton : static_cast<int>(text::kIdOk);
    if (auto* button = Item<QPushButton>(standard)) {
        button->setDefault(true);
        button->setFocus();
    }
    return false;
}

void CRenameAndRenumberDwgDlg::limitEdits()
{
    limit(Item<QLineEdit>(kNumberEdit), sm::kMaxNumberLength);
    limit(Item<QLineEdit>(kTitleEdit), sm::kMaxNameLength);
}

void CRenameAndRenumberDwgDlg::RefreshControls()
{
    showNames(m_sheet.names());
    SetDlgItemText(kFolderEdit, m_sheet.folder());
    enableControls();
}

void CRenameAndRenumberDwgDlg::enableControls()
{
    for (const CheckRow& row : kChecks)
        CheckDlgButton(row.id, m_options.*row.option);
    const operations::RenameControls can = m_sheet.controls(m_options);
    EnableDlgItem(kRenameLayout, can.layoutCheck);
    EnableDlgItem(kLayoutPrefix, can.layoutPrefix);
    EnableDlgItem(kRenameDrawing, can.fileCheck);
    EnableDlgItem(kDrawingPrefix, can.filePrefix);
    EnableDlgItem(kPreviousButton, can.previous);
    EnableDlgItem(kNextButton, can.next);
    setWritable(Item<QLineEdit>(kLayoutEdit), can.layoutField, can.layoutCheck);
    setWritable(Item<QLineEdit>(kFileEdit), can.fileField, can.fileCheck);
    EnableDlgItem(text::kIdOk, m_isLoaded);
}

operations::RenameNames CRenameAndRenumberDwgDlg::typed() const
{
    return {GetDlgItemText(kNumberEdit), GetDlgItemText(kTitleEdit), GetDlgItemText(kLayoutEdit),
            GetDlgItemText(kFileEdit)};
}

void CRenameAndRenumberDwgDlg::showNames(const operations::RenameNames& names)
{
    m_isFilling = true;
    SetDlgItemText(kNumberEdit, names.number);
    SetDlgItemText(kTitleEdit, names.title);
    SetDlgItemText(kLayoutEdit, names.layout);
    SetDlgItemText(kFileEdit, names.file);
    m_isFilling = false;
}

void CRenameAndRenumberDwgDlg::follow(void (*rule)(operations::RenameNames&, const RenameOptions&))
{
    if (m_isFilling)
        return;
    operations::RenameNames names = typed();
    rule(names, m_sheet.inForce(m_options));
    SetDlgItemText(kLayoutEdit, names.layout); // where one types, the cursor stays
    SetDlgItemText(kFileEdit, names.file);
}

/// A name that follows nothing any more is what it was.
void CRenameAndRenumberDwgDlg::toggle(int check)
{
    for (const CheckRow& row : kChecks)
        m_options.*row.option = IsDlgButtonChecked(row.id);
    if (check == kRenameLayout && !m_options.layoutMatchesSheet)
        SetDlgItemText(kLayoutEdit, m_sheet.names().layout);
    if (check == kRenameDrawing && !m_options.fileMatchesSheet)
        SetDlgItemText(kFileEdit, m_sheet.names().file);
    enableControls();
    follow(&operations::followSheet);
}

bool CRenameAndRenumberDwgDlg::ApplyChanges()
{
    if (!m_isLoaded)
        return false;
    switch (m_sheet.apply(typed(), m_options)) {
    case RenameOutcome::Done: return true;
    case RenameOutcome::TextMissing: CTarvTextLengthDlg(this).DoModal(); return false;
    case RenameOutcome::UnsupportedCharacter: CTarvUnSupportedCharDlg(this).DoModal(); return false;
    case RenameOutcome::DrawingGone:
        SetDlgItemText(kFileEdit, m_sheet.names().file);
        SetDlgItemText(kLayoutEdit, m_sheet.names().layout);
        break;
    case RenameOutcome::LayoutGone: SetDlgItemText(kLayoutEdit, {}); break;
    default: return false;
    }
    enableControls();
    return false;
}

void CRenameAndRenumberDwgDlg::OnOK()
{
    if (ApplyChanges())
        EndDialog(text::kIdOk);
}

void CRenameAndRenumberDwgDlg::OnCommand(int id)
{
    switch (id) {
    case kPreviousButton: return leave(kPrevious);
    case kNextButton: return leave(kNext);
    default: return toggle(id);
    }
}

void CRenameAndRenumberDwgDlg::leave(int result)
{
    ApplyChanges(); // whatever came of it
    EndDialog(result);
}
