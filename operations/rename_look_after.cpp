#include "operations/rename_look_after.h"

#include <set>

#include <base/path_rules.h>
#include <core/leftover.h>
#include <core/session.h>
#include <ed/user_prompts.h>
#include <rx/tv_user_messages.h>
#include <sm/change_scope.h>
#include <sm/environment.h>
#include <sm/kv_db_util.h>

#include "operations/rename_apply.h"

namespace operations {

namespace {

constexpr int kTitle = 8120, kTakeBack = 8121, kFinish = 8122, kLeft = 8123; // texts

/// One journal on disk, at one moment: each stage of each rename is a file of its own.
std::string keyOf(const TvString& setPath)
{
    base::FileInfo info;
    if (sm::files().describeName(base::nativePath(renameJournalPath(setPath)), info) != 0)
        return {};
    return setPath.utf8() + "\n" + std::to_string(info.stamp.inode) + " " +
           std::to_string(info.stamp.modifiedNs);
}

/// What somebody was asked or told about.
std::set<std::string>& asked()
{
    static std::set<std::string> all;
    return all;
}

bool g_isAsking = false;

bool isOpen(const TvSmDatabase* database)
{
    const TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    for (const TvSmDatabase* each : sm::each(manager->getDatabaseEnumerator()))
        if (each == database)
            return true;
    return false;
}

void tellFailure(const base::Status& status)
{
    TvUserMessages::Message message;
    message.text = static_cast<int>(status.reason());
    message.caption = kTitle;
    message.arguments = status.arguments();
    message.icon = TvUserMessages::Icon::Warning;
    tvrxShowMessage(message);
}

bool wantsIt(const BrokenRename& broken, const TvString& setPath)
{
    TvUserMessages::Message message;
    message.text = broken.way == RenameRecovery::Finished ? kFinish : kTakeBack;
    message.caption = kTitle;
    message.arguments = {setPath, TvString().format(u"%d", broken.drawings)};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::Yes;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Yes;
}

/// What is to be done, seen under the lock; nothing where the lock is not to be had.
std::optional<base::Result<BrokenRename>> lookUnderLock(TvSmDatabase& database)
{
    const sm::ChangeScope scope(&database);
    return scope ? std::optional(brokenRename(database)) : std::nullopt;
}

void recover(TvSmDatabase& database)
{
    base::Result<RenameRecovery> done = RenameRecovery::Nothing;
    {
        const sm::ChangeScope scope(&database);
        if (!scope)
            return tellFailure(sm::lastStatus(&database));
        done = recoverRename(database);
    }
    if (!done)
        return tellFailure(done.status());
    core::sessionDatabaseChanged(&database); // drawings have other names
}

/// Whoever opens or watches sets finds the journal.
struct Installer {
    Installer() { core::setLeftover({&renameJournalPath, &lookAfterRename}); }
    ~Installer() { core::setLeftover({}); }
} const kInstaller;

} // namespace

void lookAfterRename(TvSmDatabase& database)
{
    const TvString path = database.getFileName();
    const std::string key = g_isAsking ? std::string() : keyOf(path);
    if (key.empty() || asked().contains(key))
        return;
    const auto broken = lookUnderLock(database);
    if (!broken || (*broken && (*broken)->way == RenameRecovery::Nothing))
        return;
    asked().insert(key);
    if (!tvrxUserMessages()) {
        if (ed::UserPrompts* prompts = ed::userPrompts())
            prompts->say(kLeft, {path});
        return;
    }
    g_isAsking = true;
    if (!*broken)
        tellFailure(broken->status());
    else if (wantsIt(**broken, path) && isOpen(&database))
        recover(database);
    g_isAsking = false;
}

} // namespace operations
