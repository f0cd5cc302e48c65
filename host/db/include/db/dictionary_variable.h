#pragma once

#include <db/tv_db_database.h>

namespace db {

/// Variables of a drawing that are no fields of its header: texts by name, in a dictionary that the
/// drawing makes when it needs it. Names without regard to case.

/// @return the text; empty when the drawing has none of that name.
TvString dictionaryVariable(const TvDbDatabase& database, const TvString& name);

/// Makes what is missing: the dictionary, the entry. It is a change like any other: part of the
/// history, told to the reactors.
/// @return Ok, or NotUnderstood where the drawing cannot hold it; nothing is changed then.
TvStatusCode setDictionaryVariable(TvDbDatabase& database, const TvString& name,
                                   const TvString& value);

/// The entry of a dictionary; null where there is none.
TvDbObjectId dictionaryEntry(TvDbObjectId dictionary, const TvString& key);

/// The entry, which is made when it is missing; null when that is not possible.
/// @param className  of the object that is made, as the tables of fields name it.
TvDbObjectId neededDictionaryEntry(TvDbObjectId dictionary, const TvString& key,
                                   const char* className);

} // namespace db
