#pragma once

#include <core/rename_drawing.h>
#include <db/file_open_info_tip_manager.h>
#include <operations/rename_drawing.h>
#include <operations/rename_layout.h>
#include <operations/rename_sheet.h>
#include <operations/rename_walk.h>
#include <operations/sheet_walk.h>

#include "document_scene.h"

/// House: 1 - Plan and 2 - Stair in one drawing, Details, 3 - Section, Cover without a layout.
class RenameTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2").saveAs(folder.file("plan.dwg"));
        DrawingMaker other;
        other.paper(u"B1").saveAs(folder.file("section.dwg"));
        database = made("house.dst");
        change(database, [&](TvSmSheetSet& top) {
            house = &top;
            plan = addSheet(&top, u"1", u"Plan");
            stair = addSheet(&top, u"2", u"Stair");
            details = addSubset(&top, u"Details");
            section = addSheet(&top, u"3", u"Section");
            cover = addSheet(&top, u"", u"Cover");
            setLayout(plan, folder.file("plan.dwg"), maker.handleOf(u"A1"), u"A1");
            setLayout(stair, folder.file("plan.dwg"), maker.handleOf(u"A2"), u"old name");
            setLayout(section, folder.file("section.dwg"), other.handleOf(u"B1"), u"B1");
        });
        ActivateSheetSet(database);
        ASSERT_TRUE(database->lockDb(database));
    }
    void TearDown() override
    {
        if (database->getLockStatus() == 1)
            database->unlockDb(database, false);
        DocumentTest::TearDown();
    }
    bool isThere(const char* file) const { return std::filesystem::exists(folder.path() / file); }
    static TvString fileOf(const TvSmSheet* sheet)
    {
        return base::PathRules::native().fileNameOf(sheet->getLayoutReference()->getFileName());
    }
    /// The name of a sheet's layout in its drawing on disk.
    TvString layoutOnDisk(const TvSmSheet* sheet) const
    {
        TvDbDatabase drawing(false, true);
        EXPECT_EQ(drawing.readDwgFile(sheet->getLayoutReference()->resolveFileName()),
                  TvStatus::Ok);
        return layoutIn(drawing, sheet);
    }
    static TvString layoutIn(const TvDbDatabase& drawing, const TvSmSheet* sheet)
    {
        const TvDbHandle handle(sheet->getLayoutReference()->getHandle().view());
        const TvDbObjectPointer<TvDbLayout> layout(drawing.find(handle.value()));
        return layout ? layout->getLayoutName() : TvString(u"(none)");
    }
    /// Somebody else has the drawing open, as long as that lives.
    struct Held {
        explicit Held(const TvString& path) : drawing(false, true)
        {
            EXPECT_TRUE(db::beginUse(drawing, path));
        }
        TvDbDatabase drawing;
    };

    TvSmDatabase* database = nullptr;
    TvSmSheetSet* house = nullptr;
    TvSmSubset* details = nullptr;
    TvSmSheet *plan = nullptr, *stair = nullptr, *section = nullptr, *cover = nullptr;
};
