#include "page_walk.h"

#include <cmath>

#include <gs/cut_path.h>

namespace plot {

namespace {

constexpr double kHairlineMm = 0.05; // lines without a weight
constexpr double kThinMm = 0.1;      // all lines, where weights are not plotted
constexpr double kToleranceMm = 0.005;
constexpr std::size_t kItemsBetweenLooks = 512; // at whether to stop

class Walk
{
public:
    Walk(const Page& page, PageSink& sink) : m_page(page), m_list(page.list), m_sink(sink)
    {
        const double unit = 1 / page.mmPerUnit;
        const gs::Box& mm = page.shownMm;
        for (const TvGePoint2d corner : {TvGePoint2d{mm.lowX, mm.lowY}, {mm.highX, mm.highY}})
            m_shown.add({(corner.x - page.toPaper.x0) * unit, (corner.y - page.toPaper.y0) * unit});
        m_near = m_shown.grown(m_shown.width() + m_shown.height());
        m_sink.usePlane(page.toPaper);
        for (const TvString& name : m_list.plotStyles())
            m_named.push_back(page.styles.named(name));
    }

    void draw(std::size_t number)
    {
        const gs::Item& item = m_list.items()[number];
        if (!m_list.layers()[item.layer].isPlotted)
            return;
        Mark mark = markOf(item);
        switch (item.kind) {
        case gs::Item::Kind::Line:
        case gs::Item::Kind::Ray: drawEndless(item, mark); return;
        case gs::Item::Kind::Marker: drawMarker(item, mark); return;
        default: break;
        }
        const double reach = mark.widthMm / m_page.mmPerUnit;
        if (!item.box.grown(reach).touches(m_shown))
            return;
        if (item.path.isLetters() && item.kind == gs::Item::Kind::Fill)
            drawLetters(item, mark);
        else if (item.kind == gs::Item::Kind::Stroke)
            drawStroke(item, mark, reach);
        else
            drawFill(item, mark);
    }

    void drawHidden(const gs::PlacedText& text)
    {
        if (text.isOutlined || !m_list.layers()[text.layer].isPlotted)
            return;
        const TvGePoint2d middle = text.origin + text.along * 0.5 + text.up * 0.5;
        gs::Box seen = m_shown;
        if (text.clip != gs::Item::kNoClip)
            seen = seen.common(m_list.clips()[text.clip].box);
        gs::Box there;
        there.add(middle);
        if (!seen.touches(there))
            return;
        Mark mark;
        mark.layer = text.layer;
        m_sink.hiddenText(mark, text);
    }

private:
    Mark markOf(const gs::Item& item) const
    {
        Mark mark;
        mark.layer = item.layer;
        mark.clip = item.clip;
        mark.alpha = item.alpha;
        const std::uint32_t rgb = gs::rgbOf(item.color, gs::Background::Paper);
        const bool isPaperColor = item.color.kind == gs::Color::Kind::Background;
        mark.style = item.plotStyle < m_named.size() ? m_named[item.plotStyle] : nullptr;
        const PlotStyle* const style = mark.style                ? mark.style
                                       : m_page.styles.isPlain() ? nullptr
                                                                 : &m_page.styles.styleOf(rgb);
        mark.rgb = isPaperColor || !style ? rgb : style->plotted(rgb);
        if (item.widthUnits > 0) {
            mark.widthMm = item.widthUnits * m_page.mmPerUnit;
            mark.isWide = true;
            return mark;
        }
        double weight = item.weightMm;
        if (style)
            weight = style->weightMm.value_or(item.weightMm);
        mark.widthMm =
            m_page.plotsWeights ? std::max(weight * m_page.weightFactor, kHairlineMm) : kThinMm;
        return mark;
    }

    bool isNear(const gs::Box& box) const
    {
        return box.lowX >= m_near.lowX && box.highX <= m_near.highX && box.lowY >= m_near.lowY &&
               box.highY <= m_near.highY;
    }

    void drawStroke(const gs::Item& item, const Mark& mark, double reach)
    {
        const gs::PathView path = m_list.path(item.path, m_room);
        if (isNear(item.box))
            return m_sink.stroke(mark, path);
        const gs::Path cut =
            gs::cutLines(path, m_near.grown(reach), kToleranceMm / m_page.mmPerUnit);
        m_sink.stroke(mark, {cut.verbs(), cut.points()});
    }

    void drawFill(const gs::Item& item, Mark mark)
    {
        mark.filling = m_list.fillingOf(item);
        const gs::PathView path = m_list.path(item.path, m_room);
        const bool isEvenOdd = item.kind == gs::Item::Kind::EvenOddFill;
        if (isNear(item.box))
            return m_sink.fill(mark, path, isEvenOdd);
        const gs::Path cut = gs::cutArea(path, m_near, kToleranceMm / m_page.mmPerUnit);
        m_sink.fill(mark, {cut.verbs(), cut.points()}, isEvenOdd);
    }

    void drawEndless(const gs::Item& item, const Mark& mark)
    {
        const gs::PathView path = m_list.path(item.path, m_room);
        const auto ends = gs::cutEndless(path.points[0], path.points[1],
                                         item.kind == gs::Item::Kind::Ray, m_near);
        if (!ends)
            return;
        gs::Path line;
        line.moveTo(ends->first);
        line.lineTo(ends->second);
        m_sink.stroke(mark, {line.verbs(), line.points()});
    }

    void drawMarker(const gs::Item& item, const Mark& mark)
    {
        const gs::PathView path = m_list.path(item.path, m_room);
        const TvGePoint2d at = path.points[0];
        if (!isNear(item.box))
            return;
        std::vector<TvGePoint2d> points;
        for (const TvGePoint2d& part : path.points.subspan(1))
            points.push_back({at.x + part.x * m_shown.height(), at.y + part.y * m_shown.height()});
        m_sink.stroke(mark, {path.verbs.subspan(1), points});
    }

    void drawLetters(const gs::Item& item, const Mark& mark)
    {
        m_placed.clear();
        m_letters.clear();
        m_list.letters(item.path, m_placed);
        for (const gs::PlacedLetter& letter : m_placed)
            m_letters.push_back({letter.face, letter.character, letter.form, letter.text,
                                 letter.advance, letter.outline, m_page.toPaper * letter.place});
        m_sink.letters(mark, m_letters, m_list.path(item.path, m_room));
    }

    const Page& m_page;
    const gs::DisplayList& m_list;
    PageSink& m_sink;
    gs::Box m_shown, m_near;               // in the list's units
    std::vector<const PlotStyle*> m_named; // by number; the page's
    std::vector<gs::PlacedLetter> m_placed;
    std::vector<Letter> m_letters;
    gs::Path m_room; // for paths of letters
};

} // namespace

bool walkItems(const Page& page, PageSink& sink, const std::atomic<bool>* stop)
{
    Walk walk(page, sink);
    for (std::size_t i = 0; i < page.list.items().size(); ++i) {
        if (stop && i % kItemsBetweenLooks == 0 && stop->load(std::memory_order_relaxed))
            return false;
        walk.draw(i);
    }
    return !stop || !stop->load(std::memory_order_relaxed);
}

void walkHiddenTexts(const Page& page, PageSink& sink)
{
    Walk walk(page, sink);
    for (const gs::PlacedText& text : page.list.texts())
        walk.drawHidden(text);
}

} // namespace plot
