#pragma once

#include <functional>
#include <optional>

#include <db/tv_db_object_id.h>
#include <ge/tv_db_extents.h>
#include <ge/tv_ge_matrix3d.h>

class TvDbDatabase;

namespace ed {

/// How something is looked at: a rectangle of the plane through the target, at right angles to the
/// direction of view.
struct View {
    TvGePoint2d center; ///< of the rectangle, in display coordinates
    double height = 1;  ///< of the rectangle, drawing units; above 0
    double aspect = 1;  ///< width by height; above 0
    double twist = 0;   ///< radians; the drawing is turned clockwise by it
    TvGeVector3d direction = TvGeVector3d::zAxis(); ///< from the target towards who looks
    TvGePoint3d target;
    double lensLengthMm = 50;

    double width() const { return height * aspect; }
    friend bool operator==(const View&, const View&) = default;
};

/// Whether its numbers can be shown and stored: finite, sizes above 0, a direction.
bool isUsable(const View& view);

/// From display coordinates (origin at the target, x to the right, y up, z towards who looks) to
/// those of the world. The inverse leads to the screen.
TvGeMatrix3d displayToWorld(const View& view);

/// The box around @p extents (world coordinates) in display coordinates of @p view.
TvDbExtents displayExtents(const View& view, const TvDbExtents& extents);

/// What commands need of the window that shows a drawing: the views and the extents.
///
/// What is looked at is told by an object: a layout (model space, or a sheet as a whole), or a
/// viewport of a sheet, whose view is the part of model space that it shows. A window derives from
/// StoredDrawingView, lets that keep the views in the drawing, and shows them.
class DrawingView
{
public:
    virtual ~DrawingView() = default;
    /// As it is now; nullopt for what is neither layout nor viewport.
    virtual std::optional<View> view(TvDbObjectId where) const = 0;
    /// Shows it, and keeps it in the drawing; for commands. (A window that zooms by the wheel
    /// shows its own view, and stores it in settle().) The aspect is the window's; that of @p view
    /// makes the height larger when what it holds would not fit otherwise.
    /// @return false, and nothing changed, for a view that is not usable, or what is neither layout
    ///         nor viewport, or is locked.
    virtual bool setView(TvDbObjectId where, const View& view) = 0;
    /// The box around all that is drawn there, in world coordinates (of paper, for a sheet); empty
    /// when there is nothing.
    virtual TvDbExtents extents(TvDbObjectId where) const = 0;
    /// Draws all of the drawing anew.
    virtual void regenerate(TvDbDatabase& database) = 0;
    /// The views in the drawing are others than before (undo): what was kept beside it goes.
    virtual void reload(TvDbDatabase& database) = 0;
    /// The drawing is about to be saved: views that were only shown are stored now.
    virtual void settle(TvDbDatabase& database) = 0;
};

/// Works on the drawing's own data; all there is without a window.
///
/// Model space: the record "*Active" of the drawing's viewports. A sheet: its overall viewport.
class StoredDrawingView : public DrawingView
{
public:
    std::optional<View> view(TvDbObjectId where) const override;
    bool setView(TvDbObjectId where, const View& view) override;
    /// By the extents' source; where it knows nothing, what the drawing itself says.
    TvDbExtents extents(TvDbObjectId where) const override;
    void regenerate(TvDbDatabase&) override {}
    void reload(TvDbDatabase&) override {}
    void settle(TvDbDatabase&) override {}
};

/// The window's; without one the drawing's own data.
DrawingView& drawingView();
/// Not owned. Null takes it away.
void setDrawingView(DrawingView* view);

/// Measures what is drawn in a layout or shown by a viewport, in world coordinates; empty when it
/// is nothing. Supplied by whoever can draw.
using ExtentsSource = std::function<TvDbExtents(TvDbObjectId where)>;
/// An empty function takes it away.
void setExtentsSource(ExtentsSource source);

/// What commands look at: the current layout of the drawing, or the viewport of the sheet that
/// works on model space now.
TvDbObjectId currentViewObject(TvDbDatabase& database);

} // namespace ed
