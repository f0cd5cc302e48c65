#pragma once

#include <core/sheet_data.h>
#include <operations/import_layouts.h>

#include "document_scene.h"

/// Drawings in a folder, and a set to which their layouts may go.
class ImportScene : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        house = made("house.dst");
        change(house, [this](TvSmSheetSet& top) {
            top.setName(u"House");
            ground = addSubset(&top, u"Ground");
            cover = addSheet(ground, u"1", u"Cover");
        });
    }

    TvString path(const char* name) const { return folder.file(name); }
    /// A drawing with a line on each of these layouts; with two more that are empty.
    /// @param sheetSet  the set that it names; empty: none.
    /// @return its path.
    TvString drawing(const char* name, const std::vector<TvString>& layouts,
                     const TvString& sheetSet = {})
    {
        DrawingMaker maker;
        for (const TvString& layout : layouts)
            maker.paper(layout);
        if (!sheetSet.isEmpty()) {
            EXPECT_TRUE(WriteSheetData(&maker.drawing(), {u"1", u"", path(name), sheetSet}));
        }
        maker.saveAs(path(name));
        return path(name);
    }
    /// The handle of a layout, as text.
    static TvString handle(const TvString& drawing, const TvString& layout)
    {
        operations::DrawingLayouts found;
        EXPECT_TRUE(
            operations::readDrawingLayouts(drawing, operations::LayoutOrder::Dictionary, found));
        for (const auto& each : found.layouts)
            if (each.name == layout)
                return each.handle.text();
        ADD_FAILURE() << layout.utf8();
        return {};
    }
    /// Adds a sheet to @p set that leads to the layout.
    TvSmSheet* use(TvSmDatabase* set, const TvString& drawing, const TvString& layout)
    {
        TvSmSheet* sheet = nullptr;
        change(set, [&](TvSmSheetSet& top) {
            sheet = addSheet(&top, u"", layout);
            setLayout(sheet, drawing, handle(drawing, layout), layout);
        });
        return sheet;
    }
    /// A set with sheets of these layouts, closed again. @return its path.
    TvString closedSet(const char* name, const TvString& drawing,
                       const std::vector<TvString>& layouts)
    {
        TvSmDatabase* set = made(name);
        for (const TvString& layout : layouts)
            use(set, drawing, layout);
        EXPECT_TRUE(manager().closeDatabase(set));
        return path(name);
    }

    TvSmDatabase* house = nullptr;
    TvSmSubset* ground = nullptr;
    TvSmSheet* cover = nullptr;
};
