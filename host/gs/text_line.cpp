#include <algorithm>
#include <numbers>

#include <ge/ocs.h>

#include "gs/text_shape.h"
#include "text_codes.h"
#include "text_mtext.h"
#include "text_pen.h"
#include "text_style.h"

namespace gs {

namespace {

// Below the baseline, of the height of capitals: as far as letters like "g" reach.
constexpr double kDescent = 1.0 / 3;
// From one letter to the next below it, of the height.
constexpr double kDownStep = 1.5;

/// A line of text, and how it is turned.
struct Line {
    std::vector<LineCharacter> letters;
    LetterLook look;
    bool isVertical = false;
};

std::u32string plain(const Line& line)
{
    std::u32string text;
    for (const LineCharacter& letter : line.letters)
        text += letter.character;
    return text;
}

bool hasSameLines(const LineCharacter& a, const LineCharacter& b)
{
    return a.isUnderlined == b.isUnderlined && a.isOverlined == b.isOverlined &&
           a.isStruck == b.isStruck;
}

void writeAcross(TextPen& pen, const Line& line, const FlatMap& frame)
{
    double x = 0;
    for (std::size_t at = 0; at < line.letters.size();) {
        std::u32string piece;
        const LineCharacter& first = line.letters[at];
        for (; at < line.letters.size() && hasSameLines(line.letters[at], first); ++at)
            piece += line.letters[at].character;
        LetterLook look = line.look;
        look.isUnderlined = first.isUnderlined;
        look.isOverlined = first.isOverlined;
        look.isStruck = first.isStruck;
        pen.write(piece, look, {x, 0}, frame);
        x += pen.width(piece, look).advance;
    }
    const std::u32string all = plain(line);
    pen.run(all, {}, line.look.height, pen.width(all, line.look).ink(), frame);
}

/// One letter below the other, each in the middle over x = 0, the first one's top at y = 0.
void writeDown(TextPen& pen, const Line& line, const FlatMap& frame)
{
    const double step = kDownStep * line.look.height;
    double y = -line.look.height;
    for (const LineCharacter& letter : line.letters) {
        const Glyph& glyph = pen.glyph(line.look, letter.character);
        const double width = (glyph.advance - glyph.gap) * line.look.height * line.look.widthFactor;
        pen.letter(glyph, line.look, {-width / 2, y}, frame);
        y -= step;
    }
    const double length = step * static_cast<double>(line.letters.size()) - step + line.look.height;
    const FlatMap down = frame * FlatMap::turning(-std::numbers::pi / 2);
    pen.run(plain(line), {}, line.look.height, std::max(length, 0.0), down);
}

/// Where the point that the modes align lies, from the left end of the baseline.
TvGePoint2d anchorOf(const TvDbText& text, double width, double height)
{
    TvGePoint2d anchor;
    switch (text.horizontalMode()) {
    case TvDbText::kTextCenter:
    case TvDbText::kTextMid: anchor.x = width / 2; break;
    case TvDbText::kTextRight: anchor.x = width; break;
    default: break;
    }
    switch (text.verticalMode()) {
    case TvDbText::kTextBottom: anchor.y = -height * kDescent; break;
    case TvDbText::kTextVertMid: anchor.y = height / 2; break;
    case TvDbText::kTextTop: anchor.y = height; break;
    default: break;
    }
    if (text.horizontalMode() == TvDbText::kTextMid)
        anchor.y = height / 2;
    return anchor;
}

/// The same for letters below each other, from the top of the first.
TvGePoint2d anchorDown(const TvDbText& text, double length)
{
    switch (text.horizontalMode()) {
    case TvDbText::kTextCenter:
    case TvDbText::kTextMid: return {0, -length / 2};
    case TvDbText::kTextRight: return {0, -length};
    default: return {};
    }
}

bool isBetweenPoints(const TvDbText& text)
{
    return text.horizontalMode() == TvDbText::kTextAlign ||
           text.horizontalMode() == TvDbText::kTextFit;
}

/// Makes the line as long as the way between the text's points, by height or width.
void fitBetweenPoints(const TvDbText& text, double width, LetterLook& look)
{
    const TvGeVector3d way = text.alignmentPoint() - text.position();
    const double length = std::hypot(way.x, way.y);
    if (!(width > 0) || !(length > 0))
        return;
    if (text.horizontalMode() == TvDbText::kTextFit)
        look.widthFactor = soundFactor(look.widthFactor * length / width);
    else if (isDrawableHeight(look.height * length / width))
        look.height *= length / width;
}

/// Where the line begins, or is aligned to, and its direction.
TvGeMatrix3d placementOf(const TvDbText& text)
{
    TvGePoint3d at = text.position();
    double rotation = text.rotation();
    if (isBetweenPoints(text)) {
        const TvGeVector3d way = text.alignmentPoint() - at;
        if (way.x != 0 || way.y != 0)
            rotation = std::atan2(way.y, way.x);
    } else if (text.horizontalMode() != TvDbText::kTextLeft ||
               text.verticalMode() != TvDbText::kTextBase) {
        at = text.alignmentPoint();
    }
    return ge::ocsToWcs(text.normal()) * TvGeMatrix3d::translation(at.asVector()) *
           TvGeMatrix3d::rotation(rotation, TvGeVector3d::zAxis());
}

TextShape lineShape(const TvDbText& text, std::u16string_view shown, Fonts& fonts)
{
    TextShape shape;
    const TextStyle style = textStyleOf(text.textStyle());
    Line line;
    line.letters = decodedLine(shown, kMostLetters);
    line.look.font = &fonts.find(style.font);
    line.look.height = text.height();
    line.look.widthFactor = soundFactor(text.widthFactor());
    line.look.slant = slantOf(text.oblique());
    line.isVertical = style.isVertical && !isBetweenPoints(text);
    shape.placement = placementOf(text);
    if (line.letters.empty() || !isDrawableHeight(line.look.height) || !isSound(shape.placement))
        return shape;
    TextPen pen(shape, fonts);
    double width = pen.width(plain(line), line.look).ink();
    if (isBetweenPoints(text)) {
        fitBetweenPoints(text, width, line.look);
        width = pen.width(plain(line), line.look).ink();
    }
    const double length =
        line.look.height * (1 + kDownStep * static_cast<double>(line.letters.size() - 1));
    const TvGePoint2d anchor =
        line.isVertical ? anchorDown(text, length) : anchorOf(text, width, line.look.height);
    // Mirrored texts keep the point that they are aligned to.
    const FlatMap frame =
        FlatMap::scaling(text.isMirroredInX() ? -1 : 1, text.isMirroredInY() ? -1 : 1) *
        FlatMap::moving(-anchor.x, -anchor.y);
    if (line.isVertical)
        writeDown(pen, line, frame);
    else
        writeAcross(pen, line, frame);
    measureExtents(shape);
    return shape;
}

/// The record of an attribute's paragraphs; none for a text of one line.
db::RecordView paragraphsOf(const TvDbText& text)
{
    const db::RecordView fields = text.fields();
    return fields.has("att_type") && fields.integer("att_type") > 1 ? fields.structure("emb")
                                                                    : db::RecordView();
}

} // namespace

TextShape shapeOf(const TvDbText& text, Fonts& fonts)
{
    if (const db::RecordView paragraphs = paragraphsOf(text))
        if (!paragraphs.text("text").empty())
            return mtextShape(paragraphs, text.database(), fonts, db::mtextColumns(paragraphs));
    return lineShape(text, text.fields().text("text"), fonts);
}

TextShape shapeOf(const TvDbText& text, std::u16string_view shown, Fonts& fonts)
{
    return lineShape(text, shown, fonts);
}

} // namespace gs
