#include "database_impl.h"

#include <algorithm>

#include "object_factory.h"

#include <db/entity_chain.h>
#include <db/references.h>
#include <db/tv_db_entity.h>

namespace db {

DatabaseImpl::DatabaseImpl(TvDbDatabase& owner, bool noDocument)
    : isDocument(!noDocument), m_owner(owner), m_log(*this), m_transactions(owner), m_face(owner),
      m_contexts(owner), m_dataLinks(owner)
{
}

base::Status DatabaseImpl::take(std::unique_ptr<DrawingFile> file)
{
    base::Result<Record> header = file->header();
    if (!header)
        return header.status();
    m_header = std::move(*header);
    m_file = std::move(file);
    m_version = m_file->version();
    const std::span<const std::uint64_t> handles = m_file->handles();
    m_stored.resize(handles.size());
    for (std::size_t i = 0; i < handles.size(); ++i) {
        m_stored[i].database = &m_owner;
        m_stored[i].handle = handles[i];
        m_stored[i].isStored = true;
    }
    // Files are known whose seed lies below handles in use.
    m_handseed = std::max<std::uint64_t>(m_header.handle("HANDSEED"),
                                         handles.empty() ? 1 : handles.back() + 1);
    return {};
}

ObjectSlot* DatabaseImpl::find(std::uint64_t handle) const
{
    // Mostly the one behind the last.
    const std::size_t next = m_lastFound.load(std::memory_order_relaxed) + 1;
    if (next < m_stored.size() && m_stored[next].handle == handle) {
        m_lastFound.store(next, std::memory_order_relaxed);
        return const_cast<ObjectSlot*>(&m_stored[next]);
    }
    const auto at = std::lower_bound(
        m_stored.begin(), m_stored.end(), handle,
        [](const ObjectSlot& slot, std::uint64_t wanted) { return slot.handle < wanted; });
    if (at != m_stored.end() && at->handle == handle) {
        m_lastFound.store(static_cast<std::size_t>(at - m_stored.begin()),
                          std::memory_order_relaxed);
        return const_cast<ObjectSlot*>(&*at);
    }
    const auto added = m_addedByHandle.find(handle);
    return added == m_addedByHandle.end() ? nullptr : added->second;
}

ObjectSlot& DatabaseImpl::append(std::unique_ptr<TvDbObject> object, std::uint64_t handle)
{
    ObjectSlot& slot = m_added.emplace_back();
    slot.database = &m_owner;
    slot.handle = handle;
    slot.isChanged = true;
    ObjectAccess::slot(*object) = &slot;
    Record& record = ObjectAccess::record(*object);
    record.setHandle(handle);
    record.setVersion(m_version);
    slot.type = object->isA();
    slot.object = std::move(object);
    m_addedByHandle.emplace(handle, &slot);
    m_handseed = std::max(m_handseed, handle + 1);
    touch(slot);
    return slot;
}

ObjectSlot& DatabaseImpl::append(TvDbObject* object)
{
    ObjectSlot& slot = append(std::unique_ptr<TvDbObject>(object), m_handseed);
    ObjectAccess::isWritten(*object) = true;
    ObjectAccess::isModified(*object) = true;
    ++m_writers;
    isModified = true;
    m_log.note(&slot, ObjectAccess::record(*object), true); // going back makes it not be
    ObjectAccess::notedIn(*object) = m_log.currentPart();
    return slot;
}

void DatabaseImpl::touch(ObjectSlot& slot)
{
    if (!slot.isTouched) {
        slot.isTouched = true;
        m_touched.push_back(&slot);
    }
}

const TvRxClass* DatabaseImpl::typeOf(ObjectSlot& slot) const
{
    if (slot.type)
        return slot.type;
    const base::Result<ObjectKind> kind = m_file->kind(slot.handle);
    return slot.type =
               kind ? objectTypeOf(kind->classDef, kind->isEntity).type : TvDbObject::desc();
}

std::unique_ptr<TvDbObject> DatabaseImpl::makeRaw(bool isEntity) const
{
    return objectTypeOf(nullptr, isEntity).make();
}

TvStatusCode DatabaseImpl::load(ObjectSlot& slot)
{
    if (slot.object)
        return TvStatus::Ok;
    const base::Result<ObjectKind> kind = m_file->kind(slot.handle);
    if (!kind)
        return fail(kind.status(), TvStatus::FileNotReadable);
    std::unique_ptr<TvDbObject> object = objectTypeOf(kind->classDef, kind->isEntity).make();
    base::Status status = m_file->read(slot.handle, ObjectAccess::record(*object));
    if (!status) {
        object = makeRaw(kind->isEntity);
        status = m_file->readCommon(slot.handle, ObjectAccess::record(*object));
    }
    if (!status)
        return fail(status, TvStatus::FileNotReadable);
    if (!fillOwnedFromChain(*m_file, ObjectAccess::record(*object)))
        slot.editable = ObjectSlot::Editable::No; // what lies behind the break would be lost
    slot.type = object->isA();
    ObjectAccess::slot(*object) = &slot;
    slot.object = std::move(object);
    return TvStatus::Ok;
}

bool DatabaseImpl::isEditable(ObjectSlot& slot)
{
    using Editable = ObjectSlot::Editable;
    if (slot.editable == Editable::Unknown)
        slot.editable = !slot.isStored || (!slot.object->isRaw() && m_file->isEditable(slot.handle))
                            ? Editable::Yes
                            : Editable::No;
    return slot.editable == Editable::Yes;
}

TvStatusCode DatabaseImpl::open(TvDbObject*& out, ObjectSlot& slot, TvDb::OpenMode mode,
                                bool openErased)
{
    if (slot.isErased && !openErased)
        return TvStatus::WasErased;
    if (const TvStatusCode status = load(slot))
        return status;
    TvDbObject& object = *slot.object;
    if (mode == TvDb::kForWrite) {
        if (ObjectAccess::isWritten(object))
            return TvStatus::WasOpenForWrite;
        if (ObjectAccess::readers(object) > 0)
            return TvStatus::WasOpenForRead;
        ObjectAccess::isWritten(object) = true;
        ObjectAccess::isModified(object) = false;
        ++m_writers;
    } else {
        if (mode == TvDb::kForRead && ObjectAccess::isWritten(object))
            return TvStatus::WasOpenForWrite;
        ++ObjectAccess::readers(object);
    }
    out = &object;
    return TvStatus::Ok;
}

TvStatusCode DatabaseImpl::upgrade(TvDbObject& object)
{
    if (ObjectAccess::isWritten(object))
        return TvStatus::Ok;
    if (ObjectAccess::readers(object) != 1)
        return ObjectAccess::readers(object) == 0 ? TvStatus::NotOpenable
                                                  : TvStatus::WasOpenForRead;
    ObjectAccess::readers(object) = 0;
    ObjectAccess::isWritten(object) = true;
    ObjectAccess::isModified(object) = false;
    ++m_writers;
    return TvStatus::Ok;
}

TvStatusCode DatabaseImpl::close(TvDbObject& object)
{
    // Openings for notification may run beside one for writing, and end before it.
    if (ObjectAccess::readers(object) > 0) {
        --ObjectAccess::readers(object);
        return TvStatus::Ok;
    }
    if (!ObjectAccess::isWritten(object))
        return TvStatus::NotOpenable;
    ObjectAccess::isWritten(object) = false;
    --m_writers;
    if (std::exchange(ObjectAccess::isModified(object), false)) {
        for (TvDbDatabaseReactor* reactor : reactors())
            reactor->objectModified(&m_owner, &object);
        for (TvDbObjectReactor* reactor : std::vector(ObjectAccess::reactors(object)))
            reactor->modified(&object);
    }
    return TvStatus::Ok;
}

void DatabaseImpl::aboutToChange(TvDbObject& object)
{
    if (ObjectAccess::notedIn(object) != m_log.currentPart()) {
        m_log.note(ObjectAccess::slot(object), object.record(), object.isErased());
        ObjectAccess::notedIn(object) = m_log.currentPart();
    }
    ObjectSlot& slot = *ObjectAccess::slot(object);
    slot.isChanged = true;
    isModified = true;
    touch(slot);
    if (!std::exchange(ObjectAccess::isModified(object), true)) {
        for (TvDbDatabaseReactor* reactor : reactors())
            reactor->objectOpenedForModify(&m_owner, &object);
        for (TvDbObjectReactor* reactor : std::vector(ObjectAccess::reactors(object)))
            reactor->openedForModify(&object);
    }
}

void DatabaseImpl::aboutToChangeHeader()
{
    if (m_headerNotedIn != m_log.currentPart()) {
        m_log.note(nullptr, m_header, false);
        m_headerNotedIn = m_log.currentPart();
    }
    m_isHeaderChanged = true;
    isModified = true;
}

const Record* DatabaseImpl::currentRecord(ObjectSlot* slot) const
{
    if (!slot)
        return &m_header;
    return slot->object ? &slot->object->record() : nullptr;
}

void DatabaseImpl::exchange(ObjectSlot* slot, Record& record, bool& isErased)
{
    isModified = true;
    if (!slot) {
        std::swap(m_header, record);
        m_headerNotedIn = 0;
        return;
    }
    TvDbObject& object = *slot->object;
    std::swap(ObjectAccess::record(object), record);
    const bool wasErased = std::exchange(slot->isErased, isErased);
    isErased = wasErased;
    ObjectAccess::notedIn(object) = 0;
    slot->isChanged = true;
    touch(*slot);
    ObjectAccess::subReload(object);
    if (slot->isErased != wasErased)
        return tellErased(object, slot->isErased);
    for (TvDbDatabaseReactor* reactor : reactors())
        reactor->objectModified(&m_owner, &object);
}

void DatabaseImpl::tellErased(TvDbObject& object, bool erasing)
{
    ObjectAccess::subErase(object, erasing);
    for (TvDbDatabaseReactor* reactor : reactors())
        reactor->objectErased(&m_owner, &object, erasing);
    for (TvDbObjectReactor* reactor : std::vector(ObjectAccess::reactors(object)))
        reactor->erased(&object, erasing);
}

/// The object and all that it owns, directly or not, as far as they are (not) erased.
std::vector<ObjectSlot*> DatabaseImpl::ownedTree(ObjectSlot& root, bool erased)
{
    std::vector<ObjectSlot*> tree{&root};
    std::unordered_map<ObjectSlot*, bool> seen{{&root, true}};
    for (std::size_t i = 0; i < tree.size(); ++i) {
        ObjectSlot& owner = *tree[i];
        const auto add = [&](std::uint64_t target) {
            ObjectSlot* owned = find(target);
            if (!owned || owned->isErased != erased || !seen.emplace(owned, true).second ||
                load(*owned) != TvStatus::Ok)
                return;
            // A reference alone makes no owner: damaged drawings claim each other's objects.
            if (owned->object->ownerId().slot() == &owner)
                tree.push_back(owned);
        };
        const Record& record = owner.object->record();
        forEachReference(record, [&](const Reference& reference) {
            if (reference.kind == ReferenceKind::SoftOwner ||
                reference.kind == ReferenceKind::HardOwner)
                add(reference.target);
        });
        // In AC1015 the list is none of what is written, but what is owned.
        const ArrayView list = record.array(ownedListOf(record.fields()));
        for (std::uint32_t at = 0; at < list.size(); ++at)
            add(list.handle(at));
    }
    return tree;
}

TvStatusCode DatabaseImpl::erase(TvDbObject& object, bool erasing)
{
    ObjectSlot& root = *ObjectAccess::slot(object);
    if (root.isErased == erasing)
        return erasing ? TvStatus::WasErased : TvStatus::Ok;
    for (ObjectSlot* slot : ownedTree(root, !erasing)) {
        aboutToChange(*slot->object);
        if (slot != &root)
            ObjectAccess::isModified(*slot->object) = false; // it is not open
        slot->isErased = erasing;
        tellErased(*slot->object, erasing);
    }
    return TvStatus::Ok;
}

TvStatusCode DatabaseImpl::fail(base::Status why, TvStatusCode code)
{
    m_lastFailure = std::move(why);
    return code;
}

} // namespace db
