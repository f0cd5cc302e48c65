#include "plot/page_setup.h"

#include <cmath>

#include <db/tv_db_dictionary.h>

#include "plot/reasons.h"

namespace plot {

namespace {

constexpr double kMmPerInch = 25.4;
constexpr double kLargestPaperMm = 100'000;
constexpr double kSmallestScale = 1e-9, kLargestScale = 1e9;
// Of the record's flags.
enum : std::int64_t {
    kIsCentered = 0x4,
    kIsStandardScale = 0x10,
    kUsesStyles = 0x20,
    kScalesWeights = 0x40,
    kPlotsWeights = 0x80,
};

bool isPaper(double mm)
{
    return mm > 0 && mm <= kLargestPaperMm;
}

double soundMargin(double mm, double of)
{
    return mm > 0 && mm < of / 2 ? mm : 0;
}

double soundLength(double mm)
{
    return std::abs(mm) <= kLargestPaperMm ? mm : 0;
}

void readPaper(PageSetup& setup, const TvDbPlotSettings& settings)
{
    double width = 0, height = 0;
    settings.getPlotPaperSize(width, height);
    if (!isPaper(width) || !isPaper(height))
        return;
    setup.paperWidthMm = width;
    setup.paperHeightMm = height;
    PageSetup::Margins& m = setup.marginsMm;
    settings.getPlotPaperMargins(m.left, m.bottom, m.right, m.top);
    m = {soundMargin(m.left, width), soundMargin(m.bottom, height), soundMargin(m.right, width),
         soundMargin(m.top, height)};
}

void readScale(PageSetup& setup, const TvDbPlotSettings& settings)
{
    const std::int64_t flags = settings.fields().integer("plot_flags");
    setup.fits =
        (flags & kIsStandardScale) != 0 && settings.fields().integer("std_scale_type") == 0;
    double numerator = 1, denominator = 1;
    const double scale = settings.getCustomPrintScale(numerator, denominator);
    setup.scale = scale >= kSmallestScale && scale <= kLargestScale ? scale : 1;
}

} // namespace

PageSetup::Margins PageSetup::uprightMargins() const
{
    const Margins& m = marginsMm;
    switch (rotation) {
    case TvDbPlotSettings::k90degrees: return {m.top, m.left, m.bottom, m.right};
    case TvDbPlotSettings::k180degrees: return {m.right, m.top, m.left, m.bottom};
    case TvDbPlotSettings::k270degrees: return {m.bottom, m.right, m.top, m.left};
    default: return m;
    }
}

double PageSetup::mmPerUnit() const
{
    return scale * (isInches ? kMmPerInch : 1);
}

PageSetup pageSetupOf(const TvDbPlotSettings& settings)
{
    PageSetup setup;
    setup.name = settings.getPlotSettingsName();
    setup.printer = settings.getPlotCfgName();
    setup.paperName = settings.getCanonicalMediaName();
    readPaper(setup, settings);
    readScale(setup, settings);
    setup.isInches = settings.plotPaperUnits() == TvDbPlotSettings::kInches;
    setup.rotation = settings.plotRotation();
    setup.area = settings.plotType();
    setup.viewName = settings.getPlotViewName();
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    settings.getPlotWindowArea(x1, y1, x2, y2);
    if (std::isfinite(x1 + y1 + x2 + y2)) {
        setup.window.add({x1, y1});
        setup.window.add({x2, y2});
    }
    settings.getPlotOrigin(x1, y1);
    setup.offsetXMm = soundLength(x1);
    setup.offsetYMm = soundLength(y1);
    const std::int64_t flags = settings.fields().integer("plot_flags");
    setup.isCentered = (flags & kIsCentered) != 0;
    setup.plotsWeights = (flags & kPlotsWeights) != 0;
    setup.scalesWeights = (flags & kScalesWeights) != 0;
    setup.usesStyles = (flags & kUsesStyles) != 0;
    setup.styleTable = settings.getCurrentStyleSheet();
    setup.isForModel = settings.isModelType();
    return setup;
}

std::vector<PageSetup> pageSetupsOf(TvDbDatabase& database)
{
    std::vector<PageSetup> setups;
    const TvDbObjectPointer<TvDbDictionary> dictionary(database.plotSettingsDictionaryId(),
                                                       TvDb::kForNotify);
    if (!dictionary)
        return setups;
    for (const auto& entry : dictionary->entries()) {
        const TvDbObjectPointer<TvDbPlotSettings> settings(entry.second, TvDb::kForNotify);
        if (!settings)
            continue;
        setups.push_back(pageSetupOf(*settings));
        if (setups.back().name.isEmpty())
            setups.back().name = entry.first;
    }
    return setups;
}

std::optional<PageSetup> findPageSetup(TvDbDatabase& database, const TvString& name)
{
    for (PageSetup& setup : pageSetupsOf(database))
        if (setup.name.compareNoCase(name) == 0)
            return std::move(setup);
    return std::nullopt;
}

base::Result<PageSetup> readPageSetup(const TvString& drawing, const TvString& name)
{
    TvDbDatabase database(false, true);
    if (database.readDwgFile(drawing, TvDb::kReadAllShare) != TvStatus::Ok)
        return database.lastFailure();
    if (auto found = findPageSetup(database, name))
        return std::move(*found);
    return base::Status(base::Failure::NotFound, kSetupMissing, {name, drawing});
}

} // namespace plot
