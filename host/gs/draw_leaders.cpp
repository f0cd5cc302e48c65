#include "drawers.h"

#include <cmath>

#include <db/tv_db_annotations.h>

#include "arrow.h"
#include "dimension_style.h"
#include "spline_curve.h"
#include "text_drawing.h"

namespace gs::draw {

namespace {

// Group codes of variables of dimension styles.
enum : int { kScaleCode = 40, kArrowSizeCode = 41, kLineColorCode = 176, kLeaderBlockCode = 341 };

void addLine(SpacePath& path, const std::vector<TvGePoint3d>& points, bool isSmooth)
{
    if (isSmooth && points.size() > 2)
        addCurveThrough(path, points, false);
    else
        path.polygon(points, false);
}

TvGeVector3d directionFrom(const std::vector<TvGePoint3d>& points)
{
    for (std::size_t i = 1; i < points.size(); ++i)
        if (const TvGeVector3d way = points[i] - points[0]; !way.isZeroLength())
            return way;
    return {};
}

void useLineColor(Scene& scene, const DimensionStyle& style)
{
    const auto own = style.ownInteger(kLineColorCode);
    const StoredColor color = own ? StoredColor::ofIndex(*own)
                                  : StoredColor::of(style.colorOfStyle("DIMCLRD"), style.version());
    if (color.kind == StoredColor::Kind::Given)
        scene.look().color = color.color;
    else if (color.kind == StoredColor::Kind::ByLayer)
        scene.look().color = scene.looks().layerAt(scene.look().layer).look.color;
}

/// The colours and widths that a multileader says for a part of itself.
class PartLook
{
public:
    PartLook(Scene& scene, const TvDbEntity& entity)
        : m_scene(scene), m_version(entity.record().version())
    {
    }

    void use(const db::RecordView& color, const Look& own)
    {
        const StoredColor stored = StoredColor::of(color, m_version);
        m_scene.look().color = stored.kind == StoredColor::Kind::ByLayer
                                   ? m_scene.looks().layerAt(own.layer).look.color
                                   : stored.within(own.color);
    }
    void useWeight(std::int64_t value, const Look& own)
    {
        const float weight = weightOfValue(value);
        if (weight >= 0)
            m_scene.look().weightMm = weight;
        else if (weight == kWeightByLayer)
            m_scene.look().weightMm = m_scene.looks().layerAt(own.layer).look.weightMm;
    }

private:
    Scene& m_scene;
    db::Version m_version;
};

struct LeaderLines {
    const TvDbMLeader& leader;
    db::RecordView context;
    TvGeVector3d up;
};

void drawLeaderLine(Scene& scene, const LeaderLines& all, const db::RecordView& line,
                    const db::RecordView& root)
{
    enum : std::int64_t { kNoLine = 0, kSmooth = 2 }; // "leader_type"
    enum : std::int64_t { kOwnSize = 16, kOwnArrow = 32 };
    const db::RecordView fields = all.leader.fields();
    if (fields.integer("leader_type") == kNoLine)
        return;
    std::vector<TvGePoint3d> points;
    const db::ArrayView stored = line.array("pts");
    for (std::uint32_t i = 0; i < stored.size(); ++i)
        points.push_back(db::asPoint(stored.point(i)));
    if (root.flag("has_end"))
        points.push_back(db::asPoint(root.point("end_pt")));
    addLine(scene.path(), points, fields.integer("leader_type") == kSmooth);
    scene.stroke();
    const std::int64_t own = line.integer("flags");
    const double size = (own & kOwnSize) != 0 && line.real("arrow_size") > 0
                            ? line.real("arrow_size")
                            : all.context.real("arrow_size");
    const std::uint64_t block = (own & kOwnArrow) != 0 && line.handle("arrow") != 0
                                    ? line.handle("arrow")
                                    : fields.handle("arrow");
    if (!points.empty())
        drawArrow(scene, points.front(), directionFrom(points), all.up, size,
                  all.leader.idOf(block));
}

void drawLanding(Scene& scene, const LeaderLines& all, const db::RecordView& root)
{
    if (!root.flag("has_dogleg") || !root.flag("has_end") ||
        !all.leader.fields().flag("has_dogleg"))
        return;
    const TvGePoint3d end = db::asPoint(root.point("end_pt"));
    SpacePath& path = scene.path();
    path.moveTo(end);
    path.lineTo(end + db::asVector(root.point("dogleg")).normal() * root.real("dogleg_len"));
    scene.stroke();
}

void drawBlockContent(Scene& scene, const TvDbMLeader& leader, const db::RecordView& context)
{
    const db::ArrayView numbers = context.array("matrix");
    if (numbers.size() != 16 || !leader.blockContentId())
        return;
    TvGeMatrix3d place;
    for (std::uint32_t i = 0; i < 12; ++i)
        place.entry[i / 4][i % 4] = numbers.real(i);
    scene.insert(leader.blockContentId(), place);
}

} // namespace

void leader(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbLeader&>(entity);
    const DimensionStyle style(entity, self.dimensionStyle());
    useLineColor(scene, style);
    const std::vector<TvGePoint3d> points = self.vertices();
    addLine(scene.path(), points, self.isSplined());
    scene.stroke();
    const double scale = style.real("DIMSCALE", kScaleCode);
    if (self.hasArrowHead() && !points.empty())
        drawArrow(scene, points.front(), directionFrom(points),
                  db::asVector(self.fields().point("normal")),
                  style.real("DIMASZ", kArrowSizeCode) * (scale > 0 ? scale : 1),
                  style.object("DIMLDRBLK", kLeaderBlockCode));
}

void multileader(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbMLeader&>(entity);
    const db::RecordView fields = self.fields(), context = fields.structure("ctx");
    const Look own = scene.look();
    const TvGeVector3d up =
        db::asVector(context.point("x_dir")).crossProduct(db::asVector(context.point("y_dir")));
    const LeaderLines all{self, context, up.isZeroLength() ? TvGeVector3d::zAxis() : up};
    PartLook part(scene, entity);
    part.use(fields.structure("line_color"), own);
    part.useWeight(static_cast<std::int32_t>(fields.integer("line_lineweight")), own);
    const db::ArrayView roots = context.array("roots");
    for (std::uint32_t r = 0; r < roots.size(); ++r) {
        const db::ArrayView lines = roots[r].array("lines");
        for (std::uint32_t l = 0; l < lines.size(); ++l)
            drawLeaderLine(scene, all, lines[l], roots[r]);
        drawLanding(scene, all, roots[r]);
    }
    scene.look() = own;
    if (self.hasText()) {
        part.use(fields.structure("text_color"), own);
        drawTextShape(scene, textShape(self, scene.textTools()));
        scene.look() = own;
    }
    if (context.flag("has_block")) {
        part.use(context.structure("b_color"), own);
        drawBlockContent(scene, self, context);
    }
    scene.look() = own;
}

} // namespace gs::draw
