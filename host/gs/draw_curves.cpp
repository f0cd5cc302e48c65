#include "drawers.h"

#include <cmath>
#include <numbers>

#include <db/tv_db_curves.h>
#include <ge/ocs.h>

namespace gs::draw {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

struct Ids {
    db::FieldId start = db::fieldId("start"), end = db::fieldId("end"),
                center = db::fieldId("center"), radius = db::fieldId("radius"),
                normal = db::fieldId("normal");
};
const Ids& ids()
{
    static const Ids all;
    return all;
}

/// The end of a bow that runs counter-clockwise from @p start; equal ends are a full turn.
double endAfter(double start, double end)
{
    const double sweep = std::fmod(end - start, kTurn);
    if (std::abs(sweep) < 1e-12)
        return start + kTurn;
    return start + (sweep < 0 ? sweep + kTurn : sweep);
}

void roundCurve(Scene& scene, const TvDbEntity& entity, double start, double end)
{
    const db::RecordView fields = entity.fields();
    const double radius = fields.real(ids().radius);
    scene.path().bow(db::asPoint(fields.point(ids().center)), {radius, 0, 0}, {0, radius, 0}, start,
                     end);
    scene.stroke(ge::ocsToWcs(db::asVector(fields.point(ids().normal))));
}

void endless(Scene& scene, const TvDbEntity& entity, Item::Kind kind)
{
    const auto& line = static_cast<const TvDbXline&>(entity);
    SpacePath& path = scene.path();
    path.moveTo(line.basePoint());
    path.lineTo(line.basePoint() + line.unitDir());
    scene.add(kind, {}, scene.look().color);
}

} // namespace

void line(Scene& scene, const TvDbEntity& entity)
{
    const db::RecordView fields = entity.fields();
    SpacePath& path = scene.path();
    path.moveTo(db::asPoint(fields.point(ids().start)));
    path.lineTo(db::asPoint(fields.point(ids().end)));
    scene.stroke();
}

void circle(Scene& scene, const TvDbEntity& entity)
{
    roundCurve(scene, entity, 0, kTurn);
}

void arc(Scene& scene, const TvDbEntity& entity)
{
    const double start = entity.fields().real(ids().start);
    roundCurve(scene, entity, start, endAfter(start, entity.fields().real(ids().end)));
}

void ellipse(Scene& scene, const TvDbEntity& entity)
{
    const auto& bow = static_cast<const TvDbEllipse&>(entity);
    const TvGeVector3d minor =
        bow.normal().normal().crossProduct(bow.majorAxis()) * bow.radiusRatio();
    const double start = bow.startParam();
    scene.path().bow(bow.center(), bow.majorAxis(), minor, start, endAfter(start, bow.endParam()));
    scene.stroke();
}

void xline(Scene& scene, const TvDbEntity& entity)
{
    endless(scene, entity, Item::Kind::Line);
}

void ray(Scene& scene, const TvDbEntity& entity)
{
    endless(scene, entity, Item::Kind::Ray);
}

void point(Scene& scene, const TvDbEntity& entity)
{
    // How the drawing shows points: a figure of 0 to 4, with a circle and a square around it.
    enum : std::int64_t {
        kDot,
        kNothing,
        kPlus,
        kCross,
        kTick,
        kFigure = 7,
        kCircle = 32,
        kSquare = 64
    };
    constexpr double kUsualPart = 0.05; // of the height of the view
    const auto& self = static_cast<const TvDbPoint&>(entity);
    const db::Record& header = scene.database().headerRecord();
    const std::int64_t mode = header.integer("PDMODE");
    const double size = header.real("PDSIZE");
    SpacePath& path = scene.path();
    if (mode == kDot) {
        path.moveTo(self.position());
        path.lineTo(self.position());
        scene.stroke();
        return;
    }
    const bool isPart = size <= 0; // of the view
    double half = (size > 0 ? size : size < 0 ? -size / 100 : kUsualPart) / 2;
    const double viewHeight = scene.frame().viewHeight;
    if (isPart && viewHeight > 0)
        half *= viewHeight;
    const bool isMarker = isPart && viewHeight <= 0;
    const TvGePoint3d at = isMarker ? TvGePoint3d() : self.position();
    const auto tick = [&](double fromX, double fromY, double toX, double toY) {
        path.moveTo(at + TvGeVector3d(fromX, fromY, 0) * half);
        path.lineTo(at + TvGeVector3d(toX, toY, 0) * half);
    };
    switch (mode & kFigure) {
    case kDot: tick(0, 0, 0, 0); break;
    case kPlus: tick(-2, 0, 2, 0), tick(0, -2, 0, 2); break;
    case kCross: tick(-2, -2, 2, 2), tick(-2, 2, 2, -2); break;
    case kTick: tick(0, 0, 0, 1); break;
    default: break;
    }
    if ((mode & kCircle) != 0)
        path.bow(at, {half, 0, 0}, {0, half, 0}, 0, kTurn);
    if ((mode & kSquare) != 0)
        tick(-1, -1, 1, -1), tick(1, -1, 1, 1), tick(1, 1, -1, 1), tick(-1, 1, -1, -1);
    if (path.isEmpty())
        return;
    if (isMarker)
        scene.addMarker(self.position());
    else
        scene.stroke();
}

} // namespace gs::draw
