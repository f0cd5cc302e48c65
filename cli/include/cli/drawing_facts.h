#pragma once

#include <db/drawing_inventory.h>
#include <db/tv_db_database.h>

#include <cli/console.h>

namespace cli {

struct ViewportFacts {
    TvString handle;
    double centerX = 0, centerY = 0, width = 0, height = 0; ///< on the paper
    double viewCenterX = 0, viewCenterY = 0, viewHeight = 0;
    std::int64_t status = 0; ///< bits
};

struct LayoutFacts {
    TvString handle, name;
    int tabOrder = 0;
    bool isModel = false;
    TvString block, blockName; ///< Handle and name of what holds its entities.
    int entities = 0;          ///< With all viewports.
    bool isEmpty = true;       ///< Nothing but the viewport that shows the sheet itself.
    std::vector<ViewportFacts> viewports;
    TvString paperName;
    double paperWidthMm = 0, paperHeightMm = 0; ///< 0: no paper was ever chosen.
    int paperUnits = 0;                         ///< TvDbPlotSettings::PlotPaperUnits
    TvString printer, pageSetup, styleSheet;
    double limits[4] = {}; ///< left, bottom, right, top, in paper units
    bool hasThumbnail = false;
};

struct ViewFacts {
    TvString handle, name, category;
    TvString layout; ///< Handle; empty where none is noted.
    bool isPaperspace = false;
    double width = 0, height = 0, centerX = 0, centerY = 0;
    bool hasThumbnail = false;
};

struct BlockFacts {
    TvString handle, name, description;
    int entities = 0, references = 0;
    TvString layout; ///< Handle of the layout that it is the content of, or empty.
    bool isAnonymous = false, hasAttributes = false;
    bool isXref = false, isOverlay = false;
    TvString xrefPath; ///< As stored.
    bool hasThumbnail = false;
};

/// Layouts by tab order, the model layout first.
std::vector<LayoutFacts> layoutsOf(TvDbDatabase& database);
std::vector<ViewFacts> viewsOf(TvDbDatabase& database);
/// All blocks in the order of their table, those of layouts too.
std::vector<BlockFacts> blocksOf(TvDbDatabase& database);

/// As docs/json.md has them.
Json jsonOf(const LayoutFacts& layout);
Json jsonOf(const ViewFacts& view);
Json jsonOf(const BlockFacts& block);
Json jsonOf(const std::vector<LayoutFacts>& layouts);
Json jsonOf(const std::vector<ViewFacts>& views);
Json jsonOf(const std::vector<BlockFacts>& blocks);
/// { "name", "handle" } of each record of a symbol table.
Json recordsOf(TvDbDatabase& database, TvDb::SymbolTable table);

/// One line for each layout.
void listLayouts(const std::vector<LayoutFacts>& layouts, Console& console,
                 const TvString& indent = {});
/// "2A".
TvString handleText(TvDbObjectId id);

} // namespace cli
