#include "cli/session.h"

#include <filesystem>

#include <base/path_rules.h>
#include <resources/texts.h>
#include <sm/environment.h>

#include "cli/lock_words.h"

namespace cli {

using base::Failure;
using base::Status;

namespace {

constexpr std::chrono::milliseconds kPoll{100};

TvSmDatabase* openOrRefuse(TvSmSheetSetMgr& manager, const TvString& file)
{
    TvSmDatabase* db = manager.openDatabase(fullPath(file), true, 0);
    if (!db)
        refuse(sm::lastStatus(&manager), Doing::Reading);
    return db;
}

} // namespace

namespace {

/// @pre the lock is held.
operations::RenameRecovery lookAfterRename(TvSmDatabase& db, Console& console)
{
    using operations::RenameRecovery;
    if (!operations::hasRenameToRecover(db.getFileName()))
        return RenameRecovery::Nothing;
    const base::Result<RenameRecovery> done = operations::recoverRename(db);
    if (!done)
        refuse(done.status(), Doing::Writing);
    if (*done != RenameRecovery::Nothing)
        console.warn(messageOf(*done == RenameRecovery::Finished ? Word::WarnRenameFinished
                                                                 : Word::WarnRenameTakenBack));
    return *done;
}

/// For who only reads: where the lock is free for a moment.
void lookAfterRenameIfFree(TvSmDatabase& db, Console& console)
{
    if (!operations::hasRenameToRecover(db.getFileName()))
        return;
    const sm::ChangeScope scope(&db);
    if (scope)
        lookAfterRename(db, console);
    else
        console.warn(messageOf(Word::WarnRenameLeft));
}

} // namespace

TvString fullPath(const TvString& path)
{
    const base::PathRules& rules = base::PathRules::native();
    if (path.isEmpty() || rules.isAbsolute(path))
        return path.isEmpty() ? path : rules.normalise(path);
    std::error_code failure;
    const std::filesystem::path current = std::filesystem::current_path(failure);
    if (failure)
        return path;
    return rules.normalise(rules.join(base::pathFromNative(current.string()), path));
}

void warnIfLocked(const TvString& file, Console& console)
{
    const base::LockInfo info = base::EditLock(sm::files(), sm::clock(), fullPath(file)).query();
    if (base::lockStatusOf(info.state) != 0)
        console.warn(messageOf(Word::WarnDryRunLocked, fullPath(file), lockSentence(info)));
}

// --- reading

OpenedSet::OpenedSet(const TvString& file, Console& console)
{
    TvSmDatabase* db = openOrRefuse(m_manager, file);
    console.stopIfInterrupted();
    lookAfterRenameIfFree(*db, console);
    m_db = db;
    if (sm::isReadOnlyVersion(m_db))
        console.warn(messageOf(Word::WarnNewerVersion, m_db->getFileName(), m_db->getVersion()));
}

// --- changing

ChangedSet::ChangedSet(const TvString& file, const ChangeOptions& options, Console& console)
    : m_console(console)
{
    if (options.dryRun)
        openCopy(file);
    else
        openLocked(file, options.lockWait);
}

void ChangedSet::openCopy(const TvString& file)
{
    m_copy = std::make_unique<TvSmDatabase>();
    if (!m_copy->load(fullPath(file)))
        refuse(sm::lastStatus(m_copy.get()), Doing::Reading);
    m_copy->setFileName(fullPath(file)); // drawings are found from there; it is never saved
    if (sm::isReadOnlyVersion(m_copy.get()))
        refuse(Status(Failure::Unsupported, base::Reason::DstNewerVersion,
                      {fullPath(file), m_copy->getVersion()}),
               Doing::Writing);
    warnIfLocked(file, m_console);
    if (operations::hasRenameToRecover(fullPath(file)))
        m_console.warn(messageOf(Word::WarnRenameLeft));
    m_db = m_copy.get();
}

void ChangedSet::openLocked(const TvString& file, std::chrono::milliseconds lockWait)
{
    m_db = openOrRefuse(m_manager, file);
    if (const Status status = waitForLock(lockWait); !status)
        refuse(status, Doing::Writing);
    m_recovered = lookAfterRename(*m_db, m_console);
}

/// Looks again and again, since a lock tells nobody when it ends.
Status ChangedSet::waitForLock(std::chrono::milliseconds lockWait)
{
    const std::int64_t start = sm::clock().steadyNs();
    bool said = false;
    while (true) {
        m_console.stopIfInterrupted();
        m_scope = sm::ChangeScope::withoutTest(m_db);
        if (*m_scope)
            return {};
        const Status status = sm::lastStatus(m_db);
        const std::chrono::nanoseconds waited(sm::clock().steadyNs() - start);
        if (status.failure() != Failure::Locked || waited >= lockWait)
            return status;
        if (!std::exchange(said, true))
            m_console.say(words(Word::WaitingForLock, messageOf(status).text));
        sm::clock().sleep(kPoll);
    }
}

void ChangedSet::commit()
{
    if (isDryRun()) {
        m_console.say(words(Word::DryRunDone));
        return;
    }
    m_console.stopIfInterrupted();
    if (!m_scope->commit())
        refuse(sm::lastStatus(m_db), Doing::Writing);
}

} // namespace cli
