#include "drawers.h"

#include <db/tv_db_curves.h>

#include "spline_curve.h"

namespace gs::draw {

namespace {

constexpr std::int64_t kClosedFlag = 4; // of newer drawings

double exponentOf(std::int64_t parametrisation)
{
    switch (parametrisation) {
    case 1: return 0.5;
    case 2: return 0;
    default: return 1;
    }
}

} // namespace

void spline(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbSpline&>(entity);
    SpacePath& path = scene.path();
    if (self.hasOnlyFitPoints()) {
        const db::RecordView fields = self.fields();
        const bool isClosed = (fields.integer("spline_flags") & kClosedFlag) != 0;
        addCurveThrough(path, self.fitPoints(), isClosed, exponentOf(fields.integer("knot_param")),
                        self.startTangent(), self.endTangent());
    } else {
        addSpline(path, {self.degree(), self.knots(), self.controlPoints(), self.weights()});
    }
    scene.stroke();
}

} // namespace gs::draw
