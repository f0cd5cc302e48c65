#include <db/tv_db_layout.h>

#include "block_names.h"
#include "layout_parts.h"
#include "quiet_edit.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

namespace db {

namespace {

// "status" of the viewport that shows the sheet itself.
constexpr std::int64_t kOverallStatus = 0xC8020;
constexpr double kAroundSheet = 1.05; // it shows a little more than the sheet

/// The paper that a new layout lies on, by what the drawing measures in.
struct Paper {
    const TvChar* name;
    TvDbPlotSettings::PlotPaperUnits units;
    double widthMm, heightMm;
    Point limits; ///< in layout units
};
constexpr Paper kMetric = {
    u"ISO_A4_(297.00_x_210.00_MM)", TvDbPlotSettings::kMillimeters, 297, 210, {297, 210, 0}};
constexpr Paper kImperial = {
    u"Letter_(11.00_x_8.50_Inches)", TvDbPlotSettings::kInches, 279.4, 215.9, {11, 8.5, 0}};

const Paper& paperFor(const TvDbDatabase& database)
{
    // INSUNITS: 1 inches, 2 feet, 3 miles, 8 to 10 inches' parts and yards; 0 none.
    const std::int64_t units = database.insunits();
    return (units >= 4 && units <= 7) || (units >= 11 && units <= 17) ? kMetric : kImperial;
}

TvStatusCode addSpace(TvDbDatabase& database, TvDbObjectId& out)
{
    TvDbObjectPointer<TvDbBlockTable> blocks(database.symbolTableId(TvDb::SymbolTable::Block),
                                             TvDb::kForWrite);
    if (!blocks)
        return blocks.openStatus();
    auto block = std::make_unique<TvDbBlockTableRecord>();
    // The first number that is free, as the record is not in the table yet.
    block->setName(freeNumberedName(*blocks, u"*Paper_Space"));
    if (const TvStatusCode status = blocks->add(out, block.get()))
        return status;
    block.release()->close();
    return TvStatus::Ok;
}

std::unique_ptr<TvDbLayout> makeLayout(const Paper& paper, const TvString& name, int tab)
{
    auto layout = std::make_unique<TvDbLayout>();
    RecordEditor fields = layout->edit();
    fields.setText("name", name.view());
    fields.setText("plotter_config", u"None");
    fields.setText("paper_size_name", paper.name);
    fields.setInteger("paper_units", paper.units);
    fields.setReal("paper_width", paper.widthMm);
    fields.setReal("paper_height", paper.heightMm);
    fields.setPoint("limmax", paper.limits);
    fields.setInteger("flags", 1); // linetypes at the scale of the paper
    fields.setInteger("tab_order", tab);
    return layout;
}

TvStatusCode addOverallViewport(TvDbObjectId block, const Point& low, const Point& high,
                                TvDbObjectId& out)
{
    TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
    if (!record)
        return record.openStatus();
    auto viewport = std::make_unique<TvDbViewport>();
    RecordEditor fields = viewport->edit();
    const Point center{(low.x + high.x) / 2, (low.y + high.y) / 2, 0};
    const double width = (high.x - low.x) * kAroundSheet;
    const double height = (high.y - low.y) * kAroundSheet;
    fields.setPoint("center", center);
    fields.setReal("width", width);
    fields.setReal("height", height);
    fields.setPoint("view_center", center);
    fields.setReal("view_height", height);
    fields.setInteger("status", kOverallStatus);
    viewport->setLayer(layerZero(*block.database()));
    if (const TvStatusCode status = record->appendTvDbEntity(out, viewport.get()))
        return status;
    viewport.release()->close();
    return TvStatus::Ok;
}

} // namespace

int nextTab(TvDbDatabase& database)
{
    int last = 0;
    for (const TvDbObjectId id : layoutsInTabOrder(database))
        if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify); layout)
            last = std::max(last, layout->getTabOrder());
    return last + 1;
}

TvStatusCode checkNewLayoutName(const TvDbDatabase& database, const TvString& name)
{
    if (isModelLayoutName(name))
        return TvStatus::NameReserved;
    if (!isLayoutName(name))
        return TvStatus::InvalidName;
    const TvDbObjectPointer<TvDbDictionary> layouts(database.layoutDictionaryId(),
                                                    TvDb::kForNotify);
    return layouts && layouts->has(name) ? TvStatus::DuplicateName : TvStatus::Ok;
}

TvStatusCode putLayout(TvDbDatabase& database, std::unique_ptr<TvDbLayout> layout,
                       TvDbObjectId& out)
{
    TvDbObjectPointer<TvDbDictionary> layouts(database.layoutDictionaryId(), TvDb::kForWrite);
    if (!layouts)
        return layouts.openStatus();
    TvDbObjectId block;
    if (const TvStatusCode status = addSpace(database, block))
        return status;
    if (const TvStatusCode status = layouts->setAt(layout->getLayoutName(), layout.get(), out))
        return status;
    layout->setBlockTableRecordId(block);
    layout.release()->close();
    if (QuietEdit edit(block); edit)
        edit->setHandle("layout", out.handle().value());
    return TvStatus::Ok;
}

TvStatusCode addLayout(TvDbDatabase& database, const TvString& name, TvDbObjectId& out)
{
    out.setNull();
    if (const TvStatusCode status = checkNewLayoutName(database, name))
        return status;
    const Paper& paper = paperFor(database);
    if (const TvStatusCode status =
            putLayout(database, makeLayout(paper, name, nextTab(database)), out))
        return status;
    TvDbObjectId block, overall;
    if (const TvDbObjectPointer<TvDbLayout> layout(out, TvDb::kForNotify); layout)
        block = layout->getBlockTableRecordId();
    return addOverallViewport(block, {}, paper.limits, overall);
}

TvDbObjectId addOverallViewport(TvDbObjectId layout)
{
    TvDbObjectId block, overall;
    Point low, high;
    {
        const TvDbObjectPointer<TvDbLayout> sheet(layout, TvDb::kForNotify);
        if (!sheet || sheet->isModelLayout())
            return {};
        if (const std::vector<TvDbObjectId> all = sheet->getViewportArray(); !all.empty())
            return all.front();
        block = sheet->getBlockTableRecordId();
        if (sheet->getPaperArea(low, high) != TvStatus::Ok)
            high = paperFor(*layout.database()).limits;
    }
    return addOverallViewport(block, low, high, overall) == TvStatus::Ok ? overall : TvDbObjectId();
}

} // namespace db
