#pragma once

#include <array>
#include <functional>

#include <QAbstractItemModel>
#include <QIcon>

#include <panel/sheet_tree.h>
#include <ui/theme.h>

namespace panel {

/// The sheet list as the toolkit sees it. Texts are made when they are painted, and what differs
/// after a change is all that is told.
class SheetTreeModel : public QAbstractItemModel, private TreeListener
{
public:
    /// @param tree  not owned; outlives the model, which becomes its listener.
    explicit SheetTreeModel(SheetTree& tree);
    ~SheetTreeModel() override;

    /// Shows the pictures of one theme, whatever is in force.
    void usePictures(ui::Theme theme);

    SheetTree& tree() const { return m_tree; }
    /// No index for null.
    QModelIndex indexOf(const TreeItem* item) const;
    /// Null for no index.
    static TreeItem* itemAt(const QModelIndex& index);

    // What the view is told beside rows; an empty function: nobody.
    /// Texts or pictures of some items: to be painted anew. Nothing else depends on them, and the
    /// toolkit would search all rows for each of them.
    std::function<void()> onChanged;
    std::function<void(const TreeItem& item)> onExpansion;
    std::function<void()> onSelection;
    std::function<void()> onReset;
    /// Rows came below @p parent, both included.
    std::function<void(const TreeItem& parent, int first, int last)> onInserted;
    /// Whether an item's check box is marked; an empty function: there are no check boxes.
    std::function<bool(const TreeItem& item)> isChecked;
    /// The user wants the other state of an item's check box. Marks are painted anew behind it.
    std::function<void(const TreeItem& item)> onCheck;

    // QAbstractItemModel
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    QString accessibleName(TreeItem& item) const;
    void aboutToReset() override { beginResetModel(); }
    void wasReset() override;
    void aboutToInsert(const TreeItem& parent, int first, int last) override;
    void wasInserted() override;
    void aboutToRemove(const TreeItem& parent, int first, int last) override;
    void wasRemoved() override { endRemoveRows(); }
    void itemChanged(const TreeItem& item) override;
    void expansionChanged(const TreeItem& item) override;
    void selectionChanged() override;

    SheetTree& m_tree;
    std::array<QIcon, 7> m_images; // by core::SheetImage
    const TreeItem* m_parent = nullptr;
    int m_first = 0, m_last = 0; // rows that are coming
};

} // namespace panel
