#include "drawers.h"

#include <base/path_rules.h>
#include <db/tv_db_annotations.h>
#include <db/tv_db_dictionary.h>
#include <ge/ocs.h>

#include "frames.h"
#include "picture_sources.h"

namespace gs::draw {

namespace {

constexpr std::int64_t kShown = 1;      // "display" of an image
constexpr std::int64_t kUnderlayOn = 2; // "flags" of an underlay

void addFrame(Scene& scene, const TvString& fileName, const TvGePoint3d& origin,
              const TvGeVector3d& right, const TvGeVector3d& up)
{
    const auto seen = [&](const TvGePoint3d& point) {
        return scene.writer().seen(scene.frame().map * point);
    };
    const ItemLook look = scene.itemLook();
    PictureFrame frame;
    frame.fileName = fileName;
    frame.origin = seen(origin);
    frame.right = seen(origin + right) - frame.origin;
    frame.up = seen(origin + up) - frame.origin;
    frame.layer = look.layer;
    frame.clip = look.clip;
    frame.handle = look.handle;
    scene.writer().addPicture(std::move(frame));
}

bool showsWipeoutFrames(Scene& scene)
{
    const TvDbObjectPointer<TvDbDictionary> root(scene.database().namedObjectsDictionaryId(),
                                                 TvDb::kForNotify);
    TvDbObjectId id;
    if (!root || root->getAt(TvString(u"ACAD_WIPEOUT_VARS"), id) != TvStatus::Ok)
        return true;
    const TvDbObjectPointer<TvDbObject> variables(id, TvDb::kForNotify);
    return !variables || variables->fields().integer("frame") != 0;
}

} // namespace

void image(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbRasterImage&>(entity);
    if ((self.fields().integer("display") & kShown) == 0)
        return;
    const TvDbObjectPointer<TvDbRasterImageDef> file(self.imageDefId(), TvDb::kForNotify);
    const TvString name = file ? file->sourceFileName() : TvString();
    scene.path().polygon(self.boundary());
    const auto picture = scene.pictureOf(self.imageDefId().handle().value(),
                                         [&] { return pictureOfFile(scene.database(), name); });
    fillWithPicture(scene, {self.origin(), self.width(), self.height()}, picture);
    scene.path().polygon(self.boundary());
    scene.stroke();
    addFrame(scene, name, self.origin(), self.width(), self.height());
}

void wipeout(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbWipeout&>(entity);
    scene.path().polygon(self.boundary());
    if ((self.fields().integer("display") & kShown) != 0)
        scene.add(Item::Kind::Fill, {}, Color::background());
    if (showsWipeoutFrames(scene))
        scene.stroke();
}

void underlay(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbUnderlayReference&>(entity);
    const db::RecordView fields = self.fields();
    if ((fields.integer("flags") & kUnderlayOn) == 0)
        return;
    ge::BlockPlacement placement;
    const db::Point scale = fields.point("scale");
    placement.insertion = self.position();
    placement.scale = {scale.x, scale.y, scale.z};
    placement.rotation = self.rotation();
    placement.normal = db::asVector(fields.point("normal"));
    const TvGeMatrix3d place = ge::blockTransform(placement);
    // How large its page is stands in the other file; what cuts it off tells at least what is seen.
    const db::ArrayView clip = fields.array("clip");
    std::vector<TvGePoint3d> corners;
    Box box;
    for (std::uint32_t i = 0; i < clip.size(); ++i) {
        corners.push_back(db::asPoint(clip.point(i)));
        box.add(db::asPoint2d(clip.point(i)));
    }
    if (corners.size() == 2)
        corners = {{box.lowX, box.lowY, 0},
                   {box.highX, box.lowY, 0},
                   {box.highX, box.highY, 0},
                   {box.lowX, box.highY, 0}};
    const TvDbObjectPointer<TvDbUnderlayDefinition> file(self.definitionId(), TvDb::kForNotify);
    const TvString name = file ? file->sourceFileName() : TvString();
    if (corners.size() < 3) { // all of a page of unknown size: one unit stands for it
        const FrameArea page{place * TvGePoint3d(), place * TvGeVector3d(1, 0, 0),
                             place * TvGeVector3d(0, 1, 0)};
        drawNamedFrame(scene, page, base::PathRules::native().fileNameOf(name));
        addFrame(scene, name, page.origin, page.right, page.up);
        return;
    }
    scene.path().polygon(corners);
    scene.stroke(place);
    addFrame(scene, name, place * TvGePoint3d(box.lowX, box.lowY, 0),
             place * TvGeVector3d(box.width(), 0, 0), place * TvGeVector3d(0, box.height(), 0));
}

} // namespace gs::draw
