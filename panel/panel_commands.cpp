#include "panel/panel_commands.h"

#include <algorithm>

#include <base/clock.h>
#include <core/not_available_yet.h>
#include <core/session.h>
#include <core/sheet_tip.h>
#include <core/tip_style.h>
#include <core/watch_poller.h>
#include <ed/user_prompts.h>
#include <rx/tv_user_messages.h>
#include <sm/change_scope.h>

#include "panel/handler_installer.h"
#include "panel/open_sheets.h"
#include "panel/recover_drawing.h"

namespace panel {

namespace {

struct CommandRow {
    int id;
    const char* name;
};

// clang-format off
constexpr CommandRow kCommands[] = {
    {1, "OnPublishFormat"}, {2, "OnPublishFormat"}, {3, "OnPublishFormat"},
    {4, "OnPublish"}, {5, "OnPublish"}, {6, "OnPublish"}, {7, "OnPublish"},
    {10, "OnEditPublishList"}, {11, "OnToggleReverseOrder"}, {12, "OnToggleStamp"}, {13, "OnStampSettings"},
    {14, "OnPublishOptions"}, {15, "OnPdfOptions"}, {16, "OnPublishDialog"},
    {17, "OnManageSelections"}, {18, "OnCreateSelection"},
    {19, "OnCloseSheetSet"}, {20, "OnExploreSheetSet"}, {21, "OnOpenSheet"}, {22, "OnOpenSheetReadOnly"},
    {23, "OnExploreSheet"}, {24, "OnNewSheet"}, {25, "OnNewSubset"}, {26, "OnImportLayoutAsSheet"},
    {27, "OnResaveAllSheets"}, {28, "OnSubsetProperties"}, {29, "OnRemoveSubset"}, {30, "OnResaveSubsetSheets"},
    {31, "OnRenameSheets"}, {32, "OnRemoveSheets"}, {33, "OnArchive"}, {34, "OnETransmit"}, {35, "OnETransmitSetting"},
    {36, "OnInsertSheetList"}, {37, "OnProperties"},
    {40, "OnSubsetExclude"}, {41, "OnSubsetInclude"}, {42, "OnSheetInclude"}, {43, "OnSheetExclude"},
    {47, "OnExpandAll"}, {48, "OnCollapseAll"}, {49, "OnHidePanel"},
    {50, "OnToolTipStyle"}, {51, "OnToolTipStyle"}, {52, "OnToolTipStyle"}, {53, "OnToolTipStyle"},
    {54, "OnToolTipStyle"}, {55, "OnToolTipStyle"}, {56, "OnToolTipStyle"}, {57, "OnToolTipStyle"},
    {58, "OnPageSetups"},
};
// clang-format on

bool confirmSubsetRemoval()
{
    constexpr int kQuestion = 587, kTitle = 586;
    TvUserMessages::Message message;
    message.text = kQuestion;
    message.caption = kTitle;
    message.buttons = TvUserMessages::Buttons::OkCancel;
    message.icon = TvUserMessages::Icon::Question;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Ok;
}

/// "Publish", of "Publish...".
TvString shortText(int id)
{
    const TvString text(commandText(id));
    return text.endsWithNoCase(u"...") ? text.left(text.length() - 3) : text;
}

} // namespace

bool PanelProgram::waitForDisk(const TvString& /*file*/, const std::function<bool()>& isThere)
{
    while (!isThere())
        base::systemClock().sleep(std::chrono::milliseconds(1));
    return true;
}

WaitForDisk PanelCommands::waiting()
{
    return [this](const TvString& file, const std::function<bool()>& isThere) {
        return m_program.waitForDisk(file, isThere);
    };
}

PanelCommands::PanelCommands(SheetListPage& page, PanelMenus& menus, PanelProgram& program)
    : m_page(page), m_menus(menus), m_program(program)
{
    addOwn();
    HandlerInstaller::installAll(*this);
}

const char* PanelCommands::nameOf(int id)
{
    const auto row = std::ranges::find(kCommands, id, &CommandRow::id);
    return row == std::end(kCommands) ? nullptr : row->name;
}

void PanelCommands::setHandler(int id, Handler handler)
{
    m_handlers[id] = std::move(handler);
}

std::vector<TvString>& PanelCommands::sheetListHandles()
{
    static std::vector<TvString> handles;
    return handles;
}

void PanelCommands::addOwn()
{
    for (int id = kFirstFormat; id <= kLastFormat; ++id)
        setHandler(id, [this, id](SheetListPage&) { setFormat(id); });
    setHandler(kToggleReverseOrder, [this](SheetListPage&) { m_menus.toggleReverseOrder(); });
    setHandler(kToggleStamp, [this](SheetListPage&) { m_menus.toggleStamp(); });
    setHandler(kCloseSheetSet, [](SheetListPage&) { CloseCurrentSheetSet(); });
    setHandler(kExploreSheetSet, [this](SheetListPage&) {
        if (const TvSmDatabase* shown = database())
            m_program.exploreFile(shown->getFileName());
    });
    setHandler(kOpenSheet, [this](SheetListPage&) {
        openSheets(
            database(), selectedHandles(), [this] { refreshStatus(); }, waiting());
    });
    setHandler(kOpenSheetReadOnly, [this](SheetListPage&) {
        openSheetsReadOnly(database(), selectedHandles(), waiting());
    });
    setHandler(kExploreSheet, [this](SheetListPage&) { exploreSheet(); });
    setHandler(kRemoveSubset, [this](SheetListPage&) { removeSubset(); });
    setHandler(kRemoveSheets, [this](SheetListPage&) { removeSheets(); });
    setHandler(kInsertSheetList, [this](SheetListPage&) { insertSheetList(); });
    for (const int id : {kExcludeSubset, kIncludeSubset})
        setHandler(id, [this, id](SheetListPage&) {
            setExcluded(TreeItemData::kSubset, id == kExcludeSubset);
        });
    for (const int id : {kIncludeSheet, kExcludeSheet})
        setHandler(id, [this, id](SheetListPage&) {
            setExcluded(TreeItemData::kSheet, id == kExcludeSheet);
        });
    setHandler(kExpandAll, [](SheetListPage& page) { page.expandAll(true); });
    setHandler(kCollapseAll, [](SheetListPage& page) { page.expandAll(false); });
    setHandler(kHidePanel, [this](SheetListPage&) { m_program.hidePanel(); });
    for (int id = kFirstTipStyle; id <= kLastTipStyle; ++id)
        setHandler(id, [this, id](SheetListPage&) {
            core::chooseTipStyle(id - kFirstTipStyle);
            m_program.tipStyleChanged();
        });
}

bool PanelCommands::run(int id)
{
    switch (m_menus.dynamicOf(id)) {
    case PanelMenus::Dynamic::Selection: applySelection(m_menus.selectionOf(id)); return true;
    case PanelMenus::Dynamic::PageSetup:
        if (m_pageSetup)
            m_pageSetup(m_page, m_menus.pageSetupOf(id));
        else
            core::sayNotAvailableYet(shortText(kPageSetups));
        return true;
    case PanelMenus::Dynamic::Nothing: break;
    }
    if (!nameOf(id))
        return false;
    if (const auto handler = m_handlers.find(id); handler != m_handlers.end()) {
        if (isAnswered(askedBeforehand(id)))
            handler->second(m_page);
    } else
        core::sayNotAvailableYet(shortText(id));
    return true;
}

/// What the dialog of a command asks the disk about as soon as it opens.
std::vector<core::DrawingLook::Question> PanelCommands::askedBeforehand(int id) const
{
    using core::DrawingLook;
    std::vector<DrawingLook::Question> questions;
    const auto add = [&](const TvSmFileReference* reference) {
        if (reference && !reference->getFileName().isEmpty())
            questions.push_back(DrawingLook::questionAbout(*reference, DrawingLook::Depth::Place));
    };
    if (id == kRenameSheets) {
        const auto* sheet = tvrxCast<TvSmSheet>(m_page.GetSelectedComponent());
        add(sheet ? sheet->getLayoutReference() : nullptr);
    } else if (id == kNewSheet) {
        const TvSmFileReference *location = nullptr, *drawing = nullptr; // of the next above
        const TvSmPersist* at = m_page.tree().GetComponent(GetInsertionPlace().parent);
        for (; const auto* subset = tvrxCast<TvSmSubset>(at); at = at->getOwner()) {
            location = location ? location : subset->getNewSheetLocation();
            drawing = drawing ? drawing : subset->getDefaultTemplateLayout();
        }
        add(location);
        add(drawing);
    }
    return questions;
}

/// False: the user does not wait for the disk.
bool PanelCommands::isAnswered(std::vector<core::DrawingLook::Question> questions)
{
    return std::ranges::all_of(questions, [this](core::DrawingLook::Question& question) {
        return lookInTime(std::move(question), waiting()).has_value();
    });
}

TvSmDatabase* PanelCommands::database() const
{
    TvSmDatabase* current = GetCurrentDatabase();
    return current == m_page.tree().database() ? current : nullptr;
}

std::vector<TvString> PanelCommands::selectedHandles() const
{
    std::vector<TvString> handles;
    for (const TreeItem* item : m_page.tree().GetSelectedItems())
        handles.push_back(item->handle());
    return handles;
}

bool PanelCommands::OpenSheetByDoubleClick(const TreeItem* item, bool withCtrl)
{
    if (!item || withCtrl || item->kind() != TreeItemData::kSheet)
        return false;
    return openSheets(
        database(), {item->handle()}, [this] { refreshStatus(); }, waiting());
}

InsertionPlace PanelCommands::GetInsertionPlace() const
{
    TreeItem* caret = m_page.tree().caret();
    if (!caret)
        return {};
    if (caret->kind() != TreeItemData::kSheet)
        return {caret, nullptr, nullptr};
    return {caret->parent(), caret, m_page.tree().GetComponent(caret->nextSibling())};
}

void PanelCommands::applySelection(const TvString& handle)
{
    const TvSmDatabase* shown = database();
    const auto* selection =
        shown ? tvrxCast<TvSmSheetSelection>(shown->findObject(handle)) : nullptr;
    if (!selection)
        return;
    SheetTree& tree = m_page.tree();
    const SheetTree::Batch batch(tree);
    tree.ClearSelection();
    for (const TvSmComponent* component : sm::each(selection->getEnumerator()))
        if (TreeItem* item = tree.itemOf(component->objectId().getHandle())) {
            tree.SelectItem(item);
            tree.setExpanded(item->parent(), true);
        }
}

void PanelCommands::setFormat(int id)
{
    constexpr long kStored[] = {0, 2, 1}; // of the formats 1 to 3
    if (sm::ChangeScope scope(core::answering(database())); scope) {
        scope.database()->getSheetSet()->getPublishOptions()->setEplotFormat(kStored[id - 1]);
        scope.commit();
    }
    m_page.setPublishFormat(id);
}

void PanelCommands::exploreSheet()
{
    const auto* sheet = tvrxCast<TvSmSheet>(m_page.GetSelectedComponent());
    if (!sheet || !sheet->getLayoutReference())
        return;
    if (const auto place = placeOfDrawing(*sheet->getLayoutReference(), waiting()))
        m_program.exploreFile(place->resolved);
}

/// The caret goes to a neighbour, when it stands on what is removed: the next one, else the one
/// before, else the one above.
void PanelCommands::moveCaretOff(const std::set<TvString>& removed)
{
    TreeItem* caret = m_page.tree().caret();
    if (!caret || !removed.contains(caret->handle()))
        return;
    const auto stays = [&](const TreeItem* item) {
        return item && !removed.contains(item->handle());
    };
    TreeItem* neighbour = caret;
    while (neighbour && !stays(neighbour))
        neighbour = neighbour->nextSibling();
    if (!neighbour)
        for (neighbour = caret; neighbour && !stays(neighbour);)
            neighbour = neighbour->previousSibling();
    m_page.tree().setCaret(neighbour ? neighbour : caret->parent());
}

void PanelCommands::removeSubset()
{
    const TreeItem* item = m_page.tree().caret();
    if (!item || item->kind() != TreeItemData::kSubset)
        return;
    const TvString handle = item->handle();
    if (item->hasChildren() && !confirmSubsetRemoval())
        return;
    sm::ChangeScope scope(core::answering(database()));
    if (!scope)
        return;
    auto* subset = tvrxCast<TvSmSubset>(scope.database()->findObject(handle));
    auto* owner = subset ? tvrxCast<TvSmSubset>(subset->getOwner()) : nullptr;
    if (!owner || !owner->removeSubset(subset))
        return;
    moveCaretOff({handle});
    scope.commit(); // the reload takes the items out
    m_page.anchorAtCaret();
}

void PanelCommands::removeSheets()
{
    SheetTree& tree = m_page.tree();
    std::vector<TvString> handles;
    for (const TreeItem* item : tree.GetSelectedItems())
        if (item->kind() == TreeItemData::kSheet)
            handles.push_back(item->handle());
    sm::ChangeScope scope(handles.empty() ? nullptr : core::answering(database()));
    if (!scope)
        return;
    const auto sheetOf = [&](const TvString& handle) {
        return tvrxCast<TvSmSheet>(scope.database()->findObject(handle));
    };
    const TvSmSheet* only = handles.size() == 1 ? sheetOf(handles.front()) : nullptr;
    const TvString what =
        only ? core::sheetLabel(*only) : TvString().format(u"%d", static_cast<int>(handles.size()));
    if (!confirmRemoval(what, *scope.database()))
        return;
    for (const TvString& handle : handles) {
        TvSmSheet* sheet = sheetOf(handle);
        if (auto* owner = sheet ? tvrxCast<TvSmSubset>(sheet->getOwner()) : nullptr)
            owner->removeSheet(sheet);
    }
    moveCaretOff({handles.begin(), handles.end()});
    if (!scope.commit())
        return;
    refreshStatus();
    m_page.anchorAtCaret();
}

void PanelCommands::setExcluded(std::uint32_t kind, bool excluded)
{
    sm::ChangeScope scope = sm::ChangeScope::withoutTest(core::answering(database()));
    if (!scope)
        return;
    const SheetTree& tree = m_page.tree();
    for (const TreeItem* item : tree.GetSelectedItems()) {
        if (item->kind() != kind)
            continue;
        TvSmComponent* object = tree.GetComponent(item);
        if (auto* subset = tvrxCast<TvSmSubset>(object))
            subset->setExcludeFromPublish(excluded);
        else if (auto* sheet = tvrxCast<TvSmSheet>(object))
            sheet->setExcludeFromPublish(excluded);
    }
    if (kind == TreeItemData::kSubset)
        m_page.UpdateStatusImages(); // those of subsets follow the flag
    scope.commit();
}

void PanelCommands::insertSheetList()
{
    sheetListHandles() = selectedHandles();
    tvedPostCommand(u"\u001B_SmInsertToc\n");
}

} // namespace panel
