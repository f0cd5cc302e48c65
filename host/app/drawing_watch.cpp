#include "app/drawing_watch.h"

namespace app {

DrawingWatch::~DrawingWatch()
{
    for (const auto& [database, changes] : m_changes)
        database->removeReactor(this);
}

void DrawingWatch::watch(TvDbDatabase* database)
{
    if (database && m_changes.emplace(database, 1).second)
        database->addReactor(this);
}

void DrawingWatch::forget(TvDbDatabase* database)
{
    if (m_changes.erase(database) > 0)
        database->removeReactor(this);
}

std::uint64_t DrawingWatch::changes(const TvDbDatabase* database) const
{
    const auto found = m_changes.find(database);
    return found == m_changes.end() ? 0 : found->second;
}

void DrawingWatch::count(const TvDbDatabase* database)
{
    if (const auto found = m_changes.find(database); found != m_changes.end())
        ++found->second;
}

void DrawingWatch::objectAppended(const TvDbDatabase* database, const TvDbObject*)
{
    count(database);
}

void DrawingWatch::objectModified(const TvDbDatabase* database, const TvDbObject*)
{
    count(database);
}

void DrawingWatch::objectErased(const TvDbDatabase* database, const TvDbObject*, bool)
{
    count(database);
}

void DrawingWatch::headerSysVarChanged(const TvDbDatabase* database, const TvString&)
{
    count(database);
}

void DrawingWatch::databaseToBeDestroyed(const TvDbDatabase* database)
{
    m_changes.erase(database);
}

} // namespace app
