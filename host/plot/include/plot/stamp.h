#pragma once

#include <vector>

#include <base/tv_string.h>

namespace plot {

/// A line of small text at the edge of each page.
struct Stamp {
    enum class Corner { LowerLeft, LowerRight, UpperLeft, UpperRight };

    bool hasSetName = true;
    bool hasNumber = true;
    bool hasTitle = true;
    bool hasDrawing = false; ///< the name of its file
    bool hasLayout = false;
    bool hasDate = true;
    TvString note; ///< behind the others; empty for none
    Corner corner = Corner::LowerLeft;
    double heightMm = 2; ///< of capitals; 0.5 to 20

    friend bool operator==(const Stamp&, const Stamp&) = default;
};

/// What a stamp may tell of one page.
struct StampFacts {
    TvString setName, number, title, drawing, layout, date;
};

/// The line that is written: what is wanted and not empty, with " | " between. Empty when that is
/// nothing.
TvString stampText(const Stamp& stamp, const StampFacts& facts);

/// As the user left it; the defaults on a new machine.
Stamp storedStamp();
void storeStamp(const Stamp& stamp);
/// Whether pages get the stamp when sheets are published.
bool isStampWanted();
void setStampWanted(bool isWanted);

} // namespace plot
