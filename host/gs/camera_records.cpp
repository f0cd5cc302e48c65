#include <db/ge_values.h>
#include <db/tv_db_viewport.h>

#include "layout_scene.h"

namespace gs {

namespace {

// "status" of a viewport
enum : std::int64_t { kPerspective = 1, kFront = 2, kBack = 4, kFrontNotAtEye = 0x10 };

Camera cameraWith(const db::RecordView& fields)
{
    Camera camera;
    camera.lensMm = fields.real("lens_length");
    camera.distance = db::asVector(fields.point("direction")).length();
    camera.frontClip = fields.real("front_clip");
    camera.backClip = fields.real("back_clip");
    return camera;
}

} // namespace

Camera cameraOf(const TvDbViewport& viewport)
{
    Camera camera = cameraWith(viewport.fields());
    const std::int64_t status = viewport.fields().integer("status");
    camera.isPerspective = (status & kPerspective) != 0;
    camera.hasFront = (status & kFront) != 0;
    camera.hasBack = (status & kBack) != 0;
    camera.isFrontAtEye = (status & kFrontNotAtEye) == 0;
    return camera;
}

Camera cameraOfView(const db::RecordView& view)
{
    Camera camera = cameraWith(view);
    camera.isPerspective = view.flag("perspective");
    camera.hasFront = view.flag("front_clip_on");
    camera.hasBack = view.flag("back_clip_on");
    camera.isFrontAtEye = !view.flag("front_not_at_eye");
    return camera;
}

} // namespace gs
