#include "app/view_transform.h"

#include <algorithm>
#include <cmath>

namespace app {

namespace {

constexpr double kSmallest = 1e-9, kLargest = 1e15; // heights of what is seen, drawing units
constexpr double kMargin = 1.05;                    // around what is fitted

bool isFinite(TvGePoint2d point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

} // namespace

ViewTransform::ViewTransform(TvGePoint2d center, double planHeight, double width, double height)
    : m_center(isFinite(center) ? center : TvGePoint2d()), m_width(std::max(width, 1.0)),
      m_height(std::max(height, 1.0))
{
    setPlanHeight(planHeight);
}

void ViewTransform::setPlanHeight(double planHeight)
{
    if (!std::isfinite(planHeight))
        return;
    // Below this two neighbouring pixels have the same coordinates.
    const double reach = std::max(std::abs(m_center.x), std::abs(m_center.y));
    m_planHeight = std::clamp(planHeight, std::max(kSmallest, reach * 1e-12), kLargest);
}

ScreenPoint ViewTransform::toScreen(TvGePoint2d plan) const
{
    return {m_width / 2 + (plan.x - m_center.x) * scale(),
            m_height / 2 - (plan.y - m_center.y) * scale()};
}

TvGePoint2d ViewTransform::toPlan(ScreenPoint screen) const
{
    return {m_center.x + (screen.x - m_width / 2) / scale(),
            m_center.y - (screen.y - m_height / 2) / scale()};
}

void ViewTransform::zoomAt(ScreenPoint at, double factor)
{
    if (!std::isfinite(factor) || factor <= 0)
        return;
    const TvGePoint2d held = toPlan(at);
    setPlanHeight(m_planHeight / factor);
    const TvGePoint2d moved = toPlan(at);
    m_center = {m_center.x + held.x - moved.x, m_center.y + held.y - moved.y};
}

void ViewTransform::panBy(double dx, double dy)
{
    const TvGePoint2d center{m_center.x - dx / scale(), m_center.y + dy / scale()};
    if (isFinite(center))
        m_center = center;
}

void ViewTransform::zoomWindow(ScreenPoint from, ScreenPoint to)
{
    constexpr double kLeast = 2;
    if (std::abs(to.x - from.x) < kLeast || std::abs(to.y - from.y) < kLeast)
        return;
    const double grow =
        std::max(std::abs(to.x - from.x) / m_width, std::abs(to.y - from.y) / m_height);
    m_center = toPlan({(from.x + to.x) / 2, (from.y + to.y) / 2});
    setPlanHeight(m_planHeight * grow);
}

void ViewTransform::fit(TvGePoint2d low, TvGePoint2d high)
{
    if (!isFinite(low) || !isFinite(high) || high.x < low.x || high.y < low.y)
        return;
    const double wide = (high.x - low.x) * m_height / m_width;
    const double needed = std::max(high.y - low.y, wide);
    m_center = {low.x / 2 + high.x / 2, low.y / 2 + high.y / 2};
    setPlanHeight(needed > 0 ? needed * kMargin : 1);
}

void ViewTransform::resize(double width, double height)
{
    const double former = scale();
    m_width = std::max(width, 1.0);
    m_height = std::max(height, 1.0);
    setPlanHeight(m_height / former);
}

PictureShift shiftOf(const ViewTransform& made, const ViewTransform& now)
{
    const ScreenPoint origin = now.toScreen(made.toPlan({0, 0}));
    return {now.scale() / made.scale(), origin.x, origin.y};
}

double wheelFactor(int eighths)
{
    constexpr double kEighthsOfAStep = 120;
    return std::pow(kWheelStep, eighths / kEighthsOfAStep);
}

} // namespace app
