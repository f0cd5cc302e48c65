#pragma once

#include <db/tv_db_entity.h>

/// A window in a sheet of paper: it shows a part of model space, at a scale.
///
/// The first viewport of a layout is no window: it says how the sheet itself is looked at.
class TvDbViewport : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbViewport)

    TvDbViewport() : TvDbEntity("VIEWPORT") {}

    // The window, in paper units.
    TVDB_POINT(centerPoint, setCenterPoint, "center")
    TVDB_REAL(width, setWidth, "width")
    TVDB_REAL(height, setHeight, "height")
    // What it shows.
    TVDB_POINT2D(viewCenter, setViewCenter, "view_center") ///< in display coordinates
    TVDB_REAL(viewHeight, setViewHeight, "view_height")    ///< in model units
    TVDB_POINT(viewTarget, setViewTarget, "target")
    TVDB_VECTOR(viewDirection, setViewDirection, "direction")
    TVDB_REAL(twistAngle, setTwistAngle, "twist")
    TVDB_REAL(lensLength, setLensLength, "lens_length") ///< millimetres

    /// Paper units by model units; 0 when it shows nothing.
    double customScale() const;
    /// Changes what is seen, not the window. InvalidInput unless above 0.
    TvStatusCode setCustomScale(double scale);

    bool isOn() const;
    TvStatusCode setOn(bool on);
    bool isLocked() const;
    TvStatusCode setLocked(bool locked);
    bool isPerspective() const;
    /// Its number in the layout, the overall one being 1; 0 when it is in none.
    int number() const;
    /// It is the one that shows the sheet itself.
    bool isOverall() const { return number() == 1; }

    /// The layers that are not shown in this window.
    std::vector<TvDbObjectId> frozenLayers() const;
    bool isLayerFrozen(TvDbObjectId layer) const;
    TvStatusCode freezeLayers(const std::vector<TvDbObjectId>& layers);
    TvStatusCode thawLayers(const std::vector<TvDbObjectId>& layers);
    /// The entity that the window is cut out by; null for a rectangle.
    TvDbObjectId nonRectClipEntityId() const;

    /// The block reference that labels the view; null when there is none. Kept as an xrecord of the
    /// extension dictionary.
    TvDbObjectId getLabelBlock() const;
    /// @pre in a database. @param reference  null: none.
    TvStatusCode setLabelBlock(TvDbObjectId reference);

    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};
