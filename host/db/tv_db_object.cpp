#include <db/tv_db_object.h>

#include <db/tv_db_dictionary.h>

#include "database_impl.h"

TVRX_DEFINE_MEMBERS(TvDbObject, TvRxObject)

TvDbObjectReactor::~TvDbObjectReactor() = default;

TvDbObject::TvDbObject() = default;

TvDbObject::TvDbObject(const char* className) : m_record(*db::classNamed(className)) {}

TvDbObject::~TvDbObject() = default;

TvDbObjectId TvDbObject::idOf(std::uint64_t handle) const
{
    return database() && handle ? database()->find(handle) : TvDbObjectId();
}

TvDbObjectId TvDbObject::ownerId() const
{
    // An entity of a space that the drawing shows does not name its owner.
    const db::RecordView fields = m_record.fields();
    if (database() && fields.has("entmode") && fields.integer("entmode") != 0)
        return fields.integer("entmode") == 2 ? database()->modelSpaceId()
                                              : database()->paperSpaceId();
    return idField("owner");
}

TvStatusCode TvDbObject::setOwnerId(TvDbObjectId owner)
{
    return setIdField("owner", owner);
}

TvStatusCode TvDbObject::setIdField(db::FieldKey key, TvDbObjectId id)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setHandle(key, id.handle().value()) ? TvStatus::Ok : TvStatus::NotApplicable;
}

bool TvDbObject::isRaw() const
{
    const db::ClassDef* of = m_record.classDef();
    return !of || of->name() == "RAW_OBJECT" || of->name() == "RAW_ENTITY";
}

db::RecordEditor TvDbObject::edit()
{
    if (!isWriteEnabled() || (m_slot && !database()->impl().isEditable(*m_slot)))
        return {};
    if (m_slot)
        database()->impl().aboutToChange(*this);
    return db::RecordEditor(m_record);
}

TvStatusCode TvDbObject::upgradeOpen()
{
    return m_slot ? database()->impl().upgrade(*this) : TvStatus::Ok;
}

TvStatusCode TvDbObject::downgradeOpen()
{
    if (!m_isWritten)
        return TvStatus::NotOpenForWrite;
    const TvStatusCode status = database()->impl().close(*this);
    ++m_readers;
    return status;
}

TvStatusCode TvDbObject::close()
{
    return m_slot ? database()->impl().close(*this) : TvStatus::Ok;
}

TvStatusCode TvDbObject::erase(bool erasing)
{
    if (!m_slot)
        return TvStatus::NotInDatabase;
    if (!m_isWritten)
        return TvStatus::NotOpenForWrite;
    return database()->impl().erase(*this, erasing);
}

void TvDbObject::addReactor(TvDbObjectReactor* reactor)
{
    if (reactor && std::find(m_reactors.begin(), m_reactors.end(), reactor) == m_reactors.end())
        m_reactors.push_back(reactor);
}

void TvDbObject::removeReactor(TvDbObjectReactor* reactor)
{
    std::erase(m_reactors, reactor);
}

std::vector<TvDbObjectId> TvDbObject::persistentReactors() const
{
    std::vector<TvDbObjectId> ids;
    const db::ArrayView handles = m_record.array("reactors");
    for (std::uint32_t i = 0; i < handles.size(); ++i)
        if (const TvDbObjectId id = idOf(handles.handle(i)))
            ids.push_back(id);
    return ids;
}

TvStatusCode TvDbObject::addPersistentReactor(TvDbObjectId id)
{
    if (id.isNull())
        return TvStatus::InvalidInput;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const std::vector<TvDbObjectId> all = persistentReactors();
    if (std::find(all.begin(), all.end(), id) != all.end())
        return TvStatus::Ok;
    db::RecordEditor editor = edit();
    db::ArrayEditor list = editor.array("reactors");
    const std::uint32_t at = list.add();
    return list.setHandle(at, id.handle().value()) ? TvStatus::Ok : TvStatus::NotApplicable;
}

TvStatusCode TvDbObject::removePersistentReactor(TvDbObjectId id)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const db::ArrayView handles = m_record.array("reactors");
    for (std::uint32_t i = 0; i < handles.size(); ++i)
        if (handles.handle(i) == id.handle().value() && !id.isNull()) {
            db::RecordEditor editor = edit();
            return editor.array("reactors").erase(i) ? TvStatus::Ok : TvStatus::NotApplicable;
        }
    return TvStatus::KeyNotFound;
}

TvDbObjectId TvDbObject::extensionDictionary() const
{
    const TvDbObjectId id = idField("xdict");
    return id.isValid() ? id : TvDbObjectId();
}

TvStatusCode TvDbObject::createExtensionDictionary()
{
    if (!m_slot)
        return TvStatus::NotInDatabase;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (extensionDictionary())
        return TvStatus::Ok;
    auto* dictionary = new TvDbDictionary;
    dictionary->setTreatElementsAsHard(true);
    TvDbObjectId id;
    database()->addTvDbObject(id, dictionary, objectId());
    dictionary->close();
    db::RecordEditor editor = edit();
    editor.setInteger("xdict_missing", 0);
    return editor.setHandle("xdict", id.handle().value()) ? TvStatus::Ok : TvStatus::NotApplicable;
}

TvStatusCode TvDbObject::releaseExtensionDictionary()
{
    const TvDbObjectId id = extensionDictionary();
    if (!id)
        return TvStatus::KeyNotFound;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    TvDbObjectPointer<TvDbDictionary> dictionary(id, TvDb::kForWrite);
    if (!dictionary)
        return dictionary.openStatus();
    if (const TvStatusCode status = dictionary->erase())
        return status;
    db::RecordEditor editor = edit();
    editor.setHandle("xdict", 0);
    editor.setInteger("xdict_missing", 1);
    return TvStatus::Ok;
}

TvStatusCode tvdbOpenTvDbObject(TvDbObject*& out, TvDbObjectId id, TvDb::OpenMode mode,
                                bool openErased)
{
    out = nullptr;
    if (id.isNull())
        return TvStatus::UnknownHandle;
    return id.database()->impl().open(out, *id.slot(), mode, openErased);
}
