#include <db/text_measure.h>

#include <cmath>

#include <db/resbuf.h>
#include <db/tv_db_symbol_table.h>

namespace db {

namespace {

TextMeasure* g_measure = nullptr;

// Of the height of capitals: what the letters of common fonts take on average. Letters of East
// Asian scripts are about as wide as high, which is more than capitals.
constexpr double kAverageWidth = 0.85, kWideWidth = 1.35, kNarrowWidth = 0.45;

double estimatedWidth(char16_t unit)
{
    if (unit >= 0x1100)
        return kWideWidth;
    if (std::u16string_view(u" .,:;'|!iljtI()[]").find(unit) != std::u16string_view::npos)
        return kNarrowWidth;
    return kAverageWidth;
}

// Extended data of a style with an outline font: the family, and bits beside other ones.
constexpr int kFamilyCode = 1000, kFlagsCode = 1071;
constexpr std::int32_t kItalic = 0x1000000, kBold = 0x2000000;

void readFamily(const TvDbTextStyleTableRecord& record, TextLook& look)
{
    const TvResbufPtr chain(record.xData(TvString(u"ACAD")));
    for (const resbuf* item = chain.get(); item; item = item->rbnext) {
        if (item->restype == kFamilyCode && item->resval.rstring[0] != 0) {
            look.font = TvString(item->resval.rstring);
            look.isFamily = true;
        } else if (item->restype == kFlagsCode && look.isFamily) {
            look.isBold = (item->resval.rlong & kBold) != 0;
            look.isItalic = (item->resval.rlong & kItalic) != 0;
        }
    }
}

} // namespace

void setTextMeasure(TextMeasure* measure)
{
    g_measure = measure;
}

double textWidth(std::u16string_view line, const TextLook& look)
{
    if (g_measure)
        return g_measure->width(line, look);
    double width = 0;
    for (const char16_t unit : line)
        width += estimatedWidth(unit);
    return width * look.height * std::abs(look.widthFactor);
}

TextLook lookOfStyle(TvDbObjectId style, double height, double widthFactor)
{
    TextLook look;
    look.height = height;
    look.widthFactor = widthFactor;
    if (const TvDbObjectPointer<TvDbTextStyleTableRecord> record(style, TvDb::kForNotify); record) {
        look.font = TvString(record->fields().text("font"));
        readFamily(*record, look);
        look.bigFont = TvString(record->fields().text("bigfont"));
        look.oblique = record->fields().real("oblique");
    }
    return look;
}

} // namespace db
