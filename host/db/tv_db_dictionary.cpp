#include <db/tv_db_dictionary.h>

#include "database_impl.h"

TVRX_DEFINE_MEMBERS(TvDbDictionary, TvDbObject)
TVRX_DEFINE_MEMBERS(TvDbDictionaryWithDefault, TvDbDictionary)

TvDbDictionary::TvDbDictionary() : TvDbDictionary("DICTIONARY") {}

TvDbDictionary::TvDbDictionary(const char* className) : TvDbObject(className) {}

TvDbDictionary::~TvDbDictionary() = default;

std::size_t TvDbDictionary::NoCaseHash::operator()(const std::u16string& text) const
{
    return base::hashNoCase(text);
}

bool TvDbDictionary::NoCaseEqual::operator()(const std::u16string& a, const std::u16string& b) const
{
    return base::compareNoCase(a, b) == 0;
}

int TvDbDictionary::find(std::u16string_view name) const
{
    const db::ArrayView keys = record().array("keys");
    if (!m_isIndexed) {
        m_index.clear();
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            m_index.emplace(std::u16string(keys.text(i)), i);
        m_isIndexed = true;
    }
    const auto at = m_index.find(std::u16string(name));
    return at == m_index.end() ? -1 : static_cast<int>(at->second);
}

void TvDbDictionary::subReload()
{
    m_isIndexed = false;
}

TvStatusCode TvDbDictionary::getAt(const TvString& name, TvDbObjectId& out) const
{
    const int index = find(name.view());
    const TvDbObjectId id =
        index < 0 ? TvDbObjectId()
                  : idOf(record().array("values").handle(static_cast<std::uint32_t>(index)));
    out = id.isValid() ? id : TvDbObjectId();
    return out ? TvStatus::Ok : TvStatus::KeyNotFound;
}

bool TvDbDictionary::has(const TvString& name) const
{
    TvDbObjectId id;
    return getAt(name, id) == TvStatus::Ok;
}

bool TvDbDictionary::has(TvDbObjectId id) const
{
    TvString name;
    return nameAt(id, name) == TvStatus::Ok;
}

TvStatusCode TvDbDictionary::nameAt(TvDbObjectId id, TvString& out) const
{
    const db::ArrayView values = record().array("values");
    for (std::uint32_t i = 0; i < values.size() && id.isValid(); ++i)
        if (values.handle(i) == id.handle().value()) {
            out = TvString(record().array("keys").text(i));
            return TvStatus::Ok;
        }
    return TvStatus::KeyNotFound;
}

std::vector<std::pair<TvString, TvDbObjectId>> TvDbDictionary::entries() const
{
    std::vector<std::pair<TvString, TvDbObjectId>> all;
    const db::ArrayView keys = record().array("keys"), values = record().array("values");
    all.reserve(keys.size());
    for (std::uint32_t i = 0; i < keys.size(); ++i)
        if (const TvDbObjectId id = idOf(values.handle(i)); id.isValid())
            all.emplace_back(TvString(keys.text(i)), id);
    return all;
}

std::uint32_t TvDbDictionary::numEntries() const
{
    return static_cast<std::uint32_t>(entries().size());
}

TvDbDictionaryIterator* TvDbDictionary::newIterator() const
{
    auto* iterator = new TvDbDictionaryIterator;
    iterator->m_entries = entries();
    return iterator;
}

namespace {

/// Where @p name belongs: by its place in the order if the keys stand in order, else at the end.
std::uint32_t placeFor(const db::ArrayView& keys, std::u16string_view name)
{
    std::uint32_t place = keys.size();
    for (std::uint32_t i = 0; i < keys.size(); ++i) {
        if (i > 0 && base::compareNoCase(keys.text(i - 1), keys.text(i)) > 0)
            return keys.size();
        if (place == keys.size() && base::compareNoCase(name, keys.text(i)) < 0)
            place = i;
    }
    return place;
}

void eraseOwned(TvDbObjectId id, TvDbObjectId owner)
{
    TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
    if (object && object->ownerId() == owner)
        object->erase(true);
}

} // namespace

TvStatusCode TvDbDictionary::setAt(const TvString& name, TvDbObject* object, TvDbObjectId& out)
{
    if (!object || name.isEmpty())
        return object ? TvStatus::InvalidName : TvStatus::InvalidInput;
    if (!database())
        return TvStatus::NotInDatabase;
    if (!isWriteEnabled() || isRaw())
        return TvStatus::NotOpenForWrite;
    if (object->database() && object->database() != database())
        return TvStatus::InvalidInput;
    const int index = find(name.view());
    if (!edit())
        return TvStatus::NotUnderstood;
    if (object->objectId()) {
        out = object->objectId();
    } else {
        if (const TvStatusCode status = database()->addTvDbObject(out, object, objectId()))
            return status;
        object->addPersistentReactor(objectId());
    }
    db::RecordEditor editor = edit();
    db::ArrayEditor keys = editor.array("keys");
    if (index >= 0) {
        const auto at = static_cast<std::uint32_t>(index);
        const TvDbObjectId former = idOf(editor.array("values").handle(at));
        editor.array("values").setHandle(at, out.handle().value());
        if (former.isValid() && former != out)
            eraseOwned(former, objectId());
        return TvStatus::Ok;
    }
    const std::uint32_t at = placeFor(keys, name.view());
    if (!keys.insert(at))
        return TvStatus::OutOfRange;
    keys.setText(at, name.view());
    editor.array("values").setHandle(at, out.handle().value());
    m_isIndexed = false;
    return TvStatus::Ok;
}

TvStatusCode TvDbDictionary::removeEntry(std::uint32_t index)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const TvDbObjectId id = idOf(record().array("values").handle(index));
    db::RecordEditor editor = edit();
    if (!editor)
        return TvStatus::NotUnderstood;
    editor.array("keys").erase(index);
    m_isIndexed = false;
    if (id.isValid())
        eraseOwned(id, objectId());
    return TvStatus::Ok;
}

TvStatusCode TvDbDictionary::remove(const TvString& name)
{
    const int index = find(name.view());
    return index < 0 ? TvStatus::KeyNotFound : removeEntry(static_cast<std::uint32_t>(index));
}

TvStatusCode TvDbDictionary::remove(TvDbObjectId id)
{
    const db::ArrayView values = record().array("values");
    for (std::uint32_t i = 0; i < values.size() && !id.isNull(); ++i)
        if (values.handle(i) == id.handle().value())
            return removeEntry(i);
    return TvStatus::KeyNotFound;
}

TvStatusCode TvDbDictionary::setName(const TvString& oldName, const TvString& newName)
{
    if (newName.isEmpty())
        return TvStatus::InvalidName;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const int index = find(oldName.view());
    if (index < 0)
        return TvStatus::KeyNotFound;
    const int taken = find(newName.view());
    if (taken != index && has(newName))
        return TvStatus::DuplicateName;
    db::RecordEditor editor = edit();
    db::ArrayEditor keys = editor.array("keys");
    if (!keys.setText(static_cast<std::uint32_t>(index), newName.view()))
        return TvStatus::NotUnderstood;
    if (taken >= 0 && taken != index)
        keys.erase(static_cast<std::uint32_t>(taken)); // of an erased one, which needs no name
    m_isIndexed = false;
    return TvStatus::Ok;
}

bool TvDbDictionary::isTreatElementsAsHard() const
{
    return record().flag("hard_owner");
}

TvStatusCode TvDbDictionary::setTreatElementsAsHard(bool hard)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setFlag("hard_owner", hard) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvDbObjectId TvDbDictionaryWithDefault::defaultId() const
{
    return idField("default");
}

TvStatusCode TvDbDictionaryWithDefault::setDefaultId(TvDbObjectId id)
{
    return setIdField("default", id);
}
