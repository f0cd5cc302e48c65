#include "drawers.h"

#include <cmath>

#include <db/tv_db_viewport.h>
#include <ge/ocs.h>

#include "layout_scene.h"

namespace gs {

namespace {

std::vector<bool> layersFrozenIn(const TvDbViewport& viewport, const Scene& scene,
                                 std::size_t layers)
{
    std::vector<bool> frozen(layers);
    for (const TvDbObjectId id : viewport.frozenLayers())
        frozen[scene.looks().layer(id.handle().value()).look.layer] = true;
    return frozen;
}

} // namespace

double paperScale(const TvDbViewport& viewport)
{
    const double seen = cameraOf(viewport).heightSeen(viewport.width() / viewport.height());
    return seen > 0 ? viewport.height() / seen : viewport.customScale();
}

TvGeMatrix3d modelToPaper(const TvDbViewport& viewport)
{
    const double scale = paperScale(viewport);
    const TvGePoint3d center = viewport.centerPoint();
    const TvGePoint2d seen = viewport.viewCenter();
    return TvGeMatrix3d::translation({center.x, center.y, 0}) * TvGeMatrix3d::scaling(scale) *
           TvGeMatrix3d::translation({-seen.x, -seen.y, 0}) *
           viewAxes(viewport.viewDirection(), viewport.twistAngle()) *
           TvGeMatrix3d::translation(TvGePoint3d::origin() - viewport.viewTarget());
}

} // namespace gs

namespace gs::draw {

namespace {

void addWindow(SpacePath& path, const TvDbViewport& viewport)
{
    const TvGePoint3d c = viewport.centerPoint();
    const double x = viewport.width() / 2, y = viewport.height() / 2;
    path.polygon({{c.x - x, c.y - y, 0},
                  {c.x + x, c.y - y, 0},
                  {c.x + x, c.y + y, 0},
                  {c.x - x, c.y + y, 0}});
}

} // namespace

void viewport(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbViewport&>(entity);
    if (!self.isOn() || scene.isOverallViewport(self.objectId()) || scene.frame().by ||
        !(paperScale(self) > 0))
        return;
    const TvDbObjectId outline = self.nonRectClipEntityId();
    addWindow(scene.path(), self);
    if (outline)
        scene.outlineOf(outline); // drawn as an entity of its own
    else
        scene.stroke();
    const auto clip =
        scene.writer().addClip(scene.lastPath(), scene.frame().map, scene.frame().clip);
    if (!clip)
        return;
    const std::vector<bool> frozen = layersFrozenIn(self, scene, scene.looks().count());
    Scene::Frame inside;
    inside.map = scene.frame().map * modelToPaper(self);
    inside.clip = *clip;
    inside.frozen = &frozen;
    inside.viewHeight = self.viewHeight();
    // The same dashes on paper, whatever the scale of the viewport: or as long as in the model.
    inside.linetypeFactor =
        scene.database().headerRecord().flag("PSLTSCALE") ? 1 : paperScale(self);
    const Lens lens = cameraOf(self).lens(self.viewTarget(), inside.map, paperScale(self));
    scene.writer().setLens(&lens);
    scene.drawBlock(scene.database().modelSpaceId(), inside);
    scene.writer().setLens(nullptr);
}

} // namespace gs::draw
