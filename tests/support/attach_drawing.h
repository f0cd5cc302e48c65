#pragma once

#include <db/record_editor.h>
#include <db/tv_db_database.h>
#include <db/tv_db_symbol_table.h>
#include <gtest/gtest.h>

/// Puts a block that refers to another drawing into @p drawing.
inline TvDbObjectId attachDrawing(TvDbDatabase& drawing, const TvString& name, const TvString& path,
                                  bool isOverlay = false, bool isUnloaded = false)
{
    TvDbObjectPointer<TvDbBlockTable> blocks(drawing.symbolTableId(TvDb::SymbolTable::Block),
                                             TvDb::kForWrite);
    auto* block = new TvDbBlockTableRecord;
    block->setName(name);
    TvDbObjectId id;
    EXPECT_EQ(blocks->add(id, block), TvStatus::Ok);
    db::RecordEditor edit = block->edit();
    edit.setFlag("is_xref", true);
    edit.setFlag("xref_overlaid", isOverlay);
    edit.setFlag("xref_unloaded", isUnloaded);
    edit.setText("xref_path", path.view());
    block->close();
    return id;
}
