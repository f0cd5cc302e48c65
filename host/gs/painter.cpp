#include "painter.h"

#include <cmath>

#include <gs/cut_path.h>

namespace gs {

namespace {

constexpr double kNearPixels = 8192;    // around the picture, beyond which paths are cut
constexpr double kDotPixels = 0.8;      // what is no larger is a dot
constexpr double kSmallestDetail = 2.5; // pixels
constexpr double kThinnestPixels = 1.5; // strokes up to this are one pixel wide
constexpr std::size_t kVerbsOfRectangle = 5;
constexpr double kLargestWeightMm = 10;
constexpr double kWidestPixels = 20000;

void setRgb(cairo_t* context, std::uint32_t rgb, double alpha = 1)
{
    const auto part = [rgb](int shift) { return (rgb >> shift & 0xFF) / 255.0; };
    cairo_set_source_rgba(context, part(16), part(8), part(0), alpha);
}

} // namespace

Painter::Painter(const DisplayList& list, const View& view, cairo_t* context,
                 const PlayOptions& options)
    : m_list(list), m_view(view), m_context(context), m_options(options),
      m_scale(view.pixelsPerUnit), m_left(view.width / 2.0 - view.center.x * view.pixelsPerUnit),
      m_top(view.height / 2.0 + view.center.y * view.pixelsPerUnit),
      m_near(view.window().grown(kNearPixels / view.pixelsPerUnit)),
      m_raster(context, options.smooth), m_isRaster(m_raster.isUsable())
{
    cairo_save(m_context);
    cairo_save(m_context); // the state of the clip that is set
    cairo_new_path(m_context);
    setState();
}

Painter::~Painter()
{
    m_raster.end();
    cairo_restore(m_context);
    cairo_restore(m_context);
    cairo_new_path(m_context);
}

double Painter::reach() const
{
    return (kLargestWeightMm * pixelsPerMm() / 2 + 1) / m_scale;
}

double Painter::pixelsPerMm() const
{
    switch (m_options.weights) {
    case PlayOptions::Weights::Hairlines: return 0;
    case PlayOptions::Weights::Paper:
        if (m_list.isPaper())
            return m_scale / m_list.mmPerUnit();
        break; // model space is on no paper
    case PlayOptions::Weights::Pixels: break;
    }
    return m_options.pixelsPerMm;
}

bool Painter::isNear(const Box& box) const
{
    return box.lowX >= m_near.lowX && box.highX <= m_near.highX && box.lowY >= m_near.lowY &&
           box.highY <= m_near.highY;
}

void Painter::clear()
{
    useCairo();
    setRgb(m_context, rgbOf(m_options.background));
    cairo_rectangle(m_context, 0, 0, m_view.width, m_view.height);
    cairo_fill(m_context);
    if (m_list.sheet())
        drawSheet();
}

void Painter::drawSheet()
{
    constexpr double kShadowPixels = 4;
    constexpr std::uint32_t kShadow = 0x6E7378, kEdge = 0x80868C;
    const Box seen = m_list.sheet()->common(m_near);
    if (seen.isEmpty())
        return;
    const TvGePoint2d low = pixel({seen.lowX, seen.lowY}), high = pixel({seen.highX, seen.highY});
    const double x = std::round(low.x), y = std::round(high.y);
    const double width = std::round(high.x) - x, height = std::round(low.y) - y;
    if (m_options.background == Background::Paper) {
        setRgb(m_context, deskRgb());
        cairo_paint(m_context);
        setRgb(m_context, kShadow);
        cairo_rectangle(m_context, x + kShadowPixels, y + kShadowPixels, width, height);
        cairo_fill(m_context);
        setRgb(m_context, rgbOf(m_options.background));
        cairo_rectangle(m_context, x, y, width, height);
        cairo_fill(m_context);
    }
    setRgb(m_context, kEdge);
    cairo_set_line_width(m_context, 1);
    cairo_rectangle(m_context, x + 0.5, y + 0.5, width - 1, height - 1);
    cairo_stroke(m_context);
    m_color = ~std::uint64_t(0);
}

// Clips

void Painter::addClips(std::uint32_t number)
{
    if (number == Item::kNoClip)
        return;
    const Clip& clip = m_list.clips()[number];
    addClips(clip.parent);
    cairo_new_path(m_context);
    if (clip.isRectangle) {
        const Raster::Rectangle area = pixelsOf(clip);
        cairo_rectangle(m_context, area.left, area.top, std::max(area.right - area.left, 0),
                        std::max(area.bottom - area.top, 0));
    } else if (isNear(clip.box)) {
        trace(m_list.path(clip.path));
    } else {
        traceCut(cutArea(m_list.path(clip.path), m_near, 0.25 / m_scale));
    }
    cairo_set_fill_rule(m_context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(m_context);
}

// Whole pixels: quicker by far, and the frame of the window hides the difference.
Raster::Rectangle Painter::pixelsOf(const Clip& clip) const
{
    Box box;
    for (const TvGePoint2d& point : m_list.path(clip.path).points)
        box.add(point);
    box = box.common(m_near);
    if (box.isEmpty())
        return {};
    const TvGePoint2d low = pixel({box.lowX, box.lowY}), high = pixel({box.highX, box.highY});
    return {static_cast<int>(std::floor(low.x)), static_cast<int>(std::floor(high.y)),
            static_cast<int>(std::ceil(high.x)), static_cast<int>(std::ceil(low.y))};
}

std::optional<Raster::Rectangle> Painter::scissorsOf(std::uint32_t number) const
{
    Raster::Rectangle scissors = m_raster.whole();
    for (; number != Item::kNoClip; number = m_list.clips()[number].parent) {
        const Clip& clip = m_list.clips()[number];
        if (!clip.isRectangle)
            return std::nullopt;
        scissors = scissors.common(pixelsOf(clip));
    }
    return scissors;
}

void Painter::useClip(std::uint32_t clip)
{
    m_clip = clip;
    if (!m_raster.isUsable())
        return;
    const auto scissors = scissorsOf(clip);
    m_isRaster = scissors.has_value();
    if (scissors)
        m_raster.setScissors(*scissors);
}

void Painter::setState()
{
    cairo_set_antialias(m_context, m_options.smooth ? CAIRO_ANTIALIAS_FAST : CAIRO_ANTIALIAS_NONE);
    cairo_set_line_cap(m_context, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(m_context, CAIRO_LINE_JOIN_ROUND);
}

void Painter::useCairo()
{
    m_raster.end();
    if (m_clip == m_cairoClip)
        return;
    cairo_restore(m_context);
    cairo_save(m_context);
    setState();
    m_color = ~std::uint64_t(0);
    m_cairoClip = m_clip;
    addClips(m_clip);
}

void Painter::useRaster(const Item& item, std::uint8_t alpha)
{
    m_raster.begin();
    m_raster.setColor(rgbOf(item.color, m_options.background), alpha);
}

// Items

void Painter::useColor(const Item& item, std::uint8_t alpha)
{
    useCairo();
    const std::uint32_t rgb = rgbOf(item.color, m_options.background);
    const std::uint64_t wanted = std::uint64_t(alpha) << 32 | rgb;
    if (wanted == m_color)
        return;
    m_color = wanted;
    setRgb(m_context, rgb, alpha / 255.0);
}

template <class Place>
void Painter::trace(PathView path, const Place& place)
{
    std::size_t at = 0;
    const auto next = [&] { return place(path.points[at++]); };
    for (const Path::Verb verb : path.verbs)
        switch (verb) {
        case Path::Verb::Move: {
            const TvGePoint2d to = next();
            cairo_move_to(m_context, to.x, to.y);
            break;
        }
        case Path::Verb::Line: {
            const TvGePoint2d to = next();
            cairo_line_to(m_context, to.x, to.y);
            break;
        }
        case Path::Verb::Curve: {
            const TvGePoint2d a = next(), b = next(), to = next();
            cairo_curve_to(m_context, a.x, a.y, b.x, b.y, to.x, to.y);
            break;
        }
        case Path::Verb::Close: cairo_close_path(m_context); break;
        }
}

void Painter::trace(PathView path)
{
    trace(path, [this](const TvGePoint2d& point) { return pixel(point); });
}

void Painter::traceCut(const Path& path)
{
    trace({path.verbs(), path.points()});
}

double Painter::strokeWidth(const Item& item) const
{
    double pixels = 1;
    if (item.widthUnits > 0)
        pixels = item.widthUnits * m_scale;
    else
        pixels = item.weightMm * pixelsPerMm();
    return std::clamp(pixels, 1.0, kWidestPixels);
}

void Painter::stroke(const Item& item, PathView path)
{
    useColor(item, item.alpha);
    const double width = strokeWidth(item);
    cairo_set_line_width(m_context, width);
    const bool isWide = item.widthUnits > 0;
    if (isWide) {
        cairo_set_line_cap(m_context, CAIRO_LINE_CAP_BUTT);
        cairo_set_line_join(m_context, CAIRO_LINE_JOIN_MITER);
    }
    cairo_new_path(m_context);
    if (isNear(item.box))
        trace(path);
    else
        traceCut(cutLines(path, m_near.grown(width / m_scale), 0.25 / m_scale));
    cairo_stroke(m_context);
    if (isWide) {
        cairo_set_line_cap(m_context, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join(m_context, CAIRO_LINE_JOIN_ROUND);
    }
}

void Painter::fill(const Item& item, PathView path, Item::Kind kind, std::uint8_t alpha)
{
    const bool isFilled = useFilling(item, alpha);
    if (!isFilled)
        useColor(item, alpha);
    cairo_new_path(m_context);
    if (isNear(item.box))
        trace(path);
    else
        traceCut(cutArea(path, m_near, 0.25 / m_scale));
    cairo_set_fill_rule(m_context, kind == Item::Kind::EvenOddFill ? CAIRO_FILL_RULE_EVEN_ODD
                                                                   : CAIRO_FILL_RULE_WINDING);
    if (!isFilled || alpha == 255 || !m_list.fillingOf(item)->picture)
        return cairo_fill(m_context);
    cairo_save(m_context);
    cairo_clip(m_context);
    cairo_paint_with_alpha(m_context, alpha / 255.0);
    cairo_restore(m_context);
}

template <class Line>
void Painter::walk(PathView path, bool isArea, const Line& line) const
{
    constexpr int kMostChords = 64;
    TvGePoint2d start, at;
    std::size_t index = 0;
    const auto next = [&] { return pixel(path.points[index++]); };
    const auto lineTo = [&](const TvGePoint2d& to) {
        line(at, to);
        at = to;
    };
    for (const Path::Verb verb : path.verbs)
        switch (verb) {
        case Path::Verb::Move:
            if (isArea && index > 0)
                lineTo(start);
            start = at = next();
            break;
        case Path::Verb::Line: lineTo(next()); break;
        case Path::Verb::Curve: {
            const TvGePoint2d from = at, a = next(), b = next(), to = next();
            const TvGeVector2d chord = to - from;
            const TvGeVector2d offA = a - (from + chord * (1.0 / 3)),
                               offB = b - (from + chord * (2.0 / 3));
            const double bulge2 =
                std::max(offA.x * offA.x + offA.y * offA.y, offB.x * offB.x + offB.y * offB.y);
            // Chords leave the curve by less than a quarter of a pixel.
            const int chords =
                bulge2 * 9 <= 1
                    ? 1
                    : static_cast<int>(std::min(std::ceil(std::sqrt(std::sqrt(bulge2) * 3)),
                                                double(kMostChords)));
            for (int i = 1; i < chords; ++i) {
                const double t = double(i) / chords, s = 1 - t;
                const double f = s * s * s, g = 3 * s * s * t, h = 3 * s * t * t, k = t * t * t;
                lineTo({from.x * f + a.x * g + b.x * h + to.x * k,
                        from.y * f + a.y * g + b.y * h + to.y * k});
            }
            lineTo(to);
            break;
        }
        case Path::Verb::Close: lineTo(start); break;
        }
    if (isArea && index > 0)
        lineTo(start);
}

void Painter::strokeThin(const Item& item, PathView path)
{
    useRaster(item, item.alpha);
    walk(path, false,
         [this](const TvGePoint2d& from, const TvGePoint2d& to) { m_raster.line(from, to); });
}

void Painter::fillSmall(const Item& item, PathView path, std::uint8_t alpha)
{
    useRaster(item, alpha);
    Box box;
    for (const TvGePoint2d& point : path.points)
        box.add(pixel(point));
    m_raster.startArea(box);
    walk(path, true,
         [this](const TvGePoint2d& from, const TvGePoint2d& to) { m_raster.edge(from, to); });
    m_raster.finishArea();
}

void Painter::drawDot(const Item& item)
{
    const TvGePoint2d at = pixel(item.box.center());
    if (m_isRaster) {
        useRaster(item, item.alpha);
        m_raster.pixel(at);
        return;
    }
    useColor(item, item.alpha);
    cairo_rectangle(m_context, std::floor(at.x), std::floor(at.y), 1, 1);
    cairo_fill(m_context);
}

void Painter::drawEndless(const Item& item)
{
    const PathView path = m_list.path(item.path);
    const auto ends =
        cutEndless(path.points[0], path.points[1], item.kind == Item::Kind::Ray, m_near);
    if (!ends)
        return;
    useColor(item, item.alpha);
    cairo_set_line_width(m_context, strokeWidth(item));
    const TvGePoint2d from = pixel(ends->first), to = pixel(ends->second);
    cairo_new_path(m_context);
    cairo_move_to(m_context, from.x, from.y);
    cairo_line_to(m_context, to.x, to.y);
    cairo_stroke(m_context);
}

void Painter::drawMarker(const Item& item)
{
    const PathView path = m_list.path(item.path);
    const TvGePoint2d at = pixel(path.points[0]);
    useColor(item, item.alpha);
    cairo_set_line_width(m_context, strokeWidth(item));
    cairo_new_path(m_context);
    trace({path.verbs.subspan(1), path.points.subspan(1)}, [&](const TvGePoint2d& part) {
        return TvGePoint2d(at.x + part.x * m_view.height, at.y - part.y * m_view.height);
    });
    cairo_stroke(m_context);
}

void Painter::draw(const Item& item)
{
    if (item.clip != m_clip)
        useClip(item.clip);
    switch (item.kind) {
    case Item::Kind::Line:
    case Item::Kind::Ray: drawEndless(item); return;
    case Item::Kind::Marker: drawMarker(item); return;
    default: break;
    }
    const double size = std::max(item.box.width(), item.box.height()) * m_scale;
    if (size < kDotPixels && strokeWidth(item) < 2) {
        drawDot(item);
        return;
    }
    if (item.detail > 0 && item.detail * m_scale < kSmallestDetail && item.coarse.verbCount > 0)
        drawCoarse(item);
    else if (item.kind == Item::Kind::Stroke)
        strokeItem(item, item.path);
    else
        fillItem(item, item.path, item.kind, item.alpha);
}

void Painter::drawCoarse(const Item& item)
{
    if (item.coarseAlpha == 0)
        strokeItem(item, item.coarse);
    else
        fillItem(item, item.coarse, Item::Kind::EvenOddFill,
                 static_cast<std::uint8_t>(item.alpha * item.coarseAlpha / 255));
}

void Painter::strokeItem(const Item& item, const PathRange& range)
{
    if (m_isRaster && strokeWidth(item) <= kThinnestPixels)
        strokeThin(item, pathOf(range));
    else
        stroke(item, pathOf(range));
}

void Painter::fillItem(const Item& item, const PathRange& range, Item::Kind kind,
                       std::uint8_t alpha)
{
    const PathView path = pathOf(range);
    // The raster fills what a path winds around; of one loop without crossings it is the same.
    const bool isPlain = kind == Item::Kind::Fill || path.verbs.size() <= kVerbsOfRectangle;
    if (m_isRaster && isPlain && item.filling == 0 &&
        Raster::isSmall(item.box.width() * m_scale, item.box.height() * m_scale))
        fillSmall(item, path, alpha);
    else
        fill(item, path, kind, alpha);
}

} // namespace gs
