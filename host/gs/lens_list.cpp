// How a list is filled while its writer looks through a lens: what comes is made flat, and goes the
// usual way then.

#include <utility>

#include "lens.h"
#include "list_writer.h"

namespace gs {

namespace {

SpacePath inSpace(const Path& flat)
{
    SpacePath path;
    path.append(flat, 0);
    return path;
}

bool isArea(Item::Kind kind)
{
    return kind == Item::Kind::Fill || kind == Item::Kind::EvenOddFill;
}

} // namespace

void ListWriter::setLens(const Lens* lens)
{
    m_lens = lens && !lens->isPlain() ? lens : nullptr;
}

TvGePoint2d ListWriter::seen(const TvGePoint3d& place) const
{
    return m_lens ? m_lens->seen(place) : TvGePoint2d(place.x, place.y);
}

void ListWriter::addSeen(ItemLook look, const SpacePath& path, const TvGeMatrix3d& map,
                         const SpacePath* coarse)
{
    if (path.points().empty())
        return;
    const Lens& lens = *std::exchange(m_lens, nullptr);
    const double nearby = lens.enlargement((map * path.points().front()).z);
    const float factor = nearby > 0 ? static_cast<float>(nearby) : 1.0F; // behind the camera
    look.widthUnits *= factor;
    look.detail *= factor;
    Path flat;
    if (isArea(look.kind))
        flat = lens.seenArea(path, map);
    else if (look.kind == Item::Kind::Stroke)
        flat = lens.seenLines(path, map);
    else
        flat = lens.seenEndless(path, map, look.kind == Item::Kind::Ray);
    if (!isArea(look.kind))
        look.kind = Item::Kind::Stroke;
    SpacePath flatCoarse;
    if (coarse)
        flatCoarse.append(
            look.coarseAlpha > 0 ? lens.seenArea(*coarse, map) : lens.seenLines(*coarse, map), 0);
    add(look, flat, {}, coarse ? &flatCoarse : nullptr);
    m_lens = &lens;
}

void ListWriter::addSeen(const ItemLook& look, const Path& path, const TvGeMatrix3d& map,
                         const SpacePath* coarse)
{
    addSeen(look, inSpace(path), map, coarse);
}

void ListWriter::addSeenLetters(const ItemLook& look, const TextShape& shape, const TextPart& part,
                                const TvGeMatrix3d& map, const SpacePath* coarse)
{
    Path outlines = part.path;
    for (const LetterRow& row : part.rows) {
        double x = 0;
        for (std::uint32_t i = 0; i < row.count; ++i) {
            const Glyph& letter = *shape.letters[row.first + i];
            appendMapped(outlines, letter.path, row.map * FlatMap::moving(x, 0));
            x += letter.advance * row.tracking;
        }
    }
    addSeen(look, outlines, map, coarse);
}

void ListWriter::addSeenMarker(const ItemLook& look, const TvGePoint3d& place,
                               const SpacePath& figure)
{
    const TvGePoint2d at = m_lens->seen(place);
    const Lens* const lens = std::exchange(m_lens, nullptr);
    addMarker(look, {at.x, at.y, 0}, {}, figure);
    m_lens = lens;
}

std::optional<std::uint32_t> ListWriter::addSeenClip(const SpacePath& path, const TvGeMatrix3d& map,
                                                     std::uint32_t parent)
{
    const Lens& lens = *std::exchange(m_lens, nullptr);
    const auto clip = addClip(inSpace(lens.seenArea(path, map)), {}, parent);
    m_lens = &lens;
    return clip;
}

FlatMap ListWriter::placeOfFilling(const FlatMap& square, const TvGeMatrix3d& map) const
{
    if (!m_lens)
        return FlatMap::seenFromAbove(map) * square;
    // Its three corners are where they are seen; what is between them is not foreshortened.
    const auto corner = [&](double x, double y) {
        const TvGePoint2d at = square * TvGePoint2d(x, y);
        return m_lens->seen(map * TvGePoint3d(at.x, at.y, 0));
    };
    const TvGePoint2d origin = corner(0, 0), right = corner(1, 0), up = corner(0, 1);
    return {right.x - origin.x, up.x - origin.x, origin.x,
            right.y - origin.y, up.y - origin.y, origin.y};
}

} // namespace gs
