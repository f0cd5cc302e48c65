#include "panel/sheet_list_page.h"

#include <core/session.h>
#include <sm/kv_db_util.h>

namespace panel {

SheetListPage::SheetListPage(PageWindow& window, base::Clock& clock, base::FileOps& files)
    : m_window(window), m_clock(clock), m_files(files),
      m_statusTimer(static_cast<core::StatusTimer::Page&>(*this))
{
    m_window.enableControls(false);
}

SheetListPage::~SheetListPage() = default;

void SheetListPage::rememberView()
{
    if (m_displayedDb)
        m_memory.remember(m_displayedDb->getFileName(), m_tree, m_window.firstVisible());
}

void SheetListPage::SwitchDatabase(bool remember)
{
    if (remember)
        rememberView();
    else if (m_displayedDb)
        m_memory.forget(m_displayedDb->getFileName());
    m_displayedDb = GetCurrentDatabase();
    RebuildTree();
}

void SheetListPage::ReloadDatabase()
{
    if (!m_displayedDb)
        return;
    rememberView();
    // Another one is shown than the tree was filled from: nothing of it would be found.
    if (m_tree.database() != m_displayedDb || !m_tree.root())
        return RebuildTree();
    m_statusTimer.treeCleared();
    m_window.suspendPainting();
    m_tree.Merge(); // a status pass goes on: it knows handles, not items
    m_tree.RestoreSelection(m_memory.find(m_displayedDb->getFileName())->selection);
    m_statusTimer.treeFilled();
    m_window.resumePainting();
    readPublishFormat();
    m_window.redrawSetBox();
}

void SheetListPage::RebuildTree()
{
    m_statusTimer.treeCleared();
    m_pass.reset();
    m_isPassDue = false;
    m_window.suspendPainting();
    m_tree.ClearTree();
    const TvSmDatabase* database = GetCurrentDatabase();
    m_tree.setDatabase(database);
    if (database)
        fill(m_memory.find(database->getFileName()));
    else
        m_window.enableControls(false);
    m_window.resumePainting();
    readPublishFormat();
    m_window.redrawSetBox();
}

void SheetListPage::fill(const ViewMemory::View* view)
{
    m_tree.SetExpandState(view ? view->expanded : SheetTree::ExpandState());
    m_tree.SetUseExpandState(view != nullptr);
    const TvSmSheetSet* set = m_tree.database()->getSheetSet();
    TreeItem* root = m_tree.InsertSheetSetItem(set);
    if (!view)
        m_tree.setAnchor(root);
    m_tree.AddChildrenToTree(root, set);
    m_statusTimer.treeFilled();
    if (!view)
        m_tree.setExpanded(root, true);
    for (const std::unique_ptr<TreeItem>& child : root->children())
        if (!view || !view->expanded.contains(child->handle()))
            m_tree.setExpanded(child.get(), true); // sheets have nothing to open
    m_window.ensureVisible(root);
    m_window.enableControls(true);
    if (!view)
        return m_tree.selectOnly(root);
    m_tree.RestoreSelection(view->selection);
    if (TreeItem* first = m_tree.itemOf(view->firstVisible))
        m_window.scrollToTop(first);
}

void SheetListPage::readPublishFormat()
{
    if (!m_tree.database())
        return;
    switch (m_tree.database()->getSheetSet()->getPublishOptions()->getEplotFormat()) {
    case 0: m_publishFormat = 1; break;
    case 1: m_publishFormat = 3; break;
    case 2: m_publishFormat = 2; break;
    default: break;
    }
    m_window.showPublishFormat(m_publishFormat);
}

void SheetListPage::setPublishFormat(int format)
{
    m_publishFormat = format;
    m_window.showPublishFormat(format);
}

TvSmComponent* SheetListPage::GetSelectedComponent() const
{
    return m_tree.GetComponent(m_tree.caret());
}

void SheetListPage::GetSelectedComponents(std::vector<TvSmComponent*>& list) const
{
    for (const TreeItem* item : m_tree.GetSelectedItems())
        list.push_back(m_tree.GetComponent(item));
}

void SheetListPage::GetSelectedSheets(std::vector<TvSmSheet*>& list) const
{
    for (const TreeItem* item : m_tree.GetSelectedItems()) {
        TvSmComponent* object = m_tree.GetComponent(item);
        if (auto* sheet = tvrxCast<TvSmSheet>(object)) {
            list.push_back(sheet);
        } else if (const auto* subset = tvrxCast<TvSmSubset>(object)) {
            KvDbUtil::GetAllSheetsInTheSubSet(subset, list);
            if (item->kind() == TreeItemData::kSheetSet)
                return;
        }
    }
}

void SheetListPage::selectSibling(TreeItem* (TreeItem::*next)() const)
{
    TreeItem* item = m_tree.caret();
    do
        item = item ? (item->*next)() : nullptr;
    while (item && item->kind() != TreeItemData::kSheet);
    if (item)
        m_tree.selectOnly(item);
}

void SheetListPage::SelectPreviousSheet()
{
    selectSibling(&TreeItem::previousSibling);
}

void SheetListPage::SelectNextSheet()
{
    selectSibling(&TreeItem::nextSibling);
}

void SheetListPage::UpdateStatusImages()
{
    if (!m_tree.root())
        return;
    // Threads that wait for one dead share must not pile up.
    if ((m_isPassDue = m_pass && m_pass->isWaiting()))
        return;
    m_pass.emplace(
        m_tree.database(),
        [this](const TvString& handle, core::SheetImage image) { m_tree.setImage(handle, image); },
        m_files);
    if (!workOnStatus(core::StatusPass::kSliceMs))
        m_window.wantIdleTime();
}

void SheetListPage::ResetStatusImages()
{
    m_pass.reset();
    m_isPassDue = false;
    m_tree.ResetStatusImages();
}

bool SheetListPage::workOnStatus()
{
    return workOnStatus(0);
}

bool SheetListPage::workOnStatus(int waitMs)
{
    if (m_pass && m_pass->work(m_clock, core::StatusPass::kSliceMs, waitMs)) {
        m_pass.reset();
        if (std::exchange(m_isPassDue, false))
            UpdateStatusImages();
    }
    return !m_pass;
}

void SheetListPage::expandAll(bool expanded)
{
    m_collapsed = !expanded;
    m_tree.ExpandAll(expanded);
}

void SheetListPage::updateUiStyle()
{
    m_window.updateUiStyle();
    UpdateStatusImages();
}

} // namespace panel
