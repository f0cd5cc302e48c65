#include "text_mtext.h"

#include <algorithm>
#include <cmath>

#include <db/ge_values.h>
#include <ge/ocs.h>

#include "text_columns.h"
#include "text_setting.h"
#include "text_style.h"

namespace gs {

namespace {

// "bg_flags"
enum : std::int64_t { kFilled = 1, kPaperColor = 2, kFramed = 16 };
constexpr std::int64_t kStatic = 1;                   // columns: a fixed number
enum : std::int64_t { kDownwards = 3, kAsStyle = 5 }; // "flow"
constexpr std::int64_t kExact = 2;                    // "line_style"
constexpr std::size_t kMostColumns = 1000;

double soundLength(double length)
{
    return length > 0 && length <= kLargestHeight ? length : 0;
}

void setColumns(const db::MTextColumns& columns, double definedHeight, TextFrame& frame)
{
    if (columns.type == 0 || soundLength(columns.width) == 0)
        return;
    const bool isStatic = columns.type == kStatic;
    frame.width = columns.width;
    frame.gutter = columns.gutter >= 0 && columns.gutter <= kLargestHeight ? columns.gutter : 0;
    frame.isReversed = columns.isReversed;
    if (!isStatic && !columns.hasAutoHeight) {
        for (std::size_t i = 0; i < std::min(columns.heights.size(), kMostColumns); ++i) {
            // Signs differ from drawing to drawing; without a height a column takes all there is.
            const double height = soundLength(std::abs(columns.heights[i]));
            frame.columnHeights.push_back(height > 0 ? height : kLargestHeight);
        }
    } else if (const double height = soundLength(definedHeight); height > 0) {
        const auto most = static_cast<std::int64_t>(kMostColumns);
        const std::int64_t count = std::clamp<std::int64_t>(columns.count, 1, most);
        frame.columnHeights.assign(isStatic ? static_cast<std::size_t>(count) : 1, height);
        frame.hasMoreColumns = !isStatic;
    }
}

/// The text of a leader names its fields in its own way.
db::MTextColumns leaderColumns(const db::RecordView& fields)
{
    db::MTextColumns columns;
    columns.type = fields.integer("columns");
    columns.count = fields.integer("n_cols");
    columns.hasAutoHeight = fields.flag("auto_height");
    columns.isReversed = fields.flag("col_reversed");
    columns.width = fields.real("col_width");
    columns.gutter = fields.real("col_gutter");
    const db::ArrayView heights = fields.array("col_sizes");
    for (std::uint32_t i = 0; i < heights.size(); ++i)
        columns.heights.push_back(heights.real(i));
    return columns;
}

Alignment alignmentOf(int attachment)
{
    switch ((attachment - 1) % 3) {
    case 1: return Alignment::Center;
    case 2: return Alignment::Right;
    default: return Alignment::Left;
    }
}

void setBackground(const MTextLook& look, const Box& around, TextShape& shape)
{
    if (!look.isFilled && !look.hasFrame)
        return;
    const double factor =
        look.backgroundScale >= 1 && look.backgroundScale <= 5 ? look.backgroundScale : 1.5;
    TextBackground background;
    background.isFilled = look.isFilled;
    background.hasFrame = look.hasFrame;
    background.usesPaperColor = look.usesPaperColor;
    background.color = look.background;
    addRectangle(background.area, around.grown((factor - 1) * look.height));
    shape.background = background;
}

} // namespace

TvGeMatrix3d textPlane(const TvGePoint3d& origin, const TvGeVector3d& direction,
                       const TvGeVector3d& normal)
{
    const TvGeVector3d z = normal.isZeroLength() ? TvGeVector3d::zAxis() : normal.normal();
    TvGeVector3d x = direction - z * direction.dotProduct(z);
    x = x.isZeroLength() ? ge::ocsToWcs(z).axis(0) : x.normal();
    return TvGeMatrix3d::coordinateSystem(origin, x, z.crossProduct(x), z);
}

TextShape mtextShape(std::u16string_view contents, const MTextLook& look, TextTools& tools)
{
    TextShape shape;
    shape.keepsLetters = tools.keepsLetters;
    shape.placement = look.placement;
    if (!isDrawableHeight(look.height) || !isSound(look.placement))
        return shape;
    PieceLook letters;
    letters.letters.font = &tools.fonts.find(look.style.font);
    letters.letters.height = look.height;
    letters.letters.widthFactor = soundFactor(look.style.widthFactor);
    letters.letters.slant = slantOf(look.style.oblique);
    letters.letters.color = look.color;
    const int attachment = look.attachment >= 1 && look.attachment <= 9 ? look.attachment : 1;
    TextFrame frame;
    frame.height = look.height;
    frame.width = soundLength(look.width);
    frame.alignment = alignmentOf(attachment);
    frame.spacing = look.spacing >= 0.01 && look.spacing <= 100 ? look.spacing : 1;
    frame.isExact = look.isExact;
    setColumns(look.columns, look.definedHeight, frame);
    const ParagraphText text = parsedParagraphs(contents, letters, tools.fonts);
    TextPen pen(shape, tools);
    if (look.isVertical) {
        const Box around = writeColumns(text, look, attachment, pen);
        if (!shape.parts.empty())
            setBackground(look, around, shape);
        measureExtents(shape);
        return shape;
    }
    TextSetter setter(text, frame, pen);
    const SetText size = setter.size();
    const double left = -size.width * ((attachment - 1) % 3) / 2;
    const double top = size.height * ((attachment - 1) / 3) / 2;
    setter.write(FlatMap::moving(left, top));
    if (!shape.parts.empty())
        setBackground(look, {left, top - size.height, left + size.width, top}, shape);
    measureExtents(shape);
    return shape;
}

TextShape mtextShape(const db::RecordView& fields, TvDbDatabase* database, TextTools& tools,
                     const db::MTextColumns& columns)
{
    MTextLook look;
    look.style =
        tools.style(database ? database->find(fields.handle("style")) : TvDbObjectId()).style;
    look.height = fields.real("height");
    look.width = fields.real("rect_width");
    look.definedHeight =
        fields.real("rect_height") > 0 ? fields.real("rect_height") : fields.real("rect_height2");
    look.attachment = static_cast<int>(fields.integer("attachment"));
    look.spacing = fields.real("line_factor");
    look.isExact = fields.integer("line_style") == kExact;
    const std::int64_t flow = fields.integer("flow");
    look.isVertical = flow == kDownwards || (flow == kAsStyle && look.style.isVertical);
    look.columns = columns;
    const std::int64_t flags = fields.integer("bg_flags");
    look.isFilled = (flags & (kFilled | kPaperColor)) != 0;
    look.usesPaperColor = (flags & kPaperColor) != 0;
    look.hasFrame = (flags & kFramed) != 0;
    look.backgroundScale = fields.real("bg_scale");
    const db::RecordView color = fields.structure("bg_color");
    look.background = OwnColor::fromRecord(color.integer("value"));
    look.placement =
        textPlane(db::asPoint(fields.point("ins_pt")), db::asVector(fields.point("x_dir")),
                  db::asVector(fields.point("normal")));
    return mtextShape(fields.text("text"), look, tools);
}

TextShape textShape(const TvDbMText& text, TextTools& tools)
{
    return mtextShape(text.fields(), text.database(), tools, db::mtextColumns(text.record()));
}

TextShape textShape(const TvDbMLeader& leader, TextTools& tools)
{
    const db::RecordView fields = leader.fields().structure("ctx");
    if (!fields.flag("has_text"))
        return {};
    MTextLook look;
    look.style = tools.style(leader.idOf(fields.handle("style"))).style;
    look.height = fields.real("text_height");
    look.width = fields.real("width");
    look.definedHeight = fields.real("height");
    // 1 left, 2 in the middle, 3 right; always at the top.
    look.attachment = static_cast<int>(std::clamp<std::int64_t>(fields.integer("alignment"), 1, 3));
    look.spacing = fields.real("line_factor");
    look.isExact = fields.integer("line_style") == kExact;
    look.columns = leaderColumns(fields);
    look.isFilled = fields.flag("bg_fill");
    look.usesPaperColor = fields.flag("bg_mask");
    look.hasFrame = leader.fields().flag("text_frame");
    look.backgroundScale = fields.real("bg_scale");
    const db::Version version = leader.record().version();
    look.background = OwnColor::fromRecord(fields.structure("bg_color"), version);
    look.color = OwnColor::fromRecord(fields.structure("color"), version);
    look.placement =
        textPlane(db::asPoint(fields.point("location")), db::asVector(fields.point("direction")),
                  db::asVector(fields.point("normal")));
    return mtextShape(fields.text("text"), look, tools);
}

} // namespace gs
