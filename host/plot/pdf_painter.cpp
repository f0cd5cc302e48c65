#include "pdf_painter.h"

#include <algorithm>

#include <gs/picture.h>
#include <gs/visual_text.h>

#include "inflate.h"

namespace plot {

namespace {

constexpr double kUnitsPerMm = 100;
constexpr int kMostPending = 400; // pieces in one path: viewers sort them

constexpr double kLeastBlank = 0.25;   // of the height of capitals, between words
constexpr double kHiddenAdvance = 0.5; // of the letters of the font of hidden texts

using Verb = gs::Path::Verb;

/// In the font that has it.
std::uint16_t codeOf(const Letter& letter)
{
    return letter.character == 0 ? letter.form
                                 : static_cast<std::uint16_t>(letter.character & 0xFFFF);
}

/// A form that stands for nothing: what it is a part of is told by one before it.
bool isPart(const Letter& letter)
{
    return letter.character == 0 && letter.text.empty();
}

/// Behind the letter at @p first and its parts.
std::size_t endOfGroup(std::span<const Letter> letters, std::size_t first)
{
    std::size_t end = first + 1;
    while (end < letters.size() && isPart(letters[end]))
        ++end;
    return end;
}

/// Several characters that run from right to left.
bool isTurned(std::u16string_view text)
{
    return text.size() > 1 && gs::visualText(text) != text;
}

/// One of them may be told by others: then any will do.
bool agrees(std::u16string_view known, std::u16string_view text)
{
    return known.empty() || text.empty() || known == text;
}

std::int32_t units(double mm)
{
    return static_cast<std::int32_t>(
        std::lrint(std::clamp(mm * kUnitsPerMm, -2'000'000'000.0, 2'000'000'000.0)));
}

} // namespace

PdfPainter::PdfPainter(const Page& page, const PdfOptions& options, PageContent& content)
    : m_page(page), m_options(options), m_content(content)
{
    // Three decimals are not enough for this one.
    m_out.text(".0283464567 0 0 .0283464567 0 0 cm 1 J 1 j\n");
    if (options.mergesLines)
        m_out.text("/M gs\n");
    m_state.isWide = 0;
    usePlane({});
}

void PdfPainter::usePlane(const gs::FlatMap& toMm)
{
    flush();
    m_plane = gs::FlatMap::scaling(kUnitsPerMm, kUnitsPerMm) * toMm;
}

std::string_view PdfPainter::finish()
{
    flush();
    useLayer(Mark::kNoLayer);
    if (m_isHidden)
        m_out.text("ET\n");
    if (m_clip != Mark::kWholePaper)
        m_out.text("Q\n");
    return m_out.view();
}

// State

void PdfPainter::flush()
{
    if (m_pending > 0)
        m_out.text("S\n");
    m_pending = 0;
    m_pen.reset();
}

void PdfPainter::usePlace(const Mark& mark)
{
    if (mark.layer != m_layer)
        useLayer(mark.layer);
    if (mark.clip != m_clip)
        useClip(mark.clip);
}

void PdfPainter::useLayer(std::uint32_t layer)
{
    if (!m_options.hasLayers)
        return;
    flush();
    if (m_isLayerOpen)
        m_out.text("EMC\n");
    m_isLayerOpen = layer != Mark::kNoLayer;
    m_layer = layer;
    if (!m_isLayerOpen)
        return;
    const auto [at, isNew] = m_layerNames.emplace(layer, m_content.layers.size());
    if (isNew)
        m_content.layers.push_back(m_page.list.layers()[layer].name);
    m_out.text("/OC /L").number(static_cast<std::int32_t>(at->second)).text("BDC\n");
}

void PdfPainter::useClip(std::uint32_t clip)
{
    flush();
    if (m_clip != Mark::kWholePaper) {
        m_out.text("Q\n");
        m_state = m_outer;
    }
    m_clip = clip;
    if (clip == Mark::kWholePaper)
        return;
    m_outer = m_state;
    const gs::Box& shown = m_page.shownMm;
    const std::int32_t x = units(shown.lowX), y = units(shown.lowY);
    m_out.text("q ").number(x).number(y);
    m_out.number(units(shown.highX) - x).number(units(shown.highY) - y).text("re W n\n");
    addClip(clip);
}

void PdfPainter::addClip(std::uint32_t number)
{
    if (number == gs::Item::kNoClip)
        return;
    const gs::Clip& clip = m_page.list.clips()[number];
    addClip(clip.parent);
    const gs::PathView path = m_page.list.path(clip.path);
    const gs::FlatMap plane = m_plane;
    m_plane = gs::FlatMap::scaling(kUnitsPerMm, kUnitsPerMm) * m_page.toPaper;
    if (!traceRectangle(path))
        traceFill(path);
    m_plane = plane;
    m_out.text("W* n\n");
}

void PdfPainter::color(std::uint32_t rgb, const char* gray, const char* full)
{
    const auto part = [rgb](int shift) { return (rgb >> shift & 0xFF) / 255.0; };
    if ((rgb & 0xFF) == (rgb >> 8 & 0xFF) && (rgb & 0xFF) == (rgb >> 16 & 0xFF))
        m_out.real(part(0)).text(gray);
    else
        m_out.real(part(16)).real(part(8)).real(part(0)).text(full);
}

void PdfPainter::useAlpha(std::uint8_t alpha)
{
    if (m_state.alpha == alpha)
        return;
    flush();
    m_state.alpha = alpha;
    m_content.alphas.insert(alpha);
    m_out.text("/A").number(alpha).text("gs\n");
}

void PdfPainter::useStroke(const Mark& mark)
{
    useAlpha(mark.alpha);
    if (m_state.strokeRgb != mark.rgb) {
        flush();
        m_state.strokeRgb = mark.rgb;
        color(mark.rgb, "G\n", "RG\n");
    }
    if (const std::int32_t width = std::max(units(mark.widthMm), 1); m_state.width != width) {
        flush();
        m_state.width = width;
        m_out.number(width).text("w\n");
    }
    if (m_state.isWide != mark.isWide) {
        flush();
        m_state.isWide = mark.isWide;
        m_out.text(mark.isWide ? "0 J 0 j\n" : "1 J 1 j\n");
    }
}

void PdfPainter::useFill(const Mark& mark)
{
    flush();
    useAlpha(mark.alpha);
    if (m_state.fillRgb == mark.rgb)
        return;
    m_state.fillRgb = mark.rgb;
    color(mark.rgb, "g\n", "rg\n");
}

// Paths

bool PdfPainter::traceRectangle(gs::PathView path)
{
    const auto& v = path.verbs;
    if (v.size() != 5 || path.points.size() != 4 || v[1] != Verb::Line || v[2] != Verb::Line ||
        v[3] != Verb::Line || v[4] != Verb::Close)
        return false;
    Spot p[4];
    for (std::size_t i = 0; i < 4; ++i)
        p[i] = spot(path.points[i]);
    const bool isAcross =
        p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
    const bool isDown =
        p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
    if (!isAcross && !isDown)
        return false;
    m_out.number(p[0].x).number(p[0].y).number(p[2].x - p[0].x).number(p[2].y - p[0].y);
    m_out.text("re\n");
    return true;
}

void PdfPainter::curve(Spot a, Spot b, Spot to)
{
    m_out.number(a.x).number(a.y).number(b.x).number(b.y).point(to.x, to.y, 'c');
}

void PdfPainter::traceStroke(gs::PathView path, bool joins)
{
    std::size_t index = 0;
    Spot start, at;
    bool isStarted = false, hasMoved = false;
    const auto next = [&] { return spot(path.points[index++]); };
    const auto begin = [&] {
        if (!isStarted && !(joins && m_pen == start))
            m_out.point(start.x, start.y, 'm');
        isStarted = true;
    };
    // A line without length is a dot: its caps are to be seen.
    const auto finishPiece = [&] {
        if (hasMoved && !isStarted) {
            begin();
            m_out.point(start.x, start.y, 'l');
            m_pen = start;
        }
    };
    for (const Verb verb : path.verbs)
        switch (verb) {
        case Verb::Move:
            finishPiece();
            start = at = next();
            isStarted = hasMoved = false;
            break;
        case Verb::Line: {
            const Spot to = next();
            hasMoved = true;
            if (to == at)
                break;
            begin();
            m_out.point(to.x, to.y, 'l');
            m_pen = at = to;
            break;
        }
        case Verb::Curve: {
            const Spot a = next(), b = next(), to = next();
            hasMoved = true;
            if (a == at && b == at && to == at)
                break;
            begin();
            curve(a, b, to);
            m_pen = at = to;
            break;
        }
        case Verb::Close:
            finishPiece();
            if (isStarted)
                m_out.text("h\n");
            m_pen.reset();
            at = start;
            isStarted = hasMoved = false;
            break;
        }
    finishPiece();
}

void PdfPainter::traceFill(gs::PathView path)
{
    std::size_t index = 0;
    Spot at;
    const auto next = [&] { return spot(path.points[index++]); };
    for (std::size_t i = 0; i < path.verbs.size(); ++i)
        switch (path.verbs[i]) {
        case Verb::Move:
            at = next();
            m_out.point(at.x, at.y, 'm');
            break;
        case Verb::Line:
            if (const Spot to = next(); to != at) {
                at = to;
                m_out.point(at.x, at.y, 'l');
            }
            break;
        case Verb::Curve: {
            const Spot a = next(), b = next();
            at = next();
            curve(a, b, at);
            break;
        }
        case Verb::Close: break; // areas are closed anyway
        }
}

void PdfPainter::stroke(const Mark& mark, gs::PathView path)
{
    if (path.isEmpty())
        return;
    usePlace(mark);
    useStroke(mark);
    const std::size_t before = m_out.size();
    if (traceRectangle(path))
        m_pen.reset();
    else
        traceStroke(path, !mark.isWide && mark.alpha == 255);
    if (m_out.size() == before)
        return;
    if (++m_pending >= kMostPending || mark.alpha != 255)
        flush();
}

void PdfPainter::fill(const Mark& mark, gs::PathView path, bool isEvenOdd)
{
    if (path.isEmpty())
        return;
    usePlace(mark);
    if (mark.filling && fillWith(mark, path, isEvenOdd))
        return;
    useFill(mark);
    if (!traceRectangle(path))
        traceFill(path);
    m_out.text(isEvenOdd ? "f*\n" : "f\n");
}

// Areas of many colours

std::int32_t PdfPainter::imageFor(const gs::Picture& picture)
{
    constexpr int kPacking = 6;
    const auto [at, isNew] =
        m_imageNames.emplace(&picture, static_cast<std::int32_t>(m_content.images.size()));
    if (!isNew)
        return at->second;
    if (!picture.jpeg.empty()) {
        m_content.images.push_back({picture.width, picture.height,
                                    std::string(picture.jpeg.begin(), picture.jpeg.end()), true,
                                    picture.isGrayJpeg});
        return at->second;
    }
    std::string bytes, opacity;
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels) {
        // Colours of what is transparent are multiplied by how far it is not.
        const std::uint32_t alpha = picture.isTransparent ? pixel >> 24 : 255;
        const auto part = [&](std::uint32_t value) {
            return static_cast<char>(alpha == 0 || alpha == 255
                                         ? value
                                         : std::min(value * 255 / alpha, std::uint32_t(255)));
        };
        for (const int shift : {16, 8, 0})
            bytes += part(pixel >> shift & 0xFF);
        if (picture.isTransparent)
            opacity += static_cast<char>(alpha);
    }
    m_content.images.push_back({picture.width, picture.height, deflated(bytes, kPacking), false,
                                false, opacity.empty() ? opacity : deflated(opacity, kPacking)});
    return at->second;
}

std::int32_t PdfPainter::shadingFor(const Mark& mark)
{
    UsedShading shading;
    const gs::Filling& filling = *mark.filling;
    shading.isRound = filling.isRound;
    for (const gs::Filling::Stop& stop : filling.stops) {
        const double least = shading.stops.empty() ? 0 : shading.stops.back().first;
        const double at = stop.at > least ? std::min(stop.at, 1.0) : least;
        const std::uint32_t rgb = plottedPart(m_page, mark, stop.color);
        if (shading.stops.empty() && at > 0)
            shading.stops.emplace_back(0, rgb);
        shading.stops.emplace_back(at, rgb);
    }
    if (shading.stops.back().first < 1)
        shading.stops.emplace_back(1, shading.stops.back().second);
    m_content.shadings.push_back(std::move(shading));
    return static_cast<std::int32_t>(m_content.shadings.size() - 1);
}

bool PdfPainter::fillWith(const Mark& mark, gs::PathView path, bool isEvenOdd)
{
    const gs::Filling& filling = *mark.filling;
    const bool isPicture = filling.picture && !filling.picture->isEmpty();
    const gs::FlatMap square = m_plane * filling.place;
    if ((!isPicture && filling.stops.empty()) || !(std::abs(square.determinant()) > 1e-9))
        return false;
    flush();
    useAlpha(mark.alpha);
    m_out.text("q\n");
    if (!traceRectangle(path))
        traceFill(path);
    m_out.text(isEvenOdd ? "W* n\n" : "W n\n");
    m_out.real(square.xx).real(square.yx).real(square.xy).real(square.yy);
    m_out.real(square.x0).real(square.y0).text("cm\n");
    if (isPicture)
        m_out.text("/I").number(imageFor(*filling.picture)).text("Do Q\n");
    else
        m_out.text("/S").number(shadingFor(mark)).text("sh Q\n");
    return true;
}

// Letters

std::size_t PdfPainter::fontFor(const Letter& letter)
{
    const std::uint32_t plane = letter.character == 0 ? UsedFont::kForms : letter.character >> 16;
    const std::uint16_t code = codeOf(letter);
    const auto isFor = [&](const UsedFont& font) {
        if (font.plane != plane || font.face.key != letter.face->key)
            return false;
        if (plane != UsedFont::kForms)
            return true;
        // A form that stands for two things is two letters, and those are of two fonts.
        const auto known = font.letters.find(code);
        return known == font.letters.end() || agrees(known->second.text, letter.text);
    };
    std::size_t i = 0;
    while (i < m_content.fonts.size() && !isFor(m_content.fonts[i]))
        ++i;
    if (i == m_content.fonts.size())
        m_content.fonts.push_back({*letter.face, plane, {}});
    auto& letters = m_content.fonts[i].letters;
    const auto at = letters.lower_bound(code);
    if (at == letters.end() || at->first != code) {
        UsedLetter used;
        used.advance = letter.advance;
        used.text = letter.text;
        std::size_t index = 0;
        const auto next = [&] { return letter.outline.points[index++]; };
        for (const Verb verb : letter.outline.verbs)
            switch (verb) {
            case Verb::Move: used.outline.moveTo(next()); break;
            case Verb::Line: used.outline.lineTo(next()); break;
            case Verb::Curve: {
                const TvGePoint2d a = next(), b = next();
                used.outline.curveTo(a, b, next());
                break;
            }
            case Verb::Close: used.outline.close(); break;
            }
        letters.emplace_hint(at, code, std::move(used));
    } else if (at->second.text.empty()) {
        at->second.text = letter.text;
    }
    return i;
}

void PdfPainter::writeCode(std::string& codes, std::uint16_t code)
{
    for (const unsigned byte : {unsigned(code) >> 8, unsigned(code) & 0xFF}) {
        if (byte == '(' || byte == ')' || byte == '\\')
            codes += '\\';
        if (byte == '\r')
            codes += "\\r"; // as it is it would be read as a line feed
        else
            codes += static_cast<char>(byte);
    }
}

/// The advance of a font's blank, which the font gets if it has none.
double PdfPainter::blankOf(std::size_t font)
{
    const auto [at, isNew] = m_content.fonts[font].letters.try_emplace(u' ');
    if (isNew)
        at->second.advance = kLeastBlank;
    return std::round(at->second.advance * 1000) / 1000;
}

void PdfPainter::textMatrix(const gs::FlatMap& map)
{
    const gs::FlatMap to = gs::FlatMap::scaling(kUnitsPerMm, kUnitsPerMm) * map;
    m_out.real(to.xx).real(to.yx).real(to.xy).real(to.yy);
    m_out.number(static_cast<std::int32_t>(std::lrint(to.x0)));
    m_out.number(static_cast<std::int32_t>(std::lrint(to.y0)));
    m_out.text("Tm");
}

std::size_t PdfPainter::writeLine(std::span<const Letter> letters, std::size_t first)
{
    const gs::FlatMap& start = letters[first].toMm;
    const std::size_t font = fontFor(letters[first]);
    const double determinant = start.determinant();
    const double size =
        std::abs(start.xx) + std::abs(start.xy) + std::abs(start.yx) + std::abs(start.yy);
    // How far along the line another letter stands, in the letter's own plane; nullopt: not on it.
    const auto along = [&](const gs::FlatMap& map) -> std::optional<double> {
        constexpr double kSame = 1e-6, kOnLine = 2e-3;
        if (std::abs(map.xx - start.xx) + std::abs(map.xy - start.xy) +
                std::abs(map.yx - start.yx) + std::abs(map.yy - start.yy) >
            kSame * size)
            return std::nullopt;
        const double dx = map.x0 - start.x0, dy = map.y0 - start.y0;
        const double x = (dx * start.yy - dy * start.xy) / determinant;
        const double y = (dy * start.xx - dx * start.yx) / determinant;
        return std::abs(y) < kOnLine && std::abs(x) < 10'000 ? std::optional(x) : std::nullopt;
    };
    textMatrix(start);
    std::string codes;
    bool isArray = false;
    double pen = 0;
    std::size_t i = first;
    for (; i < letters.size(); ++i) {
        const auto x = along(letters[i].toMm);
        if (!x || fontFor(letters[i]) != font)
            break;
        // Words stand apart without a blank between them: who copies them wants one.
        if (i > first && *x - pen > kLeastBlank && m_content.fonts[font].plane == 0 &&
            letters[i - 1].character != U' ') {
            writeCode(codes, u' ');
            pen += blankOf(font);
        }
        const auto back = static_cast<std::int32_t>(std::lround((pen - *x) * 1000));
        if (std::abs(back) > 2) {
            codes += ')' + std::to_string(back) + '(';
            isArray = true;
            pen -= back / 1000.0;
        }
        writeCode(codes, codeOf(letters[i]));
        pen += std::round(letters[i].advance * 1000) / 1000;
    }
    m_out.text(isArray ? "[(" : "(").text(codes).text(isArray ? ")]TJ\n" : ")Tj\n");
    return i;
}

void PdfPainter::letters(const Mark& mark, std::span<const Letter> letters, gs::PathView outline)
{
    if (!m_options.hasText)
        return fill(mark, outline, false);
    usePlace(mark);
    useFill(mark);
    m_out.text("BT\n");
    std::optional<std::size_t> font;
    for (std::size_t first = 0; first < letters.size();) {
        std::size_t end = endOfGroup(letters, first);
        const bool isAlone = end == first + 1 && !isTurned(letters[first].text);
        while (isAlone && end < letters.size() && endOfGroup(letters, end) == end + 1 &&
               !isTurned(letters[end].text))
            ++end;
        if (isAlone)
            writeLetters(letters.subspan(first, end - first), font);
        else
            writeGroup(letters.subspan(first, end - first), font);
        first = end;
    }
    m_out.text("ET\n");
}

// Readers know what one letter stands for, and turn the order of those that run from right to left.
// For several together they know it only by replacements, of which some take the order for that of
// the page, and others the place for that of the last letter. So nothing replaces the letters, and
// an unseen text in the order of the page stands over them.
void PdfPainter::writeGroup(std::span<const Letter> letters, std::optional<std::size_t>& font)
{
    const gs::FlatMap& plane = letters.front().toMm;
    const double determinant = plane.determinant();
    if (!(std::abs(determinant) > 1e-12))
        return;
    std::vector<Letter> shapes(letters.begin(), letters.end());
    double left = 0, right = 0, widest = -1;
    for (Letter& shape : shapes) {
        shape.text = {};
        const double dx = shape.toMm.x0 - plane.x0, dy = shape.toMm.y0 - plane.y0;
        const double x = (dx * plane.yy - dy * plane.xy) / determinant;
        const bool isWidest = shape.advance > widest;
        if (isWidest)
            widest = shape.advance;
        if (isTurned(letters.front().text)) { // the widest carries the others
            left = isWidest ? x : left;
            right = isWidest ? x + shape.advance : right;
        } else {
            left = std::min(left, x);
            right = std::max(right, x + shape.advance);
        }
    }
    m_out.text("/Span<</ActualText()>>BDC\n");
    writeLetters(shapes, font);
    m_out.text("EMC\n");
    const std::u16string text = gs::visualText(letters.front().text);
    const double each = kHiddenAdvance * static_cast<double>(text.size());
    if (text.empty() || !(right > left))
        return;
    m_out.text("/FH 1 Tf 3 Tr\n");
    textMatrix(plane * gs::FlatMap{(right - left) / each, 0, left, 0, 1, 0});
    writeUnseen(text);
    m_out.text("0 Tr\n");
    font.reset();
}

void PdfPainter::writeLetters(std::span<const Letter> letters, std::optional<std::size_t>& font)
{
    for (std::size_t i = 0; i < letters.size();) {
        const gs::FlatMap& map = letters[i].toMm;
        // Letters without width or height cannot be seen, and have no line.
        if (!(std::abs(map.determinant()) > 1e-12)) {
            ++i;
            continue;
        }
        if (const std::size_t wanted = fontFor(letters[i]); font != wanted) {
            font = wanted;
            m_out.text("/F").number(static_cast<std::int32_t>(wanted)).text("1 Tf\n");
        }
        i = writeLine(letters, i);
    }
}

void PdfPainter::hiddenText(const Mark& mark, const gs::PlacedText& text)
{
    if (!m_options.hasText || text.text.isEmpty())
        return;
    // Who reads a page takes letters from left to right, and turns those that run the other way.
    const std::u16string shown = gs::visualText(text.text.view());
    const double length = kHiddenAdvance * static_cast<double>(shown.size());
    const gs::FlatMap there{text.along.x / length, text.up.x, text.origin.x,
                            text.along.y / length, text.up.y, text.origin.y};
    const gs::FlatMap toMm = gs::FlatMap::scaling(1 / kUnitsPerMm, 1 / kUnitsPerMm) * m_plane;
    if (!(std::abs((toMm * there).determinant()) > 1e-12))
        return;
    if (!m_isHidden) {
        useLayer(Mark::kNoLayer); // layers end within the text in which they began
        useClip(Mark::kWholePaper);
        m_out.text("BT /FH 1 Tf 3 Tr\n");
        m_isHidden = true;
    }
    if (mark.layer != m_layer)
        useLayer(mark.layer);
    textMatrix(toMm * there);
    writeUnseen(shown);
}

/// In the font of hidden texts.
void PdfPainter::writeUnseen(std::u16string_view text)
{
    std::string codes;
    for (const char16_t unit : text) {
        // What is beyond the first plane stands for itself in two halves, which mean nothing here.
        const char16_t known = unit >= 0xD800 && unit < 0xE000 ? u'\xFFFD' : unit;
        m_content.hidden.insert(known);
        writeCode(codes, known);
    }
    m_out.text("(").text(codes).text(")Tj\n");
}

// The whole page

namespace {

gs::Box linkArea(const Page& page, const PageLink& link)
{
    gs::Box there;
    if (link.handle != 0) {
        for (const gs::Item& item : page.list.items())
            if (item.handle == link.handle && !item.box.isEmpty())
                there.addBox(item.box);
    } else {
        there = link.area;
    }
    gs::Box mm;
    if (there.isEmpty())
        return mm;
    mm.add(page.toPaper * TvGePoint2d{there.lowX, there.lowY});
    mm.add(page.toPaper * TvGePoint2d{there.highX, there.highY});
    return mm.common(page.shownMm);
}

} // namespace

std::optional<PageContent> pdfContentOf(const Page& page, const PageOrder& order,
                                        const Stamp& stamp, const PdfOptions& options,
                                        const std::atomic<bool>* stop)
{
    // Places of lines hardly repeat: a longer search takes most of a page's time for few bytes.
    constexpr int kPacking = 3;
    PageContent content;
    content.widthMm = page.widthMm;
    content.heightMm = page.heightMm;
    PdfPainter painter(page, options, content);
    if (!walkItems(page, painter, stop))
        return std::nullopt;
    if (order.stamp)
        walkStamp(page, stamp, stampText(stamp, *order.stamp), painter);
    walkHiddenTexts(page, painter);
    content.stream = deflated(painter.finish(), kPacking);
    for (const PageLink& link : order.links)
        if (const gs::Box area = linkArea(page, link); !area.isEmpty())
            content.links.push_back({area, link.page});
    return content;
}

} // namespace plot
