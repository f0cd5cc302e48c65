// How a display list keeps letters: each one once, and where it is drawn.

#include <cmath>
#include <mutex>

#include "gs/display_list.h"
#include "list_writer.h"

namespace gs {

namespace {

/// Rows run along the axes, so that boxes of letters stay boxes.
bool keepsBoxes(const FlatMap& map)
{
    constexpr double kNothing = 1e-12;
    const double along = std::abs(map.xx) + std::abs(map.yy),
                 across = std::abs(map.xy) + std::abs(map.yx);
    return across <= along * kNothing || along <= across * kNothing;
}

bool isUsable(const Box& box)
{
    constexpr double kFarthest = 1e30;
    return box.lowX > -kFarthest && box.lowY > -kFarthest && box.highX < kFarthest &&
           box.highY < kFarthest;
}

/// The map of a letter that stands @p x further along its row.
FlatMap movedAlong(const FlatMap& row, double x)
{
    FlatMap map = row;
    map.x0 += row.xx * x;
    map.y0 += row.yx * x;
    return map;
}

} // namespace

// Playing

/// Paths of letters that somebody has asked for without giving room.
struct DisplayList::Written {
    std::mutex mutex;
    std::unordered_map<std::uint32_t, std::unique_ptr<const Path>> paths;
};

void DisplayList::writeLetters(const PathRange& range, Path& to) const
{
    const LetterPath& path = m_letterPaths[range.verb & ~PathRange::kLetters];
    to.clear();
    const PathView lines = storedPath(path.lines);
    to.append(lines.verbs, lines.points);
    for (std::uint32_t r = 0; r < path.rowCount; ++r) {
        const Row& row = m_rows[path.firstRow + r];
        double x = 0;
        for (std::uint32_t i = 0; i < row.count; ++i) {
            const Letter& letter = m_letters[m_rowLetters[row.first + i]];
            if (!letter.path.isEmpty())
                appendMapped(to, letter.path, movedAlong(row.map, x));
            x += letter.advance * row.tracking;
        }
    }
}

void DisplayList::letters(const PathRange& range, std::vector<PlacedLetter>& out) const
{
    if (!range.isLetters())
        return;
    const LetterPath& path = m_letterPaths[range.verb & ~PathRange::kLetters];
    for (std::uint32_t r = 0; r < path.rowCount; ++r) {
        const Row& row = m_rows[path.firstRow + r];
        double x = 0;
        for (std::uint32_t i = 0; i < row.count; ++i) {
            const Letter& letter = m_letters[m_rowLetters[row.first + i]];
            if (letter.face != kNoFace)
                out.push_back({&m_faces[letter.face],
                               letter.character,
                               letter.form,
                               letter.text,
                               letter.advance,
                               {letter.path.verbs(), letter.path.points()},
                               movedAlong(row.map, x)});
            x += letter.advance * row.tracking;
        }
    }
}

PathView DisplayList::writtenLetters(const PathRange& range) const
{
    const std::lock_guard lock(m_written->mutex);
    std::unique_ptr<const Path>& path = m_written->paths[range.verb];
    if (!path) {
        auto made = std::make_unique<Path>();
        writeLetters(range, *made);
        path = std::move(made);
    }
    return {path->verbs(), path->points()};
}

// Making

const ListWriter::KnownLetter& ListWriter::known(const Glyph* letter)
{
    KnownLetter& known =
        m_lastLetters[reinterpret_cast<std::uintptr_t>(letter) / 32 % m_lastLetters.size()];
    if (known.letter == letter)
        return known;
    const auto [at, isNew] =
        m_numbers.try_emplace(letter, static_cast<std::uint32_t>(m_list.m_letters.size()));
    if (isNew)
        m_list.m_letters.push_back({letter->path, gs::boxOf(letter->path), letter->advance,
                                    letter->character, letter->form, faceOf(letter->face),
                                    letter->text});
    known = {letter,
             at->second,
             static_cast<std::uint32_t>(letter->path.verbs().size()),
             static_cast<std::uint32_t>(letter->path.points().size()),
             letter->advance,
             m_list.m_letters[at->second].box};
    return known;
}

std::uint32_t ListWriter::faceOf(const FontFace* face)
{
    if (!face)
        return DisplayList::kNoFace;
    const auto [at, isNew] =
        m_faces.try_emplace(face, static_cast<std::uint32_t>(m_list.m_faces.size()));
    if (isNew)
        m_list.m_faces.push_back(*face);
    return at->second;
}

Box ListWriter::exactBoxOf(const DisplayList::Row& row) const
{
    Box box;
    double x = 0;
    for (std::uint32_t i = 0; i < row.count; ++i) {
        const DisplayList::Letter& letter = m_list.m_letters[m_list.m_rowLetters[row.first + i]];
        const FlatMap map = movedAlong(row.map, x);
        for (const TvGePoint2d& point : letter.path.points())
            box.add(map * point);
        x += letter.advance * row.tracking;
    }
    return box;
}

void ListWriter::addRows(const TextShape& shape, const TextPart& part, const FlatMap& map,
                         Item& item)
{
    for (const LetterRow& from : part.rows) {
        DisplayList::Row row;
        row.map = map * from.map;
        row.tracking = from.tracking;
        row.first = static_cast<std::uint32_t>(m_list.m_rowLetters.size());
        row.count = from.count;
        std::uint32_t* const numbers = m_list.m_rowLetters.grow(from.count);
        const Glyph* const* const letters = shape.letters.data() + from.first;
        Box flat; // of the letters' own boxes
        double x = 0;
        for (std::uint32_t i = 0; i < from.count; ++i) {
            const KnownLetter& letter = known(letters[i]);
            numbers[i] = letter.number;
            item.path.verbCount += letter.verbs;
            item.path.pointCount += letter.points;
            flat.addBox(
                {letter.box.lowX + x, letter.box.lowY, letter.box.highX + x, letter.box.highY});
            x += letter.advance * row.tracking;
        }
        if (!keepsBoxes(row.map)) {
            item.box.addBox(exactBoxOf(row));
        } else if (!flat.isEmpty()) {
            item.box.add(row.map * TvGePoint2d(flat.lowX, flat.lowY));
            item.box.add(row.map * TvGePoint2d(flat.highX, flat.highY));
        }
        m_list.m_rows.push_back(row);
    }
}

void ListWriter::addLetters(const ItemLook& look, const TextShape& shape, const TextPart& part,
                            const TvGeMatrix3d& map, const SpacePath* coarse)
{
    if (m_list.m_items.size() >= m_limits.items ||
        m_list.m_rowLetters.size() + shape.letters.size() > m_limits.points) {
        m_list.m_isCut = true;
        return;
    }
    if (m_lens)
        return addSeenLetters(look, shape, part, map, coarse);
    const std::size_t rows = m_list.m_rows.size(), letters = m_list.m_rowLetters.size();
    Item item;
    DisplayList::LetterPath path;
    if (!part.path.isEmpty())
        path.lines = store(part.path, map, item.box).value_or(PathRange());
    path.firstRow = static_cast<std::uint32_t>(rows);
    path.rowCount = static_cast<std::uint32_t>(part.rows.size());
    item.path = path.lines;
    item.path.verb = static_cast<std::uint32_t>(m_list.m_letterPaths.size()) | PathRange::kLetters;
    addRows(shape, part, FlatMap::seenFromAbove(map), item);
    if (item.path.verbCount == 0 || !isUsable(item.box) || isCutAway(look.clip, item.box)) {
        m_list.m_rows.shrinkTo(rows);
        m_list.m_rowLetters.shrinkTo(letters);
        if (path.lines.verbCount != 0)
            forget(path.lines);
        return;
    }
    if (!m_list.m_written)
        m_list.m_written = std::make_shared<DisplayList::Written>();
    m_list.m_letterPaths.push_back(path);
    put(look, item, map, coarse);
}

} // namespace gs
