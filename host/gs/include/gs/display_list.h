#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <base/tv_string.h>
#include <db/attached_drawings.h>
#include <db/tv_db_object_id.h>
#include <ge/tv_ge_matrix3d.h>
#include <gs/box.h>
#include <gs/color.h>
#include <gs/flat.h>
#include <gs/fonts.h>
#include <gs/growing_buffer.h>
#include <gs/path.h>

class TvDbDatabase;

namespace gs {

struct Picture;

/// A path that lies in a display list; good as long as the list.
struct PathView {
    std::span<const Path::Verb> verbs;
    std::span<const TvGePoint2d> points;

    bool isEmpty() const { return verbs.empty(); }
};

/// Where a path lies in a display list. No verbs: no path.
struct PathRange {
    /// In verb: the path is of letters, which is put together when it is asked for.
    static constexpr std::uint32_t kLetters = 1U << 31;

    std::uint32_t verb = 0, verbCount = 0, point = 0, pointCount = 0;

    bool isLetters() const { return (verb & kLetters) != 0; }
};

/// Colours that pass into each other, within an area that is filled.
///
/// Its own square leads to the list's plane by place: where it is not round, its colours change
/// from x = 0 to x = 1 and stay beyond; where it is, from the middle (0, 0) to 1 away from it.
struct Filling {
    struct Stop {
        double at = 0; ///< 0 to 1
        Color color;
        friend bool operator==(const Stop&, const Stop&) = default;
    };
    bool isRound = false;
    FlatMap place;
    std::shared_ptr<const Picture> picture; ///< counts in place of the stops; null: none
    bool turnsOnDark = false; ///< a picture shows what it has for dark backgrounds, there
    std::vector<Stop> stops;  ///< ascending, one at least
};

/// One thing to draw.
struct Item {
    enum class Kind : std::uint8_t {
        Stroke,
        Fill,        ///< inside is where the path winds around
        EvenOddFill, ///< inside is what an odd number of edges encloses
        Line,        ///< without ends, through the two points of its path
        Ray,         ///< from the first point through the second one, without end
        Marker,      ///< its path's first point is a place, the others are offsets from there, in
                     ///< parts of the height of the view: points that are always as large
    };
    static constexpr std::uint32_t kNoClip = std::numeric_limits<std::uint32_t>::max();

    Kind kind = Kind::Stroke;
    std::uint8_t alpha = 255; ///< 255: hides what is below
    Color color;
    float weightMm = 0;   ///< of the stroke on paper, millimetres; 0 is a hairline
    float widthUnits = 0; ///< of the stroke, in the list's units; above 0 it counts instead
    /// How large its details are: the length of a pattern, the height of letters. Where that is no
    /// more than a pixel or two, coarse is drawn in place of path. 0: there are none.
    float detail = 0;
    std::uint8_t coarseAlpha = 0; ///< above 0: coarse is filled, so thickly; else it is stroked
    std::uint8_t plotStyle = 0;   ///< among plotStyles(), where there are any
    /// Of a fill, among fillings(), counted from 1; 0: it has one colour. Who draws one colour only
    /// draws color, which is what the others make together.
    std::uint16_t filling = 0;
    std::uint32_t layer = 0;      ///< among layers()
    std::uint32_t clip = kNoClip; ///< among clips()
    PathRange path;
    PathRange coarse;
    /// Of the entity of the layout or model that it belongs to; of the model's, in a viewport.
    std::uint64_t handle = 0;
    Box box; ///< around the path; of lines without end, empty
};

/// What cuts items off.
struct Clip {
    std::uint32_t parent = Item::kNoClip; ///< cuts too
    PathRange path;
    Box box;                  ///< around path and that of the parents
    bool isRectangle = false; ///< along the axes: path is the outline of its box
};

/// A layer of the drawing, or of one that it shows ("NAME|LAYER").
struct Layer {
    TvString name;
    std::uint64_t handle = 0; ///< 0: the drawing itself has no such layer
    bool isPlotted = true;
};

/// A line of text, for searching and for text that can be selected: its letters are drawn by items
/// of their own.
struct PlacedText {
    TvString text;
    TvGePoint2d origin; ///< the left end of the baseline
    TvGeVector2d along; ///< to the right end
    TvGeVector2d up;    ///< from the baseline to the top of capitals
    std::uint32_t layer = 0;
    std::uint32_t clip = Item::kNoClip;
    std::uint64_t handle = 0;
    bool isOutlined = false; ///< every letter of it is of an outline font
};

/// A letter of an outline font where it stands; good as long as the list.
struct PlacedLetter {
    const FontFace* face = nullptr; ///< never null
    char32_t character = 0;         ///< 0: a form, as Glyph has them
    std::uint16_t form = 0;
    std::u16string_view text; ///< of a form
    double advance = 0;       ///< to where the next one begins
    PathView outline;         ///< filled, non-zero; capitals are 1 high. Blanks have none.
    FlatMap place;            ///< from the letter's own plane to that of the list
};

/// The place of a picture or page of another file: a parallelogram. Its frame is among the items.
struct PictureFrame {
    TvString fileName; ///< as the drawing names it
    TvGePoint2d origin;
    TvGeVector2d right, up; ///< its whole lower and left edge
    std::uint32_t layer = 0;
    std::uint32_t clip = Item::kNoClip;
    std::uint64_t handle = 0;
};

/// How much a display list may hold. What is beyond is left out, and isCut() says so.
struct ListLimits {
    std::uint32_t items = 4'000'000;
    std::uint32_t points = 64'000'000;
    std::uint32_t visits = 8'000'000; ///< of entities, those in inserted blocks each time
    /// Set by whoever no longer wants the list: it is cut there. Null: nobody will.
    const std::atomic<bool>* stop = nullptr;
};

/// What there is to see of a layout or of model space, made once and played at any scale.
///
/// Everything is flat: seen along the direction of the view, or from its camera, in drawing units
/// (of a layout, units of its paper). Layers that are off or frozen are not in it, nor is what a
/// viewport has frozen. A list keeps nothing of the database: it may be played in another thread,
/// and after the drawing is closed. It does not change when the drawing does: make a new one.
class DisplayList
{
public:
    /// Nothing.
    DisplayList() = default;

    /// The layout with what its viewports show; of the model layout, as ofModel(). Read-only; an id
    /// that is no layout gives an empty list. Objects that cannot be read are left out.
    /// @param attached  opens the external references that are shown, and keeps them for the next
    ///                  list; null: they are opened for this one.
    static DisplayList ofLayout(TvDbObjectId layout, const ListLimits& limits = {},
                                db::AttachedDrawings* attached = nullptr);
    /// Model space, seen as the drawing's current model view sees it (from above when it has none).
    static DisplayList ofModel(TvDbDatabase& database, const ListLimits& limits = {},
                               db::AttachedDrawings* attached = nullptr);
    /// Model space, seen as a named view sees it, whose window is savedWindow(). An id that is no
    /// view gives an empty list.
    static DisplayList ofView(TvDbObjectId view, const ListLimits& limits = {},
                              db::AttachedDrawings* attached = nullptr);
    /// One block as it would be inserted, seen from above.
    static DisplayList ofBlock(TvDbObjectId block, const ListLimits& limits = {},
                               db::AttachedDrawings* attached = nullptr);

    /// In the order in which they are drawn.
    std::span<const Item> items() const { return m_items.span(); }
    std::span<const Clip> clips() const { return m_clips; }
    std::span<const Filling> fillings() const { return m_fillings; }
    /// Null when the item has one colour.
    const Filling* fillingOf(const Item& item) const
    {
        return item.filling == 0 ? nullptr : &m_fillings[item.filling - 1U];
    }
    std::span<const Layer> layers() const { return m_layers; }
    /// The names of plot styles, the usual one first; none in a drawing that plots by colours.
    std::span<const TvString> plotStyles() const { return m_plotStyles; }
    std::span<const PlacedText> texts() const { return m_texts; }
    std::span<const PictureFrame> pictures() const { return m_pictures; }
    /// External references that should be shown and are not; their paths are among the texts.
    std::span<const db::LostReference> lost() const { return m_lost; }
    /// Paths of letters are put together at the first call and kept: whoever draws many of them
    /// gives them room instead.
    PathView path(const PathRange& range) const
    {
        return range.isLetters() ? writtenLetters(range) : storedPath(range);
    }
    /// The same, where paths of letters are put together in @p room (and are good until it is used
    /// again).
    PathView path(const PathRange& range, Path& room) const
    {
        if (!range.isLetters())
            return storedPath(range);
        writeLetters(range, room);
        return {room.verbs(), room.points()};
    }

    /// Appends the letters of outline fonts that a path of letters is made of; those of strokes are
    /// left out.
    void letters(const PathRange& range, std::vector<PlacedLetter>& out) const;

    /// Around everything that is drawn, what is cut off left out; empty when that is nothing.
    const Box& extents() const { return m_extents; }
    /// The sheet of paper; nullopt for model space, and for layouts without paper.
    const std::optional<Box>& sheet() const { return m_sheet; }
    /// The part of the sheet that the printer reaches.
    const std::optional<Box>& printable() const { return m_printable; }
    /// What the drawing showed when it was saved; nullopt when it does not say.
    const std::optional<Box>& savedWindow() const { return m_savedWindow; }
    bool isPaper() const { return m_isPaper; }
    /// Of a layout's paper; 1 for model space, where it says nothing.
    double mmPerUnit() const { return m_mmPerUnit; }
    /// Whether the drawing wants the widths of lines to be seen.
    bool showsLineWeights() const { return m_showsLineWeights; }
    /// From the drawing's world into the list's plane (x and y). Of a layout, from its paper.
    const TvGeMatrix3d& fromWorld() const { return m_fromWorld; }
    /// There was more than the limits allow.
    bool isCut() const { return m_isCut; }
    /// Bytes that it takes.
    std::size_t memory() const;

    /// Marks the items that @p window may show: bit i % 64 of word i / 64 is item i.
    /// @param marks  made as long as needed, and cleared first.
    /// @note costs what is visible, and a word for each 64 items; the first call for a part of the
    /// list sorts it.
    void mark(const Box& window, std::vector<std::uint64_t>& marks) const;

private:
    friend class ListWriter;

    static constexpr std::uint32_t kNoFace = 0xFFFFFFFF; // of letters of strokes
    /// A letter as its font draws it, in a plane of its own.
    struct Letter {
        Path path;
        Box box;
        double advance = 0;
        char32_t character = 0;
        std::uint16_t form = 0;
        std::uint32_t face = kNoFace; // among m_faces
        std::u16string text;          // of a form
    };

    /// Letters beside each other.
    struct Row {
        FlatMap map;                        // from the plane of the first one to that of the list
        double tracking = 1;                // factor of their advances
        std::uint32_t first = 0, count = 0; // among m_rowLetters
    };
    /// What a path of letters consists of.
    struct LetterPath {
        PathRange lines; // at the letters
        std::uint32_t firstRow = 0, rowCount = 0;
    };
    struct Written;

    PathView storedPath(const PathRange& range) const
    {
        return {m_verbs.span().subspan(range.verb, range.verbCount),
                m_points.span().subspan(range.point, range.pointCount)};
    }
    PathView writtenLetters(const PathRange& range) const;
    void writeLetters(const PathRange& range, Path& to) const;
    /// Where items are, made when somebody asks for a part of them.
    struct Index;
    void startIndex();
    const Index& index() const;

    GrowingBuffer<Path::Verb> m_verbs;
    GrowingBuffer<TvGePoint2d> m_points;
    GrowingBuffer<Item> m_items;
    std::vector<Letter> m_letters;
    std::vector<FontFace> m_faces;
    GrowingBuffer<std::uint32_t> m_rowLetters; // numbers of letters
    GrowingBuffer<Row> m_rows;
    GrowingBuffer<LetterPath> m_letterPaths;
    std::shared_ptr<Written> m_written; // what path() has put together; null without letters
    std::vector<Clip> m_clips;
    std::vector<Layer> m_layers;
    std::vector<TvString> m_plotStyles;
    std::vector<Filling> m_fillings;
    std::vector<PlacedText> m_texts;
    std::vector<PictureFrame> m_pictures;
    std::vector<db::LostReference> m_lost;
    std::shared_ptr<Index> m_index; // null without items
    Box m_extents;
    std::optional<Box> m_sheet, m_printable, m_savedWindow;
    TvGeMatrix3d m_fromWorld;
    double m_mmPerUnit = 1;
    bool m_isPaper = false, m_showsLineWeights = false, m_isCut = false;
};

} // namespace gs
