#include "ed/tv_db_layout_manager.h"

#include <algorithm>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_db_symbol_table.h>

#include "ed/layouts.h"

TVRX_DEFINE_MEMBERS(TvDbLayoutManagerReactor, TvRxObject)
TVRX_DEFINE_MEMBERS(TvDbLayoutManager, TvRxObject)

void TvDbLayoutManagerReactor::layoutCreated(const TvChar*, TvDbObjectId) {}
void TvDbLayoutManagerReactor::layoutToBeRemoved(const TvChar*, TvDbObjectId) {}
void TvDbLayoutManagerReactor::layoutRemoved(const TvChar*, TvDbObjectId) {}
void TvDbLayoutManagerReactor::layoutToBeRenamed(const TvChar*, const TvChar*, TvDbObjectId) {}
void TvDbLayoutManagerReactor::layoutRenamed(const TvChar*, const TvChar*, TvDbObjectId) {}
void TvDbLayoutManagerReactor::layoutCopied(const TvChar*, TvDbObjectId, const TvChar*,
                                            TvDbObjectId)
{
}
void TvDbLayoutManagerReactor::layoutsReordered(TvDbDatabase*) {}
void TvDbLayoutManagerReactor::layoutSwitched(const TvChar*, TvDbObjectId) {}

namespace {

using Reactor = TvDbLayoutManagerReactor;

TvDbDatabase* meant(TvDbDatabase* database)
{
    return database ? database : tvdbHostApplicationServices()->workingDatabase();
}

TvString nameOf(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify, true);
    return layout ? layout->getLayoutName() : TvString();
}

TvDbObjectId blockOf(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
    return layout ? layout->getBlockTableRecordId() : TvDbObjectId();
}

TvStatusCode eraseLayout(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
    return layout ? layout->erase() : layout.openStatus();
}

/// The layout that is shown when @p leaving has gone: the next tab, or the one before the last.
TvDbObjectId neighbourOf(TvDbObjectId leaving)
{
    const std::vector<TvDbObjectId> tabs = db::layoutsInTabOrder(*leaving.database());
    const auto at = std::ranges::find(tabs, leaving);
    if (at == tabs.end() || tabs.size() < 2)
        return {};
    return at + 1 != tabs.end() ? at[1] : at[-1];
}

} // namespace

TvDbLayoutManager::TvDbLayoutManager()
{
    db::setLayoutManager(this);
}

TvDbLayoutManager::~TvDbLayoutManager()
{
    if (tvdbHostApplicationServices()->layoutManager() == this)
        db::setLayoutManager(nullptr);
}

template <class Tell>
void TvDbLayoutManager::forEach(Tell tell)
{
    const std::vector<Reactor*> now = m_reactors;
    for (Reactor* reactor : now)
        if (std::ranges::find(m_reactors, reactor) != m_reactors.end())
            tell(*reactor);
}

void TvDbLayoutManager::addReactor(Reactor* reactor)
{
    if (reactor && std::ranges::find(m_reactors, reactor) == m_reactors.end())
        m_reactors.push_back(reactor);
}

void TvDbLayoutManager::removeReactor(Reactor* reactor)
{
    std::erase(m_reactors, reactor);
}

void TvDbLayoutManager::fireLayoutSwitched(TvDbObjectId layout)
{
    const TvString name = nameOf(layout);
    forEach([&](Reactor& reactor) { reactor.layoutSwitched(name.kwszPtr(), layout); });
}

TvStatusCode TvDbLayoutManager::setCurrentLayout(const TvString& name, TvDbDatabase* database)
{
    TvDbDatabase* drawing = meant(database);
    return drawing ? ed::setCurrentLayout(*drawing, name) : TvStatus::NoDatabase;
}

TvStatusCode TvDbLayoutManager::setCurrentLayoutId(TvDbObjectId layout)
{
    return layout.isValid() ? ed::setCurrentLayout(*layout.database(), layout)
                            : TvStatus::NotThatObject;
}

TvString TvDbLayoutManager::findActiveLayout(bool allowModel, TvDbDatabase* database) const
{
    TvDbDatabase* drawing = meant(database);
    if (!drawing)
        return {};
    if (allowModel || !drawing->tilemode())
        return ed::currentLayoutName(*drawing);
    const TvDbObjectPointer<TvDbBlockTableRecord> paper(drawing->paperSpaceId(), TvDb::kForNotify);
    return paper ? nameOf(paper->getLayoutId()) : TvString();
}

TvDbObjectId TvDbLayoutManager::activeLayoutId(TvDbDatabase* database) const
{
    TvDbDatabase* drawing = meant(database);
    return drawing ? ed::currentLayout(*drawing) : TvDbObjectId();
}

TvDbObjectId TvDbLayoutManager::getActiveLayoutBTRId(TvDbDatabase* database) const
{
    return blockOf(activeLayoutId(database));
}

TvDbObjectId TvDbLayoutManager::findLayoutNamed(const TvString& name, TvDbDatabase* database) const
{
    TvDbDatabase* drawing = meant(database);
    TvDbObjectId id;
    const TvDbObjectPointer<TvDbDictionary> layouts(
        drawing ? drawing->layoutDictionaryId() : TvDbObjectId(), TvDb::kForNotify);
    if (layouts)
        layouts->getAt(name, id);
    return id;
}

TvStatusCode TvDbLayoutManager::findLayoutNamed(const TvString& name, TvDbLayout*& out,
                                                TvDb::OpenMode mode, TvDbDatabase* database) const
{
    out = nullptr;
    if (!meant(database))
        return TvStatus::NoDatabase;
    const TvDbObjectId id = findLayoutNamed(name, database);
    return id.isNull() ? TvStatus::KeyNotFound : tvdbOpenObject(out, id, mode);
}

bool TvDbLayoutManager::layoutExists(const TvString& name, TvDbDatabase* database) const
{
    return !findLayoutNamed(name, database).isNull();
}

int TvDbLayoutManager::countLayouts(TvDbDatabase* database) const
{
    TvDbDatabase* drawing = meant(database);
    return drawing ? static_cast<int>(db::layoutsInTabOrder(*drawing).size()) : 0;
}

TvStatusCode TvDbLayoutManager::createLayout(const TvString& name, TvDbObjectId& layout,
                                             TvDbObjectId& block, TvDbDatabase* database)
{
    layout.setNull();
    block.setNull();
    TvDbDatabase* drawing = meant(database);
    if (!drawing)
        return TvStatus::NoDatabase;
    if (const TvStatusCode status = db::addLayout(*drawing, name, layout))
        return status;
    block = blockOf(layout);
    forEach([&](Reactor& reactor) { reactor.layoutCreated(name.kwszPtr(), layout); });
    return TvStatus::Ok;
}

TvStatusCode TvDbLayoutManager::renameLayout(const TvString& name, const TvString& newName,
                                             TvDbDatabase* database)
{
    if (!meant(database))
        return TvStatus::NoDatabase;
    const TvDbObjectId id = findLayoutNamed(name, database);
    if (id.isNull())
        return TvStatus::KeyNotFound;
    const TvString before = nameOf(id);
    forEach([&](Reactor& reactor) {
        reactor.layoutToBeRenamed(before.kwszPtr(), newName.kwszPtr(), id);
    });
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        if (!layout)
            return layout.openStatus();
        if (const TvStatusCode status = layout->setLayoutName(newName))
            return status;
    }
    forEach(
        [&](Reactor& reactor) { reactor.layoutRenamed(before.kwszPtr(), newName.kwszPtr(), id); });
    return TvStatus::Ok;
}

TvStatusCode TvDbLayoutManager::deleteLayout(const TvString& name, TvDbDatabase* database)
{
    TvDbDatabase* drawing = meant(database);
    if (!drawing)
        return TvStatus::NoDatabase;
    const TvDbObjectId id = findLayoutNamed(name, drawing);
    if (id.isNull())
        return TvStatus::KeyNotFound;
    const TvString shown = nameOf(id);
    if (db::isModelLayoutName(shown))
        return TvStatus::NameReserved;
    constexpr std::size_t kModelAndOneSheet = 2;
    if (db::layoutsInTabOrder(*drawing).size() <= kModelAndOneSheet)
        return TvStatus::StillInUse;
    forEach([&](Reactor& reactor) { reactor.layoutToBeRemoved(shown.kwszPtr(), id); });
    const bool isShown = activeLayoutId(drawing) == id;
    if (isShown)
        if (const TvStatusCode status = setCurrentLayoutId(neighbourOf(id)))
            return status;
    if (const TvStatusCode status = eraseLayout(id); status != TvStatus::Ok) {
        if (isShown)
            setCurrentLayoutId(id);
        return status;
    }
    forEach([&](Reactor& reactor) { reactor.layoutRemoved(shown.kwszPtr(), id); });
    return TvStatus::Ok;
}

TvStatusCode TvDbLayoutManager::copyLayout(const TvString& source, const TvString& newName,
                                           TvDbDatabase* database)
{
    if (!meant(database))
        return TvStatus::NoDatabase;
    const TvDbObjectId id = findLayoutNamed(source, database);
    TvDbObjectId made;
    return id.isNull() ? TvStatus::KeyNotFound : cloneLayout(id, newName, 0, made);
}

TvStatusCode TvDbLayoutManager::cloneLayout(TvDbObjectId source, const TvString& newName, int place,
                                            TvDbObjectId& out)
{
    out.setNull();
    if (place < 0)
        return TvStatus::OutOfRange;
    if (const TvStatusCode status = db::copyLayout(source, newName, out))
        return status;
    if (place > 0)
        if (const TvStatusCode status = db::placeLayout(out, place))
            return status;
    const TvString from = nameOf(source);
    forEach([&](Reactor& reactor) {
        reactor.layoutCopied(from.kwszPtr(), source, newName.kwszPtr(), out);
    });
    return TvStatus::Ok;
}

TvStatusCode TvDbLayoutManager::moveLayout(TvDbObjectId layout, int place)
{
    if (const TvStatusCode status = db::placeLayout(layout, place))
        return status;
    forEach([&](Reactor& reactor) { reactor.layoutsReordered(layout.database()); });
    return TvStatus::Ok;
}
