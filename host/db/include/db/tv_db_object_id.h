#pragma once

#include <compare>
#include <cstddef>
#include <functional>

#include <base/tv_db_handle.h>
#include <rx/tv_rx_class.h>

class TvDbDatabase;

namespace db {
struct ObjectSlot;
}

/// Which object of which open database. A small value: copy it, keep it; it stays good until its
/// database goes, whatever happens to the object.
class TvDbObjectId
{
public:
    TvDbObjectId() = default;
    explicit TvDbObjectId(db::ObjectSlot* slot) : m_slot(slot) {}

    bool isNull() const { return m_slot == nullptr; }
    /// Whether it leads to an object that is there and not erased.
    bool isValid() const { return m_slot && !isErased(); }
    explicit operator bool() const { return !isNull(); }
    void setNull() { m_slot = nullptr; }

    /// Null for a null id.
    TvDbDatabase* database() const;
    TvDbHandle handle() const;
    bool isErased() const;
    /// The object's run-time class, without opening it; null for a null id, TvDbObject or
    /// TvDbEntity for objects that are kept as bytes.
    const TvRxClass* objectClass() const;

    db::ObjectSlot* slot() const { return m_slot; }

    friend bool operator==(TvDbObjectId, TvDbObjectId) = default;
    /// Any order, the same as long as the database lives.
    friend auto operator<=>(TvDbObjectId, TvDbObjectId) = default;

private:
    db::ObjectSlot* m_slot = nullptr; // not owned; the database's
};

template <>
struct std::hash<TvDbObjectId> {
    std::size_t operator()(TvDbObjectId id) const noexcept
    {
        return std::hash<const void*>()(id.slot());
    }
};
