#include "publish/publish_checks.h"

#include <panel/sheet_tree.h>
#include <sm/publishing.h>
#include <sm/tv_sm_database.h>

namespace publish {

namespace {

bool isPublished(const TvSmComponent* object)
{
    if (const auto* sheet = tvrxCast<TvSmSheet>(object))
        return !sheet->getExcludeFromPublish();
    if (const auto* set = tvrxCast<TvSmSheetSet>(object)) {
        std::vector<TvSmSheet*> sheets;
        CollectPublishableSheets(set, sheets, true);
        return !sheets.empty();
    }
    return IsSubsetPublishable(tvrxCast<TvSmSubset>(object));
}

} // namespace

PublishChecks::PublishChecks(const panel::SheetTree& tree) : m_tree(tree)
{
    if (tree.root())
        read(*tree.root());
}

void PublishChecks::read(const panel::TreeItem& item)
{
    for (const auto& child : item.children())
        read(*child);
    setChecked(item, isPublished(m_tree.GetComponent(&item)));
}

bool PublishChecks::isChecked(const panel::TreeItem& item) const
{
    return m_checked.contains(item.handle());
}

void PublishChecks::setChecked(const panel::TreeItem& item, bool checked)
{
    if (checked)
        m_checked.insert(item.handle());
    else
        m_checked.erase(item.handle());
}

void PublishChecks::click(const panel::TreeItem& item)
{
    const bool checked = !isChecked(item);
    setChecked(item, checked);
    if (!item.parent())
        checkSheetsBelow(item, checked);
    else if (item.kind() == TreeItemData::kSheet && checked)
        setChecked(*m_tree.root(), true);
}

void PublishChecks::checkSheetsBelow(const panel::TreeItem& item, bool checked)
{
    for (const auto& child : item.children()) {
        if (child->kind() == TreeItemData::kSheet)
            setChecked(*child, checked);
        checkSheetsBelow(*child, checked);
    }
}

void PublishChecks::apply() const
{
    if (m_tree.root())
        write(*m_tree.root());
}

void PublishChecks::write(const panel::TreeItem& item) const
{
    for (const auto& child : item.children())
        write(*child);
    TvSmComponent* object = m_tree.GetComponent(&item);
    if (auto* subset = tvrxCast<TvSmSubset>(object))
        subset->setExcludeFromPublish(!isChecked(item));
    else if (auto* sheet = tvrxCast<TvSmSheet>(object))
        sheet->setExcludeFromPublish(!isChecked(item));
}

} // namespace publish
