#pragma once

#include <memory>

#include <panel/sheet_tree.h>
#include <publish/publish_checks.h>
#include <ui/tv_ui_dialog.h>

class CEditSubsetAndSheetPublishTreeCtrl;

/// Chooses which sheets and subsets of a set are published. With OK the choice is in the objects;
/// the lock, and whether the change stays, are the caller's.
class CEditSubsetAndSheetPublishDlg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 123;
    enum Control : int { kTree = 124 };

    /// @param database  not null; locked by the caller.
    /// @param page  in front of which it stands; null: the program's window.
    CEditSubsetAndSheetPublishDlg(TvSmDatabase* database, QWidget* page);
    ~CEditSubsetAndSheetPublishDlg() override;

    CEditSubsetAndSheetPublishTreeCtrl& tree() { return *m_window; }

protected:
    QWidget* MakeControl(const text::ControlTemplate& row, QWidget* parent) override;
    void OnOK() override;

private:
    panel::SheetTree m_tree;
    std::unique_ptr<publish::PublishChecks> m_checks;
    CEditSubsetAndSheetPublishTreeCtrl* m_window = nullptr; // owned by the toolkit
};
