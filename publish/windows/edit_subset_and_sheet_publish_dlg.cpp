#include "publish_windows/edit_subset_and_sheet_publish_dlg.h"

#include <sm/tv_sm_database.h>
#include <ui/qt_text.h>

#include "publish_windows/edit_subset_and_sheet_publish_tree_ctrl.h"

CEditSubsetAndSheetPublishDlg::CEditSubsetAndSheetPublishDlg(TvSmDatabase* database, QWidget* page)
    : CTvUiDialog(kNumber, page)
{
    m_tree.setDatabase(database);
    m_tree.Merge();
    m_tree.ExpandAll(true);
    m_tree.setExpanded(m_tree.root(), true);
    m_checks = std::make_unique<publish::PublishChecks>(m_tree);
}

CEditSubsetAndSheetPublishDlg::~CEditSubsetAndSheetPublishDlg()
{
    delete m_window; // shows what goes with the dialog
}

QWidget* CEditSubsetAndSheetPublishDlg::MakeControl(const text::ControlTemplate& row,
                                                    QWidget* parent)
{
    if (row.id != kTree)
        return nullptr;
    m_window = new CEditSubsetAndSheetPublishTreeCtrl(m_tree, *m_checks, parent);
    m_window->setFrameShape(QFrame::StyledPanel);
    m_window->setAccessibleName(windowTitle());
    return m_window;
}

void CEditSubsetAndSheetPublishDlg::OnOK()
{
    m_checks->apply();
    CTvUiDialog::OnOK();
}
