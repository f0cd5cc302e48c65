#pragma once

#include <db/mtext_columns.h>
#include <db/tv_db_database.h>

#include "gs/text_shape.h"
#include "text_style.h"
#include "text_tools.h"

namespace gs {

/// Everything but the text itself.
struct MTextLook {
    TextStyle style;
    double height = 0;
    double width = 0;         ///< where lines are broken; 0: nowhere
    double definedHeight = 0; ///< of columns; 0: none
    int attachment = 1;       ///< 1 to 9, from the top left to the bottom right
    double spacing = 1;
    bool isExact = false;
    bool isVertical = false; ///< letters below each other, lines from the right to the left
    db::MTextColumns columns;
    bool isFilled = false, usesPaperColor = false, hasFrame = false;
    double backgroundScale = 1.5;
    OwnColor background;
    OwnColor color; ///< of letters that have none of their own
    TvGeMatrix3d placement;
};
TextShape mtextShape(std::u16string_view contents, const MTextLook& look, TextTools& tools);

/// The shape of paragraphs in a record with the fields of an MTEXT.
/// @param database  that its text style is in; null: the style does not count.
TextShape mtextShape(const db::RecordView& fields, TvDbDatabase* database, TextTools& tools,
                     const db::MTextColumns& columns);

/// The plane of a text: x along @p direction, z along @p normal.
TvGeMatrix3d textPlane(const TvGePoint3d& origin, const TvGeVector3d& direction,
                       const TvGeVector3d& normal);

} // namespace gs
