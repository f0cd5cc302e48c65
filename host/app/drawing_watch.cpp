#include "app/drawing_watch.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

namespace app {

namespace {

/// Whether a picture of the drawing may look different when it changes.
bool isDrawn(const TvDbObject* object)
{
    if (!object)
        return false;
    const auto* viewport = tvrxCast<TvDbViewport>(object);
    return !(viewport && viewport->isOverall()) && !object->isKindOf(TvDbLayout::desc()) &&
           !object->isKindOf(TvDbDictionary::desc()) &&
           !object->isKindOf(TvDbViewportTableRecord::desc());
}

} // namespace

DrawingWatch::~DrawingWatch()
{
    for (const auto& [database, counts] : m_counts)
        database->removeReactor(this);
}

void DrawingWatch::watch(TvDbDatabase* database)
{
    if (!database || !m_counts.emplace(database, Counts{m_next, m_next}).second)
        return;
    constexpr std::uint64_t kMostChanges = 1ull << 40;
    m_next += kMostChanges;
    database->addReactor(this);
}

void DrawingWatch::forget(TvDbDatabase* database)
{
    if (m_counts.erase(database) > 0)
        database->removeReactor(this);
}

std::uint64_t DrawingWatch::changes(const TvDbDatabase* database) const
{
    return countsOf(database).all;
}

std::uint64_t DrawingWatch::drawnChanges(const TvDbDatabase* database) const
{
    return countsOf(database).drawn;
}

DrawingWatch::Counts DrawingWatch::countsOf(const TvDbDatabase* database) const
{
    const auto found = m_counts.find(database);
    return found == m_counts.end() ? Counts{0, 0} : found->second;
}

void DrawingWatch::count(const TvDbDatabase* database, const TvDbObject* object)
{
    const auto found = m_counts.find(database);
    if (found == m_counts.end())
        return;
    ++found->second.all;
    if (isDrawn(object))
        ++found->second.drawn;
}

void DrawingWatch::objectAppended(const TvDbDatabase* database, const TvDbObject* object)
{
    count(database, object);
}

void DrawingWatch::objectModified(const TvDbDatabase* database, const TvDbObject* object)
{
    count(database, object);
}

void DrawingWatch::objectErased(const TvDbDatabase* database, const TvDbObject* object, bool)
{
    count(database, object);
}

void DrawingWatch::headerSysVarChanged(const TvDbDatabase* database, const TvString&)
{
    count(database, nullptr);
}

void DrawingWatch::databaseToBeDestroyed(const TvDbDatabase* database)
{
    m_counts.erase(database);
}

} // namespace app
