#include "drawers.h"

#include <algorithm>

#include <base/path_rules.h>
#include <db/tv_db_annotations.h>
#include <ge/ocs.h>

#include "frames.h"
#include "underlay_pages.h"

namespace gs::draw {

namespace {

// "flags" of an underlay
constexpr std::int64_t kClipped = 1, kOn = 2, kMonochrome = 4, kSuitsBackground = 8, kInverted = 16;

TvGeMatrix3d placeOf(const TvDbUnderlayReference& self)
{
    const db::Point scale = self.fields().point("scale");
    ge::BlockPlacement placement;
    placement.insertion = self.position();
    placement.scale = {scale.x, scale.y, scale.z};
    placement.rotation = self.rotation();
    placement.normal = db::asVector(self.fields().point("normal"));
    return ge::blockTransform(placement);
}

/// The corners of a boundary; of a rectangle two are kept. Empty when it encloses nothing.
std::vector<TvGePoint3d> cornersOf(const db::ArrayView& points, Box& box)
{
    std::vector<TvGePoint3d> corners;
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        corners.push_back(db::asPoint(points.point(i)));
        box.add(db::asPoint2d(points.point(i)));
    }
    if (corners.size() == 2)
        corners = {{box.lowX, box.lowY, 0},
                   {box.highX, box.lowY, 0},
                   {box.highX, box.highY, 0},
                   {box.lowX, box.highY, 0}};
    if (corners.size() < 3)
        corners.clear();
    return corners;
}

/// What is seen of a page: all within an odd number of these boundaries.
struct Cut {
    std::vector<std::vector<TvGePoint3d>> boundaries;
    bool isWithinPage = true;
};

bool isWithin(const Box& inner, const Box& outer)
{
    const double slack = (outer.width() + outer.height()) * 1e-6;
    const Box around = outer.grown(slack);
    return inner.lowX >= around.lowX && inner.highX <= around.highX && inner.lowY >= around.lowY &&
           inner.highY <= around.highY;
}

Cut cutOf(const db::RecordView& fields, const Box& page)
{
    const std::vector<TvGePoint3d> whole{
        {0, 0, 0}, {page.highX, 0, 0}, {page.highX, page.highY, 0}, {0, page.highY, 0}};
    const std::int64_t flags = fields.integer("flags");
    Box clipBox, holeBox;
    const auto clip = cornersOf(fields.array("clip"), clipBox);
    if ((flags & kClipped) == 0 || clip.empty())
        return {{whole}};
    if ((flags & kInverted) == 0)
        return {{clip}, isWithin(clipBox, page)};
    if (const auto hole = cornersOf(fields.array("inv"), holeBox); !hole.empty())
        return {{whole, hole}, isWithin(holeBox, page)};
    // A boundary around the whole page leads around its hole too, for those who know no holes.
    if (isWithin(page, clipBox))
        return {{clip}, false};
    return {{whole, clip}, isWithin(clipBox, page)};
}

PictureTone toneOf(const db::RecordView& fields)
{
    const std::int64_t contrast = fields.integer("contrast");
    PictureTone tone;
    if (contrast > 0 && contrast < 100) // 0: nothing was said
        tone.contrast = static_cast<double>(contrast) / 100;
    tone.isGray = (fields.integer("flags") & kMonochrome) != 0;
    return tone;
}

void tracePage(Scene& scene, const Cut& cut, const TvGeMatrix3d& place)
{
    SpacePath& path = scene.path();
    for (const std::vector<TvGePoint3d>& boundary : cut.boundaries)
        path.polygon(boundary);
    path.transform(place);
}

void drawPage(Scene& scene, const db::RecordView& fields, const TvGeMatrix3d& place,
              const UnderlayPage& page, const FrameArea& area)
{
    const Box box{0, 0, page.width, page.height};
    const Cut cut = cutOf(fields, box);
    const std::int64_t flags = fields.integer("flags");
    PictureLook look;
    look.fade = static_cast<double>(fields.integer("fade")) / 100;
    look.turnsOnDark = (flags & (kSuitsBackground | kMonochrome)) != 0;
    bool isSeen = true;
    if (!cut.isWithinPage) { // beyond its edges a picture goes on as it ends
        scene.path().polygon(area.corners());
        const auto clip =
            scene.writer().addClip(scene.lastPath(), scene.frame().map, scene.itemLook().clip);
        isSeen = clip.has_value();
        look.clip = clip.value_or(Item::kNoClip);
    }
    tracePage(scene, cut, place);
    if (isSeen)
        fillWithPicture(scene, area, page.picture, look);
    tracePage(scene, cut, place);
    scene.stroke();
}

/// What stands for a page that cannot be shown. How large it is stands in the other file; what cuts
/// it off tells at least what would be seen.
void drawWithoutPage(Scene& scene, const db::RecordView& fields, const TvGeMatrix3d& place,
                     const TvString& name)
{
    Box box;
    const auto corners = cornersOf(fields.array("clip"), box);
    if (corners.empty())
        box = {0, 0, 1, 1}; // all of a page of unknown size: one unit stands for it
    const FrameArea area{place * TvGePoint3d(box.lowX, box.lowY, 0),
                         place * TvGeVector3d(box.width(), 0, 0),
                         place * TvGeVector3d(0, box.height(), 0)};
    if (corners.empty()) {
        drawNamedFrame(scene, area, base::PathRules::native().fileNameOf(name));
    } else {
        scene.path().polygon(corners);
        scene.stroke(place);
    }
    addPictureFrame(scene, name, area);
}

} // namespace

void underlay(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbUnderlayReference&>(entity);
    const db::RecordView fields = self.fields();
    if ((fields.integer("flags") & kOn) == 0)
        return;
    const TvDbObjectPointer<TvDbUnderlayDefinition> file(self.definitionId(), TvDb::kForNotify);
    const TvString name = file ? file->sourceFileName() : TvString();
    const TvGeMatrix3d place = placeOf(self);
    UnderlayPage page;
    // Nothing reads the other kinds of documents.
    if (file && scene.isShown() && entity.record().classDef()->name() == "PDFUNDERLAY")
        page = scene.pages().of(scene.database(), name, file->itemName(), toneOf(fields));
    if (!page.picture)
        return drawWithoutPage(scene, fields, place, name);
    // A unit of a page is an inch of its paper.
    const FrameArea area{place * TvGePoint3d(), place * TvGeVector3d(page.width, 0, 0),
                         place * TvGeVector3d(0, page.height, 0)};
    drawPage(scene, fields, place, page, area);
    addPictureFrame(scene, name, area);
}

} // namespace gs::draw
