#include "gradient_fill.h"

#include <array>
#include <cmath>
#include <numbers>

namespace gs {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr double kShift = 0.25; // of the frame, for what is not centred

/// What black on white or white on black is mixed as.
constexpr std::uint32_t kBetween = 0x808080;

std::uint32_t rgbOf(const Color& color)
{
    if (color.kind != Color::Kind::Given)
        return kBetween;
    return std::uint32_t(color.red) << 16 | std::uint32_t(color.green) << 8 | color.blue;
}

/// @param part  of @p b; 0 to 1.
Color mix(const Color& a, const Color& b, double part)
{
    const std::uint32_t from = rgbOf(a), to = rgbOf(b);
    std::uint32_t mixed = 0;
    for (const int shift : {16, 8, 0}) {
        const double low = from >> shift & 0xFF, high = to >> shift & 0xFF;
        mixed |= static_cast<std::uint32_t>(std::lround(low + (high - low) * part)) << shift;
    }
    return Color::given(mixed);
}

/// The other colour of a gradient that has one: it goes over into white, or into black.
Color tinted(const Color& color, double tint)
{
    return tint >= 0.5 ? mix(color, Color::given(kWhite), 2 * tint - 1)
                       : mix(color, Color::given(0), 1 - 2 * tint);
}

std::vector<Filling::Stop> stopsOf(const Gradient& gradient, const Scene& scene)
{
    std::vector<Filling::Stop> stops;
    if (gradient.isOneColor) {
        const Color own = scene.colorOf(gradient.colors.front().color);
        stops = {{0, own}, {1, tinted(own, gradient.tint)}};
    } else {
        for (const GradientColor& color : gradient.colors)
            stops.push_back({color.at, scene.colorOf(color.color)});
        std::stable_sort(stops.begin(), stops.end(),
                         [](const auto& a, const auto& b) { return a.at < b.at; });
    }
    return stops;
}

void turnRound(std::vector<Filling::Stop>& stops)
{
    std::reverse(stops.begin(), stops.end());
    for (Filling::Stop& stop : stops)
        stop.at = 1 - stop.at;
}

/// From the first colour to the last one and back.
std::vector<Filling::Stop> thereAndBack(const std::vector<Filling::Stop>& stops)
{
    std::vector<Filling::Stop> both;
    for (const Filling::Stop& stop : stops)
        both.push_back({stop.at / 2, stop.color});
    for (std::size_t i = stops.size(); i-- > 0;)
        both.push_back({1 - stops[i].at / 2, stops[i].color});
    return both;
}

struct Shape {
    std::u16string_view name;
    enum Kind { Linear, Cylinder, Sphere, HalfSphere, Curved } kind;
};
constexpr std::array<Shape, 5> kShapes{{
    {u"LINEAR", Shape::Linear},
    {u"CYLINDER", Shape::Cylinder},
    {u"SPHERICAL", Shape::Sphere},
    {u"HEMISPHERICAL", Shape::HalfSphere},
    {u"CURVED", Shape::Curved},
}};

/// Where the filling's own square (linear: its lower left corner and sides; round: its middle and
/// radii) lies in a frame of that size, whose lower left corner is the origin.
FlatMap squareOf(Shape::Kind kind, double width, double height, double& innerRadius)
{
    innerRadius = 0;
    switch (kind) {
    case Shape::Linear:
    case Shape::Cylinder: return FlatMap::scaling(width, height);
    case Shape::Sphere: {
        const double radius = std::hypot(width, height) / 2;
        return FlatMap::moving(width / 2, height / 2) * FlatMap::scaling(radius, radius);
    }
    case Shape::HalfSphere: {
        const double radius = std::hypot(width / 2, height);
        return FlatMap::moving(width / 2, 0) * FlatMap::scaling(radius, radius);
    }
    case Shape::Curved: {
        const double below = height / 2, radius = std::hypot(width / 2, height + below);
        innerRadius = radius > 0 ? below / radius : 0;
        return FlatMap::moving(width / 2, -below) * FlatMap::scaling(radius, radius);
    }
    }
    return {};
}

} // namespace

std::optional<Filling> fillingOf(const Gradient& gradient, const Path& area, const Scene& scene)
{
    if (gradient.colors.empty())
        return std::nullopt;
    const FlatMap straight = FlatMap::turning(-gradient.angle);
    Box frame;
    for (const TvGePoint2d& point : area.points())
        frame.add(straight * point);
    const double width = frame.width(), height = frame.height();
    if (!(width > 0) || !(height > 0) || !std::isfinite(width + height))
        return std::nullopt;
    std::u16string_view name = gradient.name;
    const bool isBackwards = name.starts_with(u"INV");
    if (isBackwards)
        name.remove_prefix(3);
    Shape::Kind kind = Shape::Linear;
    for (const Shape& shape : kShapes)
        if (shape.name == name)
            kind = shape.kind;
    Filling filling;
    filling.stops = stopsOf(gradient, scene);
    if (isBackwards)
        turnRound(filling.stops);
    filling.isRound = kind >= Shape::Sphere;
    FlatMap corner = FlatMap::moving(frame.lowX, frame.lowY);
    if (!gradient.isCentered)
        corner = corner * FlatMap::moving(-kShift * width, kShift * height);
    double inner = 0;
    filling.place =
        FlatMap::turning(gradient.angle) * corner * squareOf(kind, width, height, inner);
    if (kind == Shape::Cylinder)
        filling.stops = thereAndBack(filling.stops);
    if (filling.isRound) {
        turnRound(filling.stops); // stops count from the middle
        for (Filling::Stop& stop : filling.stops)
            stop.at = inner + (1 - inner) * stop.at;
    }
    return filling;
}

Color meanColor(const Filling& filling)
{
    if (filling.stops.empty())
        return {};
    // By how much of the way each colour takes.
    Color mean = filling.stops.front().color;
    double red = 0, green = 0, blue = 0, before = 0;
    const auto add = [&](const Color& a, const Color& b, double way) {
        const Color middle = mix(a, b, 0.5);
        red += middle.red * way, green += middle.green * way, blue += middle.blue * way;
    };
    bool isOne = true;
    for (const Filling::Stop& stop : filling.stops) {
        add(mean, stop.color, stop.at - before);
        isOne = isOne && stop.color == filling.stops.front().color;
        mean = stop.color;
        before = stop.at;
    }
    if (isOne)
        return mean;
    add(mean, mean, 1 - before);
    const auto part = [](double value) {
        return static_cast<std::uint32_t>(std::clamp(std::lround(value), 0L, 255L));
    };
    return Color::given(part(red) << 16 | part(green) << 8 | part(blue));
}

} // namespace gs
