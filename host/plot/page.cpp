#include "plot/page.h"

#include <cmath>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

#include "plot/reasons.h"

namespace plot {

namespace {

constexpr double kA4WidthMm = 297, kA4HeightMm = 210, kA4MarginMm = 10;

/// For layouts that were never set up.
PageSetup defaultSetup()
{
    PageSetup setup;
    setup.paperWidthMm = kA4WidthMm;
    setup.paperHeightMm = kA4HeightMm;
    setup.marginsMm = {kA4MarginMm, kA4MarginMm, kA4MarginMm, kA4MarginMm};
    setup.area = TvDbPlotSettings::kExtents;
    setup.fits = true;
    setup.isCentered = true;
    return setup;
}

/// From the drawing's world into the list's plane.
TvGePoint2d inList(const gs::DisplayList& list, double x, double y)
{
    return gs::FlatMap::seenFromAbove(list.fromWorld()) * TvGePoint2d(x, y);
}

gs::Box limitsOf(TvDbDatabase& database, const TvDbLayout& layout, const gs::DisplayList& list)
{
    db::Point low, high;
    if (layout.isModelLayout()) {
        low = database.headerRecord().point("LIMMIN");
        high = database.headerRecord().point("LIMMAX");
    } else {
        layout.getLimits(low, high);
    }
    gs::Box box;
    for (const double x : {low.x, high.x})
        for (const double y : {low.y, high.y})
            box.add(inList(list, x, y));
    return box;
}

/// The named view that a page is made of; null when there is no such view.
TvDbObjectId plottedView(TvDbDatabase& database, const PageSetup& setup)
{
    TvDbObjectId id;
    const TvDbObjectPointer<TvDbViewTable> views(database.symbolTableId(TvDb::SymbolTable::View),
                                                 TvDb::kForNotify);
    if (setup.area != TvDbPlotSettings::kView || !views ||
        views->getIdAt(setup.viewName, id) != TvStatus::Ok)
        return {};
    return id;
}

/// The part of the paper that a named view of it shows; nullopt when it shows nothing.
std::optional<gs::Box> paperViewBox(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbViewTableRecord> view(id, TvDb::kForNotify);
    if (!view || !(view->width() > 0) || !(view->height() > 0))
        return std::nullopt;
    const db::Point target = view->target(), center = view->centerPoint();
    const double x = target.x + center.x, y = target.y + center.y;
    return gs::Box{x - view->width() / 2, y - view->height() / 2, x + view->width() / 2,
                   y + view->height() / 2};
}

/// What is to be plotted, in the list's plane; nullopt: the sheet as it lies.
std::optional<gs::Box> areaOf(TvDbDatabase& database, const TvDbLayout& layout,
                              const PageSetup& setup, const gs::DisplayList& list)
{
    std::optional<gs::Box> area;
    switch (setup.area) {
    case TvDbPlotSettings::kDisplay: area = list.savedWindow(); break;
    case TvDbPlotSettings::kLimits: area = limitsOf(database, layout, list); break;
    case TvDbPlotSettings::kView:
        if (const TvDbObjectId view = plottedView(database, setup); view)
            area = list.isPaper() ? paperViewBox(view) : list.savedWindow();
        break;
    case TvDbPlotSettings::kWindow: area = setup.window; break;
    case TvDbPlotSettings::kExtents: break;
    case TvDbPlotSettings::kLayout:
        if (list.isPaper())
            return std::nullopt;
        break;
    }
    const auto isUsable = [](const gs::Box& box) {
        return std::isfinite(box.width() + box.height()) && (box.width() > 0 || box.height() > 0);
    };
    if (!area || !isUsable(*area))
        area = list.extents();
    return isUsable(*area) ? area : gs::Box{0, 0, 1, 1};
}

double fittingScale(const gs::Box& area, const gs::Box& room)
{
    const double across = area.width() > 0 ? room.width() / area.width() : HUGE_VAL;
    const double down = area.height() > 0 ? room.height() / area.height() : HUGE_VAL;
    return std::min(across, down);
}

void place(Page& page, const PageSetup& setup, const std::optional<gs::Box>& area)
{
    const PageSetup::Margins margins = setup.uprightMargins();
    const gs::Box printable{margins.left, margins.bottom, page.widthMm - margins.right,
                            page.heightMm - margins.top};
    double scale = setup.mmPerUnit();
    double x = printable.lowX + setup.offsetXMm, y = printable.lowY + setup.offsetYMm;
    // A file has no edge that cannot be printed; a printer keeps to its own.
    const gs::Box paper{0, 0, page.widthMm, page.heightMm};
    page.shownMm = paper;
    if (area) {
        if (setup.fits)
            scale = fittingScale(*area, printable);
        if (setup.isCentered) {
            x = printable.center().x - area->width() * scale / 2;
            y = printable.center().y - area->height() * scale / 2;
        }
        const double around = area->width() * scale + area->height() * scale;
        const gs::Box there{x, y, x + area->width() * scale, y + area->height() * scale};
        // Room for the widths of lines that run along the edge.
        page.shownMm = paper.common(there.grown(std::min(around / 100, 1.0)));
        x -= area->lowX * scale;
        y -= area->lowY * scale;
    }
    page.mmPerUnit = scale;
    page.toPaper = {scale, 0, x, 0, scale, y};
}

void choosePens(Page& page, const PageSetup& setup, const PageOptions& options,
                const TvString& drawing)
{
    page.plotsWeights = setup.plotsWeights;
    if (setup.scalesWeights && page.list.isPaper() && !setup.fits)
        page.weightFactor = std::clamp(setup.scale, 1e-3, 1e3);
    if (options.isMonochrome)
        page.styles = StyleTable::monochrome();
    else if (setup.usesStyles && !setup.styleTable.isEmpty())
        page.styles = StyleTable::find(setup.styleTable, drawing).value_or(StyleTable());
}

TvDbObjectId modelLayout(TvDbDatabase& database)
{
    for (const TvDbObjectId id : db::layoutsInTabOrder(database))
        if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
            layout && layout->getBlockTableRecordId() == database.modelSpaceId())
            return id;
    return {};
}

} // namespace

TvDbObjectId findLayout(TvDbDatabase& database, std::uint64_t handle, const TvString& name)
{
    if (const TvDbObjectId id = database.find(handle); handle != 0 && id)
        if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify); layout)
            return id;
    if (name.isEmpty())
        return handle == 0 ? modelLayout(database) : TvDbObjectId();
    for (const TvDbObjectId id : db::layoutsInTabOrder(database))
        if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
            layout && layout->getLayoutName().compareNoCase(name) == 0)
            return id;
    return {};
}

base::Result<Page> makePage(TvDbDatabase& database, TvDbObjectId id, const PageOptions& options)
{
    const TvDbObjectPointer<TvDbLayout> layout(id ? id : modelLayout(database), TvDb::kForNotify);
    if (!layout || layout->database() != &database)
        return base::Status(base::Failure::NotFound, kLayoutMissing,
                            {TvString(), database.getFilename()});
    PageSetup setup = options.setup ? *options.setup : pageSetupOf(*layout);
    if (!setup.hasPaper())
        setup = defaultSetup();
    gs::ListLimits limits;
    limits.stop = options.stop;
    Page page;
    const TvDbObjectId view = plottedView(database, setup);
    page.list = view && layout->isModelLayout()
                    ? gs::DisplayList::ofView(view, limits, options.attached) // its own direction
                    : gs::DisplayList::ofLayout(layout->objectId(), limits, options.attached);
    page.widthMm = setup.uprightWidthMm();
    page.heightMm = setup.uprightHeightMm();
    place(page, setup, areaOf(database, *layout, setup, page.list));
    choosePens(page, setup, options, database.getFilename());
    return page;
}

} // namespace plot
