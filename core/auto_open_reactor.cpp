#include <core/auto_open_reactor.h>

#include <algorithm>
#include <memory>

#include <core/missing_sheet_set_link_dialog.h>
#include <core/open_sheet_set.h>
#include <core/session_host.h>
#include <core/sheet_data.h>
#include <core/sheet_view_sync.h>
#include <core/short_variable.h>
#include <core/templates.h>
#include <core/tv_sm_db_reactor.h>
#include <core/watch_poller.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_ax_doc_lock.h>
#include <sm/kv_db_util.h>

TVRX_DEFINE_MEMBERS(TvEdAutoOpenSheetSetReactor, TvEditorReactor)

namespace {

std::unique_ptr<TvSmDbReactor> g_viewReactor; // in all open drawings

// Commands that change named views.
constexpr const TvChar* kViewCommands[] = {u"VIEW", u"-VIEW", u"U", u"UNDO", u"REDO", u"MREDO"};

/// The drawing that was opened, on its way to its sheet set.
class Opening
{
public:
    Opening(const TvString& path, TvDbDatabase& drawing, std::vector<core::PaperLayout> layouts)
        : m_path(path), m_drawing(drawing), m_layouts(std::move(layouts))
    {
    }

    void findSheetSet()
    {
        TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
        if (!manager || takeOpenSet(*manager))
            return;
        TvString named;
        if (!KvDbUtil::GetShSetFileName(&m_drawing, named))
            return;
        if (manager->findOpenDatabase(named))
            return RemoveSheetData(&m_drawing); // it is open, and did not want this drawing
        if (!core::answersInTime(named))
            return; // it is left alone: who opened a drawing does not wait for its set
        TvSmDatabase* opened = manager->openDatabase(named, true, 0);
        if (!opened)
            return askWhetherToForget(named);
        if (take(*opened))
            return;
        manager->closeDatabase(opened);
        RemoveSheetData(&m_drawing);
    }

private:
    bool takeOpenSet(TvSmSheetSetMgr& manager)
    {
        std::vector<TvSmDatabase*> open; // showing one changes the manager's list
        for (TvSmDatabase* database : sm::each(manager.getDatabaseEnumerator()))
            open.push_back(database);
        return std::ranges::any_of(open, [&](TvSmDatabase* database) { return take(*database); });
    }

    /// When the drawing is a sheet of that set: tells it so, and shows the set.
    bool take(TvSmDatabase& database)
    {
        core::PaperLayout match;
        if (!FindSheetForOpeningDrawing(database.getSheetSet(), m_path, m_layouts, match))
            return false;
        const TvString file = database.getFileName();
        const TvAxDocLock lock(&m_drawing);
        const UndoRecordingPause pause(&m_drawing);
        WriteSheetData(&m_drawing, {match.handle.text(), match.name, m_path, file});
        OpenSheetSetFile(file);
        return true;
    }

    void askWhetherToForget(const TvString& sheetSet)
    {
        if (CMissingSheetSetLinkDialog(m_path, sheetSet).DoModal() == 1)
            RemoveSheetData(&m_drawing);
    }

    TvString m_path;
    TvDbDatabase& m_drawing;
    std::vector<core::PaperLayout> m_layouts;
};

bool isOn(const TvChar* variable)
{
    return core::shortVariable(variable).value_or(0) != 0;
}

} // namespace

TvEdAutoOpenSheetSetReactor::TvEdAutoOpenSheetSetReactor()
{
    if (TvEditor* editor = tvedEditor())
        editor->addReactor(this);
}

TvEdAutoOpenSheetSetReactor::~TvEdAutoOpenSheetSetReactor()
{
    if (TvEditor* editor = tvedEditor())
        editor->removeReactor(this);
    if (TvApDocManager* documents = tvDocManagerPtr(); documents && g_viewReactor) {
        const std::unique_ptr<TvApDocumentIterator> each(documents->newTvApDocumentIterator());
        for (; !each->done(); each->step())
            each->document()->database()->removeReactor(g_viewReactor.get());
    }
    g_viewReactor.reset();
}

void TvEdAutoOpenSheetSetReactor::endDwgOpen(const TvChar* path, TvDbDatabase* database)
{
    if (!path || !database)
        return;
    if (!g_viewReactor)
        g_viewReactor = std::make_unique<TvSmDbReactor>();
    database->addReactor(g_viewReactor.get());
    SyncSheetViewsWithDrawing(database);
    if (!isOn(u"SSLOCATE") || !isOn(u"SSMAUTOOPEN"))
        return;
    std::vector<core::PaperLayout> layouts = core::populatedLayouts(database);
    if (!layouts.empty())
        Opening(TvString(path), *database, std::move(layouts)).findSheetSet();
}

void TvEdAutoOpenSheetSetReactor::commandEnded(const TvChar* name)
{
    const TvString command(name);
    if (!g_viewsDirty || std::ranges::none_of(kViewCommands, [&](const TvChar* each) {
            return command.compareNoCase(each) == 0;
        }))
        return;
    const TvApDocument* document = tvDocManagerPtr() ? tvDocManagerPtr()->curDocument() : nullptr;
    SyncSheetViewsWithDrawing(document ? document->database() : nullptr);
    g_viewsDirty = false;
}

void TvEdAutoOpenSheetSetReactor::sysVarChanged(const TvChar* name)
{
    using Palette = core::SessionHost::Palette;
    core::SessionHost* host = core::sessionHost();
    if (!host || TvString(name).compareNoCase(u"COLORTHEME") != 0)
        return;
    for (const Palette which : {Palette::SheetList, Palette::SheetViews, Palette::ModelViews})
        if (core::SheetSetPalette* palette = host->palette(which))
            palette->updateUiStyle();
}

void TvEdAutoOpenSheetSetReactor::documentClosing(TvDbDatabase* database)
{
    if (database && g_viewReactor)
        database->removeReactor(g_viewReactor.get());
}

std::vector<core::PaperLayout> core::populatedLayouts(const TvDbDatabase* database)
{
    std::vector<PaperLayout> found;
    const TvDbObjectPointer<TvDbDictionary> layouts(database ? database->layoutDictionaryId()
                                                             : TvDbObjectId());
    if (!layouts)
        return found;
    for (const auto& [name, id] : layouts->entries()) {
        const TvDbObjectPointer<TvDbLayout> layout(id);
        if (layout && IsLayoutPopulated(layout.object()))
            found.push_back({layout->getLayoutName(), id.handle()});
    }
    return found;
}

namespace {

bool isBelow(const TvSmPersist& object, const TvSmSubset& subset)
{
    const TvSmPersist* at = &object;
    while (at && at != &subset)
        at = at->owner();
    return at != nullptr;
}

} // namespace

bool FindSheetForOpeningDrawing(const TvSmSubset* subset, const TvString& path,
                                const std::vector<core::PaperLayout>& layouts,
                                core::PaperLayout& match)
{
    if (!subset || !subset->database())
        return false;
    std::vector<TvSmSheet*> sheets;
    KvDbUtil::GetAllSheetOfOneDwgInSheetSet(subset->database()->getSheetSet(), path.kwszPtr(),
                                            sheets);
    for (const TvSmSheet* sheet : sheets) {
        const TvDbHandle handle(sheet->getLayoutReference()->getHandle().view());
        const auto layout = std::ranges::find(layouts, handle, &core::PaperLayout::handle);
        if (layout != layouts.end() && isBelow(*sheet, *subset)) {
            match = *layout;
            return true;
        }
    }
    return false;
}
