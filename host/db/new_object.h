#pragma once

#include "object_factory.h"
#include "object_slot.h"

namespace db {

/// A new object of that class of drawings, every field at its default, in no database.
inline std::unique_ptr<TvDbObject> newObject(const ClassDef& of)
{
    std::unique_ptr<TvDbObject> object = objectTypeOf(&of, of.isEntity()).make();
    ObjectAccess::record(*object) = Record(of);
    return object;
}

} // namespace db
