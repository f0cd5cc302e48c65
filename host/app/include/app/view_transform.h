#pragma once

#include <ed/drawing_view.h>

namespace app {

/// A point or a distance of the window, in its own units (device-independent pixels), y down.
struct ScreenPoint {
    double x = 0, y = 0;
    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// How a window of some size shows a plane: the middle and the height of what is seen, in display
/// coordinates, and the size of the window.
///
/// A value. Scales stay within what numbers can tell apart: zooming stops there.
class ViewTransform
{
public:
    ViewTransform() = default;
    /// @param width, height  of the window; at least 1 is taken.
    ViewTransform(TvGePoint2d center, double planHeight, double width, double height);

    TvGePoint2d center() const { return m_center; }
    double planHeight() const { return m_planHeight; }
    double width() const { return m_width; }
    double height() const { return m_height; }
    /// Window units by drawing unit.
    double scale() const { return m_height / m_planHeight; }

    ScreenPoint toScreen(TvGePoint2d plan) const;
    TvGePoint2d toPlan(ScreenPoint screen) const;

    /// Closer by @p factor (further below 1), with what lies at @p at staying where it is.
    void zoomAt(ScreenPoint at, double factor);
    /// What is shown moves by that.
    void panBy(double dx, double dy);
    /// What lies between the two corners fills the window. Nothing for less than two units.
    void zoomWindow(ScreenPoint from, ScreenPoint to);
    /// The rectangle fills the window but for a margin. Nothing when it is not finite.
    void fit(TvGePoint2d low, TvGePoint2d high);
    /// The window has another size: the middle stays, and so does the scale.
    void resize(double width, double height);

    friend bool operator==(const ViewTransform&, const ViewTransform&) = default;

private:
    void setPlanHeight(double planHeight);
    TvGePoint2d m_center;
    double m_planHeight = 1;
    double m_width = 1, m_height = 1;
};

/// How a picture that was made for one transform lies in a window that has another: its pixels
/// (units of the window it was made for) times scale, plus the shift.
struct PictureShift {
    double scale = 1;
    double dx = 0, dy = 0;
};
PictureShift shiftOf(const ViewTransform& made, const ViewTransform& now);

/// How far an arrow key goes, as a part of the window.
constexpr double kArrowStep = 0.1;
/// One step of a wheel.
constexpr double kWheelStep = 1.2;
/// The factor of a wheel's turn; @p eighths as the toolkit counts: eighths of a degree.
double wheelFactor(int eighths);

} // namespace app
