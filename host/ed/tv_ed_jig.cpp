#include "ed/tv_ed_jig.h"

#include <cmath>
#include <numbers>

#include <db/tv_db_database.h>
#include <db/tv_db_entity.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_status.h>

#include "command_texts.h"
#include "ed/command_line.h"
#include "ed/prompts.h"
#include "ed/user_prompts.h"

TVRX_DEFINE_MEMBERS(TvEdJig, TvRxObject)

namespace ed {

namespace {

JigInput* g_input = nullptr;

constexpr int kMostMistakes = 100; // who answers wrongly that often is no user

/// The line from one point to another, against the x axis, 0 to 2 pi.
double angleOf(const TvGeVector3d& way)
{
    const double angle = std::atan2(way.y, way.x);
    return angle < 0 ? angle + 2 * std::numbers::pi : angle;
}

/// The place of a keyword in its list, from 1; 0: none.
int placeOfKeyword(const TvString& list, const TvString& typed)
{
    const TvString found = keywordFor(list, typed);
    if (found.isEmpty())
        return 0;
    int place = 0;
    std::u16string_view rest = list;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(u' '), rest.size());
        const std::u16string_view word = rest.substr(0, end);
        if (word == u"_")
            place = 0; // the same words once more
        else if (!word.empty() && ++place > 0 && found == word)
            return place;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return 0;
}

} // namespace

JigInput* jigInput()
{
    return g_input;
}

void setJigInput(JigInput* input)
{
    g_input = input;
}

} // namespace ed

using ed::JigEvent;
using ed::JigQuestion;

TvEdJig::DragStatus TvEdJig::sampler()
{
    return kCancel;
}

bool TvEdJig::update()
{
    return true;
}

TvDbEntity* TvEdJig::entity() const
{
    return nullptr;
}

TvEdJig::DragStatus TvEdJig::drag()
{
    m_lastPoint.reset();
    m_lastNumber.reset();
    m_other.setEmpty();
    const DragStatus status = run();
    if (ed::jigInput())
        ed::jigInput()->show(nullptr);
    if (status == kCancel)
        if (ed::CommandLine* line = ed::commandLine())
            line->cancel();
    return status;
}

TvEdJig::DragStatus TvEdJig::run()
{
    for (int mistakes = 0; mistakes < ed::kMostMistakes;) {
        m_hasAsked = m_isFinal = m_isRejected = false;
        const DragStatus status = sampler();
        mistakes += m_isRejected ? 1 : 0;
        if (status != kNormal && status != kNoChange)
            return status;
        if (status == kNormal && update() && ed::jigInput())
            ed::jigInput()->show(entity());
        if (m_isRejected)
            continue;
        if (m_isFinal || !m_hasAsked) // who asks nothing has his answer
            return kNormal;
    }
    return kCancel;
}

bool TvEdJig::nextEvent(const JigQuestion& question)
{
    m_event = JigEvent();
    ed::CommandLine* line = ed::commandLine();
    TvString typed;
    const bool withBlanks =
        question.kind == JigQuestion::Text && (m_controls & kAnyBlankTerminatesInput) == 0;
    switch (line ? line->takeAnswer(withBlanks, typed) : ed::CommandLine::Answer::None) {
    case ed::CommandLine::Answer::Escape: return true;
    case ed::CommandLine::Answer::Text: m_event = {JigEvent::Typed, {}, typed}; return true;
    case ed::CommandLine::Answer::None: break;
    }
    if (ed::jigInput())
        return ed::jigInput()->next(question, m_event);
    if (!ed::userPrompts())
        return false;
    ed::UserPrompts::PointQuestion asked;
    asked.prompt = question.prompt;
    asked.base = question.base;
    std::optional<TvGePoint3d> picked;
    const int status = question.kind == JigQuestion::Text
                           ? ed::userPrompts()->askText(question.prompt, withBlanks, typed)
                           : ed::userPrompts()->askPoint(asked, typed, picked);
    if (status != static_cast<int>(TvStatus::Normal))
        return false;
    m_event =
        picked ? JigEvent{JigEvent::Picked, *picked, {}} : JigEvent{JigEvent::Typed, {}, typed};
    return true;
}

/// What the text is besides a value; kNormal: perhaps one.
TvEdJig::DragStatus TvEdJig::statusOfText()
{
    if (m_event.text.isEmpty())
        return kNull;
    const int place = ed::placeOfKeyword(m_keywords, m_event.text);
    return place >= kKW1 && place <= kKW9 ? static_cast<DragStatus>(place) : kNormal;
}

TvEdJig::DragStatus TvEdJig::fetch(JigQuestion::Kind kind, const std::optional<TvGePoint3d>& base)
{
    m_hasAsked = true;
    if (!nextEvent({kind, m_prompt, base}) || m_event.kind == JigEvent::Escaped)
        return kCancel;
    m_isFinal = m_event.kind != JigEvent::Moved;
    return m_event.kind == JigEvent::Typed ? statusOfText() : kNormal;
}

template <class T, class FromPoint, class FromText>
TvEdJig::DragStatus TvEdJig::acquire(JigQuestion::Kind kind, const std::optional<TvGePoint3d>& base,
                                     T& out, FromPoint fromPoint, FromText fromText)
{
    if (const DragStatus status = fetch(kind, base); status != kNormal)
        return status;
    const bool isTyped = m_event.kind == JigEvent::Typed;
    const std::optional<T> found = isTyped ? fromText(m_event.text) : fromPoint(m_event.point);
    if (found) {
        out = *found;
        return kNormal;
    }
    if (isTyped && (m_controls & kAcceptOtherInputString) != 0) {
        m_other = m_event.text;
        return kOther;
    }
    m_isRejected = isTyped;
    m_isFinal = false;
    if (isTyped)
        ed::say(kind == JigQuestion::Point ? ed::Wording::NoPoint : ed::Wording::NoNumber,
                {m_event.text});
    return kNoChange;
}

TvEdJig::DragStatus TvEdJig::acquirePoint(TvGePoint3d& out, const std::optional<TvGePoint3d>& base)
{
    const auto flat = [&](TvGePoint3d point) {
        if ((m_controls & kAccept3dCoordinates) == 0)
            point.z = base ? base->z : 0;
        return std::optional(point);
    };
    const auto fromText = [&](const TvString& text) {
        const std::optional<TvGePoint3d> point = ed::typedPoint(text);
        return point ? flat(*point) : std::nullopt;
    };
    const DragStatus status = acquire(JigQuestion::Point, base, out, flat, fromText);
    if (status != kNormal) {
        if (status == kNoChange && m_lastPoint)
            out = *m_lastPoint;
        return status;
    }
    if (m_isFinal && (m_controls & kDontUpdateLastPoint) == 0)
        ed::setLastPoint(out);
    const bool isSame = m_lastPoint && m_lastPoint->isEqualTo(out);
    m_lastPoint = out;
    return isSame ? kNoChange : kNormal;
}

TvEdJig::DragStatus TvEdJig::acquireDist(double& out, const std::optional<TvGePoint3d>& base)
{
    const TvGePoint3d from = base.value_or(ed::lastPoint());
    const auto allowed = [&](double distance) {
        const bool isZero = distance == 0 && (m_controls & kNoZeroResponseAccepted) != 0;
        return isZero || distance < 0 ? std::nullopt : std::optional(distance);
    };
    const auto fromText = [&](const TvString& text) -> std::optional<double> {
        if (const std::optional<double> number = ed::typedNumber(text))
            return allowed(*number);
        const std::optional<TvGePoint3d> point = ed::typedPoint(text);
        return point ? allowed(point->distanceTo(from)) : std::nullopt;
    };
    const DragStatus status = acquire(
        JigQuestion::Distance, base, out,
        [&](const TvGePoint3d& point) { return allowed(point.distanceTo(from)); }, fromText);
    if (status == kNoChange && m_lastNumber)
        out = *m_lastNumber;
    if (status != kNormal)
        return status;
    const bool isSame = m_lastNumber == out;
    m_lastNumber = out;
    return isSame ? kNoChange : kNormal;
}

TvEdJig::DragStatus TvEdJig::acquireAngle(double& out, const std::optional<TvGePoint3d>& base)
{
    const TvGePoint3d from = base.value_or(ed::lastPoint());
    const auto fromPoint = [&](const TvGePoint3d& point) -> std::optional<double> {
        return ed::angleOf(point - from);
    };
    const auto fromText = [&](const TvString& text) -> std::optional<double> {
        if (const std::optional<double> angle = ed::typedAngle(text))
            return angle;
        const std::optional<TvGePoint3d> point = ed::typedPoint(text);
        return point ? fromPoint(*point) : std::nullopt;
    };
    const DragStatus status = acquire(JigQuestion::Angle, base, out, fromPoint, fromText);
    if (status == kNoChange && m_lastNumber)
        out = *m_lastNumber;
    if (status != kNormal)
        return status;
    const bool isSame = m_lastNumber == out;
    m_lastNumber = out;
    return isSame ? kNoChange : kNormal;
}

TvEdJig::DragStatus TvEdJig::acquirePoint(TvGePoint3d& out)
{
    return acquirePoint(out, std::optional<TvGePoint3d>());
}

TvEdJig::DragStatus TvEdJig::acquirePoint(TvGePoint3d& out, const TvGePoint3d& base)
{
    return acquirePoint(out, std::optional(base));
}

TvEdJig::DragStatus TvEdJig::acquireDist(double& out)
{
    return acquireDist(out, std::optional<TvGePoint3d>());
}

TvEdJig::DragStatus TvEdJig::acquireDist(double& out, const TvGePoint3d& base)
{
    return acquireDist(out, std::optional(base));
}

TvEdJig::DragStatus TvEdJig::acquireAngle(double& out)
{
    return acquireAngle(out, std::optional<TvGePoint3d>());
}

TvEdJig::DragStatus TvEdJig::acquireAngle(double& out, const TvGePoint3d& base)
{
    return acquireAngle(out, std::optional(base));
}

TvEdJig::DragStatus TvEdJig::acquireString(TvString& out)
{
    if (const DragStatus status = fetch(JigQuestion::Text, std::nullopt); status != kNormal)
        return status;
    if (m_event.kind != JigEvent::Typed) {
        m_isFinal = false; // moves and picks are no text
        return kNoChange;
    }
    out = m_event.text;
    return kNormal;
}

TvDbObjectId TvEdJig::append()
{
    TvDbObjectId id;
    TvDbEntity* made = entity();
    TvDbDatabase* database = tvdbHostApplicationServices()->workingDatabase();
    if (!made || made->database() || !database)
        return id;
    const TvDbObjectPointer<TvDbBlockTableRecord> space(database->currentSpaceId(),
                                                        TvDb::kForWrite);
    if (!space || space->appendTvDbEntity(id, made) != TvStatus::Ok)
        return {};
    made->close();
    return id;
}
