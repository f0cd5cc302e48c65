#pragma once

#include <memory>

#include <gtest/gtest.h>

#include <db/tv_db_database.h>
#include <db/tv_db_entity.h>
#include <db/tv_db_symbol_table.h>
#include <gs/display_list.h>

/// A new drawing, to put entities into.
class DrawingScene
{
public:
    TvDbDatabase& database() { return m_database; }
    TvDbObjectId model() const { return m_database.modelSpaceId(); }

    /// The entity belongs to the drawing then, and is closed.
    TvDbObjectId add(TvDbEntity* entity) { return addTo(model(), entity); }
    TvDbObjectId addTo(TvDbObjectId block, TvDbEntity* entity)
    {
        TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
        TvDbObjectId id;
        EXPECT_EQ(record->appendTvDbEntity(id, entity), TvStatus::Ok);
        entity->close();
        return id;
    }
    TvDbObjectId addBlock(const TvChar* name)
    {
        TvDbObjectPointer<TvDbBlockTable> blocks(m_database.symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        auto* block = new TvDbBlockTableRecord;
        block->setName(name);
        TvDbObjectId id;
        EXPECT_EQ(blocks->add(id, block), TvStatus::Ok);
        block->close();
        return id;
    }
    TvDbObjectId addLayer(const TvChar* name, int color)
    {
        TvDbObjectPointer<TvDbLayerTable> layers(m_database.symbolTableId(TvDb::SymbolTable::Layer),
                                                 TvDb::kForWrite);
        auto* layer = new TvDbLayerTableRecord;
        layer->setName(name);
        TvDbObjectId id;
        EXPECT_EQ(layers->add(id, layer), TvStatus::Ok);
        layer->setColorIndex(color);
        layer->close();
        return id;
    }
    gs::DisplayList list() { return gs::DisplayList::ofModel(m_database); }

private:
    TvDbDatabase m_database{true, true};
};
