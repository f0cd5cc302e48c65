#include "cli/drawing_facts.h"

#include <nlohmann/json.hpp>

#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>

namespace cli {

namespace {

bool isThere(const db::Preview& picture)
{
    return picture.kind != db::Preview::Kind::None;
}

std::vector<TvDbObjectId> idsOf(TvDbDatabase& database, TvDb::SymbolTable table)
{
    const TvDbObjectPointer<TvDbSymbolTable> opened(database.symbolTableId(table));
    return opened ? opened->recordIds() : std::vector<TvDbObjectId>();
}

ViewportFacts viewportOf(TvDbObjectId id)
{
    ViewportFacts facts;
    facts.handle = handleText(id);
    const TvDbObjectPointer<TvDbObject> viewport(id);
    if (!viewport)
        return facts;
    const db::Point center = viewport->fields().point("center");
    const db::Point viewCenter = viewport->fields().point("view_center");
    facts.centerX = center.x;
    facts.centerY = center.y;
    facts.width = viewport->fields().real("width");
    facts.height = viewport->fields().real("height");
    facts.viewCenterX = viewCenter.x;
    facts.viewCenterY = viewCenter.y;
    facts.viewHeight = viewport->fields().real("view_height");
    facts.status = viewport->fields().integer("status");
    return facts;
}

void takeContent(LayoutFacts& facts, const TvDbLayout& layout)
{
    const TvDbObjectId id = layout.getBlockTableRecordId();
    facts.block = handleText(id);
    const std::vector<TvDbObjectId> viewports = layout.getViewportArray();
    for (const TvDbObjectId viewport : viewports)
        facts.viewports.push_back(viewportOf(viewport));
    const TvDbObjectPointer<TvDbBlockTableRecord> block(id);
    if (!block)
        return;
    facts.blockName = block->getName();
    const std::vector<TvDbObjectId> entities = block->entityIds();
    facts.entities = static_cast<int>(entities.size());
    const bool isSheetOnly =
        entities.size() == 1 && !viewports.empty() && entities.front() == viewports.front();
    facts.isEmpty = entities.empty() || isSheetOnly;
}

LayoutFacts factsOf(const TvDbLayout& layout)
{
    LayoutFacts facts;
    facts.handle = handleText(layout.objectId());
    facts.name = layout.getLayoutName();
    facts.tabOrder = layout.getTabOrder();
    facts.isModel = layout.isModelLayout();
    takeContent(facts, layout);
    facts.paperName = layout.getCanonicalMediaName();
    layout.getPlotPaperSize(facts.paperWidthMm, facts.paperHeightMm);
    facts.paperUnits = layout.plotPaperUnits();
    facts.printer = layout.getPlotCfgName();
    facts.pageSetup = layout.getPlotSettingsName();
    facts.styleSheet = layout.getCurrentStyleSheet();
    db::Point low, high;
    layout.getLimits(low, high);
    for (const auto& [at, value] : {std::pair(0, low.x), {1, low.y}, {2, high.x}, {3, high.y}})
        facts.limits[at] = value;
    facts.hasThumbnail = isThere(layout.getThumbnail());
    return facts;
}

ViewFacts factsOf(const TvDbViewTableRecord& view)
{
    ViewFacts facts;
    facts.handle = handleText(view.objectId());
    facts.name = view.getName();
    facts.category = view.getCategoryName();
    facts.layout = handleText(view.getLayout());
    facts.isPaperspace = view.isPaperspaceView();
    facts.width = view.width();
    facts.height = view.height();
    facts.centerX = view.centerPoint().x;
    facts.centerY = view.centerPoint().y;
    facts.hasThumbnail = isThere(view.getThumbnail());
    return facts;
}

BlockFacts factsOf(const TvDbBlockTableRecord& block)
{
    BlockFacts facts;
    facts.handle = handleText(block.objectId());
    facts.name = block.getName();
    facts.description = block.comments();
    facts.entities = static_cast<int>(block.entityIds().size());
    facts.references = static_cast<int>(block.getBlockReferenceIds().size());
    facts.layout = handleText(block.getLayoutId());
    facts.isAnonymous = block.isAnonymous();
    facts.hasAttributes = block.hasAttributeDefinitions();
    facts.isXref = block.isFromExternalReference();
    facts.isOverlay = block.isFromOverlayReference();
    facts.xrefPath = block.pathName();
    facts.hasThumbnail = isThere(block.previewIcon());
    return facts;
}

template <class Record>
auto factsOfAll(const std::vector<TvDbObjectId>& ids)
{
    std::vector<decltype(factsOf(std::declval<const Record&>()))> all;
    for (const TvDbObjectId id : ids)
        if (const TvDbObjectPointer<Record> record(id); record)
            all.push_back(factsOf(*record));
    return all;
}

Json textOrNull(const TvString& text)
{
    return text.isEmpty() ? Json() : Json(jsonText(text));
}

std::string_view unitsName(int units)
{
    switch (units) {
    case TvDbPlotSettings::kInches: return "inches";
    case TvDbPlotSettings::kMillimeters: return "millimetres";
    default: return "pixels";
    }
}

Json jsonOf(const ViewportFacts& viewport)
{
    return {{"handle", jsonText(viewport.handle)},
            {"center", {viewport.centerX, viewport.centerY}},
            {"width", viewport.width},
            {"height", viewport.height},
            {"viewCenter", {viewport.viewCenterX, viewport.viewCenterY}},
            {"viewHeight", viewport.viewHeight},
            {"status", viewport.status}};
}

} // namespace

TvString handleText(TvDbObjectId id)
{
    return id.isNull() ? TvString() : base::hexText(id.handle().value());
}

std::vector<LayoutFacts> layoutsOf(TvDbDatabase& database)
{
    return factsOfAll<TvDbLayout>(db::layoutsInTabOrder(database));
}

std::vector<ViewFacts> viewsOf(TvDbDatabase& database)
{
    return factsOfAll<TvDbViewTableRecord>(idsOf(database, TvDb::SymbolTable::View));
}

std::vector<BlockFacts> blocksOf(TvDbDatabase& database)
{
    return factsOfAll<TvDbBlockTableRecord>(idsOf(database, TvDb::SymbolTable::Block));
}

Json jsonOf(const LayoutFacts& layout)
{
    Json viewports = Json::array();
    for (const ViewportFacts& viewport : layout.viewports)
        viewports.push_back(jsonOf(viewport));
    return {{"handle", jsonText(layout.handle)},
            {"name", jsonText(layout.name)},
            {"tabOrder", layout.tabOrder},
            {"model", layout.isModel},
            {"block", jsonText(layout.block)},
            {"blockName", jsonText(layout.blockName)},
            {"entities", layout.entities},
            {"empty", layout.isEmpty},
            {"viewports", std::move(viewports)},
            {"paper",
             {{"name", jsonText(layout.paperName)},
              {"widthMm", layout.paperWidthMm},
              {"heightMm", layout.paperHeightMm},
              {"units", unitsName(layout.paperUnits)}}},
            {"limits", Json(layout.limits)},
            {"printer", jsonText(layout.printer)},
            {"pageSetup", jsonText(layout.pageSetup)},
            {"styleSheet", jsonText(layout.styleSheet)},
            {"thumbnail", layout.hasThumbnail}};
}

Json jsonOf(const ViewFacts& view)
{
    return {{"handle", jsonText(view.handle)},
            {"name", jsonText(view.name)},
            {"category", jsonText(view.category)},
            {"layout", textOrNull(view.layout)},
            {"paperspace", view.isPaperspace},
            {"width", view.width},
            {"height", view.height},
            {"center", {view.centerX, view.centerY}},
            {"thumbnail", view.hasThumbnail}};
}

Json jsonOf(const BlockFacts& block)
{
    return {{"handle", jsonText(block.handle)},
            {"name", jsonText(block.name)},
            {"description", jsonText(block.description)},
            {"entities", block.entities},
            {"references", block.references},
            {"layout", textOrNull(block.layout)},
            {"anonymous", block.isAnonymous},
            {"attributes", block.hasAttributes},
            {"xref", block.isXref || block.isOverlay},
            {"overlay", block.isOverlay},
            {"path", textOrNull(block.xrefPath)},
            {"thumbnail", block.hasThumbnail}};
}

namespace {

template <class Facts>
Json listOf(const std::vector<Facts>& all)
{
    Json list = Json::array();
    for (const Facts& each : all)
        list.push_back(jsonOf(each));
    return list;
}

} // namespace

Json jsonOf(const std::vector<LayoutFacts>& layouts)
{
    return listOf(layouts);
}

Json jsonOf(const std::vector<ViewFacts>& views)
{
    return listOf(views);
}

Json jsonOf(const std::vector<BlockFacts>& blocks)
{
    return listOf(blocks);
}

Json recordsOf(TvDbDatabase& database, TvDb::SymbolTable table)
{
    Json list = Json::array();
    for (const TvDbObjectId id : idsOf(database, table))
        if (const TvDbObjectPointer<TvDbSymbolTableRecord> record(id); record)
            list.push_back(
                {{"name", jsonText(record->getName())}, {"handle", jsonText(handleText(id))}});
    return list;
}

} // namespace cli
