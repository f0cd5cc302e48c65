#include <db/tv_db_block_reference.h>

#include <ge/ocs.h>

#include "block_extents.h"
#include "block_names.h"

#include <db/tv_db_block_begin.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>

TVRX_DEFINE_MEMBERS(TvDbBlockReference, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbMInsertBlock, TvDbBlockReference)

namespace {

bool isBlock(TvDbObjectId id)
{
    return id.isValid() && id.objectClass()->isDerivedFrom(TvDbBlockTableRecord::desc());
}

ge::BlockPlacement placementOf(const TvDbBlockReference& reference)
{
    ge::BlockPlacement placement;
    placement.insertion = db::asPoint(reference.fields().point("ins_pt"));
    placement.scale = reference.scaleFactors();
    placement.rotation = reference.rotation();
    placement.normal = reference.normal();
    const TvDbObjectPointer<TvDbBlockTableRecord> block(reference.blockTableRecord(),
                                                        TvDb::kForNotify);
    if (block)
        placement.base = db::asPoint(block->origin());
    return placement;
}

} // namespace

TvDbBlockReference::TvDbBlockReference(const TvGePoint3d& position, TvDbObjectId block)
    : TvDbBlockReference()
{
    setPosition(position);
    setBlockTableRecord(block);
}

TvGePoint3d TvDbBlockReference::position() const
{
    return ge::ocsToWcs(normal()) * db::asPoint(fields().point("ins_pt"));
}

TvStatusCode TvDbBlockReference::setPosition(const TvGePoint3d& position)
{
    return setPoint("ins_pt", db::fromPoint(ge::wcsToOcs(normal()) * position));
}

TvGeScale3d TvDbBlockReference::scaleFactors() const
{
    const db::Point scale = fields().point("scale");
    return {scale.x, scale.y, scale.z};
}

TvStatusCode TvDbBlockReference::setScaleFactors(const TvGeScale3d& factors)
{
    if (factors.sx == 0 || factors.sy == 0 || factors.sz == 0)
        return TvStatus::InvalidInput;
    return setPoint("scale", {factors.sx, factors.sy, factors.sz});
}

TvDbObjectId TvDbBlockReference::blockTableRecord() const
{
    return idField("block");
}

TvStatusCode TvDbBlockReference::setBlockTableRecord(TvDbObjectId block)
{
    if (!isBlock(block) || (database() && block.database() != database()))
        return TvStatus::InvalidInput;
    if (objectId() && block == blockTableRecord())
        return TvStatus::Ok;
    const TvStatusCode status = setIdField("block", block);
    if (status == TvStatus::Ok && objectId())
        db::listReference(block, objectId());
    return status;
}

TvGeMatrix3d TvDbBlockReference::blockTransform() const
{
    return ge::blockTransform(placementOf(*this));
}

TvGeMatrix3d TvDbMInsertBlock::blockTransformAt(int column, int row) const
{
    return ge::blockTransform(placementOf(*this), {column * columnSpacing(), row * rowSpacing()});
}

std::vector<TvDbObjectId> TvDbBlockReference::attributeIds() const
{
    std::vector<TvDbObjectId> ids;
    const db::ArrayView attributes = fields().array("attribs");
    for (std::uint32_t i = 0; i < attributes.size(); ++i)
        if (const TvDbObjectId id = idOf(attributes.handle(i)); id.isValid())
            ids.push_back(id);
    return ids;
}

TvDbObjectIterator* TvDbBlockReference::attributeIterator() const
{
    auto* iterator = new TvDbObjectIterator;
    iterator->m_ids = attributeIds();
    return iterator;
}

TvStatusCode TvDbBlockReference::addSequenceEnd()
{
    if (idField("seqend").isValid())
        return TvStatus::Ok;
    auto end = std::make_unique<TvDbSequenceEnd>();
    end->setLayer(layerId());
    TvDbObjectId id;
    if (const TvStatusCode status = database()->addTvDbObject(id, end.get(), objectId()))
        return status;
    end.release()->close();
    return setIdField("seqend", id);
}

TvStatusCode TvDbBlockReference::appendAttribute(TvDbObjectId& out, TvDbAttribute* attribute)
{
    out.setNull();
    if (!attribute)
        return TvStatus::InvalidInput;
    if (!database())
        return TvStatus::NotInDatabase;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (attribute->objectId())
        return TvStatus::AlreadyInDatabase;
    db::RecordEditor fields = edit();
    if (!fields)
        return TvStatus::NotUnderstood;
    if (attribute->fields().handle("layer") == 0)
        attribute->setLayer(layerId());
    if (const TvStatusCode status = database()->addTvDbObject(out, attribute, objectId()))
        return status;
    fields.setFlag("has_attribs", true);
    db::ArrayEditor list = fields.array("attribs");
    list.setHandle(list.add(), out.handle().value());
    return addSequenceEnd();
}

TvStatusCode TvDbBlockReference::appendAttribute(TvDbAttribute* attribute)
{
    TvDbObjectId id;
    return appendAttribute(id, attribute);
}

TvStatusCode TvDbBlockReference::getGeomExtents(TvDbExtents& out) const
{
    out = db::BlockExtents().of(*this);
    return out.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}
