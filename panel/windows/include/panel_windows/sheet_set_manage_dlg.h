#pragma once

#include <panel/selection_list.h>
#include <ui/tv_ui_dialog.h>

class QListWidget;

/// Renames and deletes the selections of a sheet set. Whoever runs it holds the set's lock, and
/// keeps the changes when it ends with OK.
///
/// F2, a double click and a button edit the name of the selected row; Delete and a button delete
/// it.
class CSheetSetManageDlg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 54, kRename = 55, kDelete = 56, kList = 57;

    /// @param database  not null; outlives the dialog. @param selections  handles, in the order of
    /// the rows.
    CSheetSetManageDlg(TvSmDatabase* database, const std::vector<TvString>& selections);

protected:
    bool OnInitDialog() override;
    void OnCommand(int id) override;
    void OnOK() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class NameDelegate;
    struct NewName {
        int row = 0;
        TvString name;
    };
    QListWidget& list() const;
    void showRows();
    void beginRename();
    void remove();
    void nameTyped(int row, const TvString& name);
    bool takeTypedName();

    panel::SelectionList m_selections;
    std::optional<NewName> m_typed; // until the editor is gone: a refusal is a window of its own
};
