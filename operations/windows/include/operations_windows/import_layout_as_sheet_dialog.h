#pragma once

#include <operations/import_layout_list.h>
#include <ui/tv_ui_dialog.h>

class QTreeWidget;
class QTreeWidgetItem;

/// Lists the layouts of drawings, and makes sheets of those that are ticked; or lets one sheet lead
/// to the one that is ticked. Whoever runs it holds the lock of the sheet set, and keeps the
/// changes when it ends with OK.
class CImportLayoutAsSheetDialog : public CTvUiDialog
{
public:
    static constexpr int kNumber = 104, kBrowse = 105, kList = 106, kPrefix = 107;

    /// New sheets of @p subset, which get no place in it. @param subset  outlives the dialog.
    CImportLayoutAsSheetDialog(QWidget* parent, TvSmSubset* subset);
    /// Another layout for @p sheet. @param sheet  not null; outlives the dialog.
    CImportLayoutAsSheetDialog(QWidget* parent, TvSmSheet* sheet);

    /// The drawing that is listed at first; empty: none, until the user chooses.
    void SetDrawing(const TvString& path) { m_drawing = path; }
    /// Which of its layouts are ticked at first; empty: all that can be.
    void SetLayouts(const std::vector<TvString>& names) { m_layouts = names; }
    /// What OK made, in the order of the rows.
    const std::vector<TvSmSheet*>& GetSheets() const { return m_sheets; }

protected:
    bool OnInitDialog() override;
    void OnCommand(int id) override;
    void OnOK() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QTreeWidget& table() const;
    void makeColumns();
    void browse();
    void showRows();
    void showTicks();
    void ticked(QTreeWidgetItem& item);
    void sortBy(int column);

    std::vector<TvSmSheet*> m_sheets; // the database's
    operations::ImportLayoutList m_list;
    TvString m_drawing;
    std::vector<TvString> m_layouts;
};
