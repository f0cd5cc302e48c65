#include <core/leftover.h>

#include <base/kv_file_system.h>
#include <sm/tv_sm_database.h>

namespace core {

namespace {

Leftover g_leftover;

} // namespace

void setLeftover(const Leftover& leftover)
{
    g_leftover = leftover;
}

const Leftover& leftover()
{
    return g_leftover;
}

void lookForLeftover(TvSmDatabase* database)
{
    if (database && g_leftover.pathFor &&
        KvFileSystem::isFileExisting(g_leftover.pathFor(database->getFileName())))
        g_leftover.lookAfter(*database);
}

} // namespace core
