#pragma once

#include <db/text_measure.h>
#include <gs/fonts.h>

namespace gs {

/// Measures texts with the fonts that draw them. Give it to db::setTextMeasure() and take it away
/// (null) before it ends.
class ExactTextMeasure : public db::TextMeasure
{
public:
    /// With the fonts that drawings share, in whichever thread it is asked.
    ExactTextMeasure() = default;
    /// @param fonts  not owned; must outlive this.
    explicit ExactTextMeasure(Fonts& fonts) : m_fonts(&fonts) {}

    double width(std::u16string_view line, const db::TextLook& look) override;

private:
    Fonts* m_fonts = nullptr; // not owned; null: those of the thread
};

} // namespace gs
