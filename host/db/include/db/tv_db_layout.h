#pragma once

#include <db/tv_db_database.h>

/// How a layout is put on paper: page setup, printer, paper, scale.
class TvDbPlotSettings : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbPlotSettings)

    enum PlotPaperUnits { kInches = 0, kMillimeters = 1, kPixels = 2 };
    enum PlotRotation { k0degrees, k90degrees, k180degrees, k270degrees };
    enum PlotType { kDisplay, kExtents, kLimits, kView, kWindow, kLayout };

    TvDbPlotSettings() : TvDbObject("PLOTSETTINGS") {}

    TvString getPlotSettingsName() const; ///< the page setup's name; empty for none
    TvString getPlotCfgName() const;      ///< the printer's
    TvString getCanonicalMediaName() const;
    TvString getCurrentStyleSheet() const;
    TvString getPlotViewName() const;
    /// Millimetres, of the paper as it lies, whatever the units.
    /// @return NotApplicable when no paper was ever chosen (0 by 0).
    TvStatusCode getPlotPaperSize(double& width, double& height) const;
    TvStatusCode getPlotPaperMargins(double& left, double& bottom, double& right,
                                     double& top) const;    ///< millimetres
    TvStatusCode getPlotOrigin(double& x, double& y) const; ///< millimetres
    TvStatusCode getPlotWindowArea(double& xMin, double& yMin, double& xMax, double& yMax) const;
    PlotPaperUnits plotPaperUnits() const;
    PlotRotation plotRotation() const;
    PlotType plotType() const;
    /// Paper units by drawing units.
    double getCustomPrintScale(double& numerator, double& denominator) const;
    bool isModelType() const;
    /// Takes everything but name and place from @p other.
    TvStatusCode copyFrom(const TvDbPlotSettings& other);

protected:
    explicit TvDbPlotSettings(const char* className) : TvDbObject(className) {}
};

/// A layout: a sheet of paper with viewports, or model space.
class TvDbLayout : public TvDbPlotSettings
{
    TVRX_DECLARE_MEMBERS(TvDbLayout)

    TvDbLayout() : TvDbPlotSettings("LAYOUT") {}

    TvString getLayoutName() const;
    TvStatusCode getLayoutName(TvString& out) const;
    /// Also in the dictionary of layouts.
    /// @return NameReserved for the model layout's name ("Model" in any case), and when it is the
    ///         model layout itself; DuplicateName when another layout has it; InvalidName for an
    ///         empty one or one with characters that no layout may have; NotOpenForWrite.
    virtual TvStatusCode setLayoutName(const TvString& name);
    TvDbObjectId getBlockTableRecordId() const;
    virtual TvStatusCode setBlockTableRecordId(TvDbObjectId block);
    /// The model layout, by its name.
    bool isModelLayout() const;
    int getTabOrder() const;
    virtual TvStatusCode setTabOrder(int order);
    /// The viewports of its block, the overall one first, as the layout lists them.
    std::vector<TvDbObjectId> getViewportArray() const;
    TvStatusCode getLimits(db::Point& low, db::Point& high) const;
    TvStatusCode getExtents(db::Point& low, db::Point& high) const;
    /// The sheet of paper in the layout's own units, as it is shown behind the drawing: its
    /// corners, the printable area's lower left corner being the origin.
    TvStatusCode getPaperArea(db::Point& low, db::Point& high) const;
    /// The picture that was kept for it; none when there is none.
    db::Preview getThumbnail() const;

    /// Erases its block, too. The model layout and the last paper layout stay (StillInUse).
    TvStatusCode erase(bool erasing = true) override;
};

namespace db {

/// The name of the model layout, in any case.
bool isModelLayoutName(const TvString& name);
/// Whether a paper layout may have that name: as isSymbolName(), and not "Model".
bool isLayoutName(const TvString& name);

/// Makes a new, empty paper layout with its block, at the end.
/// @return DuplicateName, InvalidName, NameReserved.
TvStatusCode addLayout(TvDbDatabase& database, const TvString& name, TvDbObjectId& out);

/// Makes a paper layout like @p source: its page setup and a copy of all that is on it, viewports
/// and what things own included. Its tab is the last one. What only shows the layout (its picture)
/// stays behind.
/// @return DuplicateName, InvalidName, NameReserved; NotApplicable for the model layout;
///         NotThatObject for what is no layout; NotUnderstood when something on it is kept as
///         bytes, and so cannot be copied: lastFailure() of the drawing names it. Then nothing was
///         changed.
TvStatusCode copyLayout(TvDbObjectId source, const TvString& name, TvDbObjectId& out);

/// Makes a layout the @p place th tab of the sheets, counted from 1, and the others keep their
/// order; a place behind the last one is the last. All tabs are numbered without gaps then.
/// @return NotApplicable for the model layout, which is always the first tab; OutOfRange below 1.
TvStatusCode placeLayout(TvDbObjectId layout, int place);

/// The viewport by which a sheet as a whole is looked at; made when the sheet has none, as one that
/// was never shown. Null for the model layout, and what is no layout.
TvDbObjectId addOverallViewport(TvDbObjectId layout);

/// All layouts by tab order, the model layout first.
std::vector<TvDbObjectId> layoutsInTabOrder(TvDbDatabase& database);

} // namespace db
