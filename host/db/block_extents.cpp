#include "block_extents.h"

#include <db/tv_db_block_reference.h>
#include <db/tv_db_symbol_table.h>

namespace db {

const TvDbExtents& BlockExtents::of(TvDbObjectId block)
{
    const auto [at, isNew] = m_known.emplace(block, TvDbExtents());
    if (!isNew || m_depth >= kDeepest)
        return at->second;
    ++m_depth;
    TvDbExtents box;
    if (const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify); record)
        for (const TvDbObjectId id : record->entityIds()) {
            const TvDbObjectPointer<TvDbEntity> entity(id, TvDb::kForNotify);
            TvDbExtents part;
            if (!entity || !entity->isVisible())
                continue;
            if (const auto* reference = tvrxCast<TvDbBlockReference>(entity.object()))
                box.addExtents(of(*reference));
            else if (entity->record().classDef()->name() != "ATTDEF" &&
                     entity->getGeomExtents(part) == TvStatus::Ok)
                box.addExtents(part);
        }
    --m_depth;
    return m_known[block] = box;
}

TvDbExtents BlockExtents::of(const TvDbBlockReference& reference)
{
    TvDbExtents box;
    const TvDbExtents content = of(reference.blockTableRecord());
    if (!content.isEmpty()) {
        if (const auto* array = tvrxCast<TvDbMInsertBlock>(&reference)) {
            // Evenly spaced: the places in the corners hold the others.
            const int column = std::max(array->columns(), 1) - 1;
            const int row = std::max(array->rows(), 1) - 1;
            for (const auto& [c, r] : {std::pair(0, 0), {column, 0}, {0, row}, {column, row}})
                box.addExtents(content.transformed(array->blockTransformAt(c, r)));
        } else {
            box.addExtents(content.transformed(reference.blockTransform()));
        }
    }
    for (const TvDbObjectId id : reference.attributeIds()) {
        const TvDbObjectPointer<TvDbEntity> attribute(id, TvDb::kForNotify);
        TvDbExtents part;
        if (attribute && attribute->isVisible() && attribute->getGeomExtents(part) == TvStatus::Ok)
            box.addExtents(part);
    }
    return box;
}

} // namespace db
