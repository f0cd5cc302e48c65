#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include <db/tv_db_database.h>
#include <ed/tv_editor.h>

class TvApDocManager;

namespace app {

/// Counts the changes of the drawings that are open, so that who shows or keeps copies of them
/// knows when his own is old.
class DrawingWatch : private TvDbDatabaseReactor
{
public:
    DrawingWatch() = default;
    ~DrawingWatch() override;
    DrawingWatch(const DrawingWatch&) = delete;
    DrawingWatch& operator=(const DrawingWatch&) = delete;

    /// Counts from now on. Nothing for one that is counted already, and for null.
    void watch(TvDbDatabase* database);
    void forget(TvDbDatabase* database);
    /// How often it changed so far; 0 for one that is not counted.
    std::uint64_t changes(const TvDbDatabase* database) const;
    /// How often something changed that is drawn: not which layout is shown, and from where.
    std::uint64_t drawnChanges(const TvDbDatabase* database) const;

private:
    void objectAppended(const TvDbDatabase* database, const TvDbObject*) override;
    void objectModified(const TvDbDatabase* database, const TvDbObject*) override;
    void objectErased(const TvDbDatabase* database, const TvDbObject*, bool) override;
    void headerSysVarChanged(const TvDbDatabase* database, const TvString&) override;
    void databaseToBeDestroyed(const TvDbDatabase* database) override;
    struct Counts {
        std::uint64_t all = 1, drawn = 1;
    };
    void count(const TvDbDatabase* database, const TvDbObject* object);
    Counts countsOf(const TvDbDatabase* database) const;

    std::map<const TvDbDatabase*, Counts> m_counts;
    std::uint64_t m_next = 1; ///< where the next drawing's counts begin: no two ever share one
};

} // namespace app
