#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <gs/display_list.h>
#include <gs/view.h>

struct _cairo; // as cairo's own header declares it
typedef struct _cairo cairo_t;

namespace gs {

/// How a display list is drawn.
struct PlayOptions {
    Background background = Background::Dark;
    enum class Weights : std::uint8_t {
        Hairlines, ///< every line one pixel
        Pixels,    ///< millimetres by pixelsPerMm, whatever the scale: model space on a screen
        Paper,     ///< as wide as they will be on the paper that is seen; of a model, as Pixels
    };
    Weights weights = Weights::Hairlines;
    double pixelsPerMm = 4;
    /// Fills the picture with the background first, and draws the sheet of paper. Later parts of a
    /// picture (from.next above 0) never do.
    bool clear = true;
    bool smooth = true; ///< antialiased
    /// By layer number: not drawn. May be shorter than the list's layers.
    std::vector<bool> hiddenLayers;
    /// By item handle: called for each item when it is there; false leaves the item out.
    std::function<bool(const Item&)> filter;
    /// Items to be drawn by this call at most; 0: all.
    std::uint32_t budget = 0;
    /// Asked now and then; true ends the call early, with isDone false.
    std::function<bool()> isCancelled;
};

/// How far a picture has come.
struct PlayProgress {
    std::uint32_t next = 0; ///< the item to go on with
    bool isDone = false;
    std::uint32_t drawn = 0; ///< items, by all calls
};

/// Draws what @p view shows of @p list.
///
/// To draw it in parts, give what the former call returned as @p from, until it is done: each part
/// draws over the former ones.
/// @param context  its target has view.width by view.height pixels, from (0,0) on in the context's
///                 coordinates; a translation by whole pixels is allowed. Left as it was. An image
///                 of 32-bit pixels is drawn into directly where nothing but a rectangle cuts it;
///                 null: nothing is drawn.
PlayProgress play(const DisplayList& list, const View& view, cairo_t* context,
                  const PlayOptions& options = {}, const PlayProgress& from = {});

} // namespace gs
