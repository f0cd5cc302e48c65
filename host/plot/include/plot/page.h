#pragma once

#include <atomic>
#include <optional>
#include <vector>

#include <base/status.h>
#include <gs/display_list.h>
#include <gs/flat.h>
#include <plot/page_setup.h>
#include <plot/style_table.h>

namespace plot {

/// A page as it will lie in front of its reader: what is on it, and where.
struct Page {
    gs::DisplayList list;
    double widthMm = 0, heightMm = 0;
    gs::FlatMap toPaper; ///< from the list's plane to millimetres from the lower left corner
    gs::Box shownMm;     ///< what is outside is cut off
    double mmPerUnit = 1;
    bool plotsWeights = true;
    double weightFactor = 1;
    StyleTable styles;
};

/// What a page is made with.
struct PageOptions {
    const PageSetup* setup = nullptr;        ///< takes the place of the layout's own; null: that
    bool isMonochrome = false;               ///< every line black
    const std::atomic<bool>* stop = nullptr; ///< as ListLimits::stop
    /// Opens external references, and keeps them for the next page; null: for this page only.
    db::AttachedDrawings* attached = nullptr;
};

/// The page of a layout.
///
/// A layout for which no paper was chosen comes on a landscape sheet of A4, as large as it holds.
/// @param layout  null: the model, with the model layout's settings.
/// @return plot::kLayoutMissing for what is no layout.
base::Result<Page> makePage(TvDbDatabase& database, TvDbObjectId layout,
                            const PageOptions& options = {});

/// The layout of that handle; when there is none, of that name in any case; null when there is none
/// of either. An empty name without a handle gives the model layout.
TvDbObjectId findLayout(TvDbDatabase& database, std::uint64_t handle, const TvString& name);

} // namespace plot
