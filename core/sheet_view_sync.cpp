#include <core/sheet_view_sync.h>

#include <map>
#include <vector>

#include <core/watch_poller.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_ax_doc_lock.h>
#include <sm/change_scope.h>
#include <sm/kv_db_util.h>

namespace {

/// A named view on the paper of a layout.
struct PaperView {
    TvDbObjectId record;
    TvDbHandle handle;
    TvDbHandle layout;
    TvString category;
};

/// What has to be done to make a set agree with a drawing; pointers are the set's.
struct ViewChanges {
    struct Added {
        TvSmSheet* sheet;
        PaperView view;
    };
    struct Moved {
        TvSmSheetView* view;
        TvString category;
    };
    struct Dead {
        TvSmSheetViews* owner;
        TvSmSheetView* view;
    };
    std::vector<Added> added;
    std::vector<Moved> moved;
    std::vector<Dead> dead;

    bool isEmpty() const { return added.empty() && moved.empty() && dead.empty(); }
};

using SheetByLayout = std::map<TvDbHandle, TvSmSheet*>;

const TvApDocument* currentDocument()
{
    return tvDocManagerPtr() ? tvDocManagerPtr()->curDocument() : nullptr;
}

/// The last open database of which the current layout is a sheet.
TvSmDatabase* databaseOfCurrentLayout()
{
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    TvSmDatabase* found = nullptr;
    if (manager)
        for (TvSmDatabase* database : sm::each(manager->getDatabaseEnumerator()))
            if (KvDbUtil::IsCurrentSheetInSheetSet(database))
                found = database;
    return found;
}

/// False when the drawing has no table of views.
bool readPaperViews(const TvDbDatabase& drawing, std::vector<PaperView>& out)
{
    const TvDbObjectPointer<TvDbViewTable> table(drawing.symbolTableId(TvDb::SymbolTable::View));
    if (!table)
        return false;
    for (const TvDbObjectId id : table->recordIds()) {
        const TvDbObjectPointer<TvDbViewTableRecord> view(id);
        if (view && view->isPaperspaceView() && view->getLayout())
            out.push_back({id, id.handle(), view->getLayout().handle(), view->getCategoryName()});
    }
    return true;
}

/// The sheets of the layouts that the current document has; the first, where several name one.
SheetByLayout sheetsOf(const TvDbDatabase& drawing, const TvSmSheetSet& set)
{
    SheetByLayout sheets;
    const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
    if (!layouts || !currentDocument())
        return sheets;
    SheetByLayout named;
    std::vector<TvSmSheet*> all;
    KvDbUtil::GetAllSheetOfOneDwgInSheetSet(&set, currentDocument()->fileName().kwszPtr(), all);
    for (TvSmSheet* sheet : all)
        named.emplace(TvDbHandle(sheet->getLayoutReference()->getHandle().view()), sheet);
    for (const auto& [name, id] : layouts->entries())
        if (const auto sheet = named.find(id.handle()); sheet != named.end())
            sheets.insert(*sheet);
    return sheets;
}

bool isNamedView(const TvDbDatabase& drawing, const TvString& handle)
{
    TvDbObjectId id;
    return drawing.getTvDbObjectId(id, false, TvDbHandle(handle.view())) == TvStatus::Ok &&
           TvDbObjectPointer<TvDbViewTableRecord>(id);
}

void findDeadViews(const TvDbDatabase& drawing, const SheetByLayout& sheets,
                   std::vector<ViewChanges::Dead>& out)
{
    for (const auto& [layout, sheet] : sheets)
        for (TvSmSheetView* view : sm::each(sheet->getSheetViews()->getEnumerator()))
            if (view->getViewReference() &&
                !isNamedView(drawing, view->getViewReference()->getHandle()))
                out.push_back({sheet->getSheetViews(), view});
}

/// The views of a sheet by the handle of the named view; the first, where several have one.
std::map<TvDbHandle, TvSmSheetView*> viewsByHandle(const TvSmSheet& sheet)
{
    std::map<TvDbHandle, TvSmSheetView*> views;
    for (TvSmSheetView* view : sm::each(sheet.getSheetViews()->getEnumerator()))
        if (const TvSmTvDbViewReference* reference = view->getViewReference())
            views.emplace(TvDbHandle(reference->getHandle().view()), view);
    return views;
}

ViewChanges changesFor(const TvDbDatabase& drawing, const TvSmSheetSet& set,
                       const std::vector<PaperView>& paperViews)
{
    ViewChanges changes;
    const SheetByLayout sheets = sheetsOf(drawing, set);
    std::map<const TvSmSheet*, std::map<TvDbHandle, TvSmSheetView*>> views;
    for (const PaperView& wanted : paperViews) {
        const auto sheet = sheets.find(wanted.layout);
        if (sheet == sheets.end())
            continue;
        const auto [known, isNew] = views.try_emplace(sheet->second);
        if (isNew)
            known->second = viewsByHandle(*sheet->second);
        const auto view = known->second.find(wanted.handle);
        if (view == known->second.end()) {
            changes.added.push_back({sheet->second, wanted});
            continue;
        }
        const TvSmViewCategory* category = view->second->getCategory();
        if (!category || category->getName().compareNoCase(wanted.category) != 0)
            changes.moved.push_back({view->second, wanted.category});
    }
    findDeadViews(drawing, sheets, changes.dead);
    return changes;
}

void apply(const ViewChanges& changes, TvSmSheetSet& set)
{
    for (const ViewChanges::Added& added : changes.added) {
        const TvDbObjectPointer<TvDbViewTableRecord> record(added.view.record);
        AssignViewCategory(&set, CreateSheetViewFromRecord(added.sheet, record.object()),
                           added.view.category);
    }
    for (const ViewChanges::Moved& moved : changes.moved)
        AssignViewCategory(&set, moved.view, moved.category);
    for (const ViewChanges::Dead& dead : changes.dead)
        dead.owner->remove(dead.view);
}

} // namespace

bool SyncSheetViewsWithDrawing(TvDbDatabase* database)
{
    // Sheets are those of the current document: views of another drawing are not theirs.
    if (!database || !currentDocument() || currentDocument()->database() != database)
        return false;
    TvSmDatabase* sheetSet = databaseOfCurrentLayout();
    if (!sheetSet)
        return false;
    const TvAxDocLock documentLock(database);
    std::vector<PaperView> views;
    if (documentLock.lockStatus() != TvStatus::Ok || !readPaperViews(*database, views))
        return false;
    if (changesFor(*database, *sheetSet->getSheetSet(), views).isEmpty())
        return true;
    sm::ChangeScope scope = sm::ChangeScope::withoutTest(core::answering(sheetSet));
    if (!scope)
        return false;
    // The lock has read what others saved meanwhile.
    apply(changesFor(*database, *sheetSet->getSheetSet(), views), *sheetSet->getSheetSet());
    return scope.commit();
}

TvSmSheetView* CreateSheetViewFromRecord(TvSmSheet* sheet, const TvDbViewTableRecord* record)
{
    if (!sheet || !record || !currentDocument())
        return nullptr;
    TvSmSheetViews* views = sheet->getSheetViews();
    auto view = std::make_unique<TvSmSheetView>();
    auto reference = std::make_unique<TvSmTvDbViewReference>();
    if (!view->initNew(views, u"") || !reference->initNew(view.get(), u""))
        return nullptr;
    reference->setHandle(record->objectId().handle().text());
    reference->setFileName(currentDocument()->fileName());
    reference->setName(record->getName());
    if (!view->setViewReference(reference.get()))
        return nullptr;
    reference.release(); // the view's now
    view->setTitle(record->getName());
    return views->add(view.get()) ? view.release() : nullptr;
}

void RemoveDeadSheetViews(TvDbDatabase* database, TvSmSheetSet* sheetSet)
{
    if (!database || !sheetSet)
        return;
    ViewChanges changes;
    findDeadViews(*database, sheetsOf(*database, *sheetSet), changes.dead);
    apply(changes, *sheetSet);
}
