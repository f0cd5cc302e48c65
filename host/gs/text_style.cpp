#include "text_style.h"

#include <db/resbuf.h>
#include <db/tv_db_symbol_table.h>

namespace gs {

namespace {

// Extended data of a style with an outline font: the family, and bits beside other ones.
constexpr int kFamilyCode = 1000, kFlagsCode = 1071;
constexpr std::int32_t kItalic = 0x1000000, kBold = 0x2000000;

void readFamily(const TvDbTextStyleTableRecord& record, FontName& font)
{
    const TvResbufPtr chain(record.xData(TvString(u"ACAD")));
    for (const resbuf* item = chain.get(); item; item = item->rbnext) {
        if (item->restype == kFamilyCode && item->resval.rstring[0] != 0) {
            font.name = item->resval.rstring;
            font.isFamily = true;
        } else if (item->restype == kFlagsCode && font.isFamily) {
            font.isBold = (item->resval.rlong & kBold) != 0;
            font.isItalic = (item->resval.rlong & kItalic) != 0;
        }
    }
}

} // namespace

TextStyle textStyleOf(TvDbObjectId id)
{
    TextStyle style;
    const TvDbObjectPointer<TvDbTextStyleTableRecord> record(id, TvDb::kForNotify);
    if (!record)
        return style;
    style.font.name = record->fields().text("font");
    readFamily(*record, style.font);
    style.height = record->fields().real("height");
    style.widthFactor = record->fields().real("width_factor");
    style.oblique = record->fields().real("oblique");
    style.isVertical = record->fields().flag("is_vertical");
    return style;
}

} // namespace gs
