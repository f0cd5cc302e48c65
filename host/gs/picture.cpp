#include "gs/picture.h"

#include <cairo.h>

#include <base/file_ops.h>
#include <db/tv_db_layout.h>

namespace gs {

namespace {

struct Release {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;
using Context = std::unique_ptr<cairo_t, Release>;

bool isSize(int width, int height)
{
    return width > 0 && height > 0 && width <= kLargestSide && height <= kLargestSide;
}

/// What is to be seen of a layout: its paper, and what is drawn beside it.
Box whole(const DisplayList& list)
{
    Box box = list.extents();
    if (list.sheet())
        box.addBox(*list.sheet());
    return box;
}

} // namespace

Picture pictureOf(const DisplayList& list, const View& view, const PlayOptions& options)
{
    Picture picture;
    if (!isSize(view.width, view.height))
        return picture;
    const auto stride = cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, view.width);
    picture.width = view.width;
    picture.height = view.height;
    const auto count = static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height);
    if (view.pixelsPerUnit > 0)
        picture.pixels.resize(count); // cleared when it is played
    else
        picture.pixels.assign(count, 0);
    const Surface surface(
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(picture.pixels.data()),
                                            CAIRO_FORMAT_ARGB32, view.width, view.height, stride));
    const Context context(cairo_create(surface.get()));
    PlayOptions all = options;
    all.clear = true;
    all.budget = 0;
    play(list, view, context.get(), all);
    cairo_surface_flush(surface.get());
    if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS)
        return {};
    return picture;
}

Picture layoutPicture(TvDbDatabase& database, TvDbObjectId layout, int width, int height,
                      const PlayOptions& options)
{
    if (!isSize(width, height) || (layout && layout.database() != &database))
        return {};
    if (layout && !TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify))
        return {};
    const DisplayList list =
        layout ? DisplayList::ofLayout(layout) : DisplayList::ofModel(database);
    return pictureOf(list, View::fitting(whole(list), width, height), options);
}

} // namespace gs
