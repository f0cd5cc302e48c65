#include "plot/stamp.h"

#include <algorithm>
#include <cmath>

#include <base/tarvik_config.h>
#include <gs/fonts.h>

#include "page_walk.h"

namespace plot {

namespace {

constexpr int kScope = 4; // of the user
constexpr double kLeastMm = 0.5, kMostMm = 20;

/// One setting and where it is kept.
struct Flag {
    const char16_t* key;
    bool Stamp::*member;
};
constexpr Flag kFlags[] = {
    {u"Config\\plotstamp\\SetName", &Stamp::hasSetName},
    {u"Config\\plotstamp\\Number", &Stamp::hasNumber},
    {u"Config\\plotstamp\\Title", &Stamp::hasTitle},
    {u"Config\\plotstamp\\Drawing", &Stamp::hasDrawing},
    {u"Config\\plotstamp\\Layout", &Stamp::hasLayout},
    {u"Config\\plotstamp\\Date", &Stamp::hasDate},
};
constexpr const char16_t* kNote = u"Config\\plotstamp\\Note";
constexpr const char16_t* kCorner = u"Config\\plotstamp\\Corner";
constexpr const char16_t* kHeight = u"Config\\plotstamp\\Height"; // hundredths of a millimetre
constexpr const char16_t* kWanted = u"Config\\publish\\PublishStamp";

int stored(const char16_t* key, int otherwise)
{
    TarvikConfigValue value;
    TarvikConfig* const config = tarvConfig();
    if (!config || !config->getValue(kScope, key, value) || value.type() != TarvikConfigValue::kInt)
        return otherwise;
    return value.intValue();
}

} // namespace

TvString stampText(const Stamp& stamp, const StampFacts& facts)
{
    TvString text;
    const auto add = [&text](bool isWanted, const TvString& part) {
        if (!isWanted || part.isEmpty())
            return;
        if (!text.isEmpty())
            text += u" | ";
        text += part;
    };
    add(stamp.hasSetName, facts.setName);
    add(stamp.hasNumber, facts.number);
    add(stamp.hasTitle, facts.title);
    add(stamp.hasDrawing, facts.drawing);
    add(stamp.hasLayout, facts.layout);
    add(stamp.hasDate, facts.date);
    add(true, stamp.note);
    return text;
}

Stamp storedStamp()
{
    Stamp stamp;
    for (const Flag& flag : kFlags)
        stamp.*flag.member = stored(flag.key, stamp.*flag.member) != 0;
    stamp.corner = static_cast<Stamp::Corner>(std::clamp(stored(kCorner, 0), 0, 3));
    stamp.heightMm = std::clamp(stored(kHeight, 200) / 100.0, kLeastMm, kMostMm);
    TarvikConfigValue note;
    if (tarvConfig() && tarvConfig()->getValue(kScope, kNote, note))
        stamp.note = note.textValue();
    return stamp;
}

void storeStamp(const Stamp& stamp)
{
    TarvikConfig* const config = tarvConfig();
    if (!config)
        return;
    const auto put = [config](const char16_t* key, int value) {
        config->setValue(kScope, key, TarvikConfigValue::ofInt(value));
    };
    for (const Flag& flag : kFlags)
        put(flag.key, stamp.*flag.member ? 1 : 0);
    put(kCorner, static_cast<int>(stamp.corner));
    put(kHeight, static_cast<int>(std::lround(stamp.heightMm * 100)));
    config->setValue(kScope, kNote, TarvikConfigValue::ofText(stamp.note));
}

bool isStampWanted()
{
    return stored(kWanted, 0) != 0;
}

void setStampWanted(bool isWanted)
{
    if (TarvikConfig* const config = tarvConfig())
        config->setValue(kScope, kWanted, TarvikConfigValue::ofInt(isWanted ? 1 : 0));
}

namespace {

std::vector<gs::ShapedLetter> lineOf(const TvString& text, gs::Fonts& fonts)
{
    gs::FontName name;
    name.name = u"DejaVu Sans";
    name.isFamily = true;
    std::u32string characters;
    const std::u16string_view units = text.view();
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t character = units[i];
        if (character >= 0xD800 && character < 0xDC00 && i + 1 < units.size())
            character = 0x10000 + ((character - 0xD800) << 10) + (units[++i] - 0xDC00U);
        characters += character;
    }
    return fonts.line(fonts.find(name), characters);
}

} // namespace

void walkStamp(const Page& page, const Stamp& stamp, const TvString& text, PageSink& sink)
{
    constexpr double kGapMm = 2; // from the edge of the paper
    if (text.isEmpty())
        return;
    const std::vector<gs::ShapedLetter> line = lineOf(text, gs::Fonts::ofThread());
    double length = 0;
    for (const gs::ShapedLetter& letter : line)
        length += letter.advance;
    const double height = std::clamp(stamp.heightMm, kLeastMm, kMostMm);
    const bool isRight =
        stamp.corner == Stamp::Corner::LowerRight || stamp.corner == Stamp::Corner::UpperRight;
    const bool isUpper =
        stamp.corner == Stamp::Corner::UpperLeft || stamp.corner == Stamp::Corner::UpperRight;
    const double left =
        std::max(isRight ? page.widthMm - kGapMm - length * height : kGapMm, kGapMm);
    const double base = isUpper ? page.heightMm - kGapMm - height : kGapMm;
    Mark mark;
    mark.clip = Mark::kWholePaper;
    mark.widthMm = height / 10;
    sink.usePlane({});
    std::vector<Letter> letters;
    gs::Path outline, strokes;
    double x = left;
    for (const gs::ShapedLetter& shaped : line) {
        const gs::Glyph* const glyph = shaped.glyph;
        const gs::FlatMap place{height, 0,      x + shaped.x * height,
                                0,      height, base + shaped.y * height};
        if (glyph->isFilled && glyph->face) {
            letters.push_back({glyph->face,
                               glyph->character,
                               glyph->form,
                               glyph->text,
                               glyph->advance,
                               {glyph->path.verbs(), glyph->path.points()},
                               place});
            gs::appendMapped(outline, glyph->path, place);
        } else {
            gs::appendMapped(strokes, glyph->path, place);
        }
        x += shaped.advance * height;
    }
    if (!letters.empty())
        sink.letters(mark, letters, {outline.verbs(), outline.points()});
    sink.stroke(mark, {strokes.verbs(), strokes.points()});
}

} // namespace plot
