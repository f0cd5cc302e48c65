#include "panel/panel_menus.h"

#include <map>

#include <core/drawing_look.h>
#include <core/settings.h>
#include <core/watch_poller.h>
#include <ed/tv_ap_doc_manager.h>
#include <sm/kv_db_util.h>
#include <sm/publishing.h>

namespace panel {

namespace {

constexpr TvChar kReverseKey[] = u"Config\\publish\\PublishReverseOrder";
constexpr TvChar kStampKey[] = u"Config\\publish\\PublishStamp";

bool isSet(const TvChar* key)
{
    int value = 0;
    return ReadConfigInt(key, value) && value != 0;
}

bool isLocked(const TvSmDatabase* database)
{
    return core::lockStatusAtHand(database) != 0;
}

bool hasDocuments()
{
    return tvDocManagerPtr() && tvDocManagerPtr()->documentCount() > 0;
}

void addSheetFacts(const TvSmSheet& sheet, ContextFacts& facts)
{
    // A folder that does not answer must not keep the menu from opening.
    const TvSmTvDbLayoutReference* reference = sheet.getLayoutReference();
    const auto place = reference ? core::placeInTime(*reference) : std::nullopt;
    facts.hasDrawing = place && place->isFile;
    facts.isDrawingOpen = facts.hasDrawing && !place->openDocument.isEmpty();
}

} // namespace

ContextFacts contextFacts(const SheetTree& tree, const TreeItem& item)
{
    ContextFacts facts;
    const std::vector<TreeItem*> selected = tree.GetSelectedItems();
    facts.kind = item.kind();
    facts.selected = static_cast<int>(selected.size());
    facts.noDocuments = !hasDocuments();
    facts.isLocked = isLocked(tree.database());
    facts.isCurrentSheetInSet = KvDbUtil::IsCurrentSheetInSheetSet(tree.database());
    facts.isSheetSelected = false;
    for (const TreeItem* each : selected)
        facts.isSheetSelected = facts.isSheetSelected || each->kind() == TreeItemData::kSheet;
    const TvSmComponent* object = tree.GetComponent(&item);
    facts.hasDrawing = false;
    if (const auto* sheet = tvrxCast<TvSmSheet>(object))
        addSheetFacts(*sheet, facts);
    facts.hasSheets = SubsetHasSheets(tvrxCast<TvSmSubset>(object));
    return facts;
}

TreeItem* PanelMenus::itemForClick(TreeItem* hit, bool withCtrl, bool withShift) const
{
    return hit && (withCtrl || withShift) ? m_page.tree().caret() : hit;
}

ed::Menu PanelMenus::publishFor(const TreeItem& item)
{
    m_reverseOrder = isSet(kReverseKey);
    m_stamp = isSet(kStampKey);
    const SheetTree& tree = m_page.tree();
    m_pageSetupNames.clear();
    if (m_pageSetups && tree.database())
        m_pageSetupNames = m_pageSetups(*tree.database());
    const TvSmComponent* object = tree.GetComponent(&item);
    const auto* sheet = tvrxCast<TvSmSheet>(object);
    PublishFacts facts;
    facts.kind = item.kind();
    facts.isPublishable = IsComponentPublishable(object);
    facts.isIncluded =
        sheet ? !sheet->getExcludeFromPublish() : IsSubsetPublishable(tvrxCast<TvSmSubset>(object));
    facts.isLocked = isLocked(tree.database());
    facts.reverseOrder = m_reverseOrder;
    facts.stamp = m_stamp;
    facts.pageSetups = m_pageSetupNames;
    return publishMenu(facts);
}

ed::Menu PanelMenus::context(const TreeItem& item)
{
    return contextMenu(contextFacts(m_page.tree(), item), publishFor(item));
}

ed::Menu PanelMenus::publish()
{
    const TreeItem* item = m_page.tree().caret();
    return item && m_page.GetSelectedComponent() ? publishFor(*item) : ed::Menu();
}

ed::Menu PanelMenus::format() const
{
    return formatMenu(m_page.publishFormat(), isLocked(m_page.tree().database()));
}

ed::Menu PanelMenus::selections()
{
    m_selectionSets.clear();
    ed::Menu menu;
    const TvSmDatabase* database = m_page.tree().database();
    if (!database)
        return menu;
    // Of two names that differ in case only the later one is meant.
    std::map<TvString, const TvSmSheetSelection*> byName;
    for (const TvSmSheetSelection* selection :
         sm::each(database->getSheetSet()->getSheetSelections()->getEnumerator()))
        byName[selection->getName().toLower()] = selection;
    for (const auto& [name, selection] : byName) {
        menu.addName(kFirstDynamic + static_cast<int>(m_selectionSets.size()),
                     selection->getName());
        m_selectionSets.push_back(selection->objectId().getHandle());
    }
    if (!byName.empty())
        menu.addSeparator();
    const bool mayChange = !isLocked(database);
    menu.add(kManageSelections, commandText(kManageSelections), mayChange && !byName.empty());
    menu.add(kCreateSelection, commandText(kCreateSelection), mayChange);
    return menu;
}

PanelMenus::Dynamic PanelMenus::dynamicOf(int id) const
{
    const int index = id - kFirstDynamic;
    if (index < 0)
        return Dynamic::Nothing;
    if (index < std::ssize(m_selectionSets))
        return Dynamic::Selection;
    return index < std::ssize(m_pageSetupNames) ? Dynamic::PageSetup : Dynamic::Nothing;
}

TvString PanelMenus::selectionOf(int id) const
{
    return dynamicOf(id) == Dynamic::Selection
               ? m_selectionSets[static_cast<std::size_t>(id - kFirstDynamic)]
               : TvString();
}

TvString PanelMenus::pageSetupOf(int id) const
{
    return dynamicOf(id) == Dynamic::PageSetup
               ? m_pageSetupNames[static_cast<std::size_t>(id - kFirstDynamic)]
               : TvString();
}

void PanelMenus::toggleReverseOrder()
{
    m_reverseOrder = !m_reverseOrder;
    WriteConfigInt(kReverseKey, m_reverseOrder);
}

void PanelMenus::toggleStamp()
{
    m_stamp = !m_stamp;
    WriteConfigInt(kStampKey, m_stamp);
}

} // namespace panel
