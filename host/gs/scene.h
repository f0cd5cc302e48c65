#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <unordered_set>

#include <db/by_class.h>
#include <db/passing_entities.h>

#include "looks.h"
#include "picture_tone.h"
#include "shape_files.h"
#include "text_tools.h"

namespace gs {
struct OwnColor;
class Attachments;
class UnderlayPages;
struct AttachedReference;
class Fonts;
struct LinePattern;
} // namespace gs

class TvDbBlockReference;
class TvDbViewport;

namespace db {
class AttachedDrawings;
} // namespace db

namespace gs {

class Scene;

/// Draws one kind of entity.
using Drawer = void (*)(Scene&, const TvDbEntity&);
/// Null for kinds that have no form.
Drawer drawerFor(std::string_view className);

/// Walks over the entities of blocks and puts what they draw into a list.
///
/// Drawers (draw_*.cpp) get the entity and this: they fill path() and call stroke() or fill(), as
/// often as they need. Places are in the entity's own block; the scene knows where that lies.
class Scene
{
public:
    /// Where the entities of a block are drawn, and what they take from whoever inserts it.
    struct Frame {
        TvGeMatrix3d map;         ///< to the list's plane
        const Look* by = nullptr; ///< of the insert; null: not in a block
        std::uint32_t clip = Item::kNoClip;
        std::uint64_t handle = 0; ///< of the outermost entity; 0: it is that itself
        const std::vector<bool>* frozen = nullptr; ///< by layer: not shown in this viewport
        double linetypeFactor = 1;
        double viewHeight =
            0; ///< in units of the block, as seen in a viewport; 0: whoever plays it

        /// Layers of references that came in later are not known to a viewport.
        bool isFrozen(std::uint32_t layer) const
        {
            return frozen && layer < frozen->size() && (*frozen)[layer];
        }
    };

    /// @param attached  opens the drawings that this one shows; null: they are opened for this.
    Scene(TvDbDatabase& database, ListWriter& writer, db::AttachedDrawings* attached = nullptr);
    /// Of a drawing that @p host shows as an external reference of that name. Ends before it.
    Scene(TvDbDatabase& database, Scene& host, const TvString& name);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// All entities of @p block.
    void drawBlock(TvDbObjectId block, const Frame& frame);
    void drawEntity(TvDbObjectId id, const Frame& frame);

    /// The viewport that shows the sheet itself: no window.
    void setOverallViewport(TvDbObjectId id) { m_overall = id; }
    bool isOverallViewport(TvDbObjectId id) const { return id == m_overall; }

    // For drawers, of the entity that is being drawn

    TvDbDatabase& database() const { return m_database; }
    /// What it draws stands in another drawing.
    bool isAttached() const { return m_host != nullptr; }
    ListWriter& writer() { return m_writer; }
    const Looks& looks() const { return m_looks; }
    const Frame& frame() const { return *m_frame; }
    Look& look() { return m_look; }
    /// Empty.
    SpacePath& path()
    {
        m_path.clear();
        return m_path;
    }
    const SpacePath& lastPath() const { return m_path; }
    /// Strokes what path() holds, with the pattern of its linetype.
    /// @param place       from the path's coordinates to those of the entity's block.
    /// @param widthUnits  of the line; 0: its weight.
    /// @param restarts    the pattern begins anew at each corner.
    void stroke(const TvGeMatrix3d& place = {}, double widthUnits = 0, bool restarts = false);
    void fill(const TvGeMatrix3d& place = {}, Item::Kind kind = Item::Kind::Fill);
    /// The same, as lines without end, or with another colour.
    void add(Item::Kind kind, const TvGeMatrix3d& place, const Color& color, double detail = 0);
    /// What path() holds is a marker at @p place.
    void addMarker(const TvGePoint3d& place);
    /// An item of another look, beside what the entity looks like.
    void add(const ItemLook& look, const Path& flat, const TvGeMatrix3d& place,
             const SpacePath* coarse = nullptr);
    /// What a piece with a colour of its own has.
    Color colorOf(const OwnColor& own) const;
    Fonts& fonts() const;
    TextTools& textTools() { return m_textTools; }
    ShapeFiles& shapes() { return m_shapes; }
    /// Whether anything of the entity is to be seen.
    bool isShown() const { return !m_outline && !m_looks.layerAt(m_look.layer).isOff; }
    /// All but the kind, of an item of the entity that is drawn.
    ItemLook itemLook() const;
    /// From the coordinates that @p place leads from to the list's plane.
    TvGeMatrix3d placed(const TvGeMatrix3d& place) const;
    /// How many units of the list's plane one unit of the block is, about.
    double scaleOf(const TvGeMatrix3d& place = {}) const;
    /// Draws @p block in the entity's place, moved by @p place.
    void insert(TvDbObjectId block, const TvGeMatrix3d& place, std::uint32_t clip = Item::kNoClip);
    /// Whether a block has entities of its own.
    bool hasContent(TvDbObjectId block) { return !contentOf(block).empty(); }
    /// What a block shows that has none.
    const AttachedReference& referenceOf(TvDbObjectId block);
    /// Draws the model of another drawing in the entity's place; nothing of one that is being
    /// drawn already.
    void insert(const AttachedReference& reference, const TvGeMatrix3d& place, std::uint32_t clip);
    /// Puts the outline of another entity of the same block into path(), if it has one; else leaves
    /// path() as it is.
    void outlineOf(TvDbObjectId id);
    /// What @p read gives for the object with this handle, shown in @p tone; read once for each
    /// list.
    using PictureReader = std::function<std::shared_ptr<const Picture>()>;
    std::shared_ptr<const Picture> pictureOf(std::uint64_t handle, const PictureReader& read,
                                             const PictureTone& tone = {});
    /// Of the list: also what attached drawings show.
    UnderlayPages& pages();
    /// Draws an entity that belongs to this one (an attribute), as part of it.
    void drawPart(TvDbObjectId id);

private:
    Frame frameWithin(const Look& by, const TvGeMatrix3d& place, std::uint32_t clip) const;
    Attachments& attachments();
    bool keepOutline(const TvGeMatrix3d& place);
    /// Strokes what path() holds in pieces; false when its pattern has none.
    bool strokeDashed(const ItemLook& look, const TvGeMatrix3d& map, bool restarts);
    const LinePattern& patternOf(TvDbObjectId linetype);
    /// What all entities of a class have in common.
    struct Kind {
        explicit Kind(const db::ClassDef& of) : draw(drawerFor(of.name())), looks(of) {}

        Drawer draw; // null: no form
        LookFields looks;
    };
    void drawOpen(const TvDbEntity& entity, const Kind& kind);
    const std::vector<TvDbObjectId>& contentOf(TvDbObjectId block);

    static constexpr int kDeepest = 64; // blocks within each other

    TvDbDatabase& m_database;
    ListWriter& m_writer;
    Scene* const m_host = nullptr;                    // not owned; null: the list's own drawing
    db::AttachedDrawings* const m_attached = nullptr; // not owned; may be null
    std::size_t m_depth = 0;                          // blocks around what is drawn, of the hosts
    Looks m_looks;
    db::PassingEntities m_entities;
    db::ByClass<Kind> m_kinds;
    std::unordered_map<TvDbObjectId, std::vector<TvDbObjectId>> m_contents;
    std::unordered_set<TvDbObjectId>
        m_openBlocks; // being drawn: they are not drawn within themselves
    std::unordered_map<TvDbObjectId, LinePattern> m_patterns;
    TextTools m_textTools;
    ShapeFiles m_shapes;
    std::map<std::pair<std::uint64_t, PictureTone>, std::shared_ptr<const Picture>> m_pictures;
    double m_linetypeScale; // of the drawing
    const Frame* m_frame = nullptr;
    std::uint64_t m_handle = 0;
    Look m_look;
    SpacePath m_path;
    SpacePath* m_outline = nullptr; // not owned; where paths go instead of into the list
    TvDbObjectId m_overall;
    std::unique_ptr<Attachments> m_attachments; // of the list's own drawing, once there are any
    std::unique_ptr<UnderlayPages> m_pages;     // the same
};

/// How many units of the list's plane one unit is, about, where @p map leads to it.
double flatScale(const TvGeMatrix3d& map);
/// Where a view from @p direction, turned by @p twist, sees things: x to the right, y upwards.
TvGeMatrix3d viewAxes(const TvGeVector3d& direction, double twist);

} // namespace gs
