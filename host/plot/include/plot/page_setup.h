#pragma once

#include <vector>

#include <base/status.h>
#include <db/tv_db_layout.h>
#include <gs/box.h>

namespace plot {

/// How something is put on paper: the values of a layout's plot settings, or of a page setup.
struct PageSetup {
    /// The distances of the printable area from the edges of the paper.
    struct Margins {
        double left = 0, bottom = 0, right = 0, top = 0;
    };

    TvString name; ///< of the page setup; empty for none
    TvString printer;
    TvString paperName;
    /// Paper and margins as the paper is fed, millimetres. 0 by 0: no paper was chosen.
    double paperWidthMm = 0, paperHeightMm = 0;
    Margins marginsMm;
    bool isInches = false; ///< the scale is inches on paper by drawing units
    TvDbPlotSettings::PlotRotation rotation = TvDbPlotSettings::k0degrees;
    TvDbPlotSettings::PlotType area = TvDbPlotSettings::kLayout;
    TvString viewName; ///< for area kView
    gs::Box window;    ///< for area kWindow, drawing units
    bool fits = false; ///< as large as the paper holds; the scale is not looked at then
    double scale = 1;  ///< paper units (mm or inches) by drawing units
    bool isCentered = false;
    double offsetXMm = 0, offsetYMm = 0; ///< from the corner of the printable area
    bool plotsWeights = true;            ///< else every line is thin
    bool scalesWeights = false;
    TvString styleTable; ///< file name; empty for none
    bool usesStyles = false;
    bool isForModel = false;

    /// Whether a paper was chosen.
    bool hasPaper() const { return paperWidthMm > 0 && paperHeightMm > 0; }
    /// The same paper, as the drawing stands upright on it.
    double uprightWidthMm() const { return isTurned() ? paperHeightMm : paperWidthMm; }
    double uprightHeightMm() const { return isTurned() ? paperWidthMm : paperHeightMm; }
    Margins uprightMargins() const;
    /// Millimetres on paper for one unit of the drawing; not looked at when it fits.
    double mmPerUnit() const;

private:
    bool isTurned() const
    {
        return rotation == TvDbPlotSettings::k90degrees ||
               rotation == TvDbPlotSettings::k270degrees;
    }
};

/// What the settings say. Numbers that make no sense (paper above 100 m, scales of 0) are replaced
/// by those of a new layout.
PageSetup pageSetupOf(const TvDbPlotSettings& settings);

/// The page setups of a drawing, in the order of their dictionary.
std::vector<PageSetup> pageSetupsOf(TvDbDatabase& database);
/// The one of that name, in any case; nullopt when there is none.
std::optional<PageSetup> findPageSetup(TvDbDatabase& database, const TvString& name);
/// The same from a drawing file. NotFound when it has none of that name; else fails as reading the
/// drawing does.
base::Result<PageSetup> readPageSetup(const TvString& drawing, const TvString& name);

} // namespace plot
