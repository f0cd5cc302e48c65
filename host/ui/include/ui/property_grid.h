#pragma once

#include <memory>

#include <QWidget>

#include <ed/property_source.h>

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace ui {

/// The property inspector: rows below their categories, each with its name and its value.
///
/// F2, Enter, a double click or typing edits the value of the current row; Enter takes it, Escape
/// does not. Rows with a dialog have a button, which Ctrl+Enter presses too. Each row writes at
/// once, and all are read anew behind it.
///
/// How it is drawn follows the system variable _KV_INSPECTORCONTROLSTYLES when it is made: 2 as a
/// part of a dialog, with a frame and the description of the current row; anything else as the
/// content of a palette.
class PropertyGrid : public QWidget
{
public:
    explicit PropertyGrid(QWidget* parent = nullptr);
    ~PropertyGrid() override;

    /// Null entries are left out.
    void setRows(std::vector<std::unique_ptr<ed::PropertyRow>> rows);
    /// Reads all rows anew; the current one stays.
    void refresh();

    int rowCount() const;
    /// The index of the current row; -1 when a category or nothing is current.
    int currentRow() const;
    void setCurrentRow(int index);
    /// Starts editing, as F2 does. False for a row that cannot be edited.
    bool editRow(int index);
    /// As the row's button does; false for a row without a dialog.
    bool runDialog(int index);
    bool isDialogStyle() const { return m_isDialogStyle; }
    QTreeWidget& tree() { return *m_tree; }

protected:
    void changeEvent(QEvent* event) override;

private:
    class Delegate;
    void build();
    void fill();
    void showRow(QTreeWidgetItem& item, const ed::PropertyRow& row);
    void describeCurrent();
    ed::PropertyRow* rowOf(const QTreeWidgetItem* item) const;
    void dress();

    std::vector<std::unique_ptr<ed::PropertyRow>> m_rows;
    std::vector<QTreeWidgetItem*> m_items; // owned by the tree; one for each row
    bool m_isDialogStyle = false;
    QTreeWidget* m_tree;   // owned by the toolkit
    QLabel* m_description; // owned by the toolkit
};

} // namespace ui
