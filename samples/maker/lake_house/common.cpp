#include "lake_house.h"

#include "sample_maker/title_block.h"

namespace samples::lake_house {

const std::vector<Opening>& openings()
{
    using enum Opening::Side;
    static const std::vector<Opening> all{
        {South, 0, 1000, 3400, 0, 2200, true}, {South, 0, 4200, 6000, 900, 2200},
        {South, 0, 7800, 10200, 900, 2200},    {North, 0, 1500, 3300, 900, 2200},
        {North, 0, 4400, 5600, 900, 2200},     {North, 0, 7200, 8200, 0, 2200, true},
        {West, 0, 2500, 5500, 0, 2200, true},  {East, 0, 1400, 2600, 900, 2200},
        {East, 0, 6400, 7200, 1400, 2200},     {South, 1, 1500, 3900, 600, 2200},
        {South, 1, 5700, 6900, 900, 2200},     {South, 1, 8400, 10800, 600, 2200},
        {North, 1, 1500, 3900, 900, 2200},     {North, 1, 6300, 7500, 900, 2200},
        {North, 1, 10000, 10800, 1400, 2200},  {West, 1, 2000, 3500, 900, 2200},
        {West, 1, 5800, 7000, 900, 2200},      {East, 1, 1500, 2700, 900, 2200},
        {East, 1, 5200, 6200, 1400, 2200},
    };
    return all;
}

Pen projectSheet(Sketch& sketch, const SheetForm& form, const SheetWords& words)
{
    const Attributes texts{
        {tag::kProject, u"House at the Lake"},
        {tag::kProjectNumber, u"2026-014"},
        {tag::kClient, u"M. and J. Holm"},
        {tag::kTitle, words.title},
        {tag::kNumber, words.number},
        {tag::kScale, words.scale},
        {tag::kDate, u"2026-03-16"},
        {tag::kDrawnBy, u"EL"},
        {tag::kCheckedBy, u"KB"},
        {tag::kRevision, u"A"},
    };
    return newSheet(sketch, form, words.number + TvString(u" ") + words.title, texts);
}

void notes(Pen& sheet, const TvGePoint2d& topLeft, const TvChar* head,
           const std::vector<const TvChar*>& lines)
{
    constexpr double kHead = 3.5, kText = 2.5, kWidth = 170;
    sheet.on(u"Sheet Texts").style(u"Sheet").text({topLeft.x, topLeft.y - kHead}, kHead, head);
    TvString all;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0)
            all += u"\\P";
        all += TvString().format(u"%d.  ", static_cast<int>(i) + 1) + lines[i];
    }
    sheet.paragraph({topLeft.x, topLeft.y - kHead - 4}, kWidth, kText, all);
}

} // namespace samples::lake_house
