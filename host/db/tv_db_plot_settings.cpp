#include <db/tv_db_layout.h>

#include "field_copy.h"

#include <db/tv_db_symbol_table.h>

TVRX_DEFINE_MEMBERS(TvDbPlotSettings, TvDbObject)

namespace {

// "plot_flags"
constexpr std::int64_t kModelType = 0x400, kStandardScale = 0x10;

/// Fields that are not simply taken over.
bool isLeftOut(std::string_view field)
{
    return db::isCommonField(field) || field == "page_setup_name" || field == "plot_flags" ||
           field == "plot_view" || field == "plot_view_ref" || field == "shade_visualstyle";
}

/// The part of it that is a plot setup.
bool isOfPlotSettings(std::string_view field)
{
    return db::classNamed("PLOTSETTINGS")->layout().find(db::fieldId(field)) != nullptr;
}

TvDbObjectId viewNamed(const TvDbDatabase* database, const TvString& name)
{
    TvDbObjectId id;
    if (!database || name.isEmpty())
        return id;
    const TvDbObjectPointer<TvDbViewTable> views(database->symbolTableId(TvDb::SymbolTable::View),
                                                 TvDb::kForNotify);
    if (views)
        views->getIdAt(name, id);
    return id;
}

} // namespace

TvString TvDbPlotSettings::getPlotSettingsName() const
{
    return TvString(fields().text("page_setup_name"));
}

TvString TvDbPlotSettings::getPlotCfgName() const
{
    return TvString(fields().text("plotter_config"));
}

TvString TvDbPlotSettings::getCanonicalMediaName() const
{
    return TvString(fields().text("paper_size_name"));
}

TvString TvDbPlotSettings::getCurrentStyleSheet() const
{
    return TvString(fields().text("style_sheet"));
}

TvString TvDbPlotSettings::getPlotViewName() const
{
    if (const std::u16string_view name = fields().text("plot_view"); !name.empty())
        return TvString(name);
    const TvDbObjectPointer<TvDbViewTableRecord> view(idField("plot_view_ref"), TvDb::kForNotify);
    return view ? view->getName() : TvString();
}

TvStatusCode TvDbPlotSettings::getPlotPaperSize(double& width, double& height) const
{
    width = fields().real("paper_width");
    height = fields().real("paper_height");
    return width > 0 && height > 0 ? TvStatus::Ok : TvStatus::NotApplicable;
}

TvStatusCode TvDbPlotSettings::getPlotPaperMargins(double& left, double& bottom, double& right,
                                                   double& top) const
{
    left = fields().real("margin_left");
    bottom = fields().real("margin_bottom");
    right = fields().real("margin_right");
    top = fields().real("margin_top");
    return TvStatus::Ok;
}

TvStatusCode TvDbPlotSettings::getPlotOrigin(double& x, double& y) const
{
    const db::Point origin = fields().point("plot_origin");
    x = origin.x;
    y = origin.y;
    return TvStatus::Ok;
}

TvStatusCode TvDbPlotSettings::getPlotWindowArea(double& xMin, double& yMin, double& xMax,
                                                 double& yMax) const
{
    const db::Point low = fields().point("window_ll"), high = fields().point("window_ur");
    xMin = low.x;
    yMin = low.y;
    xMax = high.x;
    yMax = high.y;
    return TvStatus::Ok;
}

TvDbPlotSettings::PlotPaperUnits TvDbPlotSettings::plotPaperUnits() const
{
    switch (fields().integer("paper_units")) {
    case kInches: return kInches;
    case kPixels: return kPixels;
    default: return kMillimeters;
    }
}

TvDbPlotSettings::PlotRotation TvDbPlotSettings::plotRotation() const
{
    return static_cast<PlotRotation>(fields().integer("rotation") & 3);
}

TvDbPlotSettings::PlotType TvDbPlotSettings::plotType() const
{
    const std::int64_t type = fields().integer("plot_type");
    return type >= kDisplay && type <= kLayout ? static_cast<PlotType>(type) : kLayout;
}

double TvDbPlotSettings::getCustomPrintScale(double& numerator, double& denominator) const
{
    numerator = fields().real("scale_numerator");
    denominator = fields().real("scale_denominator");
    if (!(numerator > 0) || !(denominator > 0))
        numerator = denominator = 1;
    const double standard = fields().real("std_scale_factor");
    const bool isStandard = (fields().integer("plot_flags") & kStandardScale) != 0;
    if (isStandard && fields().integer("std_scale_type") != 0 && standard > 0)
        return standard;
    return numerator / denominator;
}

bool TvDbPlotSettings::isModelType() const
{
    return (fields().integer("plot_flags") & kModelType) != 0;
}

TvStatusCode TvDbPlotSettings::copyFrom(const TvDbPlotSettings& other)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor to = edit();
    if (!to)
        return TvStatus::NotUnderstood;
    const db::RecordView from = other.fields();
    db::copyFields(from, to, [](std::string_view field) {
        return isLeftOut(field) || !isOfPlotSettings(field);
    });
    const std::int64_t flags = from.integer("plot_flags") & ~kModelType;
    to.setInteger("plot_flags", flags | (isModelType() ? kModelType : 0));
    // A layout notes which page setup it took; a page setup keeps its own name.
    if (record().classDef()->name() == "LAYOUT")
        to.setText("page_setup_name", std::u16string(from.text("page_setup_name")));
    const TvString view = other.getPlotViewName();
    const bool viewsByName = record().version() == db::Version::Ac1015;
    to.setText("plot_view", viewsByName ? view.view() : std::u16string_view());
    to.setHandle("plot_view_ref", viewsByName ? 0 : viewNamed(database(), view).handle().value());
    to.setHandle("shade_visualstyle",
                 other.database() == database() ? from.handle("shade_visualstyle") : 0);
    return TvStatus::Ok;
}
