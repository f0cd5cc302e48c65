#pragma once

#include <base/tv_string.h>

namespace core {

/// How much the tips of the panel show. One choice for all palettes, kept in the settings.
struct TipStyle {
    /// Numbers are those of the settings' rules, and part of the interface.
    enum Mode { Name = 0, NameAndPreview = 1, NameAndDetails = 2, Everything = 3 };
    enum Size { Small = 0, Medium = 1, Large = 2 };

    Mode mode = Everything;
    Size size = Large;

    bool showsPreview() const { return mode == NameAndPreview || mode == Everything; }
    bool showsDetails() const { return mode == NameAndDetails || mode == Everything; }
    friend bool operator==(const TipStyle&, const TipStyle&) = default;
};

struct PreviewRoom {
    int width, height;     ///< of the preview, in pixels
    const TvChar* padding; ///< behind the name: a tip measures itself by its text alone
    int digits;            ///< units at the front of the padding's second line, its line feed too
};
const PreviewRoom& previewRoom(TipStyle::Size size);

/// The styles by the numbers under which they are stored, 0 to 7; any other number is nothing.
/// Styles without a preview leave the size alone.
constexpr int kTipStyles = 8;
bool applyTipStyle(int number, TipStyle& style);

/// The one in force.
TipStyle tipStyle();
/// Takes a style and keeps it in the settings; false, and no change, for a number that is none.
bool chooseTipStyle(int number);
/// Takes the stored one over; without one, or with a number that is none, what is in force stays.
void readTipStyle();
/// What a program starts with.
void resetTipStyle();

} // namespace core
