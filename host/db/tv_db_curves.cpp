#include <db/tv_db_curves.h>

#include <ge/arcs.h>
#include <ge/ocs.h>

TVRX_DEFINE_MEMBERS(TvDbCurve, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbLine, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbXline, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbRay, TvDbXline)
TVRX_DEFINE_MEMBERS(TvDbCircle, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbArc, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbEllipse, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbPoint, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbSpline, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbHelix, TvDbSpline)

namespace {

constexpr double kFullCircle = 6.283185307179586;

TvStatusCode statusOf(const TvDbExtents& box)
{
    return box.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}

/// What a thickness draws out of a flat object, along its normal.
TvDbExtents thickened(const TvDbExtents& flat, double thickness, const TvGeVector3d& normal)
{
    TvDbExtents box = flat;
    if (thickness != 0 && !flat.isEmpty())
        box.addExtents(flat.transformed(TvGeMatrix3d::translation(normal.normal() * thickness)));
    return box;
}

} // namespace

TvDbLine::TvDbLine(const TvGePoint3d& start, const TvGePoint3d& end) : TvDbLine()
{
    setEnds(start, end);
}

TvStatusCode TvDbLine::setEnds(const TvGePoint3d& start, const TvGePoint3d& end)
{
    if (const TvStatusCode status = setPoint("start", db::fromPoint(start)))
        return status;
    if (const TvStatusCode status = setPoint("end", db::fromPoint(end)))
        return status;
    // The form without z is there for lines that have none.
    return setInteger("z_zero", start.z == 0 && end.z == 0);
}

TvStatusCode TvDbLine::getGeomExtents(TvDbExtents& out) const
{
    out = thickened(TvDbExtents(startPoint(), endPoint()), thickness(), normal());
    return statusOf(out);
}

TvStatusCode TvDbCircle::getGeomExtents(TvDbExtents& out) const
{
    out = thickened(ge::arcExtents(center(), radius(), 0, kFullCircle, normal()), thickness(),
                    normal());
    return statusOf(out);
}

TvStatusCode TvDbArc::getGeomExtents(TvDbExtents& out) const
{
    out = thickened(ge::arcExtents(center(), radius(), startAngle(), endAngle(), normal()),
                    thickness(), normal());
    return statusOf(out);
}

TvStatusCode TvDbEllipse::getGeomExtents(TvDbExtents& out) const
{
    out = ge::ellipseExtents(center(), majorAxis(), normal(), radiusRatio(), startParam(),
                             endParam());
    return statusOf(out);
}

TvStatusCode TvDbPoint::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    out.addPoint(position());
    out = thickened(out, thickness(), normal());
    return statusOf(out);
}

std::vector<double> TvDbSpline::knots() const
{
    std::vector<double> values;
    const db::ArrayView array = fields().array("knots");
    for (std::uint32_t i = 0; i < array.size(); ++i)
        values.push_back(array.real(i));
    return values;
}

std::vector<TvGePoint3d> TvDbSpline::controlPoints() const
{
    std::vector<TvGePoint3d> points;
    const db::ArrayView array = fields().array("ctrl");
    for (std::uint32_t i = 0; i < array.size(); ++i)
        points.push_back(db::asPoint(array[i].point("pt")));
    return points;
}

std::vector<double> TvDbSpline::weights() const
{
    std::vector<double> values;
    const db::ArrayView array = fields().array("ctrl");
    for (std::uint32_t i = 0; i < array.size() && fields().flag("weighted"); ++i)
        values.push_back(array[i].real("weight"));
    return values;
}

std::vector<TvGePoint3d> TvDbSpline::fitPoints() const
{
    std::vector<TvGePoint3d> points;
    const db::ArrayView array = fields().array("fit_pts");
    for (std::uint32_t i = 0; i < array.size(); ++i)
        points.push_back(db::asPoint(array.point(i)));
    return points;
}

TvStatusCode TvDbSpline::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    for (const TvGePoint3d& point : hasOnlyFitPoints() ? fitPoints() : controlPoints())
        out.addPoint(point);
    return statusOf(out);
}
