#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <db/record.h>
#include <db/record_editor.h>
#include <db/resbuf.h>
#include <db/tv_db_object_id.h>
#include <db/tv_status.h>
#include <rx/tv_rx_object.h>

class TvDbObject;

namespace db {
struct ObjectAccess;
}

namespace TvDb {
enum OpenMode { kForRead, kForWrite, kForNotify };
}

/// Is told what happens to one object. The object does not own it.
class TvDbObjectReactor
{
public:
    virtual ~TvDbObjectReactor();
    virtual void openedForModify(const TvDbObject*) {}
    virtual void modified(const TvDbObject*) {} ///< at its close, once for all changes
    virtual void erased(const TvDbObject*, bool /*erasing*/) {}
    virtual void goodbye(const TvDbObject*) {} ///< its database goes
};

/// An object of a drawing: its class, its values, its place.
///
/// Objects live in a database, which owns them; whoever wants to look at one opens it
/// (tvdbOpenObject, TvDbObjectPointer) and closes it. Many may have it open for reading, or one for
/// writing; for notification it opens always. An object made with new belongs to its maker until it
/// is put into a database.
///
/// The values lie in a record (db/record.h), which the codecs fill and write; the classes derived
/// from this give them names and meaning. Everything that changes an object goes through edit(),
/// which notes what it was before, for undo.
///
/// An object whose class or data nobody understands is there too (isRaw): it has its handle, owner
/// and references, may be erased, and is otherwise never changed: edit() gives nothing to change,
/// setters answer NotUnderstood or NotApplicable.
class TvDbObject : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvDbObject)

    TvDbObject();
    ~TvDbObject() override;
    TvDbObject(const TvDbObject&) = delete;
    TvDbObject& operator=(const TvDbObject&) = delete;

    /// Null while it is in no database, like database(), ownerId() and the handle.
    TvDbObjectId objectId() const { return TvDbObjectId(m_slot); }
    TvDbDatabase* database() const { return objectId().database(); }
    TvDbHandle handle() const { return objectId().handle(); }
    void getTvDbHandle(TvDbHandle& out) const { out = handle(); }
    TvDbObjectId ownerId() const;
    TvStatusCode setOwnerId(TvDbObjectId owner);

    bool isReadEnabled() const { return m_readers > 0 || m_isWritten; }
    /// Open for writing, or in no database yet.
    bool isWriteEnabled() const { return m_isWritten || !m_slot; }
    bool isErased() const { return objectId().isErased(); }
    /// Changed since it was opened.
    bool isModified() const { return m_isModified; }
    bool isRaw() const;

    /// From reading to writing. Fails (WasOpenForRead) when others read it too.
    TvStatusCode upgradeOpen();
    TvStatusCode downgradeOpen();
    /// Ends the opening; afterwards this pointer is not to be used. Of an object in no database:
    /// nothing.
    TvStatusCode close();
    /// Takes it and everything that it owns out of the drawing, or brings it back. What refers to
    /// it is put right when the drawing is saved. Fails with StillInUse where the drawing needs it
    /// (layer "0", the model layout).
    virtual TvStatusCode erase(bool erasing = true);

    void addReactor(TvDbObjectReactor* reactor);
    void removeReactor(TvDbObjectReactor* reactor);
    /// Objects that are told across sessions; stored with the object.
    std::vector<TvDbObjectId> persistentReactors() const;
    TvStatusCode addPersistentReactor(TvDbObjectId id);
    TvStatusCode removePersistentReactor(TvDbObjectId id);

    /// Null when it has none.
    TvDbObjectId extensionDictionary() const;
    /// Ok when it has one already.
    TvStatusCode createExtensionDictionary();
    TvStatusCode releaseExtensionDictionary();

    /// Its extended data of @p application (all applications when empty), each list beginning with
    /// its 1001 item; null when there is none. The caller's to release.
    resbuf* xData(const TvString& application = {}) const;
    /// Replaces the extended data of each application that @p items names by a 1001 item; one
    /// without further items is taken out.
    TvStatusCode setXData(const resbuf* items);

    /// The values, for looking; raw objects have but their common part.
    const db::Record& record() const { return m_record; }
    db::RecordView fields() const { return m_record.fields(); }
    /// The values, for changing.
    /// @pre isWriteEnabled(), and not raw; otherwise an empty editor comes back, whose setters
    /// answer false.
    db::RecordEditor edit();
    /// The object with this handle in the same database; null when there is none.
    TvDbObjectId idOf(std::uint64_t handle) const;

protected:
    /// Of a new object: its class in drawings.
    explicit TvDbObject(const char* className);
    /// Called when it has been erased or brought back: whoever keeps lists of it puts them right.
    virtual void subErase(bool /*erasing*/) {}
    /// Called when the record was exchanged under it (undo, abort): forget what was derived from
    /// it.
    virtual void subReload() {}
    /// Called when it has just been put into a database.
    virtual void subAppended() {}

    /// A handle field as an id.
    TvDbObjectId idField(db::FieldKey key) const { return idOf(m_record.handle(key)); }
    TvStatusCode setIdField(db::FieldKey key, TvDbObjectId id);

private:
    friend struct db::ObjectAccess; // this room's database

    db::Record m_record;
    db::ObjectSlot* m_slot = nullptr; // the database's; null: in none
    int m_readers = 0;
    int m_notified = 0;
    bool m_isWritten = false;
    bool m_isModified = false;
    std::uint64_t m_notedIn = 0; // the part of the history that knows what it was before
    std::vector<TvDbObjectReactor*> m_reactors; // not owned
};

/// Opens the object behind @p id.
///
/// @param openErased  also when it is erased; otherwise WasErased.
/// @return Ok and the object; NotThatObject when it is of another class than asked for, and for a
/// null id UnknownHandle.
TvStatusCode tvdbOpenTvDbObject(TvDbObject*& out, TvDbObjectId id,
                                TvDb::OpenMode mode = TvDb::kForRead, bool openErased = false);

template <class T>
TvStatusCode tvdbOpenObject(T*& out, TvDbObjectId id, TvDb::OpenMode mode = TvDb::kForRead,
                            bool openErased = false)
{
    out = nullptr;
    const TvRxClass* type = id.objectClass();
    if (!type)
        return TvStatus::UnknownHandle;
    if (!type->isDerivedFrom(T::desc()))
        return TvStatus::NotThatObject;
    TvDbObject* object = nullptr;
    const TvStatusCode status = tvdbOpenTvDbObject(object, id, mode, openErased);
    // What could not be understood after all is a TvDbObject only.
    if (status == TvStatus::Ok && !(out = tvrxCast<T>(object))) {
        object->close();
        return TvStatus::NotThatObject;
    }
    return status;
}

/// An opened object that closes itself.
template <class T>
class TvDbObjectPointer
{
public:
    TvDbObjectPointer() = default;
    explicit TvDbObjectPointer(TvDbObjectId id, TvDb::OpenMode mode = TvDb::kForRead,
                               bool openErased = false)
    {
        m_status = tvdbOpenObject(m_object, id, mode, openErased);
    }
    TvDbObjectPointer(TvDbObjectPointer&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr)), m_status(other.m_status)
    {
    }
    TvDbObjectPointer& operator=(TvDbObjectPointer&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        std::swap(m_status, other.m_status);
        return *this;
    }
    ~TvDbObjectPointer() { close(); }

    TvStatusCode openStatus() const { return m_status; }
    T* object() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }
    TvStatusCode open(TvDbObjectId id, TvDb::OpenMode mode = TvDb::kForRead)
    {
        close();
        return m_status = tvdbOpenObject(m_object, id, mode);
    }
    void close()
    {
        if (T* object = std::exchange(m_object, nullptr))
            object->close();
    }
    /// The opening is the caller's now.
    T* release() { return std::exchange(m_object, nullptr); }

private:
    T* m_object = nullptr;
    TvStatusCode m_status = TvStatus::UnknownHandle;
};
