#pragma once

#include <ed/drawing_view.h>

namespace ed {

/// Shows another view, and remembers the one before it. @return as DrawingView::setView().
bool changeView(TvDbObjectId where, const View& view);
/// For windows that change their view by themselves: what was shown before can be gone back to. The
/// same view twice is one.
void rememberView(TvDbObjectId where, const View& view);
/// Shows the view before the one that is shown. @return false when none is remembered.
bool previousView(TvDbObjectId where);

} // namespace ed
