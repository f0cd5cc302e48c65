#include "raster.h"

#include <cmath>

namespace gs {

Raster::Rectangle Raster::Rectangle::common(const Rectangle& other) const
{
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
}

namespace {

constexpr std::uint32_t kHalf = 0x00FF00FF; // two of a pixel's four channels

/// The whole number at or below @p number, which is one that int holds.
inline int wholeBelow(double number)
{
    const int cut = static_cast<int>(number);
    return cut - (number < cut ? 1 : 0);
}

bool isWhole(double number)
{
    return number == std::floor(number) && std::abs(number) < 1 << 20;
}

/// What the context's clip leaves of the rectangle; empty when it is no rectangle of whole pixels.
Raster::Rectangle clipOf(cairo_t* context, const Raster::Rectangle& all)
{
    Raster::Rectangle left;
    cairo_rectangle_list_t* list = cairo_copy_clip_rectangle_list(context);
    if (list->status == CAIRO_STATUS_SUCCESS && list->num_rectangles == 1) {
        const cairo_rectangle_t& r = list->rectangles[0];
        if (isWhole(r.x) && isWhole(r.y) && isWhole(r.width) && isWhole(r.height))
            left =
                Raster::Rectangle{static_cast<int>(r.x), static_cast<int>(r.y),
                                  static_cast<int>(r.x + r.width), static_cast<int>(r.y + r.height)}
                    .common(all);
    }
    cairo_rectangle_list_destroy(list);
    return left;
}

} // namespace

Raster::Raster(cairo_t* context, bool isSmooth) : m_isSmooth(isSmooth)
{
    cairo_surface_t* surface = cairo_get_group_target(context);
    cairo_matrix_t map;
    cairo_get_matrix(context, &map);
    double offsetX = 0, offsetY = 0;
    if (cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE)
        return;
    cairo_surface_get_device_offset(surface, &offsetX, &offsetY);
    const cairo_format_t format = cairo_image_surface_get_format(surface);
    if ((format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) || map.xx != 1 ||
        map.yy != 1 || map.xy != 0 || map.yx != 0 || !isWhole(map.x0 + offsetX) ||
        !isWhole(map.y0 + offsetY))
        return;
    const int x0 = static_cast<int>(map.x0 + offsetX), y0 = static_cast<int>(map.y0 + offsetY);
    m_whole = clipOf(context, {-x0, -y0, cairo_image_surface_get_width(surface) - x0,
                               cairo_image_surface_get_height(surface) - y0});
    m_scissors = m_whole;
    cairo_surface_flush(surface);
    unsigned char* const data = cairo_image_surface_get_data(surface);
    if (m_whole.isEmpty() || !data)
        return;
    m_surface = surface;
    m_stride = cairo_image_surface_get_stride(surface) / static_cast<int>(sizeof(std::uint32_t));
    m_pixels = reinterpret_cast<std::uint32_t*>(data) + y0 * m_stride + x0;
}

void Raster::open()
{
    cairo_surface_flush(m_surface);
    m_isOpen = true;
}

void Raster::close()
{
    cairo_surface_mark_dirty(m_surface);
    m_isOpen = false;
}

void Raster::setColor(std::uint32_t rgb, std::uint8_t alpha)
{
    m_ink = {rgb & kHalf, 0x00FF0000 | (rgb >> 8 & 0xFF), alpha};
}

// Two of the four channels at a time: each has room for eight more bits above it.
inline void Raster::Ink::mix(std::uint32_t& pixel, std::uint32_t part) const
{
    const std::uint32_t rest = 256 - part;
    const std::uint32_t lowHalf = (low * part + (pixel & kHalf) * rest) >> 8 & kHalf;
    const std::uint32_t highHalf = (high * part + (pixel >> 8 & kHalf) * rest) & ~kHalf;
    pixel = lowHalf | highHalf;
}

inline void Raster::Ink::blend(std::uint32_t& pixel, std::uint32_t coverage) const
{
    std::uint32_t part = coverage * alpha;
    part = (part + 128 + (part >> 8)) >> 8; // by 255
    mix(pixel, part + (part >> 7));         // 0 to 256
}

inline void Raster::Ink::blendOpaque(std::uint32_t& pixel, std::uint32_t coverage) const
{
    mix(pixel, coverage + (coverage >> 7));
}

void Raster::rectangle(const Rectangle& area, std::uint32_t coverage)
{
    const Rectangle seen = area.common(m_scissors);
    for (int y = seen.top; y < seen.bottom; ++y)
        for (int x = seen.left; x < seen.right; ++x)
            m_ink.blend(row(y)[x], coverage);
}

void Raster::pixel(const TvGePoint2d& at)
{
    if (at.x >= m_scissors.left && at.x < m_scissors.right && at.y >= m_scissors.top &&
        at.y < m_scissors.bottom)
        m_ink.blend(row(wholeBelow(at.y))[wholeBelow(at.x)], 255);
}

// From pixel to pixel along the longer side; across it, the line covers parts of two.
template <bool IsSteep>
void Raster::slanted(double from, double to, double across, double slope)
{
    const int low = IsSteep ? m_scissors.left : m_scissors.top;
    const int high = IsSteep ? m_scissors.right : m_scissors.bottom;
    const int first = std::max(wholeBelow(from), IsSteep ? m_scissors.top : m_scissors.left);
    const int last = std::min(wholeBelow(to), (IsSteep ? m_scissors.bottom : m_scissors.right) - 1);
    constexpr double kOne = 65536;
    auto place = static_cast<std::int64_t>((across + (first + 0.5 - from) * slope - 0.5) * kOne);
    const auto step = static_cast<std::int64_t>(slope * kOne);
    // Of most lines, both ends lie well within.
    const std::int64_t end = place + step * (last - first);
    const bool isWithin =
        (std::min(place, end) >> 16) >= low && (std::max(place, end) >> 16) + 1 < high;
    const Ink ink = m_ink;
    if (isWithin && m_isSmooth) {
        const std::ptrdiff_t beside = IsSteep ? 1 : m_stride, on = IsSteep ? m_stride : 1;
        std::uint32_t* const pixels = m_pixels;
        if (ink.alpha == 255) { // as most are
            for (int along = first; along <= last; ++along, place += step) {
                std::uint32_t* const at = pixels + along * on + (place >> 16) * beside;
                const auto part = static_cast<std::uint32_t>(place >> 8 & 0xFF);
                ink.blendOpaque(at[0], 255 - part);
                if (part != 0) // of level and upright lines it always is 0
                    ink.blendOpaque(at[beside], part);
            }
            return;
        }
        for (int along = first; along <= last; ++along, place += step) {
            std::uint32_t* const at = pixels + along * on + (place >> 16) * beside;
            const auto part = static_cast<std::uint32_t>(place >> 8 & 0xFF);
            ink.blend(at[0], 255 - part);
            if (part != 0)
                ink.blend(at[beside], part);
        }
        return;
    }
    const auto put = [&](int along, std::int64_t side, std::uint32_t coverage) {
        if (side >= low && side < high)
            ink.blend(IsSteep ? row(along)[side] : row(static_cast<int>(side))[along], coverage);
    };
    for (int along = first; along <= last; ++along, place += step) {
        const std::int64_t side = place >> 16;
        const auto part = static_cast<std::uint32_t>(place >> 8 & 0xFF);
        if (m_isSmooth) {
            put(along, side, 255 - part);
            put(along, side + 1, part);
        } else {
            put(along, side + (part >> 7), 255);
        }
    }
}

void Raster::line(const TvGePoint2d& a, const TvGePoint2d& b)
{
    constexpr double kStraight = 1.0 / 64; // pixels over the whole length
    if (m_scissors.isEmpty())
        return; // a viewport beside the picture: its right edge may lie left of its left one
    // Cut to the scissors, and a little around.
    const Box window{m_scissors.left - 2.0, m_scissors.top - 2.0, m_scissors.right + 2.0,
                     m_scissors.bottom + 2.0};
    double low = 0, high = 1;
    const TvGeVector2d way = b - a;
    const auto narrow = [&](double start, double along, double least, double most) {
        if (along == 0)
            return start >= least && start <= most;
        double enter = (least - start) / along, leave = (most - start) / along;
        if (enter > leave)
            std::swap(enter, leave);
        low = std::max(low, enter), high = std::min(high, leave);
        return low <= high;
    };
    const auto isWithin = [&](const TvGePoint2d& point) {
        return point.x >= window.lowX && point.x <= window.highX && point.y >= window.lowY &&
               point.y <= window.highY;
    };
    if (!(isWithin(a) && isWithin(b)) && (!narrow(a.x, way.x, window.lowX, window.highX) ||
                                          !narrow(a.y, way.y, window.lowY, window.highY)))
        return;
    // Of lines that come from very far, rounding leaves little.
    const auto within = [&](const TvGePoint2d& point) {
        return TvGePoint2d(std::clamp(point.x, window.lowX, window.highX),
                           std::clamp(point.y, window.lowY, window.highY));
    };
    TvGePoint2d from = low > 0 ? within(a + way * low) : a,
                to = high < 1 ? within(a + way * high) : b;
    const bool isSteep = std::abs(way.y) > std::abs(way.x);
    if (isSteep ? from.y > to.y : from.x > to.x)
        std::swap(from, to);
    if (isSteep) {
        if (std::abs(way.x) < kStraight) // upright lines stand in one column
            from.x = to.x = wholeBelow(from.x) + 0.5;
        slanted<true>(from.y, to.y, from.x, to.y > from.y ? (to.x - from.x) / (to.y - from.y) : 0);
    } else {
        if (std::abs(way.y) < kStraight)
            from.y = to.y = wholeBelow(from.y) + 0.5;
        slanted<false>(from.x, to.x, from.y, to.x > from.x ? (to.y - from.y) / (to.x - from.x) : 0);
    }
}

// Areas: each edge says what it covers of the pixels it passes, and everything to their right. Sums
// along the rows then are how much of each pixel lies inside.

void Raster::startArea(const Box& box)
{
    const auto whole = [](double number) { return static_cast<int>(std::floor(number)); };
    m_area =
        Rectangle{whole(box.lowX), whole(box.lowY), whole(box.highX) + 1, whole(box.highY) + 1};
    // Two more columns, for what an edge in the last one says of its right.
    const auto width = static_cast<std::size_t>(m_area.right - m_area.left) + 2;
    m_cover.assign(width * static_cast<std::size_t>(m_area.bottom - m_area.top), 0);
}

void Raster::edge(const TvGePoint2d& from, const TvGePoint2d& to)
{
    if (from.y == to.y)
        return;
    const float sign = from.y < to.y ? 1 : -1;
    const TvGePoint2d &top = from.y < to.y ? from : to, &end = from.y < to.y ? to : from;
    const double slope = (end.x - top.x) / (end.y - top.y);
    const auto width = static_cast<std::size_t>(m_area.right - m_area.left) + 2;
    const double lowY = std::max(top.y, double(m_area.top));
    const double highY = std::min(end.y, double(m_area.bottom));
    const int columns = m_area.right - m_area.left;
    for (int y = static_cast<int>(std::floor(lowY)); y < highY; ++y) {
        const double y0 = std::max<double>(y, lowY), y1 = std::min<double>(y + 1, highY);
        const double tall = y1 - y0;
        if (!(tall > 0) || y >= m_area.bottom)
            continue;
        const double xa = top.x + (y0 - top.y) * slope - m_area.left;
        const double xb = top.x + (y1 - top.y) * slope - m_area.left;
        const double x0 = std::clamp(std::min(xa, xb), 0.0, double(columns));
        const double x1 = std::clamp(std::max(xa, xb), 0.0, double(columns));
        float* const cover = m_cover.data() + static_cast<std::size_t>(y - m_area.top) * width;
        const auto first = static_cast<std::size_t>(x0), last = static_cast<std::size_t>(x1);
        const auto part = static_cast<float>(tall) * sign;
        if (first == last) { // all in one pixel
            const auto right = static_cast<float>(1 - ((x0 + x1) / 2 - double(first)));
            cover[first] += part * right;
            cover[first + 1] += part * (1 - right);
            continue;
        }
        // The share of each pixel is what of the edge lies in it; what is to the right is full.
        const double length = x1 - x0;
        float before = 0; // covered so far, of the pixel that comes
        for (std::size_t x = first; x <= last; ++x) {
            const double l = std::max(x0, double(x)), r = std::min(x1, double(x + 1));
            const auto share = static_cast<float>((r - l) / length);
            const auto right = static_cast<float>(double(x + 1) - (l + r) / 2);
            cover[x] += part * (before + share * right);
            before = share * (1 - right);
        }
        cover[last + 1] += part * before;
    }
}

void Raster::finishArea()
{
    const auto width = static_cast<std::size_t>(m_area.right - m_area.left) + 2;
    const Rectangle seen = m_area.common(m_scissors);
    const Ink ink = m_ink;
    for (int y = seen.top; y < seen.bottom; ++y) {
        const float* const cover =
            m_cover.data() + static_cast<std::size_t>(y - m_area.top) * width;
        std::uint32_t* const pixels = row(y);
        float sum = 0;
        for (int x = m_area.left; x < seen.right; ++x) {
            sum += cover[x - m_area.left];
            const float inside = std::min(std::abs(sum), 1.0F);
            if (x < seen.left || inside < 1.0F / 512)
                continue;
            if (m_isSmooth)
                ink.blend(pixels[x], static_cast<std::uint32_t>(inside * 255 + 0.5F));
            else if (inside >= 0.5F)
                ink.blend(pixels[x], 255);
        }
    }
}

} // namespace gs
