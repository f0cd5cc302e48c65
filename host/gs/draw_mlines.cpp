#include "drawers.h"

#include <cmath>
#include <numbers>

namespace gs::draw {

namespace {

// "flags" of the entity and of its style
enum : std::int64_t { kClosed = 2, kNoStartCap = 4, kNoEndCap = 8 };
enum : std::int64_t {
    kFilled = 1,
    kShowsJoints = 2,
    kStartLine = 16,
    kStartRound = 64,
    kEndLine = 256,
    kEndRound = 1024,
};

/// Parallel lines along a chain of corners.
class ParallelLines
{
public:
    explicit ParallelLines(const db::RecordView& fields)
        : m_corners(fields.array("verts")),
          m_lines(static_cast<std::uint32_t>(fields.integer("n_lines"))),
          m_isClosed((fields.integer("flags") & kClosed) != 0)
    {
    }

    std::uint32_t corners() const { return m_corners.size(); }
    std::uint32_t lines() const { return m_lines; }
    std::uint32_t segments() const { return corners() < 2 ? 0 : corners() - (m_isClosed ? 0 : 1); }
    bool isClosed() const { return m_isClosed; }
    TvGeVector3d direction(std::uint32_t corner) const
    {
        return db::asVector(m_corners[corner].point("v_dir"));
    }
    /// Where line @p line passes corner @p corner: along the mitre.
    TvGePoint3d at(std::uint32_t corner, std::uint32_t line) const
    {
        const db::RecordView there = m_corners[corner % corners()];
        return db::asPoint(there.point("v_pt")) +
               db::asVector(there.point("v_miter")) * params(corner % corners(), line).real(0);
    }
    /// Cuts along a segment: where pieces begin and end in turn, from its corner on.
    db::ArrayView params(std::uint32_t corner, std::uint32_t line) const
    {
        return m_corners[corner].array("segs")[line].array("params");
    }

private:
    db::ArrayView m_corners;
    std::uint32_t m_lines;
    bool m_isClosed;
};

void addSegment(SpacePath& path, const ParallelLines& all, std::uint32_t corner, std::uint32_t line)
{
    const db::ArrayView params = all.params(corner, line);
    const TvGePoint3d from = all.at(corner, line), to = all.at(corner + 1, line);
    const TvGeVector3d along = all.direction(corner);
    // The first number is the distance of the line, the second where it begins.
    if (params.size() <= 2) {
        path.moveTo(from);
        path.lineTo(to);
        return;
    }
    for (std::uint32_t i = 1; i < params.size(); i += 2) {
        path.moveTo(from + along * params.real(i));
        path.lineTo(i + 1 < params.size() ? from + along * params.real(i + 1) : to);
    }
}

/// The element that lies outermost on one side, at the first corner.
std::uint32_t outermost(const ParallelLines& all, bool isHigh)
{
    std::uint32_t found = 0;
    for (std::uint32_t line = 1; line < all.lines(); ++line) {
        const double here = all.params(0, line).real(0), best = all.params(0, found).real(0);
        if (isHigh ? here > best : here < best)
            found = line;
    }
    return found;
}

void fillBetween(Scene& scene, const ParallelLines& all, const Color& color)
{
    const std::uint32_t low = outermost(all, false), high = outermost(all, true);
    SpacePath& path = scene.path();
    for (std::uint32_t i = 0; i < all.segments(); ++i)
        path.polygon({all.at(i, low), all.at(i + 1, low), all.at(i + 1, high), all.at(i, high)});
    scene.add(Item::Kind::Fill, {}, color);
}

void addCap(SpacePath& path, const ParallelLines& all, std::uint32_t corner, bool hasLine,
            bool isRound, const TvGeVector3d& outwards)
{
    const TvGePoint3d a = all.at(corner, outermost(all, false)),
                      b = all.at(corner, outermost(all, true));
    if (hasLine) {
        path.moveTo(a);
        path.lineTo(b);
    }
    const TvGeVector3d half = (b - a) * 0.5;
    if (isRound && !outwards.isZeroLength())
        path.bow(a + half, half, outwards.normal() * half.length(), 0, std::numbers::pi);
}

void drawCaps(Scene& scene, const ParallelLines& all, std::int64_t flags, std::int64_t style)
{
    SpacePath& path = scene.path();
    const std::uint32_t last = all.corners() - 1;
    if ((flags & kNoStartCap) == 0)
        addCap(path, all, 0, (style & kStartLine) != 0, (style & kStartRound) != 0,
               -all.direction(0));
    if ((flags & kNoEndCap) == 0)
        addCap(path, all, last, (style & kEndLine) != 0, (style & kEndRound) != 0,
               all.direction(last == 0 ? 0 : last - 1));
    if (!path.isEmpty())
        scene.stroke();
}

void useElement(Scene& scene, const TvDbObject& style, const db::RecordView& element,
                const Look& own)
{
    const StoredColor color = StoredColor::of(element.structure("color"), style.record().version());
    scene.look() = own;
    if (color.kind == StoredColor::Kind::Given)
        scene.look().color = color.color;
}

} // namespace

void mline(Scene& scene, const TvDbEntity& entity)
{
    const db::RecordView fields = entity.fields();
    const ParallelLines all(fields);
    if (all.segments() == 0 || all.lines() == 0)
        return;
    const TvDbObjectPointer<TvDbObject> style(entity.idOf(fields.handle("style")),
                                              TvDb::kForNotify);
    const std::int64_t look = style ? style->fields().integer("flags") : 0;
    const Look own = scene.look();
    if ((look & kFilled) != 0)
        fillBetween(scene, all,
                    StoredColor::of(style->fields().structure("fill"), style->record().version())
                        .within(own.color));
    for (std::uint32_t line = 0; line < all.lines(); ++line) {
        if (style)
            useElement(scene, *style, style->fields().array("lines")[line], own);
        SpacePath& path = scene.path();
        for (std::uint32_t corner = 0; corner < all.segments(); ++corner)
            addSegment(path, all, corner, line);
        scene.stroke();
    }
    scene.look() = own;
    if (!all.isClosed())
        drawCaps(scene, all, fields.integer("flags"), look);
    if ((look & kShowsJoints) != 0) {
        SpacePath& path = scene.path();
        for (std::uint32_t corner = all.isClosed() ? 0 : 1; corner < all.segments(); ++corner) {
            path.moveTo(all.at(corner, outermost(all, false)));
            path.lineTo(all.at(corner, outermost(all, true)));
        }
        scene.stroke();
    }
}

} // namespace gs::draw
