#include "ed/prompts.h"

#include <cmath>
#include <numbers>

#include <db/tv_status.h>

#include "command_texts.h"
#include "ed/command_line.h"
#include "ed/user_prompts.h"

namespace ed {

namespace {

constexpr int kMostTries = 100; // who answers wrongly that often is no user

struct Rules {
    int flags = 0;
    TvString keywords;
};

Rules& nextRules()
{
    static Rules rules;
    return rules;
}

TvString& lastInput()
{
    static TvString input;
    return input;
}

int giveUp()
{
    if (CommandLine* line = commandLine())
        line->cancel();
    return kCancelled;
}

/// Asks until @p take takes the answer. @p ask gives 5100 and the answer.
template <class Ask, class Take>
int askUntil(Wording wrong, Ask ask, Take take)
{
    const Rules rules = std::exchange(nextRules(), Rules());
    lastInput() = {};
    for (int tries = 0; tries < kMostTries; ++tries) {
        TvString typed;
        if (const int status = ask(typed); status != static_cast<int>(TvStatus::Normal))
            return status;
        if (typed.isEmpty() && (rules.flags & kNoEmpty) == 0)
            return kNoAnswer;
        lastInput() = keywordFor(rules.keywords, typed);
        if (!lastInput().isEmpty())
            return kKeyword;
        if (!typed.isEmpty() && take(typed, rules.flags))
            return TvStatus::Normal;
        if (!typed.isEmpty() && (rules.flags & kAnyInput) != 0) {
            lastInput() = typed;
            return kKeyword;
        }
        say(wrong, {typed});
    }
    return giveUp();
}

auto textQuestion(const TvChar* prompt)
{
    return [prompt](TvString& typed) { return tvedGetString(0, prompt, typed); };
}

bool isAllowed(double number, int flags)
{
    return !((flags & kNoZero) != 0 && number == 0) && !((flags & kNoNegative) != 0 && number < 0);
}

int askPoint(const TvGePoint3d* base, bool isCorner, const TvChar* prompt, TvGePoint3d& out)
{
    std::optional<TvGePoint3d> picked;
    const auto ask = [&](TvString& typed) {
        picked.reset();
        UserPrompts::PointQuestion question;
        question.prompt = prompt ? TvString(prompt) : TvString();
        if (base)
            question.base = *base;
        question.isCorner = isCorner;
        const int status = askForPoint(question, typed, picked);
        if (picked)
            typed = u"*"; // something that is not empty, and no keyword
        return status;
    };
    return askUntil(Wording::NoPoint, ask, [&](const TvString& typed, int) {
        const std::optional<TvGePoint3d> point = picked ? picked : typedPoint(typed);
        if (point) {
            out = *point;
            setLastPoint(out);
        }
        return point.has_value();
    });
}

/// A text, or the way from one point to another that is picked; from @p base, where there is one.
int askWay(const TvGePoint3d* base, const TvChar* prompt, TvString& typed,
           std::optional<TvGePoint3d>& from, std::optional<TvGePoint3d>& to)
{
    UserPrompts::PointQuestion question;
    question.prompt = prompt ? TvString(prompt) : TvString();
    from.reset();
    if (base)
        from = question.base = *base;
    to.reset();
    int status = askForPoint(question, typed, to);
    if (status == static_cast<int>(TvStatus::Normal) && to && !from) {
        from = question.base = std::exchange(to, std::nullopt);
        question.prompt = textOf(Wording::AskSecondPoint);
        status = askForPoint(question, typed, to);
        if (!to) // typed: a point, too
            to = typedPoint(typed);
    }
    if (to)
        typed = u"*"; // something that is not empty, and no keyword
    return status;
}

/// From the x axis, 0 to 2 pi; nullopt for two equal points.
std::optional<double> angleBetween(const TvGePoint3d& from, const TvGePoint3d& to)
{
    const TvGeVector3d way = to - from;
    if (way.x == 0 && way.y == 0)
        return std::nullopt;
    const double angle = std::atan2(way.y, way.x);
    return angle < 0 ? angle + 2 * std::numbers::pi : angle;
}

} // namespace

} // namespace ed

void tvedInitGet(int flags, const TvChar* keywords)
{
    ed::nextRules() = {flags, keywords ? TvString(keywords) : TvString()};
}

int tvedGetKword(const TvChar* prompt, TvString& out)
{
    const int status = ed::askUntil(ed::Wording::NoOption, ed::textQuestion(prompt),
                                    [](const TvString&, int) { return false; });
    if (status != ed::kKeyword)
        return status;
    out = tvedGetInput();
    return TvStatus::Normal;
}

int tvedGetInt(const TvChar* prompt, int& out)
{
    return ed::askUntil(ed::Wording::NoWholeNumber, ed::textQuestion(prompt),
                        [&](const TvString& typed, int flags) {
                            const std::optional<double> number = ed::typedNumber(typed);
                            if (!number || *number != std::trunc(*number) ||
                                std::abs(*number) > INT16_MAX || !ed::isAllowed(*number, flags))
                                return false;
                            out = static_cast<int>(*number);
                            return true;
                        });
}

int tvedGetReal(const TvChar* prompt, double& out)
{
    return ed::askUntil(ed::Wording::NoNumber, ed::textQuestion(prompt),
                        [&](const TvString& typed, int flags) {
                            const std::optional<double> number = ed::typedNumber(typed);
                            if (!number || !ed::isAllowed(*number, flags))
                                return false;
                            out = *number;
                            return true;
                        });
}

int tvedGetAngle(const TvChar* prompt, double& out)
{
    std::optional<TvGePoint3d> from, to;
    return ed::askUntil(
        ed::Wording::NoNumber,
        [&](TvString& typed) { return ed::askWay(nullptr, prompt, typed, from, to); },
        [&](const TvString& typed, int) {
            const std::optional<double> angle =
                to ? ed::angleBetween(*from, *to) : ed::typedAngle(typed);
            if (angle)
                out = *angle;
            return angle.has_value();
        });
}

int tvedGetDist(const TvGePoint3d* base, const TvChar* prompt, double& out)
{
    std::optional<TvGePoint3d> from, to;
    return ed::askUntil(
        ed::Wording::NoNumber,
        [&](TvString& typed) { return ed::askWay(base, prompt, typed, from, to); },
        [&](const TvString& typed, int flags) {
            const std::optional<double> distance =
                to ? std::optional(from->distanceTo(*to)) : ed::typedNumber(typed);
            if (!distance || !ed::isAllowed(*distance, flags))
                return false;
            out = *distance;
            return true;
        });
}

int tvedGetPoint(const TvGePoint3d* base, const TvChar* prompt, TvGePoint3d& out)
{
    return ed::askPoint(base, false, prompt, out);
}

int tvedGetCorner(const TvGePoint3d& base, const TvChar* prompt, TvGePoint3d& out)
{
    return ed::askPoint(&base, true, prompt, out);
}

TvString tvedGetInput()
{
    return ed::lastInput();
}
