#include <db/tv_db_text.h>

#include <cmath>

#include <ge/ocs.h>

#include <db/text_measure.h>

TVRX_DEFINE_MEMBERS(TvDbMText, TvDbEntity)

namespace {

// From one baseline to the next, of the height of capitals, at a line spacing of 1.
constexpr double kLineStep = 5.0 / 3;

/// Breaks a paragraph between words where it gets wider than @p width (0: never), and tells each
/// line's width.
void breakParagraph(std::u16string_view paragraph, const db::TextLook& look, double width,
                    std::vector<double>& lines)
{
    const double whole = db::textWidth(paragraph, look);
    if (width <= 0 || whole <= width) {
        lines.push_back(whole);
        return;
    }
    const double blank = db::textWidth(u" ", look);
    double line = 0;
    bool isEmpty = true;
    while (!paragraph.empty()) {
        const auto end = paragraph.find(u' ');
        const double word = db::textWidth(paragraph.substr(0, end), look);
        if (!isEmpty && line + blank + word > width) {
            lines.push_back(line);
            line = 0;
            isEmpty = true;
        }
        line += isEmpty ? word : blank + word;
        isEmpty = false;
        paragraph =
            end == std::u16string_view::npos ? std::u16string_view() : paragraph.substr(end + 1);
    }
    lines.push_back(line);
}

} // namespace

TvStatusCode TvDbMText::setDatabaseDefaults(TvDbDatabase* database)
{
    if (!database)
        return TvStatus::NoDatabase;
    if (const TvStatusCode status = setTextStyle(database->textstyle()))
        return status;
    if (database->clayer().isValid())
        edit().setHandle("layer", database->clayer().handle().value());
    const double size = database->headerRecord().real("TEXTSIZE");
    return size > 0 ? setTextHeight(size) : TvStatus::Ok;
}

TvDbObjectId TvDbMText::textStyle() const
{
    return database() ? idField("style") : m_style;
}

TvStatusCode TvDbMText::setTextStyle(TvDbObjectId style)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (database() && style && style.database() != database())
        return TvStatus::InvalidInput;
    m_style = style;
    return setIdField("style", style);
}

TvDbMText::AttachmentPoint TvDbMText::attachment() const
{
    const std::int64_t point = fields().integer("attachment");
    return point >= kTopLeft && point <= kBottomRight ? static_cast<AttachmentPoint>(point)
                                                      : kTopLeft;
}

double TvDbMText::rotation() const
{
    const TvGeVector3d flat = ge::wcsToOcs(normal()) * direction();
    return std::atan2(flat.y, flat.x);
}

TvStatusCode TvDbMText::setContents(const TvString& contents)
{
    if (const TvStatusCode status = setText("text", contents))
        return status;
    for (const char* field : {"ext_width", "ext_height", "ext_width2", "ext_height2"})
        edit().setReal(field, 0);
    return TvStatus::Ok;
}

TvString TvDbMText::text() const
{
    return TvString(db::plainParagraphs(fields().text("text")));
}

TvDbMText::Size TvDbMText::measured() const
{
    const Size kept{fields().real("ext_width"), fields().real("ext_height")};
    if (kept.width > 0 && kept.height > 0)
        return kept;
    const db::TextLook look = db::lookOfStyle(textStyle(), textHeight(), 1);
    std::vector<double> lines;
    const std::u16string all = db::plainParagraphs(fields().text("text"));
    if (all.empty())
        return {0, 0};
    for (std::u16string_view rest = all;;) {
        const auto end = rest.find(u'\n');
        breakParagraph(rest.substr(0, end), look, width(), lines);
        if (end == std::u16string_view::npos)
            break;
        rest.remove_prefix(end + 1);
    }
    Size size{0, textHeight() *
                     (1 + kLineStep * lineSpacingFactor() * static_cast<double>(lines.size() - 1))};
    for (const double line : lines)
        size.width = std::max(size.width, line);
    return size;
}

double TvDbMText::actualWidth() const
{
    return measured().width;
}

double TvDbMText::actualHeight() const
{
    return measured().height;
}

TvStatusCode TvDbMText::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    const Size size = measured();
    if (size.width <= 0 || size.height <= 0)
        return TvStatus::NotApplicable;
    const int column = (attachment() - 1) % 3, row = (attachment() - 1) / 3;
    const double left = -size.width * column / 2, top = size.height * row / 2;
    const TvGeVector3d x = direction().normal();
    const TvGeVector3d y = normal().crossProduct(x).normal();
    for (const double across : {top, top - size.height})
        for (const double along : {left, left + size.width})
            out.addPoint(location() + x * along + y * across);
    return out.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}
