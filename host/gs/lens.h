#pragma once

#include <limits>

#include <gs/path.h>

#include "space_path.h"

namespace gs {

/// How a view sees what is not flat in it: from a camera, or only between two planes.
///
/// Places are those of the list, x to the right, y upwards, z towards who looks. What lies in the
/// plane of the target stays where it is.
struct Lens {
    TvGePoint3d target;  ///< in the middle of the camera's view
    double distance = 0; ///< of the camera from the target's plane; 0: it looks along z everywhere
    double front = std::numeric_limits<double>::infinity(); ///< nothing above this z is seen
    double back = -std::numeric_limits<double>::infinity(); ///< nor below this one

    /// Nothing is seen otherwise than without it.
    bool isPlain() const;
    /// How much larger things are at @p z than in the target's plane.
    double enlargement(double z) const;
    /// Where @p place is seen; not finite for what is not seen at all.
    TvGePoint2d seen(const TvGePoint3d& place) const;
    /// What is seen of lines, where @p map has put them. From a camera, curves become chords.
    Path seenLines(const SpacePath& path, const TvGeMatrix3d& map) const;
    /// The same of an area: what is cut off is closed along the cut.
    Path seenArea(const SpacePath& path, const TvGeMatrix3d& map) const;
    /// The same of the line through the first two points of @p path, on to both sides or (@p isRay)
    /// beyond the second.
    Path seenEndless(const SpacePath& path, const TvGeMatrix3d& map, bool isRay) const;

    /// Sets front so that nothing behind the camera, or all but in it, is seen.
    void keepBeforeCamera();
};

/// What a record of a view says of its camera.
struct Camera {
    bool isPerspective = false;
    double lensMm = 0;   ///< of a camera whose film is 42 mm from corner to corner
    double distance = 0; ///< of the camera from its target, in model units
    bool hasFront = false, hasBack = false;
    bool isFrontAtEye = false;          ///< in place of frontClip
    double frontClip = 0, backClip = 0; ///< from the target towards the camera, in model units

    /// How high a window is in the target's plane that is @p aspect as wide as high; 0 when the
    /// view does not look through a lens, or its numbers make no sense.
    double heightSeen(double aspect) const;
    /// @param toList  from the model's world to the list's plane; its scale is the same everywhere.
    Lens lens(const TvGePoint3d& target, const TvGeMatrix3d& toList, double scale) const;
};

} // namespace gs
