#include "text_stack.h"

#include <algorithm>

namespace gs {

namespace {

// Of the height of the letters: above and below the line of a fraction, beside a stack, and between
// the texts of a diagonal fraction, whose upper one stands on the height of the lower.
constexpr double kRoom = 0.3, kBeside = 0.1, kRaised = 1, kDiagonal = 0.1;

} // namespace

StackExtent stackExtent(const TextStack& stack, const LetterLook& look, TextPen& pen)
{
    const double upper = pen.width(stack.upper, look).ink();
    const double lower = pen.width(stack.lower, look).ink();
    const double beside = kBeside * look.height;
    StackExtent extent;
    if (stack.kind == TextStack::Kind::Diagonal) {
        extent.width.advance = upper + lower + kDiagonal * look.height + 2 * beside;
        extent.height = (1 + kRaised) * look.height;
    } else {
        extent.width.advance = std::max(upper, lower) + 2 * beside;
        extent.height = 2 * (1 + kRoom) * look.height;
    }
    extent.width.gap = beside;
    return extent;
}

void writeStack(const TextStack& stack, const LetterLook& look, TvGePoint2d at, TextPen& pen,
                const FlatMap& map)
{
    const StackExtent extent = stackExtent(stack, look, pen);
    const double upper = pen.width(stack.upper, look).ink();
    const double lower = pen.width(stack.lower, look).ink();
    const double beside = kBeside * look.height;
    const double left = at.x + beside, right = at.x + extent.width.advance - beside;
    if (stack.kind == TextStack::Kind::Diagonal) {
        pen.letters(stack.upper, look, {left, at.y + kRaised * look.height}, map);
        pen.letters(stack.lower, look, {right - lower, at.y}, map);
        pen.line({left + upper / 2, at.y}, {right - lower / 2, at.y + extent.height}, look.color,
                 map);
        return;
    }
    const double middle = (left + right) / 2;
    pen.letters(stack.lower, look,
                {stack.kind == TextStack::Kind::Fraction ? middle - lower / 2 : left, at.y}, map);
    pen.letters(stack.upper, look,
                {stack.kind == TextStack::Kind::Fraction ? middle - upper / 2 : left,
                 at.y + extent.height - look.height},
                map);
    if (stack.kind == TextStack::Kind::Fraction)
        pen.line({left, at.y + extent.height / 2}, {right, at.y + extent.height / 2}, look.color,
                 map);
}

double raised(LetterPlace place, double tall, double lineHeight)
{
    switch (place) {
    case LetterPlace::Middle: return (lineHeight - tall) / 2;
    case LetterPlace::Top: return lineHeight - tall;
    default: return 0;
    }
}

} // namespace gs
