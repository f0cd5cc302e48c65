#include "panel_windows/sheet_tree_model.h"

#include <sm/tv_sm_database.h>
#include <ui/icon.h>
#include <ui/qt_text.h>

namespace panel {

namespace {

constexpr const char* kImages[] = {"sheet-set", "subset",        "subset-bad",  "subset-no-publish",
                                   "sheet",     "sheet-missing", "sheet-in-use"};
constexpr int kSpoken[] = {8920, 8921, 8922, 8923, 0, 8924, 8925}; // texts; 0: nothing to say

} // namespace

SheetTreeModel::SheetTreeModel(SheetTree& tree) : m_tree(tree)
{
    static_assert(std::size(kImages) == std::tuple_size_v<decltype(m_images)>);
    for (std::size_t i = 0; i < m_images.size(); ++i)
        m_images[i] = ui::icon(QString::fromLatin1(kImages[i]));
    m_tree.setListener(this);
}

void SheetTreeModel::usePictures(ui::Theme theme)
{
    for (std::size_t i = 0; i < m_images.size(); ++i)
        m_images[i] = ui::icon(QString::fromLatin1(kImages[i]), theme);
}

SheetTreeModel::~SheetTreeModel()
{
    m_tree.setListener(nullptr);
}

QModelIndex SheetTreeModel::indexOf(const TreeItem* item) const
{
    return item ? createIndex(item->row(), 0, item) : QModelIndex();
}

TreeItem* SheetTreeModel::itemAt(const QModelIndex& index)
{
    return static_cast<TreeItem*>(index.internalPointer());
}

QModelIndex SheetTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column != 0)
        return {};
    if (!parent.isValid())
        return row == 0 ? indexOf(m_tree.root()) : QModelIndex();
    const auto& children = itemAt(parent)->children();
    const auto at = static_cast<std::size_t>(row);
    return at < children.size() ? createIndex(row, 0, children[at].get()) : QModelIndex();
}

QModelIndex SheetTreeModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? indexOf(itemAt(index)->parent()) : QModelIndex();
}

int SheetTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return m_tree.root() ? 1 : 0;
    return static_cast<int>(itemAt(parent)->children().size());
}

int SheetTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool SheetTreeModel::hasChildren(const QModelIndex& parent) const
{
    return rowCount(parent) > 0;
}

QVariant SheetTreeModel::data(const QModelIndex& index, int role) const
{
    TreeItem* item = itemAt(index);
    if (!item)
        return {};
    switch (role) {
    case Qt::DisplayRole: return ui::toQt(m_tree.labelOf(*item));
    case Qt::DecorationRole: return m_images[static_cast<std::size_t>(item->image())];
    case Qt::CheckStateRole:
        if (isChecked)
            return isChecked(*item) ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::AccessibleTextRole: return accessibleName(*item);
    default: return {};
    }
}

bool SheetTreeModel::setData(const QModelIndex& index, const QVariant&, int role)
{
    const TreeItem* item = itemAt(index);
    if (!item || role != Qt::CheckStateRole || !onCheck)
        return false;
    onCheck(*item);
    if (onChanged)
        onChanged();
    return true;
}

Qt::ItemFlags SheetTreeModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags usual = QAbstractItemModel::flags(index);
    if (const TreeItem* item = itemAt(index); item && item->kind() == TreeItemData::kSheet)
        usual |= Qt::ItemNeverHasChildren; // the view asks no more about it
    return isChecked && index.isValid() ? usual | Qt::ItemIsUserCheckable : usual;
}

/// "A-101, Ground floor, drawing missing": what a picture shows, in words.
QString SheetTreeModel::accessibleName(TreeItem& item) const
{
    QStringList parts;
    if (const auto* sheet = tvrxCast<TvSmSheet>(m_tree.GetComponent(&item))) {
        if (const TvString number = sheet->getNumber(); !number.isEmpty())
            parts << ui::toQt(number);
        parts << ui::toQt(sheet->getTitle());
    } else {
        parts << ui::toQt(m_tree.labelOf(item));
    }
    if (const int words = kSpoken[static_cast<std::size_t>(item.image())])
        parts << ui::textOf(words);
    return parts.join(QLatin1String(", "));
}

void SheetTreeModel::wasReset()
{
    endResetModel();
    if (onReset)
        onReset();
}

void SheetTreeModel::aboutToInsert(const TreeItem& parent, int first, int last)
{
    m_parent = &parent;
    m_first = first;
    m_last = last;
    beginInsertRows(indexOf(&parent), first, last);
}

void SheetTreeModel::wasInserted()
{
    endInsertRows();
    if (onInserted)
        onInserted(*m_parent, m_first, m_last);
}

void SheetTreeModel::aboutToRemove(const TreeItem& parent, int first, int last)
{
    beginRemoveRows(indexOf(&parent), first, last);
}

void SheetTreeModel::itemChanged(const TreeItem&)
{
    if (onChanged)
        onChanged();
}

void SheetTreeModel::expansionChanged(const TreeItem& item)
{
    if (onExpansion)
        onExpansion(item);
}

void SheetTreeModel::selectionChanged()
{
    if (onSelection)
        onSelection();
}

} // namespace panel
