#include <algorithm>
#include <numbers>

#include <ge/ocs.h>

#include "gs/text_shape.h"
#include "text_codes.h"
#include "text_mtext.h"
#include "text_pen.h"
#include "text_style.h"
#include "text_tools.h"

namespace gs {

namespace {

// Below the baseline, of the height of capitals: as far as letters like "g" reach.
constexpr double kDescent = 1.0 / 3;
// From one letter to the next below it, of the height.
constexpr double kDownStep = 1.5;

/// A line of text, and how it is turned.
struct Line {
    std::vector<LineCharacter> letters;
    std::u32string text;              ///< the letters alone
    std::vector<ShapedLetter> shaped; ///< from left to right; none where they stand one by one
    LetterLook look;
    double width = 0; ///< of what is seen, across
    bool isVertical = false;

    void setLetters(std::vector<LineCharacter> to)
    {
        letters = std::move(to);
        text.resize(letters.size());
        std::transform(letters.begin(), letters.end(), text.begin(),
                       [](const LineCharacter& letter) { return letter.character; });
    }
};

bool hasSameLines(const LineCharacter& a, const LineCharacter& b)
{
    return a.isUnderlined == b.isUnderlined && a.isOverlined == b.isOverlined &&
           a.isStruck == b.isStruck;
}

LetterLook lookAt(const Line& line, const LineCharacter& letter)
{
    LetterLook look = line.look;
    look.isUnderlined = letter.isUnderlined;
    look.isOverlined = letter.isOverlined;
    look.isStruck = letter.isStruck;
    return look;
}

double widthOf(const Line& line, TextPen& pen)
{
    return line.shaped.empty() ? pen.width(line.text, line.look).ink()
                               : pen.width(line.shaped, line.look).ink();
}

/// Lines at letters go along those that are beside each other, wherever in the text they are.
void writeShaped(TextPen& pen, const Line& line, const FlatMap& frame)
{
    pen.letters(line.shaped, line.look, {}, frame);
    const std::span<const ShapedLetter> all(line.shaped);
    const auto characterOf = [&line](const ShapedLetter& letter) -> const LineCharacter& {
        return line.letters[letter.character];
    };
    double x = 0;
    for (std::size_t at = 0; at < all.size();) {
        const LineCharacter& first = characterOf(all[at]);
        const std::size_t begin = at;
        while (at < all.size() && hasSameLines(characterOf(all[at]), first))
            ++at;
        const LetterWidth width = pen.width(all.subspan(begin, at - begin), line.look);
        pen.linesAt(lookAt(line, first), {x, 0}, x + width.ink(), frame);
        x += width.advance;
    }
    pen.run(line.text, {}, line.look.height, line.width, frame);
}

void writeAcross(TextPen& pen, const Line& line, const FlatMap& frame)
{
    if (!line.shaped.empty())
        return writeShaped(pen, line, frame);
    double x = 0;
    for (std::size_t at = 0; at < line.letters.size();) {
        const LineCharacter& first = line.letters[at];
        const std::size_t begin = at;
        while (at < line.letters.size() && hasSameLines(line.letters[at], first))
            ++at;
        const auto piece = std::u32string_view(line.text).substr(begin, at - begin);
        const LetterLook look = lookAt(line, first);
        pen.write(piece, look, {x, 0}, frame);
        if (at < line.letters.size())
            x += pen.width(piece, look).advance;
    }
    pen.run(line.text, {}, line.look.height, line.width, frame);
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
    pen.run(line.text, {}, line.look.height, std::max(length, 0.0), down);
}

/// The fields that a line is set by.
struct LineFields {
    explicit LineFields(const TvDbText& text)
    {
        struct Ids {
            db::FieldId at = db::fieldId("ins_pt"), alignment = db::fieldId("align_pt"),
                        elevation = db::fieldId("elevation"), normal = db::fieldId("normal"),
                        height = db::fieldId("height"), rotation = db::fieldId("rotation"),
                        width = db::fieldId("width_factor"), oblique = db::fieldId("oblique"),
                        horizontal = db::fieldId("halign"), vertical = db::fieldId("valign"),
                        generation = db::fieldId("generation");
        };
        static const Ids ids;
        const db::RecordView fields = text.fields();
        const double elevation = fields.real(ids.elevation);
        const db::Point begin = fields.point(ids.at), aligned = fields.point(ids.alignment);
        position = {begin.x, begin.y, elevation};
        alignmentPoint = {aligned.x, aligned.y, elevation};
        normal = db::asVector(fields.point(ids.normal));
        height = fields.real(ids.height);
        rotation = fields.real(ids.rotation);
        widthFactor = fields.real(ids.width);
        oblique = fields.real(ids.oblique);
        horizontal = fields.integer(ids.horizontal);
        vertical = fields.integer(ids.vertical);
        generation = fields.integer(ids.generation);
    }

    bool isBetweenPoints() const
    {
        return horizontal == TvDbText::kTextAlign || horizontal == TvDbText::kTextFit;
    }
    bool isLeftOnBaseline() const
    {
        const auto isUsual = [](std::int64_t mode, std::int64_t most) {
            return mode <= 0 || mode > most;
        };
        return isUsual(horizontal, TvDbText::kTextFit) && isUsual(vertical, TvDbText::kTextTop);
    }
    bool isMirroredInX() const { return (generation & 2) != 0; }
    bool isMirroredInY() const { return (generation & 4) != 0; }

    TvGePoint3d position, alignmentPoint;
    TvGeVector3d normal;
    double height, rotation, widthFactor, oblique;
    std::int64_t horizontal, vertical, generation;
};

/// Where the point that the modes align lies, from the left end of the baseline.
TvGePoint2d anchorOf(const LineFields& text, double width, double height)
{
    TvGePoint2d anchor;
    switch (text.horizontal) {
    case TvDbText::kTextCenter:
    case TvDbText::kTextMid: anchor.x = width / 2; break;
    case TvDbText::kTextRight: anchor.x = width; break;
    default: break;
    }
    switch (text.vertical) {
    case TvDbText::kTextBottom: anchor.y = -height * kDescent; break;
    case TvDbText::kTextVertMid: anchor.y = height / 2; break;
    case TvDbText::kTextTop: anchor.y = height; break;
    default: break;
    }
    if (text.horizontal == TvDbText::kTextMid)
        anchor.y = height / 2;
    return anchor;
}

/// The same for letters below each other, from the top of the first.
TvGePoint2d anchorDown(const LineFields& text, double length)
{
    switch (text.horizontal) {
    case TvDbText::kTextCenter:
    case TvDbText::kTextMid: return {0, -length / 2};
    case TvDbText::kTextRight: return {0, -length};
    default: return {};
    }
}

/// Makes the line as long as the way between the text's points, by height or width.
void fitBetweenPoints(const LineFields& text, double width, LetterLook& look)
{
    const TvGeVector3d way = text.alignmentPoint - text.position;
    const double length = std::hypot(way.x, way.y);
    if (!(width > 0) || !(length > 0))
        return;
    if (text.horizontal == TvDbText::kTextFit)
        look.widthFactor = soundFactor(look.widthFactor * length / width);
    else if (isDrawableHeight(look.height * length / width))
        look.height *= length / width;
}

/// Where the line begins, or is aligned to, and its direction.
TvGeMatrix3d placementOf(const LineFields& text)
{
    TvGePoint3d at = text.position;
    double rotation = text.rotation;
    if (text.isBetweenPoints()) {
        const TvGeVector3d way = text.alignmentPoint - at;
        if (way.x != 0 || way.y != 0)
            rotation = std::atan2(way.y, way.x);
    } else if (!text.isLeftOnBaseline()) {
        at = text.alignmentPoint;
    }
    TvGeMatrix3d place = TvGeMatrix3d::translation(at.asVector());
    if (rotation != 0)
        place = place * TvGeMatrix3d::rotation(rotation, TvGeVector3d::zAxis());
    const bool isUpright = text.normal.x == 0 && text.normal.y == 0 && text.normal.z > 0;
    return isUpright ? place : ge::ocsToWcs(text.normal) * place;
}

TextShape lineShape(const TvDbText& text, std::u16string_view shown, TextTools& tools)
{
    TextShape shape;
    shape.keepsLetters = tools.keepsLetters;
    const TextTools::Style& style = tools.styleOf(text);
    const LineFields fields(text);
    Line line;
    line.setLetters(decodedLine(shown, kMostLetters));
    line.look.font = style.font;
    line.look.height = fields.height;
    line.look.widthFactor = soundFactor(fields.widthFactor);
    line.look.slant = slantOf(fields.oblique);
    line.isVertical = style.style.isVertical && !fields.isBetweenPoints();
    shape.placement = placementOf(fields);
    if (line.letters.empty() || !isDrawableHeight(line.look.height) || !isSound(shape.placement))
        return shape;
    TextPen pen(shape, tools);
    if (!line.isVertical)
        line.shaped = pen.shapedLine(line.text, line.look);
    line.width = widthOf(line, pen);
    if (fields.isBetweenPoints()) {
        fitBetweenPoints(fields, line.width, line.look);
        line.width = widthOf(line, pen);
    }
    const double length =
        line.look.height * (1 + kDownStep * static_cast<double>(line.letters.size() - 1));
    const TvGePoint2d anchor = line.isVertical ? anchorDown(fields, length)
                                               : anchorOf(fields, line.width, line.look.height);
    // Mirrored texts keep the point that they are aligned to.
    const FlatMap frame =
        FlatMap::scaling(fields.isMirroredInX() ? -1 : 1, fields.isMirroredInY() ? -1 : 1) *
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
    static const db::FieldId kType = db::fieldId("att_type"), kParagraphs = db::fieldId("emb");
    const db::RecordView fields = text.fields();
    return fields.has(kType) && fields.integer(kType) > 1 ? fields.structure(kParagraphs)
                                                          : db::RecordView();
}

} // namespace

TextShape textShape(const TvDbText& text, TextTools& tools)
{
    static const db::FieldId kText = db::fieldId("text");
    if (const db::RecordView paragraphs = paragraphsOf(text))
        if (!paragraphs.text("text").empty())
            return mtextShape(paragraphs, text.database(), tools, db::mtextColumns(paragraphs));
    return lineShape(text, text.fields().text(kText), tools);
}

TextShape textShape(const TvDbText& text, std::u16string_view shown, TextTools& tools)
{
    return lineShape(text, shown, tools);
}

} // namespace gs
