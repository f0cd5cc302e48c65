#pragma once

#include <array>
#include <unordered_map>

#include <gs/display_list.h>
#include <gs/text_shape.h>

#include "space_path.h"

namespace gs {

struct Lens;

/// What one item looks like; all that a SpacePath does not say.
struct ItemLook {
    Item::Kind kind = Item::Kind::Stroke;
    Color color;
    std::uint8_t alpha = 255;
    float weightMm = 0;
    float widthUnits = 0;
    float detail = 0;
    std::uint8_t coarseAlpha = 0;
    std::uint8_t plotStyle = 0;
    std::uint16_t filling = 0;
    std::uint32_t layer = 0;
    std::uint32_t clip = Item::kNoClip;
    std::uint64_t handle = 0;
};

/// Fills a display list.
///
/// Keeps: no coordinate of a list is infinite or no number, and none is larger than what single
/// precision holds; an item that its clip leaves nothing of is not in it.
class ListWriter
{
public:
    ListWriter(DisplayList& list, const ListLimits& limits) : m_list(list), m_limits(limits) {}

    /// How everything that follows is seen, other than from above; null: from above.
    /// @param lens  not owned; outlives its use. A plain one is none.
    void setLens(const Lens* lens);
    const Lens* lens() const { return m_lens; }
    /// Where a place of the list is seen; not finite where it is not.
    TvGePoint2d seen(const TvGePoint3d& place) const;

    /// Adds an item: @p path where @p map puts it, seen from above.
    /// @param coarse  what is drawn of it where its details are too small; null: none.
    void add(const ItemLook& look, const SpacePath& path, const TvGeMatrix3d& map,
             const SpacePath* coarse = nullptr);
    void add(const ItemLook& look, const Path& path, const TvGeMatrix3d& map,
             const SpacePath* coarse = nullptr);
    /// Adds the part of a text whose letters are kept; @p map leads from the text's plane.
    void addLetters(const ItemLook& look, const TextShape& shape, const TextPart& part,
                    const TvGeMatrix3d& map, const SpacePath* coarse);
    /// Adds a marker at @p place (before @p map): @p figure is in parts of the view's height.
    void addMarker(const ItemLook& look, const TvGePoint3d& place, const TvGeMatrix3d& map,
                   const SpacePath& figure);
    /// What is drawn with this clip shows only inside of @p path.
    /// @return the clip's number; nullopt when nothing of it would be seen.
    std::optional<std::uint32_t> addClip(const SpacePath& path, const TvGeMatrix3d& map,
                                         std::uint32_t parent);
    void addText(PlacedText run);
    void addPicture(PictureFrame frame);
    void addLost(db::LostReference reference);
    std::uint32_t addLayer(Layer layer);
    std::span<const Layer> layers() const { return m_list.m_layers; }
    void addPlotStyle(TvString name) { m_list.m_plotStyles.push_back(std::move(name)); }
    /// @param map  to the list's plane.
    /// @return the number that items have; 0 when there are too many.
    std::uint16_t addFilling(Filling filling, const TvGeMatrix3d& map);

    void setSheet(const Box& sheet, const Box& printable, double mmPerUnit);
    void setSavedWindow(const Box& window) { m_list.m_savedWindow = window; }
    void setFromWorld(const TvGeMatrix3d& map) { m_list.m_fromWorld = map; }
    void setShowsLineWeights(bool shows) { m_list.m_showsLineWeights = shows; }
    void setIsPaper() { m_list.m_isPaper = true; }

    /// So many entities are going to be drawn.
    void expect(std::size_t entities);
    /// Counts a visit of an entity. False when the limits are reached: end quietly.
    bool mayVisit();
    bool isFull() const { return m_list.m_isCut; }
    const std::atomic<bool>* stop() const { return m_limits.stop; } ///< as in ListLimits
    /// The index, and the extents.
    void finish();

private:
    /// nullopt for what cannot be drawn; then nothing was stored.
    template <class AnyPath>
    std::optional<PathRange> store(const AnyPath& path, const TvGeMatrix3d& map, Box& box);
    template <class AnyPath>
    void addAny(const ItemLook& look, const AnyPath& path, const TvGeMatrix3d& map,
                const SpacePath* coarse);
    // lens_list.cpp
    void addSeen(ItemLook look, const SpacePath& path, const TvGeMatrix3d& map,
                 const SpacePath* coarse);
    void addSeen(const ItemLook& look, const Path& path, const TvGeMatrix3d& map,
                 const SpacePath* coarse);
    void addSeenLetters(const ItemLook& look, const TextShape& shape, const TextPart& part,
                        const TvGeMatrix3d& map, const SpacePath* coarse);
    void addSeenMarker(const ItemLook& look, const TvGePoint3d& place, const SpacePath& figure);
    std::optional<std::uint32_t> addSeenClip(const SpacePath& path, const TvGeMatrix3d& map,
                                             std::uint32_t parent);
    FlatMap placeOfFilling(const FlatMap& square, const TvGeMatrix3d& map) const;
    /// @param item  its path and box.
    void put(const ItemLook& look, const Item& item, const TvGeMatrix3d& map,
             const SpacePath* coarse);
    void forget(const PathRange& range);
    /// A letter in the list, and what of it counts for a row.
    struct KnownLetter {
        const Glyph* letter = nullptr;
        std::uint32_t number = 0, verbs = 0, points = 0;
        double advance = 0;
        Box box;
    };
    const KnownLetter& known(const Glyph* letter);
    std::uint32_t faceOf(const FontFace* face);
    /// Puts rows where @p map leads; says what they measure.
    void addRows(const TextShape& shape, const TextPart& part, const FlatMap& map, Item& item);
    /// Around the points of its letters.
    Box exactBoxOf(const DisplayList::Row& row) const;
    bool isCutAway(std::uint32_t clip, const Box& box) const;

    DisplayList& m_list;
    ListLimits m_limits;
    const Lens* m_lens = nullptr; // not owned; null: all is seen from above
    std::uint32_t m_visits = 0;
    std::unordered_map<const Glyph*, std::uint32_t> m_numbers; // of letters in the list
    std::unordered_map<const FontFace*, std::uint32_t> m_faces;
    std::array<KnownLetter, 256> m_lastLetters; // some of them, by their address
};

} // namespace gs
