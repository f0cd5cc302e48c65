#include "window/document_page.h"

#include <cmath>

#include <QVBoxLayout>

#include <app/drawing_watch.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_viewport.h>
#include <ed/layouts.h>
#include <ed/tv_ap_document.h>
#include <ui/icon.h>
#include <ui/qt_text.h>
#include <ui/theme.h>

namespace window {

gs::Background backgroundFor(const gs::DisplayList& list)
{
    if (list.isPaper())
        return gs::Background::Paper;
    return ui::theme() == ui::Theme::Dark ? gs::Background::Dark : gs::Background::Light;
}

DocumentPage::DocumentPage(TvApDocument& document, const app::DrawingWatch& watch,
                           db::AttachedDrawings& attached, QWidget* parent)
    : QWidget(parent), m_document(document), m_watch(watch), m_attached(attached),
      m_canvas(new DrawingCanvas(this)), m_tabs(new QTabBar(this))
{
    m_tabs->setShape(QTabBar::RoundedSouth);
    m_tabs->setExpanding(false);
    m_tabs->setDrawBase(false);
    m_tabs->setUsesScrollButtons(true);
    m_tabs->setElideMode(Qt::ElideMiddle);
    m_tabs->setContextMenuPolicy(Qt::CustomContextMenu);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_canvas, 1);
    column->addWidget(m_tabs);
    QObject::connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) {
        if (!m_isFilling && onLayoutChosen && index >= 0 &&
            index < static_cast<int>(m_names.size()))
            onLayoutChosen(m_names[static_cast<std::size_t>(index)]);
    });
    QObject::connect(m_tabs, &QTabBar::customContextMenuRequested, this, [this](const QPoint& at) {
        const int index = m_tabs->tabAt(at);
        if (onLayoutMenu)
            onLayoutMenu(index >= 0 && index < static_cast<int>(m_layouts.size())
                             ? m_layouts[static_cast<std::size_t>(index)]
                             : TvDbObjectId(),
                         m_tabs->mapToGlobal(at));
    });
    m_canvas->onViewChanged = [this] {
        if (const auto at = m_shown.find(m_current); at != m_shown.end())
            at->second.view = m_canvas->view(), at->second.isTouched = true;
    };
    m_canvas->onResized = [this] {
        const auto at = m_shown.find(m_current);
        if (at == m_shown.end() || !at->second.list)
            return;
        // What nobody chose is shown as the window of now would show it.
        at->second.view =
            at->second.isTouched ? m_canvas->view() : firstView(at->second, m_current);
        m_canvas->setView(*at->second.view);
    };
}

void DocumentPage::refreshTabs()
{
    TvDbDatabase& database = *m_document.database();
    const TvDbObjectId current = ed::currentLayout(database);
    const std::uint64_t changes = m_watch.changes(&database);
    m_isFilling = true;
    if (m_tabChanges != changes || m_layouts.empty()) {
        m_tabChanges = changes;
        std::vector<TvDbObjectId> layouts = db::layoutsInTabOrder(database);
        std::vector<TvString> names;
        for (const TvDbObjectId id : layouts) {
            const TvDbObjectPointer<TvDbLayout> layout(id);
            names.push_back(layout ? layout->getLayoutName() : TvString());
        }
        if (names != m_names) {
            while (m_tabs->count() > static_cast<int>(names.size()))
                m_tabs->removeTab(m_tabs->count() - 1);
            for (std::size_t i = 0; i < names.size(); ++i) {
                const QString text = ui::withoutMnemonics(ui::toQt(names[i]));
                if (static_cast<int>(i) < m_tabs->count())
                    m_tabs->setTabText(static_cast<int>(i), text);
                else
                    m_tabs->addTab(ui::icon(i == 0 ? u"model" : u"layout"), text);
            }
            m_tabs->updateGeometry(); // a bar that is not shown yet does not tell its new height
        }
        m_layouts = std::move(layouts);
        m_names = std::move(names);
    }
    for (std::size_t i = 0; i < m_layouts.size(); ++i)
        if (m_layouts[i] == current)
            m_tabs->setCurrentIndex(static_cast<int>(i));
    m_isFilling = false;
}

void DocumentPage::refreshList(TvDbObjectId layout)
{
    Shown& shown = m_shown[layout];
    const std::uint64_t changes = m_watch.drawnChanges(m_document.database());
    if (shown.list && shown.changes == changes)
        return;
    shown.list =
        std::make_shared<gs::DisplayList>(gs::DisplayList::ofLayout(layout, {}, &m_attached));
    shown.changes = changes;
    const std::optional<ed::View> stored = ed::StoredDrawingView().view(layout);
    const ed::View now = stored.value_or(ed::View());
    // The list's plane and the view's display coordinates are turned alike; they may differ in
    // where they begin.
    const TvGePoint3d origin = shown.list->fromWorld() * (displayToWorld(now) * TvGePoint3d());
    shown.planOrigin = {origin.x, origin.y};
    shown.stored = now;
}

app::ViewTransform DocumentPage::firstView(const Shown& shown, TvDbObjectId layout) const
{
    app::ViewTransform view({}, 1, m_canvas->width(), m_canvas->height());
    const std::optional<ed::View> stored = ed::StoredDrawingView().view(layout);
    gs::Box all = shown.list->extents();
    if (shown.list->sheet())
        all.addBox(*shown.list->sheet());
    if (stored && ed::isUsable(*stored)) {
        const TvGePoint2d center{stored->center.x + shown.planOrigin.x,
                                 stored->center.y + shown.planOrigin.y};
        const double high = std::max(stored->height, stored->width() * m_canvas->height() /
                                                         std::max(1, m_canvas->width()));
        view = {center, high, static_cast<double>(m_canvas->width()),
                static_cast<double>(m_canvas->height())};
        const TvGePoint2d a = view.toPlan({0, view.height()}), b = view.toPlan({view.width(), 0});
        if (shown.isChosen || all.isEmpty() || !all.common({a.x, a.y, b.x, b.y}).isEmpty())
            return view;
    }
    if (!all.isEmpty()) // what was stored shows nothing of it
        view.fit({all.lowX, all.lowY}, {all.highX, all.highY});
    return view;
}

void DocumentPage::show(TvDbObjectId layout)
{
    refreshList(layout);
    Shown& shown = m_shown[layout];
    if (!shown.view || !shown.isTouched)
        shown.view = firstView(shown, layout);
    m_current = layout;
    const bool isOther = m_canvas->list() != shown.list;
    m_canvas->setBackground(backgroundFor(*shown.list));
    if (isOther)
        m_canvas->setList(shown.list);
    m_canvas->setView(*shown.view);
}

void DocumentPage::refresh()
{
    refreshTabs();
    const TvDbObjectId layout = ed::currentLayout(*m_document.database());
    if (layout)
        show(layout);
    else
        m_canvas->setList(nullptr);
}

void DocumentPage::regenerate()
{
    for (auto& [layout, shown] : m_shown)
        shown.list.reset();
    refresh();
}

void DocumentPage::forgetViews()
{
    for (auto& [layout, shown] : m_shown)
        shown.view.reset(), shown.isTouched = false;
    refresh();
}

TvGeMatrix3d DocumentPage::planToWorld() const
{
    const auto at = m_shown.find(m_current);
    if (at == m_shown.end())
        return {};
    const TvGePoint2d origin = at->second.planOrigin;
    const TvGeMatrix3d toWorld =
        displayToWorld(at->second.stored) * TvGeMatrix3d::translation({-origin.x, -origin.y, 0});
    const TvDbObjectId where = ed::currentViewObject(*m_document.database());
    const TvDbObjectPointer<TvDbViewport> window(where);
    const std::optional<ed::View> view = ed::StoredDrawingView().view(where);
    if (where == m_current || !window || !view || !(window->height() > 0))
        return toWorld;
    const TvGePoint3d middle = window->centerPoint();
    return displayToWorld(*view) * TvGeMatrix3d::translation({view->center.x, view->center.y, 0}) *
           TvGeMatrix3d::scaling(view->height / window->height()) *
           TvGeMatrix3d::translation({-middle.x, -middle.y, -middle.z}) * toWorld;
}

std::optional<ed::View> DocumentPage::shownView(TvDbObjectId layout) const
{
    const auto at = m_shown.find(layout);
    if (at == m_shown.end() || !at->second.view)
        return std::nullopt;
    const Shown& shown = at->second;
    ed::View view = shown.stored;
    view.center = {shown.view->center().x - shown.planOrigin.x,
                   shown.view->center().y - shown.planOrigin.y};
    view.height = shown.view->planHeight();
    view.aspect = shown.view->width() / shown.view->height();
    return view;
}

void DocumentPage::showStoredView(TvDbObjectId layout)
{
    Shown& shown = m_shown[layout];
    shown.view.reset();
    shown.isTouched = false;
    shown.isChosen = true;
    shown.list.reset(); // it may be seen from elsewhere
    if (layout == m_current)
        refresh();
}

void DocumentPage::eachView(const std::function<void(TvDbObjectId, const ed::View&)>& keep) const
{
    for (const auto& [layout, shown] : m_shown) {
        const std::optional<ed::View> view = shownView(layout);
        if (view && shown.isTouched &&
            (std::abs(view->height - shown.stored.height) > 1e-9 * view->height ||
             view->center.distanceTo(shown.stored.center) > 1e-9 * view->height))
            keep(layout, *view);
    }
}

} // namespace window
