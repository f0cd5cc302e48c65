#include "sm/tv_sm_database.h"

#include "database_state.h"
#include "sm/environment.h"
#include "sm/locked_here.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmDatabase, TvSmPersist)

TvSmDatabase::TvSmDatabase() : m_state(std::make_unique<sm::DatabaseState>(*this)) {}
TvSmDatabase::~TvSmDatabase() = default;

bool TvSmDatabase::initNew(TvSmPersist* /*owner*/, const TvString& /*name*/)
{
    // A database owns itself: there is nothing to bind.
    return true;
}

bool TvSmDatabase::load(const TvString& path)
{
    return m_state->load(path);
}

bool TvSmDatabase::save(int /*reserved*/)
{
    return m_state->save();
}

TvString TvSmDatabase::getFileName(TvString& out) const
{
    return out = m_state->fileName();
}

TvString TvSmDatabase::getFileName() const
{
    return m_state->fileName();
}

bool TvSmDatabase::setFileName(const TvString& path)
{
    return m_state->setFileName(path);
}

const TvSmSheetSet* TvSmDatabase::getSheetSet() const
{
    return &m_state->set();
}

TvSmSheetSet* TvSmDatabase::getSheetSet()
{
    return &m_state->set();
}

int TvSmDatabase::registerEventHandler(TvSmEvents* sink)
{
    return m_state->sinks().add(sink);
}

bool TvSmDatabase::unregisterEventHandler(int cookie)
{
    return m_state->sinks().remove(cookie);
}

TvSmPersist* TvSmDatabase::findObject(const TvString& handleText) const
{
    return m_state->findInSet(sm::handleNumber(handleText.view()));
}

TvString TvSmDatabase::getVersion(TvString& out) const
{
    return out = m_state->version();
}

TvString TvSmDatabase::getVersion() const
{
    return m_state->version();
}

bool TvSmDatabase::lockDb(TvSmDatabase* db)
{
    return db == this && m_state->lock();
}

bool TvSmDatabase::unlockDb(TvSmDatabase* db, bool commit)
{
    return db == this && m_state->unlock(commit);
}

int TvSmDatabase::getLockStatus() const
{
    return m_state->lockStatus();
}

void TvSmDatabase::setTransmitting(bool transmitting)
{
    m_state->setTransmitting(transmitting);
}

bool TvSmDatabase::isBusy() const
{
    return m_state->isBusy();
}

namespace sm {

base::LockInfo lockInfo(const TvSmDatabase* db)
{
    return db ? Internals::state(*db).lockInfo() : base::LockInfo();
}

const base::Status& lastStatus(const TvSmDatabase* db)
{
    static const base::Status success;
    return db ? Internals::state(*db).status() : success;
}

bool isLockedHere(const TvSmDatabase* db)
{
    return db && Internals::state(*db).isLocked();
}

bool loadVersion(TvSmDatabase& db, base::VersionRead&& version)
{
    return Internals::state(db).loadVersion(std::move(version));
}

bool isReadOnlyVersion(const TvSmDatabase* db)
{
    return db && Internals::state(*db).isReadOnlyVersion();
}

std::optional<base::ContentHash> committedHash(const TvSmDatabase* db)
{
    return db ? Internals::state(*db).base() : std::nullopt;
}

Environment& environment()
{
    static Environment instance;
    return instance;
}

base::FileOps& files()
{
    return environment().files ? *environment().files : base::systemFileOps();
}

base::Clock& clock()
{
    return environment().clock ? *environment().clock : base::systemClock();
}

namespace {

using Visit = std::function<void(TvSmPersist&)>;

void visitBag(TvSmComponent& component, const Visit& visit)
{
    if (Internals::hasBag(component))
        for (TvSmCustomPropertyValue* value : Internals::entries(Internals::bagOf(component)))
            visit(*value);
}

void visitIf(TvSmPersist* object, const Visit& visit)
{
    if (object)
        visit(*object);
}

void visitList(const TvSmReferenceCollection& list, const Visit& visit)
{
    for (TvSmFileReference* reference : Internals::entries(list))
        if (reference->owner() == &list)
            visit(*reference);
}

void visitSheet(TvSmSheet& sheet, const Visit& visit)
{
    visit(sheet);
    visitIf(sheet.getLayoutReference(), visit);
    visitBag(sheet, visit);
    if (!Internals::hasViews(sheet))
        return;
    visitBag(Internals::viewsOf(sheet), visit);
    for (TvSmSheetView* view : Internals::entries(Internals::viewsOf(sheet))) {
        visit(*view);
        visitIf(view->getViewReference(), visit);
        visitBag(*view, visit);
    }
}

void visitChildren(TvSmSubset& subset, const Visit& visit)
{
    for (TvSmComponent* child = Internals::firstChild(subset); child;
         child = Internals::nextSibling(*child)) {
        if (child->isA() == TvSmSheet::desc()) {
            visitSheet(static_cast<TvSmSheet&>(*child), visit);
            continue;
        }
        auto& below = static_cast<TvSmSubset&>(*child);
        visit(below);
        visitIf(below.getNewSheetLocation(), visit);
        visitIf(below.getDefaultTemplateLayout(), visit);
        visitBag(below, visit);
        visitChildren(below, visit);
    }
}

void visitSetParts(TvSmSheetSet& set, const Visit& visit)
{
    visitIf(set.getNewSheetLocation(), visit);
    visitIf(set.getDefaultTemplateLayout(), visit);
    visitBag(set, visit);
    visitIf(set.getAltPageSetups(), visit);
    visitIf(set.getDefaultLabelBlock(), visit);
    visit(*set.getPublishOptions());
    visitIf(set.getPublishOptions()->getDefaultOutputdir(), visit);
    visitBag(*set.getPublishOptions(), visit);
    visitList(*set.getResourceLocations(), visit);
    visitList(*set.getCalloutBlocks(), visit);
    visitBag(*set.getViewCategories(), visit);
    for (TvSmViewCategory* category : Internals::entries(*set.getViewCategories())) {
        visit(*category);
        visitBag(*category, visit);
        if (Internals::hasCallouts(*category))
            visitList(Internals::calloutsOf(*category), visit);
    }
    visitBag(*set.getSheetSelections(), visit);
    for (TvSmSheetSelection* selection : Internals::entries(*set.getSheetSelections())) {
        visit(*selection);
        visitBag(*selection, visit);
    }
}

} // namespace

void forEachObject(const TvSmDatabase* db, const Visit& visit)
{
    if (!db)
        return;
    TvSmSheetSet& set = Internals::state(*db).set();
    visit(set);
    visitSetParts(set, visit);
    visitChildren(set, visit);
}

} // namespace sm
