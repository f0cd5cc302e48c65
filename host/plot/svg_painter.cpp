#include "svg_painter.h"

#include <cmath>
#include <unordered_map>

#include <fmt/format.h>
#include <gs/picture.h>

namespace plot {

namespace {

constexpr double kUnitsPerMm = 100;

void addNumber(std::string& out, double value)
{
    fmt::format_to(std::back_inserter(out), "{}", std::lrint(value));
}

std::string rgbText(std::uint32_t rgb)
{
    return fmt::format("#{:06x}", rgb & 0xFFFFFF);
}

/// Text for the inside of elements and attributes; what XML cannot hold is left out.
std::string xmlOf(const TvString& text)
{
    std::string out;
    for (const char c : text.utf8())
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        default:
            if (static_cast<unsigned char>(c) >= 0x20)
                out += c;
        }
    return out;
}

std::string base64(std::span<const std::uint8_t> bytes)
{
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const auto byte = [&](std::size_t i) {
            return at + i < bytes.size() ? std::uint32_t(bytes[at + i]) : 0;
        };
        const std::uint32_t group = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (const int shift : {18, 12, 6, 0})
            out += kLetters[group >> shift & 63];
    }
    for (std::size_t i = 0; i < (3 - bytes.size() % 3) % 3; ++i)
        out[out.size() - 1 - i] = '=';
    return out;
}

class SvgPainter : public PageSink
{
public:
    SvgPainter(const Page& page, const PdfOptions& options) : m_page(page), m_options(options)
    {
        usePlane({});
    }

    void usePlane(const gs::FlatMap& toMm) override
    {
        // Downwards, as SVG counts.
        m_plane =
            gs::FlatMap{kUnitsPerMm, 0, 0, 0, -kUnitsPerMm, m_page.heightMm * kUnitsPerMm} * toMm;
    }
    void stroke(const Mark& mark, gs::PathView path) override
    {
        if (path.isEmpty())
            return;
        std::string style =
            fmt::format("fill=\"none\" stroke=\"{}\" stroke-width=\"{}\"", rgbText(mark.rgb),
                        std::max(std::lrint(mark.widthMm * kUnitsPerMm), 1L));
        if (mark.alpha != 255)
            style += fmt::format(" stroke-opacity=\"{:.3f}\"", mark.alpha / 255.0);
        if (mark.isWide)
            style += " stroke-linecap=\"butt\" stroke-linejoin=\"miter\"";
        // Strokes that look the same share an element, unless they would be seen through.
        if (mark.alpha != 255 || style != m_style || !isPlace(mark) || m_data.size() > kLongPath) {
            flush();
            usePlace(mark);
            m_style = style;
        }
        trace(m_data, path, m_plane);
    }
    void fill(const Mark& mark, gs::PathView path, bool isEvenOdd) override
    {
        if (path.isEmpty())
            return;
        flush();
        usePlace(mark);
        if (mark.filling && showPicture(mark, path, isEvenOdd))
            return;
        const std::string gradient = mark.filling ? gradientName(mark) : std::string();
        m_style = fmt::format("fill=\"{}\" stroke=\"none\"",
                              gradient.empty() ? rgbText(mark.rgb) : "url(#" + gradient + ")");
        if (mark.alpha != 255)
            m_style += fmt::format(" fill-opacity=\"{:.3f}\"", mark.alpha / 255.0);
        if (isEvenOdd)
            m_style += " fill-rule=\"evenodd\"";
        trace(m_data, path, m_plane);
        flush();
    }
    void letters(const Mark& mark, std::span<const Letter>, gs::PathView outline) override
    {
        fill(mark, outline, false);
    }
    void hiddenText(const Mark&, const gs::PlacedText&) override {}

    /// Texts that nobody sees, over those that are drawn: so they can be found and copied.
    void addTexts()
    {
        flush();
        closeGroups();
        if (!m_options.hasText)
            return;
        const gs::FlatMap plane =
            gs::FlatMap{kUnitsPerMm, 0, 0, 0, -kUnitsPerMm, m_page.heightMm * kUnitsPerMm} *
            m_page.toPaper;
        for (const gs::PlacedText& text : m_page.list.texts()) {
            if (!m_page.list.layers()[text.layer].isPlotted)
                continue;
            const TvGePoint2d at = plane * text.origin;
            const TvGeVector2d along = plane * text.along, up = plane * text.up;
            if (!(along.length() >= 1) || !(up.length() >= 1) || !isOnPage(at))
                continue;
            const double angle = std::atan2(along.y, along.x) * 180 / 3.14159265358979323846;
            fmt::format_to(std::back_inserter(m_body),
                           "<text x=\"{0}\" y=\"{1}\" font-size=\"{2}\" textLength=\"{3}\" "
                           "lengthAdjust=\"spacingAndGlyphs\" fill-opacity=\"0\"",
                           std::lrint(at.x), std::lrint(at.y), std::lrint(up.length() / 0.72),
                           std::lrint(along.length()));
            if (std::abs(angle) > 0.01)
                fmt::format_to(std::back_inserter(m_body), " transform=\"rotate({:.2f} {} {})\"",
                               angle, std::lrint(at.x), std::lrint(at.y));
            m_body += ">" + xmlOf(text.text) + "</text>\n";
        }
    }

    std::string finish(const TvString& title)
    {
        const auto size = [](double mm) { return std::lrint(mm * kUnitsPerMm); };
        std::string out = fmt::format(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<svg xmlns=\"http://www.w3.org/2000/svg\" "
            "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" width=\"{:.2f}mm\" "
            "height=\"{:.2f}mm\" viewBox=\"0 0 {} {}\" stroke-linecap=\"round\" "
            "stroke-linejoin=\"round\">\n<title>{}</title>\n",
            m_page.widthMm, m_page.heightMm, size(m_page.widthMm), size(m_page.heightMm),
            xmlOf(title));
        out += "<defs>\n" + m_defined + "</defs>\n";
        out += fmt::format("<rect width=\"{}\" height=\"{}\" fill=\"#ffffff\"/>\n",
                           size(m_page.widthMm), size(m_page.heightMm));
        return out + m_body + "</svg>\n";
    }

private:
    static constexpr std::size_t kLongPath = 16 * 1024;

    bool isOnPage(const TvGePoint2d& at) const
    {
        return at.x >= 0 && at.y >= 0 && at.x <= m_page.widthMm * kUnitsPerMm &&
               at.y <= m_page.heightMm * kUnitsPerMm;
    }
    bool isPlace(const Mark& mark) const
    {
        return m_isOpen && m_layer == mark.layer && m_clip == mark.clip;
    }
    void closeGroups()
    {
        if (m_isOpen)
            m_body += "</g></g>\n";
        m_isOpen = false;
    }
    void usePlace(const Mark& mark)
    {
        if (isPlace(mark))
            return;
        closeGroups();
        m_isOpen = true;
        m_layer = mark.layer;
        m_clip = mark.clip;
        m_body += "<g";
        if (m_options.hasLayers && mark.layer != Mark::kNoLayer)
            m_body += " inkscape:groupmode=\"layer\" inkscape:label=\"" +
                      xmlOf(m_page.list.layers()[mark.layer].name) + "\"";
        m_body += "><g";
        if (mark.clip != Mark::kWholePaper)
            m_body += fmt::format(" clip-path=\"url(#{})\"", clipName(mark.clip));
        m_body += ">\n";
    }
    std::string clipName(std::uint32_t number)
    {
        const bool isPage = number == gs::Item::kNoClip;
        std::string name = isPage ? "page" : fmt::format("c{}", number);
        if (!m_named.emplace(number, true).second)
            return name;
        gs::Path edge;
        gs::PathView path;
        gs::FlatMap map =
            gs::FlatMap{kUnitsPerMm, 0, 0, 0, -kUnitsPerMm, m_page.heightMm * kUnitsPerMm};
        std::string within;
        if (isPage) {
            gs::addRectangle(edge, m_page.shownMm);
            path = {edge.verbs(), edge.points()};
        } else {
            const gs::Clip& clip = m_page.list.clips()[number];
            path = m_page.list.path(clip.path);
            map = map * m_page.toPaper;
            within = clipName(clip.parent); // of the outermost: the page's
        }
        std::string data;
        trace(data, path, map);
        m_defined += fmt::format("<clipPath id=\"{}\"", name);
        if (!within.empty())
            m_defined += fmt::format(" clip-path=\"url(#{})\"", within);
        m_defined += "><path clip-rule=\"evenodd\" d=\"" + data + "\"/></clipPath>\n";
        return name;
    }
    /// From the square of a filling to the page; nullopt when nothing of it could be seen.
    std::optional<std::string> placeOf(const gs::Filling& filling) const
    {
        const gs::FlatMap square = m_plane * filling.place;
        if (!(std::abs(square.determinant()) > 1e-9))
            return std::nullopt;
        return fmt::format("matrix({:.6g} {:.6g} {:.6g} {:.6g} {:.6g} {:.6g})", square.xx,
                           square.yx, square.xy, square.yy, square.x0, square.y0);
    }

    /// "" when the filling is not one of colours that pass into each other.
    std::string gradientName(const Mark& mark)
    {
        const gs::Filling& filling = *mark.filling;
        const auto place = placeOf(filling);
        if (!place || filling.stops.empty())
            return {};
        std::string name = fmt::format("g{}", m_gradients++);
        const char* const kind = filling.isRound ? "radialGradient" : "linearGradient";
        m_defined += fmt::format(
            "<{} id=\"{}\" gradientUnits=\"userSpaceOnUse\" {} gradientTransform=\"{}\">", kind,
            name,
            filling.isRound ? "cx=\"0\" cy=\"0\" r=\"1\"" : "x1=\"0\" y1=\"0\" x2=\"1\" y2=\"0\"",
            *place);
        for (const gs::Filling::Stop& stop : filling.stops)
            m_defined += fmt::format("<stop offset=\"{:.4g}\" stop-color=\"{}\"/>", stop.at,
                                     rgbText(plottedPart(m_page, mark, stop.color)));
        m_defined += fmt::format("</{}>\n", kind);
        return name;
    }

    /// A picture within the area of @p path; false when there is none to be seen.
    bool showPicture(const Mark& mark, gs::PathView path, bool isEvenOdd)
    {
        const gs::Filling& filling = *mark.filling;
        const auto place = placeOf(filling);
        if (!filling.picture || filling.picture->isEmpty() || !place)
            return false;
        std::string data;
        trace(data, path, m_plane);
        const std::string area = fmt::format("a{}", m_areas++);
        m_defined +=
            fmt::format("<clipPath id=\"{}\"><path clip-rule=\"{}\" d=\"{}\"/></clipPath>\n", area,
                        isEvenOdd ? "evenodd" : "nonzero", data);
        // Pictures count downwards, and their square upwards.
        m_body += fmt::format("<g clip-path=\"url(#{})\"", area);
        if (mark.alpha != 255)
            m_body += fmt::format(" opacity=\"{:.3f}\"", mark.alpha / 255.0);
        m_body += fmt::format("><use href=\"#{}\" transform=\"{} matrix(1 0 0 -1 0 1)\"/></g>\n",
                              pictureName(*filling.picture), *place);
        return true;
    }

    /// Pictures stand in the file once, in a square of 1 by 1.
    std::string pictureName(const gs::Picture& picture)
    {
        const auto [at, isNew] = m_pictures.emplace(&picture, m_pictures.size());
        std::string name = fmt::format("i{}", at->second);
        if (!isNew)
            return name;
        const bool isJpeg = !picture.jpeg.empty();
        m_defined += fmt::format("<image id=\"{}\" width=\"1\" height=\"1\" "
                                 "preserveAspectRatio=\"none\" href=\"data:image/{};base64,",
                                 name, isJpeg ? "jpeg" : "png");
        m_defined += base64(isJpeg ? picture.jpeg : gs::pngBytes(picture)) + "\"/>\n";
        return name;
    }

    void flush()
    {
        if (!m_data.empty())
            m_body += "<path " + m_style + " d=\"" + m_data + "\"/>\n";
        m_data.clear();
        m_style.clear();
    }
    static void trace(std::string& out, gs::PathView path, const gs::FlatMap& map)
    {
        std::size_t index = 0;
        const auto add = [&](char op, int points) {
            out += op;
            for (int i = 0; i < points; ++i) {
                const TvGePoint2d at = map * path.points[index++];
                if (i > 0)
                    out += ' ';
                addNumber(out, at.x);
                out += ' ';
                addNumber(out, at.y);
            }
        };
        for (const gs::Path::Verb verb : path.verbs)
            switch (verb) {
            case gs::Path::Verb::Move: add('M', 1); break;
            case gs::Path::Verb::Line: add('L', 1); break;
            case gs::Path::Verb::Curve: add('C', 3); break;
            case gs::Path::Verb::Close: out += 'Z'; break;
            }
    }

    const Page& m_page;
    const PdfOptions& m_options;
    gs::FlatMap m_plane;
    std::string m_body, m_defined, m_data, m_style;
    bool m_isOpen = false; // two groups: layer and clip
    std::uint32_t m_layer = 0, m_clip = 0;
    std::unordered_map<std::uint32_t, bool> m_named;
    std::unordered_map<const gs::Picture*, std::size_t> m_pictures; // the list's
    int m_gradients = 0, m_areas = 0;
};

} // namespace

std::optional<std::string> svgOf(const Page& page, const PageOrder& order, const Stamp& stamp,
                                 const PdfOptions& options, const std::atomic<bool>* stop)
{
    SvgPainter painter(page, options);
    if (!walkItems(page, painter, stop))
        return std::nullopt;
    if (order.stamp)
        walkStamp(page, stamp, stampText(stamp, *order.stamp), painter);
    painter.addTexts();
    return painter.finish(order.number + (order.number.isEmpty() ? u"" : u" ") +
                          order.title.view());
}

} // namespace plot
