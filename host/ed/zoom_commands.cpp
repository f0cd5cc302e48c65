#include <algorithm>

#include <db/tv_db_database.h>
#include <db/tv_status.h>

#include "command_support.h"
#include "ed/prompts.h"
#include "ed/system_variables.h"
#include "ed/view_history.h"
#include "host_command_list.h"
#include "zoom.h"

namespace ed {

namespace {

constexpr TvChar kOptions[] = u"All Center Extents Previous Scale Window";
constexpr int kDone = TvStatus::Normal;
constexpr double kMargin = 1.05; // around all: a line on the very edge of the window is not seen

/// A word that ends at a blank.
std::optional<TvString> askWord(Wording prompt, const TvString& standard = {})
{
    tvedInitGet(kAnyInput, nullptr);
    TvString typed;
    const int status = tvedGetKword(textOf(prompt, {standard}).kwszPtr(), typed);
    if (status == kNoAnswer)
        return standard;
    return status == kDone ? std::optional(typed) : std::nullopt;
}

class Zoom
{
public:
    Zoom(TvDbObjectId where, const View& now) : m_where(where), m_now(now) {}

    void run()
    {
        tvedInitGet(kAnyInput, keywordList(Wording::KeysZoom, kOptions).kwszPtr());
        TvGePoint3d corner;
        const int status = tvedGetPoint(nullptr, textOf(Wording::AskZoom).kwszPtr(), corner);
        if (status == kDone)
            return window(corner);
        if (status == kNoAnswer)
            return extents();
        if (status == kKeyword)
            byWord(tvedGetInput());
    }

private:
    void byWord(const TvString& word)
    {
        if (word == u"All")
            all();
        else if (word == u"Center")
            center();
        else if (word == u"Extents")
            extents();
        else if (word == u"Previous")
            previous();
        else if (word == u"Window")
            askWindow();
        else if (word != u"Scale")
            scale(word);
        else if (const auto typed = askWord(Wording::AskZoomScale))
            scale(*typed);
    }

    void show(const View& view)
    {
        if (!changeView(m_where, view))
            say(Wording::CannotShow);
    }
    void showBox(const TvDbExtents& box)
    {
        if (box.isEmpty())
            return;
        View view = viewOfExtents(m_now, box);
        if (box.minPoint() != box.maxPoint())
            view.height *= kMargin;
        show(view);
    }
    void extents()
    {
        const TvDbExtents drawn = drawingView().extents(m_where);
        showBox(drawn.isEmpty() ? limitsOf(m_where) : drawn);
    }
    void all()
    {
        TvDbExtents box = limitsOf(m_where);
        box.addExtents(drawingView().extents(m_where));
        showBox(box);
    }
    void previous()
    {
        if (!previousView(m_where))
            say(Wording::NoFormerView);
    }
    void scale(const TvString& typed)
    {
        const std::optional<ZoomScale> scale = zoomScale(typed);
        const std::optional<View> view = scale ? scaledView(m_where, m_now, *scale) : std::nullopt;
        if (view)
            show(*view);
        else
            say(Wording::NoScale, {typed});
    }
    void askWindow()
    {
        tvedInitGet(kNoEmpty, nullptr);
        TvGePoint3d corner;
        if (tvedGetPoint(nullptr, textOf(Wording::AskCorner).kwszPtr(), corner) == kDone)
            window(corner);
    }
    void window(const TvGePoint3d& corner)
    {
        tvedInitGet(kNoEmpty, nullptr);
        TvGePoint3d opposite;
        if (tvedGetCorner(corner, textOf(Wording::AskOtherCorner).kwszPtr(), opposite) != kDone)
            return;
        std::optional<View> view = viewBetween(m_now, corner, opposite);
        if (!view)
            return say(Wording::CannotShow);
        view->height = std::max(view->height, view->width() / m_now.aspect);
        view->aspect = m_now.aspect;
        show(*view);
    }
    void center()
    {
        tvedInitGet(kNoEmpty, nullptr);
        TvGePoint3d middle;
        if (tvedGetPoint(nullptr, textOf(Wording::AskZoomCenter).kwszPtr(), middle) != kDone)
            return;
        const TvString standard = valueText(m_now.height);
        const std::optional<TvString> typed = askWord(Wording::AskZoomHeight, standard);
        if (!typed)
            return;
        const std::optional<ZoomScale> scale = zoomScale(*typed);
        if (!scale || scale->kind == ZoomScale::OfPaper)
            return say(Wording::NoScale, {*typed});
        View view = m_now;
        const TvDbExtents at = displayExtents(m_now, TvDbExtents(middle, middle));
        view.center = {at.center().x, at.center().y};
        view.height =
            scale->kind == ZoomScale::OfView ? m_now.height / scale->factor : scale->factor;
        show(view);
    }

    TvDbObjectId m_where;
    View m_now;
};

} // namespace

void runZoom()
{
    TvDbDatabase* database = askedDrawing();
    if (!database)
        return;
    const TvDbObjectId where = currentViewObject(*database);
    if (const std::optional<View> now = drawingView().view(where))
        Zoom(where, *now).run();
    else
        say(Wording::CannotShow);
}

void runPan()
{
    TvDbDatabase* database = askedDrawing();
    if (!database)
        return;
    const TvDbObjectId where = currentViewObject(*database);
    const std::optional<View> now = drawingView().view(where);
    if (!now)
        return say(Wording::CannotShow);
    tvedInitGet(kNoEmpty, nullptr);
    TvGePoint3d from, to;
    if (tvedGetPoint(nullptr, textOf(Wording::AskPanBase).kwszPtr(), from) != kDone)
        return;
    const int status = tvedGetPoint(&from, textOf(Wording::AskPanSecond).kwszPtr(), to);
    if (status != kDone && status != kNoAnswer)
        return;
    const std::optional<TvGeMatrix3d> toDisplay = displayToWorld(*now).inverse();
    if (!toDisplay)
        return say(Wording::CannotShow);
    const TvGeVector3d way = *toDisplay * (status == kDone ? to - from : from.asVector());
    View view = *now;
    view.center = {now->center.x - way.x, now->center.y - way.y};
    if (!changeView(where, view))
        say(Wording::CannotShow);
}

} // namespace ed
