#include "database_impl.h"

#include <db/references.h>
#include <db/tv_db_symbol_table.h>

namespace {

/// Records of these classes are needed by whatever refers to them; others are left out where they
/// are missing.
bool mustStayInUse(std::string_view className)
{
    return className == "BLOCK_HEADER" || className == "LAYER" || className == "STYLE" ||
           className == "LTYPE" || className == "DIMSTYLE" || className == "APPID";
}

bool refersTo(const db::Record& record, std::uint64_t handle)
{
    const std::string_view name = record.classDef() ? record.classDef()->name() : "";
    const bool isRaw = name == "RAW_OBJECT" || name == "RAW_ENTITY";
    bool found = false;
    db::forEachReference(record, [&](const db::Reference& reference) {
        found |= reference.target == handle &&
                 (isRaw || reference.kind == db::ReferenceKind::HardPointer);
    });
    return found;
}

bool isNeeded(const TvDbDatabase& database, std::uint64_t handle)
{
    const db::DatabaseImpl& impl = database.impl();
    if (refersTo(impl.header(), handle))
        return true;
    bool found = false;
    db::Record scratch;
    impl.forEach([&](db::ObjectSlot& slot) {
        if (found || slot.handle == handle)
            return;
        if (slot.object)
            found = refersTo(slot.object->record(), handle);
        else if (impl.file()->read(slot.handle, scratch) ||
                 impl.file()->readCommon(slot.handle, scratch))
            found = refersTo(scratch, handle);
    });
    return found;
}

} // namespace

TvStatusCode TvDbSymbolTableRecord::erase(bool erasing)
{
    const db::ClassDef* of = record().classDef();
    if (erasing && objectId() && isWriteEnabled() && !isErased() && of &&
        mustStayInUse(of->name())) {
        const auto* block = tvrxCast<TvDbBlockTableRecord>(this);
        const bool isReserved = of->name() == "LAYER" && getName() == u"0";
        if (isReserved || (block && block->isLayout()) || isNeeded(*database(), handle().value()))
            return TvStatus::StillInUse;
    }
    return TvDbObject::erase(erasing);
}
