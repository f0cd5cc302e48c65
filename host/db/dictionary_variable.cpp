#include <db/dictionary_variable.h>

#include "new_object.h"
#include "quiet_edit.h"

#include <db/tv_db_dictionary.h>

namespace db {

namespace {

constexpr const TvChar* kVariables = u"AcDbVariableDictionary";

} // namespace

TvDbObjectId dictionaryEntry(TvDbObjectId dictionary, const TvString& key)
{
    const TvDbObjectPointer<TvDbDictionary> entries(dictionary, TvDb::kForNotify);
    TvDbObjectId id;
    if (entries)
        entries->getAt(key, id);
    return id;
}

TvDbObjectId neededDictionaryEntry(TvDbObjectId dictionary, const TvString& key,
                                   const char* className)
{
    if (const TvDbObjectId known = dictionaryEntry(dictionary, key))
        return known;
    const TvDbObjectPointer<TvDbDictionary> entries(dictionary, TvDb::kForWrite);
    if (!entries)
        return {};
    std::unique_ptr<TvDbObject> made = newObject(*classNamed(className));
    TvDbObjectId id;
    if (entries->setAt(key, made.get(), id) != TvStatus::Ok)
        return {};
    made.release()->close();
    return id;
}

TvString dictionaryVariable(const TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectId variables =
        dictionaryEntry(database.namedObjectsDictionaryId(), TvString(kVariables));
    const TvDbObjectPointer<TvDbObject> variable(dictionaryEntry(variables, name),
                                                 TvDb::kForNotify);
    return variable ? TvString(variable->fields().text("value")) : TvString();
}

TvStatusCode setDictionaryVariable(TvDbDatabase& database, const TvString& name,
                                   const TvString& value)
{
    const TvDbObjectId variables = neededDictionaryEntry(database.namedObjectsDictionaryId(),
                                                         TvString(kVariables), "DICTIONARY");
    QuietEdit edit(neededDictionaryEntry(variables, name, "DICTIONARYVAR"));
    return edit && edit->setText("value", value.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

} // namespace db
