#include "ed/view_history.h"

#include "drawing_states.h"

namespace ed {

namespace {

constexpr std::size_t kMostViews = 10;

std::deque<View>& formerViews(TvDbObjectId where)
{
    return stateOf(*where.database()).formerViews[where.handle().value()];
}

} // namespace

bool changeView(TvDbObjectId where, const View& view)
{
    const std::optional<View> before = drawingView().view(where);
    if (!before || !drawingView().setView(where, view))
        return false;
    if (drawingView().view(where) != before)
        rememberView(where, *before);
    return true;
}

void rememberView(TvDbObjectId where, const View& view)
{
    if (where.isNull())
        return;
    std::deque<View>& views = formerViews(where);
    if (!views.empty() && views.back() == view)
        return;
    views.push_back(view);
    if (views.size() > kMostViews)
        views.pop_front();
}

bool previousView(TvDbObjectId where)
{
    if (where.isNull())
        return false;
    std::deque<View>& views = formerViews(where);
    if (views.empty() || !drawingView().setView(where, views.back()))
        return false;
    views.pop_back();
    return true;
}

} // namespace ed
