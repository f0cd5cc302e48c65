#pragma once

#include <memory>

#include <rx/tv_rx_object.h>

#include <sm/stored_text.h>
#include <sm/tv_sm_enumerator.h>
#include <sm/tv_sm_fwd.h>
#include <sm/tv_sm_object_id.h>

namespace sm {

struct ExtrasDeleter {
    void operator()(Extras* extras) const;
};
using ExtrasOwner = std::unique_ptr<Extras, ExtrasDeleter>;

} // namespace sm

/// Anything that lives in a sheet-set database.
///
/// An object is made by its default constructor, bound to its future owner by initNew(owner, ""),
/// filled in, and handed to an owner (add, setProperty, setLayoutReference, ...). From then on the
/// database owns it, for as long as it is open: an object that is taken out stays valid and may be
/// put in again. Until it is handed over it belongs to its maker, who may delete it.
///
/// Changes are possible while the database's lock is held, in a database that is being built, and
/// in a scratch database. At any other time a setter answers false and has no effect; so does one
/// of an object that a reload found to be gone.
class TvSmPersist : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvSmPersist)

    ~TvSmPersist() override;
    TvSmPersist(const TvSmPersist&) = delete;
    TvSmPersist& operator=(const TvSmPersist&) = delete;

    /// The database that holds the object; null before initNew, and after the database closed.
    TvSmDatabase* database() const { return m_database; }
    /// The owning object; the owner of the sheet set is its database, the owner of a database is
    /// null.
    TvSmPersist* owner() const { return m_owner; }
    TvSmPersist* getOwner() const { return m_owner; }
    /// Completes a move: called after a child was taken out of its old owner and put into @p owner.
    ///
    /// Inserting has told the object its owner already; for an object that stands in no collection
    /// it sets the future owner. An object that stands in another owner's collection is not torn
    /// out of it: false.
    bool setOwner(TvSmPersist* owner);
    TvSmObjectId objectId() const { return TvSmObjectId(m_handle); }

    /// Binds a newly constructed object to the database of @p owner; it has a handle from now on.
    ///
    /// @param owner  the future owner; adding the object to another one later re-owns it.
    /// @param name   always empty.
    /// @return false for a null owner, an owner without database, or an object that is bound
    /// already.
    virtual bool initNew(TvSmPersist* owner, const TvString& name);

protected:
    TvSmPersist() = default;
    enum class Life : unsigned char {
        New,      ///< Constructed, no database.
        Held,     ///< Bound, belongs to its maker.
        Attached, ///< Stands in its owner.
        Detached, ///< Taken out, or made and never put in; the database keeps it.
        Parked,   ///< A reload found it gone; kept so that pointers to it stay harmless.
    };

private:
    friend struct sm::Internals;
    friend class sm::DatabaseState;

    TvSmDatabase* m_database = nullptr; // not owned; clears this when it closes
    TvSmPersist* m_owner = nullptr;     // not owned
    std::uint64_t m_handle = 0;
    sm::ExtrasOwner m_extras; // attributes and elements of a newer program
    Life m_life = Life::New;
    bool m_ownedByDatabase = false;
    bool m_inArena = false;
    bool m_wasRead = false; // a container that the reader has met in this text
};

namespace sm {

/// Ends the life of a container that is part of its owner, wherever its memory is from.
struct PartDeleter {
    void operator()(TvSmPersist* part) const;
};
template <class T>
using Part = std::unique_ptr<T, PartDeleter>;

} // namespace sm
