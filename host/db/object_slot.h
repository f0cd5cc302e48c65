#pragma once

#include <memory>

#include <db/tv_db_database.h>

namespace db {

/// An object's place in its database: what ids point to. Lives as long as the database.
struct ObjectSlot {
    TvDbDatabase* database = nullptr; // the one that owns this
    std::uint64_t handle = 0;
    std::unique_ptr<TvDbObject> object; ///< null until it is opened for the first time
    const TvRxClass* type = nullptr;    ///< known once somebody has asked
    bool isErased = false;
    bool isStored = false;  ///< the file holds it
    bool isChanged = false; ///< its record is not the file's
    bool isTouched = false; ///< in the database's list of slots that a save looks at
    /// Whether an edited record may take the place of the file's bytes; asked at the first change.
    enum class Editable : std::uint8_t { Unknown, Yes, No } editable = Editable::Unknown;
};

/// What this room's database does to its objects.
struct ObjectAccess {
    static Record& record(TvDbObject& object) { return object.m_record; }
    static ObjectSlot*& slot(TvDbObject& object) { return object.m_slot; }
    static int& readers(TvDbObject& object) { return object.m_readers; }
    static bool& isWritten(TvDbObject& object) { return object.m_isWritten; }
    static bool& isModified(TvDbObject& object) { return object.m_isModified; }
    static std::uint64_t& notedIn(TvDbObject& object) { return object.m_notedIn; }
    static const std::vector<TvDbObjectReactor*>& reactors(const TvDbObject& object)
    {
        return object.m_reactors;
    }
    static void subErase(TvDbObject& object, bool erasing) { object.subErase(erasing); }
    static void subReload(TvDbObject& object) { object.subReload(); }
    static void subAppended(TvDbObject& object) { object.subAppended(); }
};

} // namespace db
