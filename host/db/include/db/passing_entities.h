#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <db/by_class.h>
#include <db/tv_db_entity.h>

namespace db {

/// Entities that are looked at one after the other, and not kept.
///
/// Opening an object for the first time puts it into its database for good, which costs more than
/// decoding it. Whoever walks over all entities once (to draw them, to measure them) asks here: an
/// entity that was opened before is that one object, any other is decoded into an object that the
/// next one of its class uses again. Nothing of the database changes.
/// @note not for several threads at once. Ends before the database does, and after its looks.
class PassingEntities
{
public:
    PassingEntities();
    ~PassingEntities();
    PassingEntities(const PassingEntities&) = delete;
    PassingEntities& operator=(const PassingEntities&) = delete;

    /// One entity, for looking; good while this lives. Several may be had at the same time, also of
    /// one class.
    class Look
    {
    public:
        Look() = default;
        Look(Look&& other) noexcept { swap(other); }
        Look& operator=(Look&& other) noexcept
        {
            swap(other);
            return *this;
        }
        ~Look();

        explicit operator bool() const { return m_entity != nullptr; }
        const TvDbEntity* get() const { return m_entity; }
        const TvDbEntity& operator*() const { return *m_entity; }
        const TvDbEntity* operator->() const { return m_entity; }

    private:
        friend class PassingEntities;
        using Spare = std::vector<std::unique_ptr<TvDbObject>>;

        void swap(Look& other) noexcept
        {
            std::swap(m_entity, other.m_entity);
            m_made.swap(other.m_made);
            std::swap(m_home, other.m_home);
        }

        const TvDbEntity* m_entity = nullptr; // m_made, or the database's
        std::unique_ptr<TvDbObject> m_made;
        Spare* m_home = nullptr; // where m_made goes afterwards
    };

    /// Null for a null or erased id, for what is no entity and for what cannot be read.
    Look at(TvDbObjectId id);

private:
    struct Kind {
        std::unique_ptr<TvDbObject> (*make)() = nullptr; // null: no entity
        Look::Spare spare;
    };
    static Kind kindOf(const ClassDef& of);
    static Look opened(ObjectSlot& slot);

    Record m_record;
    ByClass<Kind> m_kinds;
};

} // namespace db
