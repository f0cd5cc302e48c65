#pragma once

#include <optional>

#include <base/tv_string.h>
#include <ge/tv_ge_point.h>

class TvDbDatabase;

namespace ed {

// What the prompts below answer besides 5100 and kCancelled.
constexpr int kNoAnswer = 5000; ///< Enter alone
constexpr int kKeyword = -5005; ///< a keyword in the place of a value: tvedGetInput() tells it

/// What the next prompt takes, and what not; bits of tvedInitGet().
enum InputFlags : int {
    kNoEmpty = 1,    ///< Enter alone is none
    kNoZero = 2,     ///< for numbers
    kNoNegative = 4, ///< for numbers
    kAnyInput = 128, ///< what is no value is given as a keyword
};

/// The keyword of a list "Copy Delete eXit _ Copy Delete eXit" that @p typed stands for; empty when
/// there is none.
///
/// Before the underscore stand the words in the user's language, after it the same words in every
/// language, which are what comes back; without it they are the same. A word is typed in full, by
/// its capitals, or, if these come first, by them and some of what follows; with a leading
/// underscore the second kind is meant. Case does not count.
TvString keywordFor(const TvString& list, const TvString& typed);

/// A point as it is typed: "x,y", "x,y,z", "d<a" (distance and angle), with "@" in front relative
/// to the last point ("@" alone is that), with "*" in front in the coordinates of the world.
/// Otherwise coordinates are the user's (UCS) of the working drawing; a missing z is the elevation.
/// Angles are in the drawing's units (AUNITS, ANGBASE, ANGDIR). nullopt for anything else.
/// @return in the coordinates of the world.
std::optional<TvGePoint3d> typedPoint(const TvString& text);
/// An angle as it is typed, in radians counter-clockwise from the x axis.
std::optional<double> typedAngle(const TvString& text);
/// A finite number; nullopt for anything else.
std::optional<double> typedNumber(const TvString& text);

/// The point that was given last, in the coordinates of the world; what "@" is about.
TvGePoint3d lastPoint();
void setLastPoint(const TvGePoint3d& point);

} // namespace ed

/// Tells what the next prompt takes; it forgets it when it is answered.
/// @param flags     ed::InputFlags.
/// @param keywords  as ed::keywordFor() reads them; null or empty: none.
void tvedInitGet(int flags, const TvChar* keywords);

// Each asks until the answer is one that was asked for, telling what is wrong with others.
// 5100 and the value; ed::kNoAnswer, ed::kKeyword or ed::kCancelled with out alone. (A question
// that was answered wrongly a hundred times is cancelled.)

/// Asks for a keyword. @param out  as after the underscore.
int tvedGetKword(const TvChar* prompt, TvString& out);
int tvedGetInt(const TvChar* prompt, int& out);
int tvedGetReal(const TvChar* prompt, double& out);
/// Asks for an angle, in radians: typed, or that of the line between two points that are picked.
int tvedGetAngle(const TvChar* prompt, double& out);
/// Asks for a distance: typed, or between two points that are picked.
/// @param base  the first of the two; null: both are asked for. World.
int tvedGetDist(const TvGePoint3d* base, const TvChar* prompt, double& out);
/// Asks for a point, typed or picked.
/// @param base  from which a line may be drawn to the pointer; null: none. World.
/// @param out   in the coordinates of the world.
int tvedGetPoint(const TvGePoint3d* base, const TvChar* prompt, TvGePoint3d& out);
/// The same for the corner of a rectangle that begins at @p base.
int tvedGetCorner(const TvGePoint3d& base, const TvChar* prompt, TvGePoint3d& out);
/// The keyword, or other input, with which the last prompt was answered.
TvString tvedGetInput();
