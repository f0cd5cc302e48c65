#include <core/session.h>

#include <algorithm>

#include <base/kv_file_system.h>
#include <core/session_host.h>
#include <core/settings.h>
#include <sm/kv_db_util.h>

namespace {

constexpr TvChar kRecentKey[] = u"UserInterfaceSettings\\SheetSetOpenedRecently";
constexpr TvChar kRecentFormat[] = u"UserInterfaceSettings\\SheetSetOpenedRecently\\File%d";
constexpr int kExtensionUnits = 4; // ".dst"

using core::SessionHost;
using core::SheetSetPalette;

core::SessionHost* g_host = nullptr; // not owned
TvSmDatabase* g_currentDatabase = nullptr;
std::vector<TvSmDatabase*> g_sessionDatabases; // the manager's
core::BorrowedDatabase* g_borrowed = nullptr;  // the innermost

// In the order in which palettes are told.
constexpr SessionHost::Palette kPalettes[] = {
    SessionHost::Palette::SheetList,
    SessionHost::Palette::SheetViews,
    SessionHost::Palette::ModelViews,
};

template <class Tell>
void forEachPalette(Tell tell)
{
    for (const SessionHost::Palette which : kPalettes)
        if (SheetSetPalette* palette = g_host ? g_host->palette(which) : nullptr)
            tell(*palette);
}

void tellSwitch(bool keepState)
{
    forEachPalette([keepState](SheetSetPalette& palette) { palette.switchDatabase(keepState); });
}

/// The current database leaves the session; the one that was added last of the rest follows it.
void leaveCurrent()
{
    std::erase(g_sessionDatabases, g_currentDatabase);
    g_currentDatabase = g_sessionDatabases.empty() ? nullptr : g_sessionDatabases.back();
    tellSwitch(false);
}

TvString recentKey(int index)
{
    return TvString().format(kRecentFormat, index);
}

/// The recent paths without @p left, behind those that @p list holds.
void appendRecent(std::vector<TvString>& list, const TvString* left)
{
    TvString path;
    for (int i = 0; std::ssize(list) < kMostRecent; ++i) {
        if (!ReadConfigText(recentKey(i), path) || path.isEmpty())
            return;
        if (!left || path.compareNoCase(*left) != 0)
            list.push_back(path);
    }
}

void writeRecent(const std::vector<TvString>& list)
{
    RemoveConfigItem(kRecentKey);
    int index = 0;
    for (const TvString& path : list)
        index += WriteConfigText(recentKey(index), path);
}

} // namespace

core::SessionHost* core::sessionHost()
{
    return g_host;
}

void core::setSessionHost(SessionHost* host)
{
    g_host = host;
}

TvSmDatabase* GetCurrentDatabase()
{
    return g_currentDatabase;
}

void SetCurrentDatabase(TvSmDatabase* database)
{
    g_currentDatabase = database;
}

const std::vector<TvSmDatabase*>& GetSessionDatabases()
{
    return g_sessionDatabases;
}

void ActivateSheetSet(TvSmDatabase* database)
{
    if (!database || database == g_currentDatabase)
        return;
    if (std::ranges::find(g_sessionDatabases, database) == g_sessionDatabases.end())
        g_sessionDatabases.push_back(database);
    g_currentDatabase = database;
    tellSwitch(true);
}

bool CloseCurrentSheetSet()
{
    TvSmDatabase* closing = g_currentDatabase;
    leaveCurrent();
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    return manager && manager->closeDatabase(closing);
}

void MakeBackupCopy(const TvString& path)
{
    const int units = static_cast<int>(path.view().size());
    if (units > kExtensionUnits)
        KvFileSystem::copyFile(path, path.left(units - kExtensionUnits) + u".ds$", 0);
}

std::vector<TvString> recentSheetSets()
{
    std::vector<TvString> list;
    appendRecent(list, nullptr);
    return list;
}

void UpdateRecentList(const TvString& path, bool add)
{
    std::vector<TvString> list;
    if (add) {
        list.push_back(path);
        if (g_host)
            g_host->AddDstFileToRecentFileList(path);
    }
    appendRecent(list, &path);
    writeRecent(list);
}

void RefreshAllPalettes()
{
    forEachPalette([](SheetSetPalette& palette) {
        if (palette.displayedDatabase() == g_currentDatabase)
            palette.reloadDatabase();
    });
}

void RefreshLockState()
{
    forEachPalette([](SheetSetPalette& palette) { palette.refreshLockState(); });
}

namespace core {

BorrowedDatabase::BorrowedDatabase(TvSmDatabase* database)
    : m_former(std::exchange(g_currentDatabase, database)), m_outer(std::exchange(g_borrowed, this))
{
}

BorrowedDatabase::~BorrowedDatabase()
{
    g_currentDatabase = m_former;
    g_borrowed = m_outer;
    if (m_isFormerGone && !g_borrowed)
        leaveCurrent();
    else if (m_hasMissed)
        sessionDatabaseChanged(m_former);
}

void sessionDatabaseChanged(TvSmDatabase* database)
{
    if (database == g_currentDatabase)
        return RefreshAllPalettes();
    for (BorrowedDatabase* each = g_borrowed; each; each = each->m_outer)
        each->m_hasMissed = each->m_hasMissed || each->m_former == database;
}

void sessionDatabaseCloses(TvSmDatabase* database)
{
    std::erase(g_sessionDatabases, database);
    for (BorrowedDatabase* each = g_borrowed; each; each = each->m_outer) {
        if (each->m_former == database) {
            each->m_former = nullptr;
            each->m_isFormerGone = true;
        }
    }
    if (database != g_currentDatabase)
        return;
    if (g_borrowed)
        g_currentDatabase = nullptr; // the palettes do not show it
    else
        leaveCurrent();
}

} // namespace core
