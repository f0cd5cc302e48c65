#pragma once

#include <deque>
#include <map>
#include <set>

#include "database_impl.h"

namespace db {

/// What a save writes: the records that differ from the file's, with references to erased objects
/// taken out, on copies.
class SaveSet
{
public:
    explicit SaveSet(DatabaseImpl& database) : m_database(database) {}

    base::Status gather(const std::vector<ObjectSlot*>& touched, Version version);

    std::map<std::uint64_t, const Record*> changed;
    std::set<std::uint64_t> erased; ///< that the file holds
    std::vector<std::uint64_t> handles;

    /// The record of any object that is there.
    base::Result<const Record*> record(std::uint64_t handle);

private:
    base::Status sweep();
    Record* copyOf(std::uint64_t handle);
    base::Status sweepRaw(std::uint64_t handle, const Record& raw);
    bool isGone(std::uint64_t handle) const { return m_gone.count(handle) > 0; }

    DatabaseImpl& m_database;
    std::set<std::uint64_t> m_gone; // all erased ones, in the file or not
    std::deque<Record> m_copies;
    std::map<std::uint64_t, Record*> m_copyByHandle;
    Record m_scratch;
};

} // namespace db
