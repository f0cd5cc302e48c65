#pragma once

#include <memory>

#include <db/tv_db_object.h>

namespace db {

/// The C++ class that stands for objects of a class of drawings.
struct ObjectType {
    const TvRxClass* type;
    std::unique_ptr<TvDbObject> (*make)();
};

/// What stands for @p classDef: its own class, or the one for all entities, table records or
/// objects. Null stands for classes that have no table.
ObjectType objectTypeOf(const ClassDef* classDef, bool isEntity);

} // namespace db
