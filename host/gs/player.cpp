#include "gs/player.h"

#include <bit>

#include "painter.h"

namespace gs {

namespace {

constexpr std::uint32_t kAskEvery = 256; // items between two questions whether to go on

bool isHidden(const PlayOptions& options, const Item& item)
{
    return item.layer < options.hiddenLayers.size() && options.hiddenLayers[item.layer];
}

} // namespace

PlayProgress play(const DisplayList& list, const View& view, cairo_t* context,
                  const PlayOptions& options, const PlayProgress& from)
{
    PlayProgress progress = from;
    if (!context || view.width <= 0 || view.height <= 0 || !(view.pixelsPerUnit > 0)) {
        progress.isDone = true;
        return progress;
    }
    Painter painter(list, view, context, options);
    if (from.next == 0 && options.clear)
        painter.clear();
    std::vector<std::uint64_t> marks;
    list.mark(view.window().grown(painter.reach()), marks);
    std::uint32_t drawnNow = 0;
    const auto items = list.items();
    for (std::size_t word = progress.next / 64; word < marks.size(); ++word) {
        std::uint64_t left = marks[word];
        if (word == progress.next / 64)
            left &= ~std::uint64_t(0) << progress.next % 64;
        for (; left != 0; left &= left - 1) {
            const auto at = static_cast<std::uint32_t>(
                word * 64 + static_cast<unsigned>(std::countr_zero(left)));
            const Item& item = items[at];
            const bool isPause = drawnNow % kAskEvery == kAskEvery - 1 && options.isCancelled &&
                                 options.isCancelled();
            if (isPause || (options.budget != 0 && drawnNow >= options.budget)) {
                progress.next = at;
                progress.drawn += drawnNow;
                return progress;
            }
            if (isHidden(options, item) || (options.filter && !options.filter(item)))
                continue;
            painter.draw(item);
            ++drawnNow;
        }
    }
    progress.next = static_cast<std::uint32_t>(items.size());
    progress.drawn += drawnNow;
    progress.isDone = true;
    return progress;
}

} // namespace gs
