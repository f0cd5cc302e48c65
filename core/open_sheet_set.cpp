#include <core/open_sheet_set.h>

#include <memory>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/leftover.h>
#include <core/session.h>
#include <core/session_host.h>
#include <core/watch_poller.h>
#include <db/resbuf.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_status.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <rx/tv_user_messages.h>
#include <sm/kv_db_util.h>

namespace {

constexpr TvChar kExtension[] = u".dst";
constexpr int kNoSuchFile = 513, kNotOpened = 512, kTitle = 511; // texts
constexpr int kDialogTitle = 584, kPrompt = 585;
constexpr int kProgramName = 0; // as a title

using Icon = TvUserMessages::Icon;

void tell(int text, int title, Icon icon)
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = title;
    message.icon = icon;
    tvrxShowMessage(message);
}

/// Gives the database, open now or before; null when it cannot be opened.
TvSmDatabase* openDatabase(const TvString& path)
{
    if (core::SessionHost* host = core::sessionHost())
        host->ShowSheetSetPalette();
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    if (!manager)
        return nullptr;
    if (TvSmDatabase* open = manager->findOpenDatabase(path))
        return open;
    TvSmDatabase* opened = manager->openDatabase(path, false, 0);
    if (opened)
        MakeBackupCopy(path);
    return opened;
}

TvSmDatabase* openAlready(const TvString& path)
{
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    TvSmDatabase* open = manager ? manager->findOpenDatabase(path) : nullptr;
    if (core::SessionHost* host = open ? core::sessionHost() : nullptr)
        host->ShowSheetSetPalette();
    return open;
}

void activate(TvSmDatabase* database, const TvString& path)
{
    // The next run begins in another folder.
    const bool isEverywhere = base::PathRules::native().isAbsolute(path);
    UpdateRecentList(isEverywhere ? path : database->getFileName(), true);
    ActivateSheetSet(database);
    if (!core::isWatching()) // else it is seen in a moment
        core::lookForLeftover(database);
}

/// One answer of the dialog; false when the user gave up.
bool askForPath(TvString& path)
{
    resbuf* chain = nullptr;
    if (tvedGetFileNavDialog(text::find(kDialogTitle), u"", u"dst", u"OpenSheetSet", 0, chain) !=
        TvStatus::Normal)
        return false;
    const TvResbufPtr chosen(chain);
    path = TvString(chosen->resval.rstring);
    return true;
}

} // namespace

void OpenSheetSetFile(const TvString& path)
{
    if (!path.endsWithNoCase(kExtension))
        return;
    if (TvSmDatabase* open = core::answersInTime(path) ? nullptr : openAlready(path))
        return activate(open, path);
    if (!KvFileSystem::pathFileExists(path)) {
        tell(kNoSuchFile, kTitle, Icon::Warning);
        UpdateRecentList(path, false);
        return OpenSheetSetByDialog();
    }
    TvSmDatabase* database = openDatabase(path);
    if (!database) {
        tell(kNotOpened, kProgramName, Icon::Warning);
        UpdateRecentList(path, false);
        return OpenSheetSetByDialog();
    }
    activate(database, path);
}

void OpenSheetSetByDialog()
{
    TvString path;
    while (askForPath(path)) {
        if (!KvFileSystem::pathFileExists(path)) {
            tell(kNoSuchFile, kProgramName, Icon::Stop);
            continue;
        }
        if (!path.endsWithNoCase(kExtension)) {
            tell(kNotOpened, kTitle, Icon::Warning);
            continue;
        }
        if (TvSmDatabase* database = openDatabase(path))
            activate(database, path);
        else
            tell(kNotOpened, kProgramName, Icon::Warning);
        return;
    }
}

void OpenSheetSetByPrompt()
{
    TvString path;
    while (tvedGetString(1, text::find(kPrompt), path) == TvStatus::Normal) {
        if (!path.endsWithNoCase(kExtension))
            path = path + kExtension;
        if (!KvFileSystem::pathFileExists(path)) {
            tell(kNoSuchFile, kProgramName, Icon::Stop);
            continue;
        }
        TvSmDatabase* database = openDatabase(path);
        if (!database) {
            tell(kNotOpened, kProgramName, Icon::Warning);
            return OpenSheetSetByDialog();
        }
        return activate(database, path);
    }
}

bool GetSheetSetOfActiveDrawing(TvSmSheetSetMgr* manager, TvSmSheetSet*& out)
{
    if (!manager)
        return false;
    TvString named;
    if (KvDbUtil::GetShSetFileName(tvdbHostApplicationServices()->workingDatabase(), named)) {
        if (const TvSmDatabase* database = manager->openDatabase(named, true, 0))
            OpenSheetSetFile(database->getFileName());
    }
    bool isFound = false;
    const std::unique_ptr<TvSmEnumerator<TvSmDatabase>> each(manager->getDatabaseEnumerator());
    while (TvSmDatabase* database = each->next()) {
        if (KvDbUtil::IsCurrentSheetInSheetSet(database)) {
            out = database->getSheetSet();
            isFound = true;
        }
    }
    return isFound;
}
