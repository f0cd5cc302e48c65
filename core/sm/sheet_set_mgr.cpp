#include "sm/tv_sm_sheet_set_mgr.h"

#include <filesystem>

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "database_state.h"
#include "sm/ask_disk.h"
#include "sm/environment.h"

using base::Failure;
using base::Reason;
using base::Status;
using sm::Internals;

struct TvSmSheetSetMgr::State {
    std::vector<std::unique_ptr<TvSmDatabase>> open;
    std::vector<TvSmDatabase*> closing; // so that a sink that hears 17 cannot close a second time
    sm::Sinks sinks;
    Status status;
    int busy = 0;
};

namespace {

/// The path as everything else keeps it: absolute and normalised, in the user's spelling.
TvString fullPath(const TvString& path)
{
    const base::PathRules& rules = base::PathRules::native();
    if (path.isEmpty() || rules.isNetwork(path) || base::PathRules::isUrl(path))
        return path;
    if (rules.isAbsolute(path))
        return rules.normalise(path);
    std::error_code failure;
    const std::filesystem::path current = std::filesystem::current_path(failure);
    return failure ? path
                   : rules.normalise(rules.join(base::pathFromNative(current.string()), path));
}

/// Whether two paths name one set. What must not be touched is told by its name.
sm::DiskQuestion whetherSameSet(const TvString& left, const TvString& right)
{
    return {{left, right},
            [left, right](const sm::About& about) { return sm::isSameFile(left, right, about); }};
}

class Counted
{
public:
    explicit Counted(int& count) : m_count(count) { ++m_count; }
    ~Counted() { --m_count; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& m_count;
};

} // namespace

TvSmSheetSetMgr::TvSmSheetSetMgr() : m_state(std::make_unique<State>()) {}

// What is left open closes quietly: nobody is there any more to hear of it.
TvSmSheetSetMgr::~TvSmSheetSetMgr() = default;

TvSmDatabase* TvSmSheetSetMgr::createDatabase(const TvString& path, const TvString& templatePath,
                                              bool overwrite)
{
    const Counted busy(m_state->busy);
    const TvString full = fullPath(path);
    m_state->status = Status();
    if (full.isEmpty())
        m_state->status = Status(Failure::Usage, Reason::DstNoFileName);
    else if (findOpenDatabase(full) || (!overwrite && KvFileSystem::pathFileExists(full)))
        m_state->status = Status(Failure::Exists, Reason::FileExists, {full});
    if (!m_state->status)
        return nullptr;
    auto db = std::make_unique<TvSmDatabase>();
    sm::DatabaseState& state = Internals::state(*db);
    if (!templatePath.isEmpty() && !state.copyTemplate(fullPath(templatePath))) {
        m_state->status = state.status();
        return nullptr;
    }
    state.setKind(sm::DatabaseKind::Building);
    state.setFileName(full);
    // What stands there now is what the first save replaces; anything that appears later is
    // somebody's work.
    if (const auto former =
            base::readVersion(sm::files(), sm::clock(), full, sm::DatabaseState::kLargestFile))
        state.setBase(former->hash);
    m_state->open.push_back(std::move(db));
    TvSmDatabase* created = m_state->open.back().get();
    m_state->sinks.tell(SmEventDatabaseOpened, created);
    return created;
}

TvSmDatabase* TvSmSheetSetMgr::openDatabase(const TvString& path, bool /*silent*/, int /*reserved*/)
{
    const Counted busy(m_state->busy);
    const TvString full = fullPath(path);
    m_state->status = Status();
    if (full.isEmpty()) {
        m_state->status = Status(Failure::Usage, Reason::DstNoFileName);
        return nullptr;
    }
    if (TvSmDatabase* open = findOpenDatabase(full))
        return open;
    auto db = std::make_unique<TvSmDatabase>();
    if (!Internals::state(*db).openFirst(full)) {
        m_state->status = Internals::state(*db).status();
        return nullptr;
    }
    m_state->open.push_back(std::move(db));
    TvSmDatabase* opened = m_state->open.back().get();
    m_state->sinks.tell(SmEventDatabaseOpened, opened);
    return opened;
}

TvSmDatabase* TvSmSheetSetMgr::findOpenDatabase(const TvString& path) const
{
    const TvString full = fullPath(path);
    if (full.isEmpty())
        return nullptr;
    for (const auto& db : m_state->open)
        if (db->getFileName() == full)
            return db.get();
    std::vector<sm::DiskQuestion> questions;
    for (const auto& db : m_state->open)
        questions.push_back(whetherSameSet(db->getFileName(), full));
    const std::vector<bool> answers = sm::askDisk(std::move(questions), sm::Wanted::FirstYes);
    const auto found = std::find(answers.begin(), answers.end(), true);
    return found == answers.end()
               ? nullptr
               : m_state->open[static_cast<std::size_t>(found - answers.begin())].get();
}

bool TvSmSheetSetMgr::closeDatabase(TvSmDatabase* db)
{
    const auto isThis = [db](const std::unique_ptr<TvSmDatabase>& open) {
        return open.get() == db;
    };
    auto& open = m_state->open;
    auto& closing = m_state->closing;
    if (!db || std::find_if(open.begin(), open.end(), isThis) == open.end() ||
        std::find(closing.begin(), closing.end(), db) != closing.end())
        return false;
    sm::DatabaseState& state = Internals::state(*db);
    // A sink that is being told by this database cannot take it away under itself.
    if (state.sinks().isTelling())
        return false;
    const Counted busy(m_state->busy);
    closing.push_back(db);
    if (state.isLocked())
        state.unlock(false);
    m_state->sinks.tell(SmEventDatabaseClosing, db);
    std::erase(closing, db);
    const auto at = std::find_if(open.begin(), open.end(), isThis);
    const std::unique_ptr<TvSmDatabase> gone = std::move(*at);
    open.erase(at);
    return true;
}

int TvSmSheetSetMgr::registerEventHandler(TvSmEvents* sink)
{
    return m_state->sinks.add(sink);
}

bool TvSmSheetSetMgr::unregisterEventHandler(int cookie)
{
    return m_state->sinks.remove(cookie);
}

TvSmEnumerator<TvSmDatabase>* TvSmSheetSetMgr::getDatabaseEnumerator() const
{
    std::vector<TvSmDatabase*> databases;
    for (const auto& db : m_state->open)
        databases.push_back(db.get());
    return new sm::GatheredEnumerator<TvSmDatabase>(std::move(databases));
}

bool TvSmSheetSetMgr::isBusy() const
{
    const auto isBusyOne = [](const std::unique_ptr<TvSmDatabase>& db) { return db->isBusy(); };
    return m_state->busy > 0 || std::any_of(m_state->open.begin(), m_state->open.end(), isBusyOne);
}

namespace sm {

const Status& Internals::status(const TvSmSheetSetMgr& manager)
{
    return manager.m_state->status;
}

const Status& lastStatus(const TvSmSheetSetMgr* manager)
{
    static const Status success;
    return manager ? Internals::status(*manager) : success;
}

Status deleteSheetSet(TvSmSheetSetMgr& manager, const TvString& path)
{
    // One that cannot be read may be deleted too: only its name counts.
    TvSmDatabase* open = manager.findOpenDatabase(path);
    const TvString full = open ? open->getFileName() : fullPath(path);
    base::EditLock lock(files(), clock(), full);
    // Refused before anything is closed; a lock of our own goes with the closing.
    if (!open || !Internals::state(*open).isLocked())
        if (Status status = lock.take(environment().purpose); !status)
            return status;
    if (open)
        manager.closeDatabase(open);
    if (!lock.isHeld())
        if (Status status = lock.take(environment().purpose); !status)
            return status;
    Status status = base::removePublished(files(), full);
    if (status)
        status = lock.removeSidecar();
    lock.release();
    return status;
}

} // namespace sm
