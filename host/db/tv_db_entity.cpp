#include <db/tv_db_entity.h>

#include <cmath>

#include <db/tv_db_block_begin.h>
#include <db/tv_db_symbol_table.h>

TVRX_DEFINE_MEMBERS(TvDbEntity, TvDbObject)
TVRX_DEFINE_MEMBERS(TvDbBlockBegin, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbBlockEnd, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbSequenceEnd, TvDbEntity)

namespace {

// "ltype_flags"
enum : int { kByLayer = 0, kByBlock = 1, kContinuous = 2 };

} // namespace

TvDbObjectId TvDbEntity::layerId() const
{
    return idField("layer");
}

TvString TvDbEntity::layer() const
{
    const TvDbObjectPointer<TvDbLayerTableRecord> record(layerId(), TvDb::kForNotify, true);
    return record ? record->getName() : TvString();
}

TvStatusCode TvDbEntity::setLayer(TvDbObjectId layer)
{
    if (!layer.isValid() || (database() && layer.database() != database()) ||
        !layer.objectClass()->isDerivedFrom(TvDbLayerTableRecord::desc()))
        return TvStatus::InvalidInput;
    return setIdField("layer", layer);
}

bool TvDbEntity::isVisible() const
{
    return (fields().integer("invisible") & 1) == 0;
}

TvStatusCode TvDbEntity::setVisibility(bool visible)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const std::int64_t others = fields().integer("invisible") & ~std::int64_t(1);
    return edit().setInteger("invisible", others | (visible ? 0 : 1)) ? TvStatus::Ok
                                                                      : TvStatus::NotUnderstood;
}

TvDbObjectId TvDbEntity::linetypeId() const
{
    if (!database())
        return {};
    const db::Record& header = database()->headerRecord();
    switch (fields().integer("ltype_flags")) {
    case kByLayer: return idOf(header.handle("LTBYLAYER"));
    case kByBlock: return idOf(header.handle("LTBYBLOCK"));
    case kContinuous: return idOf(header.handle("LTCONTINUOUS"));
    default: return idField("ltype");
    }
}

double TvDbEntity::linetypeScale() const
{
    return fields().real("ltype_scale");
}

TvStatusCode TvDbEntity::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    return TvStatus::NotApplicable;
}

TvStatusCode TvDbEntity::setInteger(db::FieldKey key, std::int64_t value)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setInteger(key, value) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvStatusCode TvDbEntity::setReal(db::FieldKey key, double value)
{
    return setPoint(key, {value, 0, 0});
}

TvStatusCode TvDbEntity::setPoint(db::FieldKey key, const db::Point& value)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (!std::isfinite(value.x) || !std::isfinite(value.y) || !std::isfinite(value.z))
        return TvStatus::InvalidInput;
    return edit().setPoint(key, value) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvStatusCode TvDbEntity::setText(db::FieldKey key, const TvString& value)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setText(key, value.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}
