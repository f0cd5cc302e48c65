#include "operations_windows/select_template_dialog.h"

#include <QListWidget>

#include <ui/qt_text.h>

bool CSelectTemplateDialog::OnInitDialog()
{
    m_layouts = Item<QListWidget>(kLayouts);
    m_layouts->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(m_layouts, &QListWidget::itemDoubleClicked, this,
            [this] { Guarded([this] { OnOK(); }); });
    SetDlgItemText(kPath, m_preset.drawing);
    m_choice.begin(m_preset);
    showLayouts();
    return true;
}

void CSelectTemplateDialog::showLayouts()
{
    m_layouts->clear();
    for (const TvString& layout : m_choice.layouts())
        m_layouts->addItem(ui::toQt(layout.view()));
    if (m_choice.selected())
        m_layouts->setCurrentRow(static_cast<int>(*m_choice.selected()));
}

void CSelectTemplateDialog::OnCommand(int id)
{
    if (id != kBrowse)
        return;
    if (const std::optional<TvString> path = m_choice.browse(GetDlgItemText(kPath))) {
        SetDlgItemText(kPath, *path);
        showLayouts();
    }
}

void CSelectTemplateDialog::OnOK()
{
    const bool isSelected = !m_layouts->selectedItems().isEmpty();
    m_choice.select(isSelected ? std::optional(static_cast<std::size_t>(m_layouts->currentRow()))
                               : std::nullopt);
    if (m_choice.accept(GetDlgItemText(kPath)))
        EndDialog(text::kIdOk);
    else
        showLayouts();
}
