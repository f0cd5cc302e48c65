#include "list_writer.h"

#include <cmath>

namespace gs {

namespace {

constexpr double kFarthest = 1e30; // differences and squares of it stay numbers

bool isUsable(double x, double y)
{
    return std::abs(x) < kFarthest && std::abs(y) < kFarthest; // false for what is no number
}

bool isEndless(Item::Kind kind)
{
    return kind == Item::Kind::Line || kind == Item::Kind::Ray;
}

bool isUpright(PathView path)
{
    const auto& p = path.points;
    if (p.size() != 4)
        return false;
    return (p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x) ||
           (p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y);
}

} // namespace

namespace {

/// The two rows of a map that make places in the list's plane.
struct FlatRows {
    explicit FlatRows(const TvGeMatrix3d& map) : e(map.entry) {}

    TvGePoint2d operator()(const TvGePoint3d& p) const
    {
        return {e[0][0] * p.x + e[0][1] * p.y + e[0][2] * p.z + e[0][3],
                e[1][0] * p.x + e[1][1] * p.y + e[1][2] * p.z + e[1][3]};
    }
    TvGePoint2d operator()(const TvGePoint2d& p) const
    {
        return {e[0][0] * p.x + e[0][1] * p.y + e[0][3], e[1][0] * p.x + e[1][1] * p.y + e[1][3]};
    }

    const double (&e)[4][4];
};

} // namespace

template <class AnyPath>
std::optional<PathRange> ListWriter::store(const AnyPath& path, const TvGeMatrix3d& map, Box& box)
{
    GrowingBuffer<TvGePoint2d>& points = m_list.m_points;
    PathRange range;
    range.verb = static_cast<std::uint32_t>(m_list.m_verbs.size());
    range.verbCount = static_cast<std::uint32_t>(path.verbs().size());
    range.point = static_cast<std::uint32_t>(points.size());
    range.pointCount = static_cast<std::uint32_t>(path.points().size());
    if (path.isEmpty())
        return std::nullopt;
    if (points.size() + path.points().size() > m_limits.points ||
        m_list.m_verbs.size() + path.verbs().size() > m_limits.points) {
        m_list.m_isCut = true;
        return std::nullopt;
    }
    const FlatRows flat(map);
    TvGePoint2d* to = points.grow(path.points().size());
    Box around;
    bool areUsable = true;
    for (const auto& point : path.points()) {
        const TvGePoint2d there = flat(point);
        areUsable = areUsable && isUsable(there.x, there.y);
        around.add(there);
        *to++ = there;
    }
    if (!areUsable) {
        points.shrinkTo(range.point);
        return std::nullopt;
    }
    box.addBox(around);
    m_list.m_verbs.append(path.verbs().data(), path.verbs().size());
    return range;
}

template std::optional<PathRange> ListWriter::store(const Path&, const TvGeMatrix3d&, Box&);

void ListWriter::forget(const PathRange& range)
{
    m_list.m_verbs.shrinkTo(range.verb);
    m_list.m_points.shrinkTo(range.point);
}

bool ListWriter::isCutAway(std::uint32_t clip, const Box& box) const
{
    return clip != Item::kNoClip && !m_list.m_clips[clip].box.touches(box);
}

void ListWriter::add(const ItemLook& look, const SpacePath& path, const TvGeMatrix3d& map,
                     const SpacePath* coarse)
{
    addAny(look, path, map, coarse);
}

void ListWriter::add(const ItemLook& look, const Path& path, const TvGeMatrix3d& map,
                     const SpacePath* coarse)
{
    addAny(look, path, map, coarse);
}

template <class AnyPath>
void ListWriter::addAny(const ItemLook& look, const AnyPath& path, const TvGeMatrix3d& map,
                        const SpacePath* coarse)
{
    if (m_list.m_items.size() >= m_limits.items) {
        m_list.m_isCut = true;
        return;
    }
    if (m_lens)
        return addSeen(look, path, map, coarse);
    Item item;
    const auto range = store(path, map, item.box);
    if (!range)
        return;
    if (look.widthUnits != 0)
        item.box = item.box.grown(look.widthUnits / 2);
    if (!isEndless(look.kind) && isCutAway(look.clip, item.box)) {
        forget(*range);
        return;
    }
    item.path = *range;
    put(look, item, map, coarse);
}

void ListWriter::put(const ItemLook& look, const Item& from, const TvGeMatrix3d& map,
                     const SpacePath* coarse)
{
    Item& item = *m_list.m_items.grow(1);
    item.kind = look.kind;
    item.alpha = look.alpha;
    item.color = look.color;
    item.weightMm = look.weightMm;
    item.widthUnits = look.widthUnits;
    item.detail = look.detail;
    item.coarseAlpha = look.coarseAlpha;
    item.filling = look.filling;
    item.plotStyle = look.plotStyle;
    item.layer = look.layer;
    item.clip = look.clip;
    item.path = from.path;
    item.coarse = {};
    item.handle = look.handle;
    item.box = isEndless(look.kind) ? Box() : from.box;
    Box unused;
    if (coarse)
        if (const auto kept = store(*coarse, map, unused); kept)
            item.coarse = *kept;
}

void ListWriter::addMarker(const ItemLook& look, const TvGePoint3d& place, const TvGeMatrix3d& map,
                           const SpacePath& figure)
{
    if (m_lens)
        return addSeenMarker(look, map * place, figure);
    SpacePath whole;
    whole.moveTo(map * place);
    whole.append(figure);
    const std::size_t before = m_list.m_items.size();
    ItemLook marker = look;
    marker.kind = Item::Kind::Marker;
    marker.clip = Item::kNoClip; // its box is not yet what is seen
    add(marker, whole, {});
    if (m_list.m_items.size() == before)
        return;
    Item& item = m_list.m_items.back();
    item.clip = look.clip;
    item.box = Box();
    item.box.add(m_list.m_points[item.path.point]);
    if (isCutAway(item.clip, item.box)) {
        forget(item.path);
        m_list.m_items.shrinkTo(before);
    }
}

std::optional<std::uint32_t> ListWriter::addClip(const SpacePath& path, const TvGeMatrix3d& map,
                                                 std::uint32_t parent)
{
    if (m_lens)
        return addSeenClip(path, map, parent);
    Clip clip;
    const auto range = store(path, map, clip.box);
    if (!range)
        return std::nullopt;
    clip.parent = parent;
    clip.path = *range;
    clip.isRectangle = isUpright(m_list.path(*range));
    if (parent != Item::kNoClip)
        clip.box = clip.box.common(m_list.m_clips[parent].box);
    if (clip.box.isEmpty()) {
        forget(*range);
        return std::nullopt;
    }
    m_list.m_clips.push_back(clip);
    return static_cast<std::uint32_t>(m_list.m_clips.size() - 1);
}

void ListWriter::addText(PlacedText run)
{
    if (!isUsable(run.origin.x, run.origin.y) || !isUsable(run.along.x, run.along.y) ||
        !isUsable(run.up.x, run.up.y) || m_list.m_texts.size() >= m_limits.items)
        return;
    Box box;
    box.add(run.origin);
    box.add(run.origin + run.along);
    box.add(run.origin + run.up);
    box.add(run.origin + run.along + run.up);
    if (!isCutAway(run.clip, box))
        m_list.m_texts.push_back(std::move(run));
}

void ListWriter::addPicture(PictureFrame frame)
{
    if (isUsable(frame.origin.x, frame.origin.y) && isUsable(frame.right.x, frame.right.y) &&
        isUsable(frame.up.x, frame.up.y) && m_list.m_pictures.size() < m_limits.items)
        m_list.m_pictures.push_back(std::move(frame));
}

void ListWriter::addLost(db::LostReference reference)
{
    constexpr std::size_t kMost = 1000;
    if (m_list.m_lost.size() < kMost)
        m_list.m_lost.push_back(std::move(reference));
}

std::uint32_t ListWriter::addLayer(Layer layer)
{
    m_list.m_layers.push_back(std::move(layer));
    return static_cast<std::uint32_t>(m_list.m_layers.size() - 1);
}

std::uint16_t ListWriter::addFilling(Filling filling, const TvGeMatrix3d& map)
{
    const std::size_t number = m_list.m_fillings.size() + 1;
    filling.place = placeOfFilling(filling.place, map);
    const FlatMap& place = filling.place;
    if (number > std::numeric_limits<std::uint16_t>::max() || filling.stops.empty() ||
        !isUsable(place.x0, place.y0) || !isUsable(place.xx, place.xy) ||
        !isUsable(place.yx, place.yy))
        return 0;
    m_list.m_fillings.push_back(std::move(filling));
    return static_cast<std::uint16_t>(number);
}

void ListWriter::setSheet(const Box& sheet, const Box& printable, double mmPerUnit)
{
    if (sheet.isEmpty() || !isUsable(sheet.lowX, sheet.lowY) || !isUsable(sheet.highX, sheet.highY))
        return;
    m_list.m_sheet = sheet;
    if (!printable.isEmpty())
        m_list.m_printable = printable;
    if (std::isfinite(mmPerUnit) && mmPerUnit > 0)
        m_list.m_mmPerUnit = mmPerUnit;
}

void ListWriter::expect(std::size_t entities)
{
    constexpr std::size_t kFewest = 1000, kMost = 400'000, kPointsOfOne = 8;
    entities = std::min<std::size_t>({entities, m_limits.items, kMost});
    if (entities < kFewest)
        return;
    m_list.m_items.expect(entities + entities / 8);
    m_list.m_points.expect(entities * kPointsOfOne);
}

bool ListWriter::mayVisit()
{
    if (++m_visits > m_limits.visits ||
        (m_limits.stop && m_limits.stop->load(std::memory_order_relaxed)))
        m_list.m_isCut = true;
    return !m_list.m_isCut;
}

void ListWriter::finish()
{
    for (const Item& item : m_list.m_items)
        if (!item.box.isEmpty())
            if (const Box shown = item.clip == Item::kNoClip
                                      ? item.box
                                      : item.box.common(m_list.m_clips[item.clip].box);
                !shown.isEmpty())
                m_list.m_extents.addBox(shown);
    m_list.startIndex();
}

} // namespace gs
