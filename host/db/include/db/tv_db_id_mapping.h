#pragma once

#include <unordered_map>
#include <vector>

#include <db/tv_db_object_id.h>

namespace db {
class Clone;
}

/// What a copy made of which object: a table from the objects of one drawing to those of another,
/// or of the same one.
class TvDbIdMapping
{
public:
    struct Entry {
        TvDbObjectId key;       ///< the original
        TvDbObjectId value;     ///< what stands for it
        bool isCloned = false;  ///< made by the copy; otherwise it was there already
        bool isPrimary = false; ///< asked for, not just needed by another
    };

    /// Null until a copy has filled it.
    TvDbDatabase* origDb() const { return m_from; }
    TvDbDatabase* destDb() const { return m_to; }
    /// What stands for @p original; false when it was neither copied nor found. O(1).
    bool compute(TvDbObjectId original, TvDbObjectId& out) const;
    /// Null when there is none.
    TvDbObjectId target(TvDbObjectId original) const;
    /// In the order in which they were found: those asked for first.
    const std::vector<Entry>& entries() const { return m_entries; }

private:
    friend class db::Clone;

    TvDbDatabase* m_from = nullptr; // not owned
    TvDbDatabase* m_to = nullptr;   // not owned
    std::vector<Entry> m_entries;
    std::unordered_map<TvDbObjectId, std::size_t> m_places;
};
