#pragma once

#include <span>

#include <db/record_editor.h>
#include <db/resbuf.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_database.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_summary_info.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_xrecord.h>
#include <gtest/gtest.h>

/// A drawing being made: what stands on its layouts, its views, its picture.
class DrawingMaker
{
public:
    DrawingMaker() : m_own(std::make_unique<TvDbDatabase>(true, true)), m_drawing(m_own.get()) {}
    /// Goes on with a drawing of somebody else's.
    explicit DrawingMaker(TvDbDatabase& drawing) : m_drawing(&drawing) {}

    TvDbDatabase& drawing() { return *m_drawing; }
    TvDbObjectId layout(const TvString& name)
    {
        const TvDbObjectPointer<TvDbDictionary> layouts(m_drawing->layoutDictionaryId());
        TvDbObjectId id;
        layouts->getAt(name, id);
        return id;
    }
    TvString handleOf(const TvString& layoutName) { return layout(layoutName).handle().text(); }
    /// A new paper layout with a line on it. "Layout1" and "Layout2" are there, and empty.
    DrawingMaker& paper(const TvString& name)
    {
        TvDbObjectId id;
        EXPECT_EQ(db::addLayout(*m_drawing, name, id), TvStatus::Ok);
        return line(name);
    }
    DrawingMaker& line(const TvString& layoutName)
    {
        const TvDbObjectPointer<TvDbLayout> layout(this->layout(layoutName));
        const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId(),
                                                            TvDb::kForWrite);
        auto* line = new TvDbLine({0, 0, 0}, {10, 0, 0});
        TvDbObjectId id;
        EXPECT_EQ(block->appendTvDbEntity(id, line), TvStatus::Ok);
        line->close();
        return *this;
    }
    DrawingMaker& paperSize(const TvString& layoutName, double widthMm, double heightMm, int units)
    {
        const TvDbObjectPointer<TvDbLayout> layout(this->layout(layoutName), TvDb::kForWrite);
        layout->edit().setReal("paper_width", widthMm);
        layout->edit().setReal("paper_height", heightMm);
        layout->edit().setInteger("paper_units", units);
        return *this;
    }
    /// A picture beside the layout, as drawings keep them.
    DrawingMaker& picture(const TvString& layoutName)
    {
        constexpr std::uint8_t kPng[] = {0x89, 'P', 'N', 'G', 1, 2, 3};
        return picture(layoutName, kPng);
    }
    DrawingMaker& picture(const TvString& layoutName, std::span<const std::uint8_t> png)
    {
        TvDbObjectId extension;
        {
            const TvDbObjectPointer<TvDbLayout> layout(this->layout(layoutName), TvDb::kForWrite);
            layout->createExtensionDictionary();
            extension = layout->extensionDictionary();
        }
        constexpr int kBytesCode = 310;
        const TvResbufPtr item(tvutNewRb(kBytesCode));
        tvutSetBytes(*item.get(), png);
        auto* record = new TvDbXrecord;
        EXPECT_EQ(record->setFromRbChain(*item.get()), TvStatus::Ok);
        const TvDbObjectPointer<TvDbDictionary> entries(extension, TvDb::kForWrite);
        TvDbObjectId id;
        EXPECT_EQ(entries->setAt(u"TEST_XREC_LAYOUTTHUMBNAIL", record, id), TvStatus::Ok);
        record->close();
        return *this;
    }
    DrawingMaker& savedBy(const TvString& name)
    {
        TvDbDatabaseSummaryInfo* info = nullptr;
        EXPECT_EQ(tvdbGetSummaryInfo(m_drawing, info), TvStatus::Ok);
        const std::unique_ptr<TvDbDatabaseSummaryInfo> owned(info);
        info->values().lastSavedBy = name.view();
        EXPECT_EQ(tvdbPutSummaryInfo(info), TvStatus::Ok);
        return *this;
    }
    /// A named view; on a layout's paper, or with an empty name of one in the model.
    TvDbObjectId view(const TvString& name, const TvString& layoutName,
                      const TvString& category = {})
    {
        const TvDbObjectPointer<TvDbViewTable> views(
            m_drawing->symbolTableId(TvDb::SymbolTable::View), TvDb::kForWrite);
        auto* view = new TvDbViewTableRecord;
        view->setName(name);
        TvDbObjectId id;
        EXPECT_EQ(views->add(id, view), TvStatus::Ok);
        view->setIsPaperspaceView(!layoutName.isEmpty());
        if (!layoutName.isEmpty()) {
            EXPECT_EQ(view->setLayout(layout(layoutName)), TvStatus::Ok);
        }
        if (!category.isEmpty()) {
            EXPECT_EQ(view->setCategoryName(category), TvStatus::Ok);
        }
        view->close();
        return id;
    }
    /// Damages it: there is no list of its layouts any more.
    DrawingMaker& dropLayouts()
    {
        const TvDbObjectPointer<TvDbDictionary> named(m_drawing->namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        EXPECT_EQ(named->remove(u"ACAD_LAYOUT"), TvStatus::Ok);
        return *this;
    }
    void saveAs(const TvString& path)
    {
        EXPECT_EQ(m_drawing->saveAs(path), TvStatus::Ok)
            << static_cast<int>(m_drawing->lastFailure().reason());
    }

private:
    std::unique_ptr<TvDbDatabase> m_own;
    TvDbDatabase* m_drawing; // ours, or somebody else's
};
