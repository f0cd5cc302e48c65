#include "td_ui_palette_set_parts.h"

#include <QApplication>
#include <QCursor>
#include <QFrame>
#include <QMainWindow>
#include <QTabWidget>
#include <QVBoxLayout>

#include "palette_strip.h"
#include "palette_title_bar.h"
#include "ui/qt_text.h"
#include "ui/td_ui_palette.h"
#include "ui/window_state.h"

namespace {

constexpr int kHoverDelayMs = 200;  // a mouse that only passes by opens nothing
constexpr int kWatchPeriodMs = 250; // how soon it rolls in behind the mouse
constexpr QSize kStandardSize(280, 420);

struct SideRow {
    ed::DockSide side;
    unsigned edge; // ed::DockEdges
    Qt::DockWidgetArea area;
};
constexpr SideRow kSides[] = {
    {ed::DockSide::Left, ed::kDockLeft, Qt::LeftDockWidgetArea},
    {ed::DockSide::Right, ed::kDockRight, Qt::RightDockWidgetArea},
    {ed::DockSide::Top, ed::kDockTop, Qt::TopDockWidgetArea},
    {ed::DockSide::Bottom, ed::kDockBottom, Qt::BottomDockWidgetArea},
};

const SideRow* rowOf(ed::DockSide side)
{
    const SideRow* row = std::ranges::find(kSides, side, &SideRow::side);
    return row == std::end(kSides) ? nullptr : row;
}

bool isUpright(ed::DockSide side)
{
    return side != ed::DockSide::Top && side != ed::DockSide::Bottom;
}

/// The place of the tabs: what moves between body and flyout.
void moveInto(QWidget& widget, QWidget& holder)
{
    if (widget.parentWidget() != &holder || holder.layout()->indexOf(&widget) < 0)
        holder.layout()->addWidget(&widget); // leaves the former layout
}

class Body : public QWidget
{
public:
    QSize wanted = kStandardSize;
    explicit Body(QWidget* parent) : QWidget(parent)
    {
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(0);
    }
    QSize sizeHint() const override { return wanted; }
};

void free(QWidget& widget)
{
    widget.setMinimumSize(0, 0);
    widget.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

} // namespace

void CTdUiPaletteSet::Parts::build(const TvString& toolId)
{
    set.setObjectName(ui::toQt(toolId));
    const ui::PaletteTitleBar::Actions actions{[this] { showMenu(); },
                                               [this] { set.SetAutoRollup(!isRollup); },
                                               [this] { set.setShown(false); }};
    body = new Body(&set);
    tabs = new QTabWidget(body);
    tabs->setDocumentMode(true);
    tabs->setElideMode(Qt::ElideRight);
    strip = new ui::PaletteStrip(body);
    body->layout()->addWidget(tabs);
    body->layout()->addWidget(strip);
    set.setWidget(body);
    // Behind the palettes, so that Tab and the first focus come to them first.
    titleBar = new ui::PaletteTitleBar(&set, actions);
    set.setTitleBarWidget(titleBar);
    flyout = new QFrame(frame ? static_cast<QWidget*>(frame) : &set);
    flyout->setFrameShape(QFrame::StyledPanel);
    flyout->setAutoFillBackground(true);
    flyout->hide();
    auto* column = new QVBoxLayout(flyout);
    column->setContentsMargins(1, 1, 1, 1);
    column->setSpacing(0);
    flyoutTitle = new ui::PaletteTitleBar(flyout, actions);
    column->addWidget(flyoutTitle);

    for (QObject* watched : std::initializer_list<QObject*>{&set, strip, titleBar})
        watched->installEventFilter(&set);
    if (frame)
        frame->installEventFilter(&set);
    QObject::connect(tabs, &QTabWidget::currentChanged, &set, [this] { activePageChanged(); });
    QObject::connect(strip, &QAbstractButton::clicked, &set, [this] { rollOut(true); });
    QObject::connect(&set, &QDockWidget::topLevelChanged, &set, [this] { arrange(); });
    QObject::connect(&set, &QDockWidget::dockLocationChanged, &set, [this] { arrange(); });
    watch.setInterval(kWatchPeriodMs);
    QObject::connect(&watch, &QTimer::timeout, &set, [this] {
        if (!isSomebodyThere())
            rollUp();
    });
    updateAllowedAreas();
}

void CTdUiPaletteSet::Parts::arrange()
{
    if (isArranging)
        return;
    isArranging = true;
    titleBar->setRollup(isRollup);
    flyoutTitle->setRollup(isRollup);
    updateTabSide();
    if (set.side() == ed::DockSide::Floating)
        arrangeFloating();
    else
        arrangeDocked();
    if (isRollup && isOut)
        watch.start();
    else
        watch.stop();
    updateOpacity();
    isArranging = false;
}

void CTdUiPaletteSet::Parts::arrangeDocked()
{
    titleBar->setFolded(isRollup);
    strip->setVisible(isRollup);
    free(*body);
    if (isRollup) {
        moveInto(*tabs, *flyout);
        tabs->show();
        strip->setUpright(isUpright(set.side()));
        if (isUpright(set.side()))
            body->setFixedWidth(strip->thickness());
        else
            body->setFixedHeight(strip->thickness());
        flyout->setVisible(isOut && set.isVisible());
        placeFlyout();
        return;
    }
    flyout->hide();
    moveInto(*tabs, *body);
    tabs->show();
    body->setMinimumSize(minimum);
    giveDockedSize();
    // The frame lays its edges out with the next turn of the loop; what it gives until then is not
    // the size that the user chose.
    isSettling = true;
    QTimer::singleShot(0, &set, [this] {
        giveDockedSize();
        isSettling = false;
    });
}

void CTdUiPaletteSet::Parts::giveDockedSize()
{
    if (isRollup || !frame || docked.isNull() || !set.isVisible() || set.isFloating())
        return;
    const bool isWide = isUpright(set.side());
    frame->resizeDocks({&set}, {isWide ? docked.width() : docked.height()},
                       isWide ? Qt::Horizontal : Qt::Vertical);
}

void CTdUiPaletteSet::Parts::arrangeFloating()
{
    flyout->hide();
    titleBar->setFolded(false);
    strip->hide();
    moveInto(*tabs, *body);
    free(*body);
    const bool showsPage = !isRollup || isOut;
    tabs->setVisible(showsPage);
    body->setMinimumSize(minimum.width(), showsPage ? minimum.height() : 0);
    if (!showsPage)
        body->setMaximumHeight(0);
    set.layout()->activate();
    if (!showsPage)
        set.resize(set.width(), titleBar->sizeHint().height());
    else if (!floating.isNull())
        set.setGeometry(floating);
}

void CTdUiPaletteSet::Parts::placeFlyout()
{
    if (!frame || !flyout || flyout->isHidden())
        return;
    const QPoint corner = frame->mapFromGlobal(set.mapToGlobal(QPoint(0, 0)));
    QRect place(corner, set.size());
    const QSize size = (docked.isNull() ? kStandardSize : docked.size()).expandedTo(minimum);
    switch (set.side()) {
    case ed::DockSide::Left:
        place.setLeft(place.right() + 1);
        place.setWidth(size.width());
        break;
    case ed::DockSide::Top:
        place.setTop(place.bottom() + 1);
        place.setHeight(size.height());
        break;
    case ed::DockSide::Bottom:
        place.setBottom(place.top() - 1);
        place.setTop(place.bottom() - size.height() + 1);
        break;
    default: place.setRight(place.left() - 1); place.setLeft(place.right() - size.width() + 1);
    }
    flyout->setGeometry(place & frame->rect());
    flyout->raise();
}

void CTdUiPaletteSet::Parts::rollOut(bool byKeys)
{
    if (!isRollup || isOut)
        return;
    if (!byKeys) {
        QTimer::singleShot(kHoverDelayMs, &set, [this] {
            if (isRollup && !isOut && isSomebodyThere()) {
                isOut = true;
                arrange();
            }
        });
        return;
    }
    isOut = isOutByKeys = true;
    arrange();
    if (QWidget* page = tabs->currentWidget()) {
        page->setFocus();
        if (!page->hasFocus())
            tabs->setFocus();
    }
}

void CTdUiPaletteSet::Parts::rollUp()
{
    if (!isRollup || !isOut)
        return;
    noteGeometry();
    const bool hadFocus = tabs->isAncestorOf(QApplication::focusWidget());
    isOut = isOutByKeys = false;
    arrange();
    if (hadFocus && !strip->isHidden())
        strip->setFocus();
}

bool CTdUiPaletteSet::Parts::isSomebodyThere() const
{
    // A menu or a dialog of its page, a drag that began in it.
    if (QApplication::activePopupWidget() || QApplication::activeModalWidget() ||
        QApplication::mouseButtons() != Qt::NoButton)
        return true;
    const QWidget* focus = QApplication::focusWidget();
    if (isOutByKeys && focus && (focus == tabs || tabs->isAncestorOf(focus)))
        return true;
    const QPoint mouse = QCursor::pos();
    const auto isIn = [&](const QWidget& widget) {
        return widget.isVisible() && widget.rect().contains(widget.mapFromGlobal(mouse));
    };
    return isIn(set) || (flyout && isIn(*flyout));
}

void CTdUiPaletteSet::Parts::updateOpacity()
{
    const bool isClear = isTransparent && set.isFloating() && !isMouseIn;
    const double opacity = isClear ? 1 - transparency / 100.0 : 1;
    if (set.isWindow() && set.windowOpacity() != opacity)
        set.setWindowOpacity(opacity);
}

void CTdUiPaletteSet::Parts::updateAllowedAreas()
{
    Qt::DockWidgetAreas areas = Qt::NoDockWidgetArea;
    for (const SideRow& row : kSides)
        if (isAllowed(row.side))
            areas |= row.area;
    set.setAllowedAreas(areas);
    if (!isAllowed(set.side()))
        floatAt({});
}

void CTdUiPaletteSet::Parts::updateTabSide()
{
    tabs->setTabPosition(set.side() == ed::DockSide::Left     ? QTabWidget::West
                         : set.side() == ed::DockSide::Top    ? QTabWidget::North
                         : set.side() == ed::DockSide::Bottom ? QTabWidget::South
                                                              : QTabWidget::East);
}

/// The place that it has when it is open; a strip or a title has none of its own.
void CTdUiPaletteSet::Parts::noteGeometry()
{
    if (isArranging || isSettling || !set.isVisible())
        return;
    const bool isOpen = !isRollup;
    const QRect now = set.geometry();
    if (set.isFloating()) {
        if (isOpen || isOut)
            floating = now;
        else
            floating.moveTopLeft(now.topLeft());
    } else if (isOpen) {
        docked = now;
    }
}

void CTdUiPaletteSet::Parts::activePageChanged()
{
    CTdUiPalette* former = std::exchange(active, set.GetActivePalette());
    if (former == active)
        return;
    if (former)
        former->OnActivated(false);
    if (active)
        active->OnActivated(true);
}

bool CTdUiPaletteSet::Parts::isAllowed(ed::DockSide side) const
{
    const SideRow* row = rowOf(side);
    return !row || (frame && mayDock && (edges & row->edge) != 0);
}

void CTdUiPaletteSet::Parts::dock(ed::DockSide side, const QRect& rect)
{
    const SideRow* row = rowOf(side);
    if (!row) {
        floatAt(rect);
        return;
    }
    const bool wasShown = set.isShown();
    isArranging = true;
    if (!rect.isNull())
        docked = rect;
    const QSize size = docked.isNull() ? kStandardSize : docked.size();
    static_cast<Body*>(body)->wanted = size.boundedTo(frame->size()).expandedTo(minimum);
    free(*body);
    set.setFloating(false);
    frame->addDockWidget(row->area, &set);
    set.setVisible(wasShown);
    isOut = false;
    isArranging = false;
    arrange();
}

void CTdUiPaletteSet::Parts::floatAt(const QRect& rect)
{
    const bool wasShown = set.isShown();
    isArranging = true;
    if (!rect.isNull())
        floating = rect;
    if (floating.isNull()) {
        floating = QRect(QPoint(), kStandardSize.expandedTo(minimum));
        floating.moveCenter(frame ? frame->geometry().center() : QPoint(400, 300));
    }
    floating = ui::placedOnScreens(floating, minimum, ui::availableScreens());
    set.setFloating(true);
    set.setVisible(wasShown);
    isOut = false;
    isArranging = false;
    arrange();
}
