#include "zoom.h"

#include <algorithm>

#include <db/ge_values.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "ed/prompts.h"

namespace ed {

namespace {

TvDbObjectId layoutOf(TvDbObjectId where)
{
    const TvDbObjectPointer<TvDbViewport> viewport(where, TvDb::kForNotify);
    if (!viewport)
        return where;
    const TvDbObjectPointer<TvDbBlockTableRecord> block(viewport->ownerId(), TvDb::kForNotify);
    return block ? block->getLayoutId() : TvDbObjectId();
}

/// A window of a sheet, in which model space is shown.
bool isWindow(TvDbObjectId where)
{
    const TvDbObjectPointer<TvDbViewport> viewport(where, TvDb::kForNotify);
    return viewport && !viewport->isOverall();
}

} // namespace

std::optional<ZoomScale> zoomScale(const TvString& typed)
{
    const TvString lower = typed.toLower();
    ZoomScale scale;
    TvString number = lower;
    if (lower.endsWith(u"xp")) {
        scale.kind = ZoomScale::OfPaper;
        number = lower.left(lower.length() - 2);
    } else if (lower.endsWith(u"x")) {
        scale.kind = ZoomScale::OfView;
        number = lower.left(lower.length() - 1);
    }
    const std::optional<double> factor = typedNumber(number);
    if (!factor || !(*factor > 0))
        return std::nullopt;
    scale.factor = *factor;
    return scale;
}

View viewOfExtents(const View& now, const TvDbExtents& extents)
{
    View next = now;
    const TvDbExtents box = displayExtents(now, extents);
    next.center = {box.center().x, box.center().y};
    const double height = std::max(box.size().y, box.size().x / now.aspect);
    if (height > 0)
        next.height = height;
    return next;
}

TvDbExtents limitsOf(TvDbObjectId where)
{
    if (where.isNull())
        return {};
    db::Point low, high;
    const TvDbObjectPointer<TvDbLayout> layout(layoutOf(where), TvDb::kForNotify);
    if (layout && !layout->isModelLayout() && !isWindow(where)) {
        if (layout->getPaperArea(low, high) != TvStatus::Ok)
            return {};
    } else {
        const db::Record& header = where.database()->headerRecord();
        low = header.point("LIMMIN");
        high = header.point("LIMMAX");
    }
    const bool isSet = low.x < high.x && low.y < high.y;
    return isSet ? TvDbExtents(db::asPoint(low), db::asPoint(high)) : TvDbExtents();
}

std::optional<View> scaledView(TvDbObjectId where, const View& now, const ZoomScale& scale)
{
    View next = now;
    switch (scale.kind) {
    case ZoomScale::OfView: next.height = now.height / scale.factor; break;
    case ZoomScale::OfPaper: {
        const TvDbObjectPointer<TvDbViewport> viewport(where, TvDb::kForNotify);
        if (!viewport || viewport->isOverall())
            return std::nullopt;
        next.height = viewport->height() / scale.factor;
        break;
    }
    case ZoomScale::OfLimits: {
        const TvDbExtents limits = limitsOf(where);
        if (limits.isEmpty())
            return std::nullopt;
        next.height = viewOfExtents(now, limits).height / scale.factor;
    }
    }
    return isUsable(next) ? std::optional(next) : std::nullopt;
}

std::optional<View> viewBetween(const View& now, const TvGePoint3d& corner,
                                const TvGePoint3d& opposite)
{
    // In the plane of the screen: what lies between two corners depends on how it is looked at.
    TvDbExtents box = displayExtents(now, TvDbExtents(corner, corner));
    box.addExtents(displayExtents(now, TvDbExtents(opposite, opposite)));
    if (!(box.size().x > 0) || !(box.size().y > 0))
        return std::nullopt;
    View view = now;
    view.center = {box.center().x, box.center().y};
    view.height = box.size().y;
    view.aspect = box.size().x / box.size().y;
    return view;
}

} // namespace ed
