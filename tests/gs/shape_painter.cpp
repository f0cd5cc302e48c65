#include "shape_painter.h"

#include <cmath>
#include <cstdlib>

ShapePainter::ShapePainter(const gs::Box& seen, double scale) : m_seen(seen), m_scale(scale)
{
    m_picture = cairo_image_surface_create(CAIRO_FORMAT_RGB24,
                                           static_cast<int>(std::ceil(seen.width() * scale)),
                                           static_cast<int>(std::ceil(seen.height() * scale)));
    m_pen = cairo_create(m_picture);
    cairo_set_source_rgb(m_pen, 1, 1, 1);
    cairo_paint(m_pen);
    cairo_scale(m_pen, scale, -scale);
    cairo_translate(m_pen, -seen.lowX, -seen.highY);
    cairo_set_line_width(m_pen, 1.3 / scale);
    cairo_set_line_cap(m_pen, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(m_pen, CAIRO_LINE_JOIN_ROUND);
    setColor(0, 0, 0);
}

ShapePainter::~ShapePainter()
{
    cairo_destroy(m_pen);
    cairo_surface_destroy(m_picture);
}

void ShapePainter::setColor(double red, double green, double blue)
{
    cairo_set_source_rgb(m_pen, red, green, blue);
}

void ShapePainter::setColor(const gs::OwnColor& color)
{
    constexpr double kSome[][3] = {{0, 0, 0},     {1, 0, 0}, {0.8, 0.7, 0}, {0, 0.7, 0},
                                   {0, 0.7, 0.7}, {0, 0, 1}, {0.8, 0, 0.8}};
    if (color.kind == gs::OwnColor::Kind::Rgb)
        setColor((color.value >> 16 & 255) / 255.0, (color.value >> 8 & 255) / 255.0,
                 (color.value & 255) / 255.0);
    else if (color.kind == gs::OwnColor::Kind::Index)
        setColor(kSome[color.value % 7][0], kSome[color.value % 7][1], kSome[color.value % 7][2]);
    else
        setColor(0, 0, 0);
}

void ShapePainter::trace(const gs::Path& path, const gs::FlatMap& map)
{
    cairo_new_path(m_pen);
    const TvGePoint2d* point = path.points().data();
    for (const gs::Path::Verb verb : path.verbs()) {
        const auto next = [&] { return map * *point++; };
        switch (verb) {
        case gs::Path::Verb::Move: {
            const TvGePoint2d p = next();
            cairo_move_to(m_pen, p.x, p.y);
            break;
        }
        case gs::Path::Verb::Line: {
            const TvGePoint2d p = next();
            cairo_line_to(m_pen, p.x, p.y);
            break;
        }
        case gs::Path::Verb::Curve: {
            const TvGePoint2d a = next(), b = next(), c = next();
            cairo_curve_to(m_pen, a.x, a.y, b.x, b.y, c.x, c.y);
            break;
        }
        case gs::Path::Verb::Close: cairo_close_path(m_pen); break;
        }
    }
}

void ShapePainter::stroke(const gs::Path& path, const gs::FlatMap& map)
{
    trace(path, map);
    cairo_stroke(m_pen);
}

void ShapePainter::fill(const gs::Path& path, bool isEvenOdd, const gs::FlatMap& map)
{
    trace(path, map);
    cairo_set_fill_rule(m_pen, isEvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    cairo_fill(m_pen);
}

void ShapePainter::paint(const gs::TextShape& shape, const gs::FlatMap& map)
{
    const gs::FlatMap place = map * gs::FlatMap::seenFromAbove(shape.placement);
    if (shape.background) {
        setColor(0.9, 0.95, 1);
        if (shape.background->isFilled)
            fill(shape.background->area, false, place);
        setColor(0.5, 0.5, 0.5);
        if (shape.background->hasFrame)
            stroke(shape.background->area, place);
    }
    for (const gs::TextPart& part : shape.parts) {
        setColor(part.color);
        part.isFilled ? fill(part.path, false, place) : stroke(part.path, place);
    }
    setColor(0, 0, 0);
}

void ShapePainter::paint(const gs::HatchShape& shape, const gs::FlatMap& map)
{
    const gs::FlatMap place = map * gs::FlatMap::seenFromAbove(shape.placement);
    if (shape.kind == gs::HatchShape::Kind::Lines) {
        stroke(shape.lines, place);
        return;
    }
    if (shape.kind == gs::HatchShape::Kind::Tint)
        setColor(1 - shape.coverage, 1 - shape.coverage, 1 - shape.coverage);
    fill(shape.area, shape.isEvenOdd, place);
    setColor(0, 0, 0);
}

bool ShapePainter::isInked(const TvGePoint2d& place) const
{
    const int x = static_cast<int>(std::floor((place.x - m_seen.lowX) * m_scale));
    const int y = static_cast<int>(std::floor((m_seen.highY - place.y) * m_scale));
    if (x < 0 || y < 0 || x >= cairo_image_surface_get_width(m_picture) ||
        y >= cairo_image_surface_get_height(m_picture))
        return false;
    cairo_surface_flush(m_picture);
    const unsigned char* row =
        cairo_image_surface_get_data(m_picture) +
        static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(m_picture);
    return row[4 * x + 1] < 128; // green
}

void ShapePainter::save(const std::string& name) const
{
    if (const char* folder = std::getenv("KV_SAMPLES"))
        cairo_surface_write_to_png(m_picture,
                                   (std::filesystem::path(folder) / (name + ".png")).c_str());
}
