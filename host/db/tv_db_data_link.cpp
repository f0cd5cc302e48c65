#include <db/tv_db_data_link.h>

#include "database_impl.h"

#include <db/tv_db_dictionary.h>

TVRX_DEFINE_MEMBERS(TvDbDataLink, TvDbObject)

namespace {

constexpr const TvChar* kDataLinks = u"ACAD_DATALINK";

} // namespace

// The link

TvString TvDbDataLink::text(const char* field) const
{
    return TvString(fields().text(field));
}

TvStatusCode TvDbDataLink::setText(const char* field, const TvString& value)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setText(field, value.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvStatusCode TvDbDataLink::setInteger(const char* field, int value)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setInteger(field, value) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvString TvDbDataLink::name() const
{
    const TvDbObjectPointer<TvDbDictionary> list(ownerId(), TvDb::kForNotify);
    TvString key;
    if (list)
        list->nameAt(objectId(), key);
    return key;
}

TvString TvDbDataLink::description() const
{
    return text("description");
}

TvStatusCode TvDbDataLink::setDescription(const TvString& value)
{
    return setText("description", value);
}

TvString TvDbDataLink::getToolTip() const
{
    return text("tooltip");
}

TvStatusCode TvDbDataLink::setToolTip(const TvString& value)
{
    return setText("tooltip", value);
}

TvString TvDbDataLink::dataAdapterId() const
{
    return text("adapter");
}

TvStatusCode TvDbDataLink::setDataAdapterId(const TvString& id)
{
    return setText("adapter", id);
}

TvString TvDbDataLink::connectionString() const
{
    return text("connection");
}

TvStatusCode TvDbDataLink::setConnectionString(const TvString& value)
{
    return setText("connection", value);
}

int TvDbDataLink::option() const
{
    return static_cast<int>(fields().integer("option"));
}

TvStatusCode TvDbDataLink::setOption(int value)
{
    return setInteger("option", value);
}

int TvDbDataLink::updateOption() const
{
    return static_cast<int>(fields().integer("update_option"));
}

TvStatusCode TvDbDataLink::setUpdateOption(int value)
{
    return setInteger("update_option", value);
}

// Their list

TvDbObjectId TvDbDataLinkManager::dictionaryId() const
{
    const TvDbObjectPointer<TvDbDictionary> named(m_database.namedObjectsDictionaryId(),
                                                  TvDb::kForNotify);
    TvDbObjectId id;
    if (named)
        named->getAt(TvString(kDataLinks), id);
    return id;
}

std::vector<TvDbObjectId> TvDbDataLinkManager::getDataLinks() const
{
    std::vector<TvDbObjectId> links;
    const TvDbObjectPointer<TvDbDictionary> list(dictionaryId(), TvDb::kForNotify);
    if (list)
        for (const auto& [name, id] : list->entries())
            if (id.objectClass()->isDerivedFrom(TvDbDataLink::desc()))
                links.push_back(id);
    return links;
}

int TvDbDataLinkManager::dataLinkCount() const
{
    return static_cast<int>(getDataLinks().size());
}

TvStatusCode TvDbDataLinkManager::getDataLink(const TvString& name, TvDbObjectId& out) const
{
    out.setNull();
    const TvDbObjectPointer<TvDbDictionary> list(dictionaryId(), TvDb::kForNotify);
    return list ? list->getAt(name, out) : TvStatus::KeyNotFound;
}

TvStatusCode TvDbDataLinkManager::getDataLink(const TvString& name, TvDbDataLink*& out,
                                              TvDb::OpenMode mode) const
{
    out = nullptr;
    TvDbObjectId id;
    const TvStatusCode status = getDataLink(name, id);
    return status == TvStatus::Ok ? tvdbOpenObject(out, id, mode) : status;
}

TvStatusCode TvDbDataLinkManager::addDataLink(const TvString& name, TvDbDataLink* link,
                                              TvDbObjectId& out)
{
    out.setNull();
    if (!link || link->objectId())
        return link ? TvStatus::AlreadyInDatabase : TvStatus::InvalidInput;
    if (name.isEmpty())
        return TvStatus::InvalidName;
    TvDbObjectId listId = dictionaryId();
    if (listId.isNull()) {
        const TvDbObjectPointer<TvDbDictionary> named(m_database.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        if (!named)
            return named.openStatus();
        auto list = std::make_unique<TvDbDictionary>();
        if (const TvStatusCode status = named->setAt(TvString(kDataLinks), list.get(), listId))
            return status;
        list.release()->close();
    }
    const TvDbObjectPointer<TvDbDictionary> list(listId, TvDb::kForWrite);
    if (!list)
        return list.openStatus();
    return list->has(name) ? TvStatus::DuplicateName : list->setAt(name, link, out);
}

TvStatusCode TvDbDataLinkManager::createDataLink(const TvString& name, const TvString& adapterId,
                                                 const TvString& connection, TvDbObjectId& out)
{
    auto link = std::make_unique<TvDbDataLink>();
    link->setDataAdapterId(adapterId);
    link->setConnectionString(connection);
    const TvStatusCode status = addDataLink(name, link.get(), out);
    if (status == TvStatus::Ok)
        link.release()->close();
    return status;
}

TvStatusCode TvDbDataLinkManager::removeDataLink(const TvString& name)
{
    const TvDbObjectPointer<TvDbDictionary> list(dictionaryId(), TvDb::kForWrite);
    return list ? list->remove(name) : TvStatus::KeyNotFound;
}

TvDbDataLinkManager* TvDbDatabase::getDataLinkManager() const
{
    return &m_impl->dataLinks();
}
