#include <algorithm>
#include <cmath>

#include <db/version.h>

#include "gs/linetype.h"
#include "shape_files.h"
#include "text_pen.h"
#include "text_style.h"

namespace gs {

namespace {

// "flags" of a dash
enum : std::int64_t { kUpright = 1, kHasText = 2, kHasShape = 4, kReadable = 8 };
constexpr std::uint32_t kMostElements = 100;

/// Texts of a linetype, which end in zeros and follow one another.
class TextArea
{
public:
    /// Texts of old drawings have one byte a letter; what is beyond ASCII is taken for Latin-1.
    explicit TextArea(const db::Record& record)
        : m_bytes(record.bytes("text_area")), m_unit(db::hasWideText(record.version()) ? 2 : 1)
    {
    }

    std::u16string next()
    {
        std::u16string text;
        while (m_at + m_unit <= m_bytes.size()) {
            const unsigned high = m_unit == 2 ? m_bytes[m_at + 1] : 0;
            const auto unit = static_cast<char16_t>(m_bytes[m_at] | high << 8);
            m_at += m_unit;
            if (unit == 0)
                break;
            text += unit;
        }
        return text;
    }

private:
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_unit, m_at = 0;
};

void place(LinePattern::Text& text, const db::RecordView& dash)
{
    text.rotation = dash.real("rotation");
    text.offset = {dash.real("x_offset"), dash.real("y_offset")};
    text.isUpright = (dash.integer("flags") & kUpright) != 0;
}

LinePattern::Text textOf(const TvDbLinetypeTableRecord& record, std::uint32_t index,
                         std::u16string text, ShapeFiles* shapes)
{
    const db::RecordView dash = record.fields().array("dashes")[index];
    const db::ArrayView styles = record.fields().array("styles");
    const TvDbObjectId styleId =
        index < styles.size() ? record.idOf(styles.handle(index)) : TvDbObjectId();
    const std::int64_t flags = dash.integer("flags");
    LinePattern::Text out;
    if ((flags & kHasText) == 0) { // a shape knows no style but its file
        if (const Path* const shape = shapes->find(styleId, dash.integer("shape_number")); shape)
            out.shape = std::make_shared<const Path>(*shape);
        out.height = dash.real("scale");
        place(out, dash);
        return out;
    }
    const TextStyle style = textStyleOf(styleId);
    out.text = std::move(text);
    out.font = style.font;
    out.height = dash.real("scale") * (style.height > 0 ? style.height : 1);
    out.widthFactor = soundFactor(style.widthFactor);
    out.oblique = style.oblique;
    out.staysReadable = (flags & kReadable) != 0;
    place(out, dash);
    return out;
}

bool isSound(const LinePattern::Text& text)
{
    return isDrawableHeight(text.height) && (!text.text.empty() || text.shape) &&
           std::isfinite(text.rotation) && std::abs(text.offset.x) < kFarthestPlace &&
           std::abs(text.offset.y) < kFarthestPlace;
}

} // namespace

double LinePattern::length() const
{
    double sum = 0;
    for (const Dash& dash : dashes)
        sum += std::abs(dash.length);
    return sum;
}

bool LinePattern::isContinuous() const
{
    const bool hasGap = std::any_of(dashes.begin(), dashes.end(),
                                    [](const Dash& d) { return d.length < 0 || !d.texts.empty(); });
    const double sum = length();
    return !hasGap || !(sum > 0) || !std::isfinite(sum);
}

LinePattern patternOf(TvDbObjectId linetype, ShapeFiles* shapes)
{
    LinePattern pattern;
    const TvDbObjectPointer<TvDbLinetypeTableRecord> record(linetype, TvDb::kForNotify);
    if (!record)
        return pattern;
    const db::ArrayView dashes = record->fields().array("dashes");
    TextArea texts(record->record());
    for (std::uint32_t i = 0; i < std::min(dashes.size(), kMostElements); ++i) {
        LinePattern::Dash dash;
        dash.length = dashes[i].real("length");
        const std::int64_t flags = dashes[i].integer("flags");
        const bool hasText = (flags & kHasText) != 0;
        if (hasText || (shapes && (flags & kHasShape) != 0))
            if (LinePattern::Text text =
                    textOf(*record, i, hasText ? texts.next() : std::u16string(), shapes);
                isSound(text))
                dash.texts.push_back(std::move(text));
        pattern.dashes.push_back(std::move(dash));
    }
    return pattern.isContinuous() ? LinePattern() : pattern;
}

} // namespace gs
