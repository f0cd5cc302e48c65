#pragma once

#include "ed/drawing_view.h"

namespace ed {

/// How much larger or smaller something is to be shown.
struct ZoomScale {
    enum Kind {
        OfLimits, ///< n: the limits n times as large as when they fill the window
        OfView,   ///< nX: what is shown now, n times as large
        OfPaper,  ///< nXP: n units of paper for one of the model; for windows of sheets
    } kind = OfLimits;
    double factor = 1; ///< above 0
};

/// "2", "2x", "2xp" in any case; nullopt for anything else, and for what is not above 0.
std::optional<ZoomScale> zoomScale(const TvString& typed);

// The views that commands go to, from the one that is shown. nullopt when there is none.

/// The box in world coordinates fills the window. What has no size is brought to the middle.
View viewOfExtents(const View& now, const TvDbExtents& extents);
std::optional<View> scaledView(TvDbObjectId where, const View& now, const ZoomScale& scale);
/// What the drawing is drawn within: its limits, for a sheet its paper.
TvDbExtents limitsOf(TvDbObjectId where);

/// What lies between two corners (world), looked at as now; nullopt when that is nothing.
std::optional<View> viewBetween(const View& now, const TvGePoint3d& corner,
                                const TvGePoint3d& opposite);

} // namespace ed
