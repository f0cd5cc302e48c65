#include "panel_windows/sheet_set_manage_dlg.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QStyledItemDelegate>

#include <ui/qt_text.h>

/// Hands a name that was typed over to the dialog; the row keeps its own until that took it.
class CSheetSetManageDlg::NameDelegate : public QStyledItemDelegate
{
public:
    explicit NameDelegate(CSheetSetManageDlg& dialog)
        : QStyledItemDelegate(&dialog), m_dialog(dialog)
    {
    }
    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override
    {
        if (const auto* edit = dynamic_cast<QLineEdit*>(editor))
            m_dialog.nameTyped(index.row(), ui::fromQt(edit->text()));
    }

private:
    CSheetSetManageDlg& m_dialog; // owns this
};

CSheetSetManageDlg::CSheetSetManageDlg(TvSmDatabase* database,
                                       const std::vector<TvString>& selections)
    : CTvUiDialog(kNumber), m_selections(database, selections)
{
}

QListWidget& CSheetSetManageDlg::list() const
{
    return *Item<QListWidget>(kList);
}

bool CSheetSetManageDlg::OnInitDialog()
{
    list().setItemDelegate(new NameDelegate(*this)); // owned by the dialog
    list().setEditTriggers(QAbstractItemView::NoEditTriggers);
    list().installEventFilter(this);
    connect(&list(), &QListWidget::itemSelectionChanged, this, [this] {
        const QList<QListWidgetItem*> chosen = list().selectedItems();
        m_selections.select(chosen.isEmpty() ? std::nullopt
                                             : std::optional(list().row(chosen.front())));
    });
    connect(&list(), &QListWidget::itemDoubleClicked, this,
            [this] { Guarded([this] { beginRename(); }); });
    showRows();
    return true;
}

void CSheetSetManageDlg::showRows()
{
    const std::optional<int> selected = m_selections.selected(); // the list tells of its own
    list().clear();
    for (int row = 0; row < m_selections.count(); ++row) {
        auto* item = new QListWidgetItem(ui::toQt(m_selections.nameOf(row)), &list());
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    if (selected)
        list().setCurrentRow(*selected);
    EnableDlgItem(kRename, m_selections.canChange());
    EnableDlgItem(kDelete, m_selections.canChange());
}

void CSheetSetManageDlg::beginRename()
{
    if (m_selections.beginRename())
        list().editItem(list().item(*m_selections.selected()));
}

void CSheetSetManageDlg::remove()
{
    if (!m_selections.removeSelected())
        return;
    showRows();
    list().setFocus();
}

void CSheetSetManageDlg::nameTyped(int row, const TvString& name)
{
    m_typed = {row, name};
    QMetaObject::invokeMethod(
        this, [this] { Guarded([this] { takeTypedName(); }); }, Qt::QueuedConnection);
}

/// @return false when the name was refused.
bool CSheetSetManageDlg::takeTypedName()
{
    const std::optional<NewName> typed = std::exchange(m_typed, std::nullopt);
    if (!typed)
        return true;
    if (!m_selections.rename(typed->row, typed->name))
        return false;
    if (QListWidgetItem* item = list().item(typed->row))
        item->setText(ui::toQt(m_selections.nameOf(typed->row)));
    return true;
}

void CSheetSetManageDlg::OnCommand(int id)
{
    if (id == kRename)
        beginRename();
    else if (id == kDelete)
        remove();
}

void CSheetSetManageDlg::OnOK()
{
    if (takeTypedName())
        EndDialog(text::kIdOk);
}

bool CSheetSetManageDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != GetDlgItem(kList) || event->type() != QEvent::KeyPress)
        return CTvUiDialog::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_F2: Guarded([this] { beginRename(); }); return true;
    case Qt::Key_Delete: Guarded([this] { remove(); }); return true;
    default: return CTvUiDialog::eventFilter(watched, event);
    }
}
