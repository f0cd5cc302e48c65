// A page as PDF, against the toolkit's own writer with batched lines.

#include <cstdlib>

#include <QBuffer>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>

#include <benchmark/benchmark.h>

#include <db/tv_db_curves.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>

#include "page_content.h"
#include "pdf_file.h"
#include "plot/page.h"
#include "ratio.h"

namespace {

constexpr int kSegments = 50'000, kTexts = 2'000;
constexpr double kWidthMm = 841, kHeightMm = 594, kTextMm = 2.5;

/// Numbers that look as if by chance, and are the same each time.
class Noise
{
public:
    double below(double limit)
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(m_state >> 11) / 9007199254740992.0 * limit;
    }

private:
    std::uint64_t m_state = 1;
};

struct Segment {
    TvGePoint2d from, to;
};
struct Word {
    TvGePoint2d at;
    QString text;
};

/// What is on the page: short lines everywhere, and words.
struct Content {
    Content()
    {
        Noise noise;
        for (int i = 0; i < kSegments; ++i) {
            const double x = noise.below(kWidthMm - 40) + 10, y = noise.below(kHeightMm - 40) + 10;
            segments.push_back({{x, y}, {x + noise.below(20), y + noise.below(20)}});
        }
        for (int i = 0; i < kTexts; ++i)
            words.push_back({{noise.below(kWidthMm - 60) + 10, noise.below(kHeightMm - 40) + 10},
                             QString("Room %1").arg(i)});
    }
    std::vector<Segment> segments;
    std::vector<Word> words;
};

const Content& content()
{
    static const Content made;
    return made;
}

void addTo(TvDbObjectId block, TvDbEntity* entity)
{
    TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
    TvDbObjectId id;
    record->appendTvDbEntity(id, entity);
    entity->close();
}

plot::Page makeOurPage()
{
    TvDbDatabase database(true, true);
    TvDbObjectId layout;
    db::addLayout(database, u"A1", layout);
    TvDbObjectId block;
    {
        TvDbObjectPointer<TvDbLayout> open(layout, TvDb::kForWrite);
        db::RecordEditor fields = open->edit();
        fields.setReal("paper_width", kWidthMm);
        fields.setReal("paper_height", kHeightMm);
        fields.setInteger("paper_units", 1);
        fields.setInteger("plot_type", TvDbPlotSettings::kLayout);
        fields.setInteger("plot_flags", 0x80);
        block = open->getBlockTableRecordId();
    }
    TvDbObjectId style;
    {
        TvDbObjectPointer<TvDbTextStyleTable> styles(
            database.symbolTableId(TvDb::SymbolTable::TextStyle), TvDb::kForWrite);
        auto* record = new TvDbTextStyleTableRecord;
        record->setName(u"Outlines");
        styles->add(style, record);
        record->edit().setText("font", u"DejaVuSans.ttf");
        record->close();
    }
    for (const Segment& segment : content().segments)
        addTo(block,
              new TvDbLine({segment.from.x, segment.from.y, 0}, {segment.to.x, segment.to.y, 0}));
    for (const Word& word : content().words) {
        auto* text = new TvDbText;
        text->setTextString(TvString(reinterpret_cast<const TvChar*>(word.text.utf16()),
                                     static_cast<std::size_t>(word.text.size())));
        text->setPosition({word.at.x, word.at.y, 0});
        text->setHeight(kTextMm);
        text->setTextStyle(style);
        addTo(block, text);
    }
    auto page = plot::makePage(database, layout);
    if (!page)
        std::abort();
    return std::move(*page);
}

const plot::Page& ourPage()
{
    static const plot::Page page = makeOurPage();
    return page;
}

std::size_t writeOurs()
{
    const plot::PdfOptions options;
    plot::PdfFile pdf({}, options, {});
    const plot::PageOrder order;
    auto made = plot::pdfContentOf(ourPage(), order, {}, options, nullptr);
    if (!made || !pdf.add(0, order, std::move(*made)) || !pdf.finish())
        std::abort();
    return static_cast<std::size_t>(pdf.content().size());
}

std::size_t writeWithToolkit()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setPageSize(QPageSize(QSizeF(kWidthMm, kHeightMm), QPageSize::Millimeter));
        writer.setPageMargins({});
        writer.setResolution(1200);
        QPainter painter(&writer);
        const double unit = 1200 / 25.4;
        painter.setPen(QPen(Qt::black, 0.25 * unit));
        QList<QLineF> lines;
        lines.reserve(kSegments);
        for (const Segment& s : content().segments)
            lines.append(QLineF(s.from.x * unit, (kHeightMm - s.from.y) * unit, s.to.x * unit,
                                (kHeightMm - s.to.y) * unit));
        painter.drawLines(lines);
        QFont font("DejaVu Sans");
        font.setPixelSize(static_cast<int>(kTextMm * unit / 0.73));
        painter.setFont(font);
        for (const Word& word : content().words)
            painter.drawText(QPointF(word.at.x * unit, (kHeightMm - word.at.y) * unit), word.text);
    }
    return static_cast<std::size_t>(bytes.size());
}

void onePage(benchmark::State& state)
{
    ourPage();
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = writeOurs();
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(onePage)->Unit(benchmark::kMillisecond);

void onePageToolkit(benchmark::State& state)
{
    // It stays until the end: the toolkit's own statics are gone before ours.
    static int count = 0;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    [[maybe_unused]] static auto* const application = new QGuiApplication(count, nullptr);
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = writeWithToolkit();
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(onePageToolkit)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    // Three times faster is a third of the time.
    static const std::vector<RatioRow> rows = {
        {"5  one A1 page, 50,000 segments + 2,000 texts / the toolkit's writer", "onePage",
         "onePageToolkit", 1, 1 / 3.0, 1 / 8.0},
    };
    return rows;
}
