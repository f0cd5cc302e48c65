#include <db/tv_db_database.h>

#include "block_names.h"
#include "clone.h"
#include "quiet_edit.h"

#include <db/ge_values.h>
#include <db/tv_db_entity.h>
#include <db/tv_db_id_mapping.h>
#include <db/tv_db_symbol_table.h>

namespace {

using db::Clone;

/// Header variables that tell about the one drawing, not about how it is drawn.
bool isOwnVariable(std::string_view name)
{
    static constexpr std::string_view kNames[] = {"TILEMODE",    "HANDSEED", "FINGERPRINTGUID",
                                                  "VERSIONGUID", "INSBASE",  "PINSBASE"};
    static constexpr std::string_view kStarts[] = {"TD",   "EXTM", "PEXTM", "LIMM",
                                                   "PLIM", "PUCS", "UCS",   "ELEVATION"};
    for (const std::string_view own : kNames)
        if (name == own)
            return true;
    for (const std::string_view start : kStarts)
        if (name.starts_with(start))
            return true;
    return false;
}

/// Units, scales and the like, as far as they are plain values.
void takeVariables(TvDbDatabase& to, const TvDbDatabase& from)
{
    const db::Record& source = from.headerRecord();
    db::RecordEditor edit = to.editHeader();
    for (const db::FieldDef& field : source.classDef()->layout().fields) {
        if (isOwnVariable(db::fieldName(field.id)))
            continue;
        if (field.storage == db::Storage::Integer)
            edit.setInteger(field.id, source.integer(field.id));
        else if (field.storage == db::Storage::Real)
            edit.setPoint(field.id, source.point(field.id));
        else if (field.storage == db::Storage::Text)
            edit.setText(field.id, std::u16string(source.text(field.id)));
    }
}

std::unique_ptr<TvDbDatabase> newDrawingLike(const TvDbDatabase& source)
{
    auto made = std::make_unique<TvDbDatabase>(false, true);
    const bool isMetric = source.headerRecord().flag("MEASUREMENT");
    made->impl().makeDefault(source.impl().version(),
                             isMetric ? db::Measurement::Metric : db::Measurement::Imperial);
    takeVariables(*made, source);
    return made;
}

bool mayStandAlone(TvDbObjectId id, const TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbEntity> entity(id, TvDb::kForNotify);
    // What is kept as bytes is refused later, by name.
    return id.database() == &database && entity &&
           (entity->isRaw() || db::canStandInBlock(entity->record().classDef()));
}

TvStatusCode copyInto(Clone& clone, TvDbDatabase& asked, TvDbIdMapping* mapping)
{
    if (const TvStatusCode status = clone.prepare())
        return asked.impl().fail(clone.failure(), status);
    clone.commit(mapping);
    return TvStatus::Ok;
}

/// A new block for what is inserted; its handle is the next one.
TvStatusCode makeBlock(TvDbDatabase& database, const TvString& name, TvDbObjectId& out)
{
    TvDbObjectPointer<TvDbBlockTable> blocks(database.symbolTableId(TvDb::SymbolTable::Block),
                                             TvDb::kForWrite);
    if (!blocks)
        return blocks.openStatus();
    auto block = std::make_unique<TvDbBlockTableRecord>();
    if (const TvStatusCode status = block->setName(name))
        return status;
    if (const TvStatusCode status = blocks->add(out, block.get()))
        return status;
    block.release()->close();
    return TvStatus::Ok;
}

/// Whether the content of a block may be another from now on.
TvStatusCode checkRedefinition(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
    if (!record)
        return record.openStatus();
    if (record->isLayout() || record->isFromExternalReference())
        return TvStatus::NotApplicable;
    return record->edit() ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvStatusCode eraseContent(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForRead);
    if (!record)
        return record.openStatus();
    std::vector<TvDbObjectPointer<TvDbEntity>> opened;
    for (const TvDbObjectId id : record->entityIds()) {
        opened.emplace_back(id, TvDb::kForWrite);
        if (!opened.back())
            return opened.back().openStatus(); // before any of them is gone
    }
    for (const auto& entity : opened)
        entity->erase();
    return TvStatus::Ok;
}

bool canEraseContent(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForRead);
    if (!record)
        return false;
    for (const TvDbObjectId id : record->entityIds())
        if (!TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite))
            return false;
    return true;
}

constexpr std::uint64_t kHandlesOfBlock = 3; // record, begin and end

} // namespace

TvStatusCode TvDbDatabase::wblock(TvDbDatabase*& out)
{
    out = nullptr;
    base::Result<std::vector<std::uint8_t>> bytes = toBytes(db::FileFormat::Dwg);
    if (!bytes)
        return m_impl->fail(bytes.status(), TvStatus::VersionNotWritable);
    auto made = std::make_unique<TvDbDatabase>(false, true);
    if (const TvStatusCode status = made->readDwgBytes(std::move(*bytes)))
        return m_impl->fail(made->lastFailure(), status);
    out = made.release();
    return TvStatus::Ok;
}

TvStatusCode TvDbDatabase::wblock(TvDbDatabase*& out, TvDbObjectId block)
{
    out = nullptr;
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    if (block.database() != this || !record)
        return TvStatus::InvalidInput;
    if (record->isFromExternalReference())
        return TvStatus::NotApplicable;
    std::unique_ptr<TvDbDatabase> made = newDrawingLike(*this);
    const std::uint64_t space = made->modelSpaceId().handle().value();
    Clone clone(*this, *made, space, made->handseed().value());
    clone.replaceDefaults();
    clone.standsFor(block.handle().value(), space);
    for (const TvDbObjectId id : record->entityIds())
        clone.add(id);
    clone.addExtensionOf(block);
    if (const TvStatusCode status = copyInto(clone, *this, nullptr))
        return status;
    const bool isModel = block == modelSpaceId();
    made->editHeader().setPoint("INSBASE",
                                isModel ? headerRecord().point("INSBASE") : record->origin());
    if (const std::int64_t units = record->fields().integer("units"); !isModel && units != 0)
        made->editHeader().setInteger("INSUNITS", units);
    out = made.release();
    return TvStatus::Ok;
}

TvStatusCode TvDbDatabase::wblock(TvDbDatabase*& out, const std::vector<TvDbObjectId>& entities,
                                  const TvGePoint3d& basePoint)
{
    out = nullptr;
    if (entities.empty())
        return TvStatus::InvalidInput;
    for (const TvDbObjectId id : entities)
        if (!mayStandAlone(id, *this))
            return TvStatus::InvalidInput;
    std::unique_ptr<TvDbDatabase> made = newDrawingLike(*this);
    Clone clone(*this, *made, made->modelSpaceId().handle().value(), made->handseed().value());
    clone.replaceDefaults();
    for (const TvDbObjectId id : entities)
        clone.add(id);
    if (const TvStatusCode status = copyInto(clone, *this, nullptr))
        return status;
    made->editHeader().setPoint("INSBASE", db::fromPoint(basePoint));
    out = made.release();
    return TvStatus::Ok;
}

TvStatusCode TvDbDatabase::insert(TvDbObjectId& blockId, const TvChar* blockName,
                                  TvDbDatabase* source, bool)
{
    blockId.setNull();
    const TvString name(blockName ? blockName : u"");
    if (!source || source == this)
        return TvStatus::InvalidInput;
    if (name.isEmpty() || db::isNumberedBlockName(name.view()))
        return TvStatus::InvalidName;
    TvDbObjectId block;
    if (const TvDbObjectPointer<TvDbBlockTable> blocks(symbolTableId(TvDb::SymbolTable::Block),
                                                       TvDb::kForNotify);
        blocks)
        blocks->getIdAt(name, block);
    const bool isNew = block.isNull();
    if (!isNew) {
        if (const TvStatusCode status = checkRedefinition(block))
            return status;
        if (!canEraseContent(block))
            return TvStatus::WasOpenForWrite;
    }
    const std::uint64_t next = handseed().value();
    const std::uint64_t space = isNew ? next : block.handle().value();
    Clone clone(*source, *this, space, isNew ? next + kHandlesOfBlock : next);
    clone.forbidBlock(name);
    const TvDbObjectPointer<TvDbBlockTableRecord> model(source->modelSpaceId(), TvDb::kForNotify);
    if (!model)
        return TvStatus::InvalidInput;
    clone.standsFor(source->modelSpaceId().handle().value(), space);
    for (const TvDbObjectId id : model->entityIds())
        clone.add(id);
    if (isNew)
        clone.addExtensionOf(source->modelSpaceId());
    if (const TvStatusCode status = clone.prepare())
        return m_impl->fail(clone.failure(), status);
    if (const TvStatusCode status = isNew ? makeBlock(*this, name, block) : eraseContent(block))
        return status;
    clone.commit(nullptr);
    if (db::QuietEdit edit(block); edit) {
        edit->setPoint("base_pt", source->headerRecord().point("INSBASE"));
        edit->setInteger("units", source->insunits());
    }
    blockId = block;
    return TvStatus::Ok;
}

TvStatusCode TvDbDatabase::wblockCloneObjects(const std::vector<TvDbObjectId>& entities,
                                              TvDbObjectId block, TvDbIdMapping& mapping)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> space(block, TvDb::kForNotify);
    if (entities.empty() || block.database() != this || !space)
        return TvStatus::InvalidInput;
    TvDbDatabase* source = entities.front().database();
    if (!source)
        return TvStatus::InvalidInput;
    for (const TvDbObjectId id : entities)
        if (!mayStandAlone(id, *source))
            return TvStatus::InvalidInput;
    if (space->isFromExternalReference())
        return TvStatus::NotApplicable;
    Clone clone(*source, *this, block.handle().value(), handseed().value());
    clone.forbidBlock(space->isLayout() ? TvString() : space->getName());
    for (const TvDbObjectId id : entities)
        clone.add(id);
    return copyInto(clone, *this, &mapping);
}
