#include <gs/picture.h>

#include "painter.h"

namespace gs {

namespace {

/// What leads from pixels to the filling's own square; nullopt where it is flat.
std::optional<cairo_matrix_t> toSquare(const FlatMap& place, double scale, double left, double top)
{
    // From the square to pixels first: y runs downwards there.
    cairo_matrix_t map;
    cairo_matrix_init(&map, place.xx * scale, -place.yx * scale, place.xy * scale,
                      -place.yy * scale, place.x0 * scale + left, top - place.y0 * scale);
    if (cairo_matrix_invert(&map) != CAIRO_STATUS_SUCCESS)
        return std::nullopt;
    return map;
}

} // namespace

namespace {

/// The pixels of a picture, for cairo to look at; null when it cannot.
cairo_pattern_t* patternOf(const Picture& picture, const cairo_matrix_t& square)
{
    if (picture.isEmpty())
        return nullptr;
    // cairo only reads them.
    auto* const pixels =
        reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(picture.pixels.data()));
    cairo_surface_t* const surface = cairo_image_surface_create_for_data(
        pixels, picture.isTransparent ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, picture.width,
        picture.height, picture.width * static_cast<int>(sizeof(std::uint32_t)));
    cairo_pattern_t* const pattern = cairo_pattern_create_for_surface(surface);
    cairo_surface_destroy(surface); // the pattern keeps it
    // From the square, whose y runs upwards, to rows from the top.
    cairo_matrix_t rows, map;
    cairo_matrix_init(&rows, picture.width, 0, 0, -picture.height, 0, picture.height);
    cairo_matrix_multiply(&map, &square, &rows);
    cairo_pattern_set_matrix(pattern, &map);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    return pattern;
}

const Picture& shownOf(const Filling& filling, Background background)
{
    const Picture& picture = *filling.picture;
    return filling.turnsOnDark && picture.onDark && background == Background::Dark
               ? picture.onDark->of(picture)
               : picture;
}

cairo_pattern_t* patternOf(const Filling& filling, const cairo_matrix_t& square,
                           Background background, std::uint8_t alpha)
{
    cairo_pattern_t* const pattern = filling.isRound ? cairo_pattern_create_radial(0, 0, 0, 0, 0, 1)
                                                     : cairo_pattern_create_linear(0, 0, 1, 0);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_pattern_set_matrix(pattern, &square);
    for (const Filling::Stop& stop : filling.stops) {
        const std::uint32_t rgb = rgbOf(stop.color, background);
        const auto part = [rgb](int shift) { return (rgb >> shift & 0xFF) / 255.0; };
        cairo_pattern_add_color_stop_rgba(pattern, stop.at, part(16), part(8), part(0),
                                          alpha / 255.0);
    }
    return pattern;
}

} // namespace

bool Painter::useFilling(const Item& item, std::uint8_t alpha)
{
    constexpr double kSmallest = 2; // pixels
    const Filling* const filling = m_list.fillingOf(item);
    if (!filling || std::max(item.box.width(), item.box.height()) * m_scale < kSmallest)
        return false;
    const auto square = toSquare(filling->place, m_scale, m_left, m_top);
    if (!square)
        return false;
    useCairo();
    cairo_pattern_t* const pattern =
        filling->picture ? patternOf(shownOf(*filling, m_options.background), *square)
                         : patternOf(*filling, *square, m_options.background, alpha);
    if (!pattern)
        return false;
    cairo_set_source(m_context, pattern);
    cairo_pattern_destroy(pattern);
    m_color = ~std::uint64_t(0); // no one colour is set
    return true;
}

} // namespace gs
