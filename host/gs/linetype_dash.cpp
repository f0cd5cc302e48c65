#include <algorithm>
#include <cmath>
#include <optional>

#include "gs/linetype.h"
#include "text_codes.h"
#include "text_pen.h"

namespace gs {

namespace {

// Of a curve: 64 are off a quarter circle by 1/13,000 of its radius.
constexpr std::size_t kMostChords = 64, kFewestChords = 4;
// Of all curves of a path; when there are more curves, each gets fewer.
constexpr std::size_t kChordsOfPath = 1'000'000;
// Of all shapes along a path; beyond, they are left out.
constexpr std::size_t kMostShapePoints = 1'000'000;

/// A stretch of chords that is dashed in one go.
struct Stretch {
    std::vector<TvGePoint2d> points;
    std::vector<double> at; ///< the length from the beginning to each point

    void add(const TvGePoint2d& point)
    {
        at.push_back(points.empty() ? 0 : at.back() + points.back().distanceTo(point));
        points.push_back(point);
    }
    double length() const { return at.empty() ? 0 : at.back(); }
};

void addCurve(Stretch& to, const TvGePoint2d* handles, std::size_t chords)
{
    const TvGePoint2d from = to.points.back();
    for (std::size_t i = 1; i <= chords; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(chords), s = 1 - t;
        const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
        to.add({a * from.x + b * handles[0].x + c * handles[1].x + d * handles[2].x,
                a * from.y + b * handles[0].y + c * handles[1].y + d * handles[2].y});
    }
}

/// The stretches of a path: its subpaths, or their segments. Curves that follow one another are
/// one segment: pieces of the same arc.
std::vector<Stretch> stretchesOf(const Path& path, bool continuesOverCorners)
{
    std::vector<Stretch> stretches;
    const TvGePoint2d* point = path.points().data();
    const auto curves = static_cast<std::size_t>(
        std::count(path.verbs().begin(), path.verbs().end(), Path::Verb::Curve));
    const std::size_t chords =
        std::clamp(kChordsOfPath / std::max<std::size_t>(curves, 1), kFewestChords, kMostChords);
    TvGePoint2d first, last;
    Path::Verb before = Path::Verb::Move;
    const auto begin = [&](Path::Verb verb) {
        const bool goesOn =
            before != Path::Verb::Move && before != Path::Verb::Close &&
            (continuesOverCorners || (verb == Path::Verb::Curve && before == Path::Verb::Curve));
        if (!goesOn) {
            stretches.emplace_back();
            stretches.back().add(last);
        }
        before = verb;
    };
    for (const Path::Verb verb : path.verbs()) {
        switch (verb) {
        case Path::Verb::Move:
            first = last = *point++;
            before = verb;
            break;
        case Path::Verb::Line:
            begin(verb);
            last = *point++;
            stretches.back().add(last);
            break;
        case Path::Verb::Curve:
            begin(verb);
            addCurve(stretches.back(), point, chords);
            point += 3;
            last = point[-1];
            break;
        case Path::Verb::Close:
            if (!(last == first)) {
                begin(Path::Verb::Line);
                stretches.back().add(first);
            }
            last = first;
            before = verb;
            break;
        }
    }
    return stretches;
}

/// Cuts stretches, from their beginning on.
class Cutter
{
public:
    Cutter(const LinePattern& pattern, double scale, Fonts* fonts, DashedPath& out)
        : m_pattern(pattern), m_scale(scale), m_period(pattern.length() * scale), m_fonts(fonts),
          m_out(out)
    {
        if (fonts)
            m_pen.emplace(m_texts, m_tools.emplace(*fonts));
    }

    void cut(const Stretch& stretch)
    {
        const double length = stretch.length();
        m_stretch = &stretch;
        m_segment = 0;
        if (length < m_period || !std::isfinite(length)) {
            draw(0, length);
            return;
        }
        const double first = m_pattern.dashes.front().length * m_scale;
        if (!(first > 0)) {
            walk(0, 0, length);
            return;
        }
        // A dash at both ends: half of the first one, and half of what the pattern leaves.
        const double rest = length - m_period * std::floor(length / m_period);
        const double end = (first + rest) / 2;
        draw(0, end);
        writeTexts(m_pattern.dashes.front(), end);
        if (m_pattern.dashes.size() > 1)
            walk(1, end, length - end);
        draw(length - end, length);
    }

    void finish() { m_out.texts = std::move(m_texts.parts); }

private:
    /// Elements of the pattern from the one with that number on, as far as they fit.
    void walk(std::size_t element, double at, double end)
    {
        const double slack = m_period * 1e-9;
        while (at < end - slack) {
            const LinePattern::Dash& dash = m_pattern.dashes[element];
            const double next = std::min(at + std::abs(dash.length) * m_scale, end);
            if (dash.length >= 0)
                draw(at, next);
            writeTexts(dash, next);
            at = next;
            element = (element + 1) % m_pattern.dashes.size();
        }
    }

    TvGePoint2d pointAt(double at)
    {
        const auto& s = *m_stretch;
        while (m_segment + 2 < s.at.size() && s.at[m_segment + 1] < at)
            ++m_segment;
        if (m_segment + 1 >= s.at.size())
            return s.points.front();
        const double length = s.at[m_segment + 1] - s.at[m_segment];
        const double t = length > 0 ? std::clamp((at - s.at[m_segment]) / length, 0.0, 1.0) : 0;
        return s.points[m_segment] + (s.points[m_segment + 1] - s.points[m_segment]) * t;
    }

    void draw(double from, double to)
    {
        m_out.lines.moveTo(pointAt(from));
        const auto& s = *m_stretch;
        for (std::size_t i = m_segment + 1; i < s.at.size() && s.at[i] < to; ++i)
            if (s.at[i] > from)
                m_out.lines.lineTo(s.points[i]);
        m_out.lines.lineTo(pointAt(to));
    }

    void writeTexts(const LinePattern::Dash& dash, double at)
    {
        if (dash.texts.empty())
            return;
        const TvGePoint2d place = pointAt(at);
        const auto& s = *m_stretch;
        const TvGeVector2d way = m_segment + 1 < s.points.size()
                                     ? s.points[m_segment + 1] - s.points[m_segment]
                                     : TvGeVector2d(1, 0);
        for (const LinePattern::Text& text : dash.texts)
            write(text, place, way.angle());
    }

    FlatMap mapOf(const LinePattern::Text& text, const TvGePoint2d& place, double lineAngle) const
    {
        const TvGeVector2d offset = text.offset * m_scale;
        return FlatMap::moving(place.x, place.y) * FlatMap::turning(lineAngle) *
               FlatMap::moving(offset.x, offset.y) *
               FlatMap::turning(text.isUpright ? text.rotation - lineAngle : text.rotation);
    }

    void drawShape(const LinePattern::Text& text, const TvGePoint2d& place, double lineAngle)
    {
        const double size = text.height * m_scale;
        if (isDrawableHeight(size) && m_out.lines.points().size() < kMostShapePoints)
            appendMapped(m_out.lines, *text.shape,
                         mapOf(text, place, lineAngle) * FlatMap::scaling(size, size));
    }

    void write(const LinePattern::Text& text, const TvGePoint2d& place, double lineAngle)
    {
        if (text.shape)
            return drawShape(text, place, lineAngle);
        if (!m_pen)
            return;
        LetterLook look;
        look.font = &m_fonts->find(text.font);
        look.height = text.height * m_scale;
        look.widthFactor = text.widthFactor;
        look.slant = slantOf(text.oblique);
        if (!isDrawableHeight(look.height))
            return;
        std::u32string letters;
        for (const LineCharacter& letter : decodedLine(text.text, kMostElementLetters))
            letters += letter.character;
        FlatMap map = mapOf(text, place, lineAngle);
        if (text.staysReadable && map.xx < 0) // about its middle
            map = map * FlatMap::moving(m_pen->width(letters, look).ink(), look.height) *
                  FlatMap::scaling(-1, -1);
        m_pen->letters(letters, look, {}, map);
    }

    static constexpr std::size_t kMostElementLetters = 256;

    const LinePattern& m_pattern;
    double m_scale, m_period;
    Fonts* m_fonts; // not owned; may be null
    DashedPath& m_out;
    TextShape m_texts;
    std::optional<TextTools> m_tools;
    std::optional<TextPen> m_pen;
    const Stretch* m_stretch = nullptr;
    std::size_t m_segment = 0; // that the last place lies on; places are asked for in order
};

} // namespace

DashedPath dashed(const Path& path, const LinePattern& pattern, const DashOptions& options,
                  Fonts* fonts)
{
    DashedPath out;
    const double period = pattern.length() * options.scale;
    std::vector<Stretch> stretches;
    double dashes = 0;
    if (!pattern.isContinuous() && period > 0 && std::isfinite(period)) {
        stretches = stretchesOf(path, options.continuesOverCorners);
        for (const Stretch& stretch : stretches)
            dashes += stretch.length() / period * static_cast<double>(pattern.dashes.size());
    }
    if (stretches.empty() || !(dashes <= static_cast<double>(options.mostDashes))) {
        out.lines = path;
        out.isWhole = true;
        return out;
    }
    Cutter cutter(pattern, options.scale, fonts, out);
    for (const Stretch& stretch : stretches)
        cutter.cut(stretch);
    cutter.finish();
    return out;
}

} // namespace gs
