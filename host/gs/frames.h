#pragma once

#include <base/tv_string.h>

#include "scene.h"

namespace gs {

/// A parallelogram in the entity's block: where something of another file or program stands.
struct FrameArea {
    TvGePoint3d origin;
    TvGeVector3d right, up; ///< its whole lower and left edge

    std::vector<TvGePoint3d> corners() const
    {
        return {origin, origin + right, origin + right + up, origin + up};
    }
};

/// What stands for contents that cannot be drawn: the frame, and @p name in its middle.
void drawNamedFrame(Scene& scene, const FrameArea& area, const TvString& name);

/// Writes @p name as it is, from the origin of @p place along its x axis.
void drawName(Scene& scene, const TvGeMatrix3d& place, const TvString& name, double height);

/// How a picture is shown.
struct PictureLook {
    double fade = 0;                    ///< 0 to 1: nothing of it is left
    bool turnsOnDark = false;           ///< as in Filling
    std::uint32_t clip = Item::kNoClip; ///< in place of that of the frame
};

/// Fills what path() holds with @p picture, which covers @p area. Nothing without a picture.
void fillWithPicture(Scene& scene, const FrameArea& area,
                     const std::shared_ptr<const Picture>& picture, const PictureLook& shown = {});
/// Notes that the file @p name is shown there.
void addPictureFrame(Scene& scene, const TvString& name, const FrameArea& area);

} // namespace gs
