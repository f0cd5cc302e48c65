#include "text_style.h"

#include <db/tv_db_symbol_table.h>

namespace gs {

FontName fontOf(const db::TextLook& look)
{
    return {std::u16string(look.font.view()), look.isFamily, look.isBold, look.isItalic};
}

TextStyle textStyleOf(TvDbObjectId id)
{
    TextStyle style;
    const TvDbObjectPointer<TvDbTextStyleTableRecord> record(id, TvDb::kForNotify);
    if (!record)
        return style;
    style.font = fontOf(db::lookOfStyle(id, 0, 1));
    style.height = record->fields().real("height");
    style.widthFactor = record->fields().real("width_factor");
    style.oblique = record->fields().real("oblique");
    style.isVertical = record->fields().flag("is_vertical");
    return style;
}

} // namespace gs
