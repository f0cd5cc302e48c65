#include "ui/td_ui_palette_set.h"

#include <QAction>
#include <QCloseEvent>
#include <QEvent>
#include <QFrame>
#include <QMainWindow>
#include <QTabWidget>

#include "palette_strip.h"
#include "palette_title_bar.h"
#include "td_ui_palette_set_parts.h"
#include "ui/qt_text.h"
#include "ui/td_ui_palette.h"
#include "ui/window_state.h"

namespace {

constexpr int kMostTransparent = 90; // percent

ed::ScreenRect screenRect(const QRect& rect)
{
    return rect.isNull() ? ed::ScreenRect()
                         : ed::ScreenRect{rect.x(), rect.y(), rect.width(), rect.height()};
}

QRect qtRect(const ed::ScreenRect& rect)
{
    return rect.isEmpty() ? QRect() : QRect(rect.x, rect.y, rect.width, rect.height);
}

ed::DockSide sideOfArea(Qt::DockWidgetArea area)
{
    switch (area) {
    case Qt::LeftDockWidgetArea: return ed::DockSide::Left;
    case Qt::TopDockWidgetArea: return ed::DockSide::Top;
    case Qt::BottomDockWidgetArea: return ed::DockSide::Bottom;
    default: return ed::DockSide::Right;
    }
}

} // namespace

CTdUiPaletteSet::CTdUiPaletteSet(const TvString& title, const TvString& toolId, QMainWindow* frame)
    : QDockWidget(frame), m_parts(std::make_unique<Parts>(*this))
{
    m_parts->frame = frame;
    m_parts->build(toolId);
    SetTitle(title);
    hide();
    if (frame)
        frame->addDockWidget(Qt::RightDockWidgetArea, this);
    else
        setFloating(true);
    hide();
    m_parts->arrange();
    // The frame's own menu shows it as well.
    connect(toggleViewAction(), &QAction::triggered, this, [this](bool shown) {
        if (shown) {
            m_parts->arrange();
            OnShown(true);
        }
    });
}

CTdUiPaletteSet::~CTdUiPaletteSet()
{
    // What the toolkit tells while it takes its widgets away finds nobody any more.
    m_parts->isArranging = true;
    disconnect(m_parts->tabs, nullptr, this, nullptr);
    disconnect(this, nullptr, this, nullptr);
    m_parts->watch.stop();
    delete m_parts->flyout;
}

void CTdUiPaletteSet::SetTitle(const TvString& title)
{
    m_parts->title = title;
    const QString text = ui::toQt(title);
    setWindowTitle(text);
    m_parts->titleBar->setTitle(text);
    m_parts->flyoutTitle->setTitle(text);
    m_parts->strip->setText(text);
    m_parts->strip->setAccessibleName(text);
}

TvString CTdUiPaletteSet::GetTitle() const
{
    return m_parts->title;
}

void CTdUiPaletteSet::SetMinimumSize(int width, int height)
{
    m_parts->minimum = QSize(std::max(width, 1), std::max(height, 1));
    m_parts->arrange();
}

int CTdUiPaletteSet::AddPalette(CTdUiPalette* palette)
{
    if (!palette || palette->m_set)
        return -1;
    palette->m_set = this;
    return m_parts->tabs->addTab(palette, ui::withoutMnemonics(ui::toQt(palette->GetTitle())));
}

int CTdUiPaletteSet::GetPaletteCount() const
{
    return m_parts->tabs->count();
}

CTdUiPalette* CTdUiPaletteSet::GetPalette(int index) const
{
    return static_cast<CTdUiPalette*>(m_parts->tabs->widget(index)); // nothing else is a tab
}

CTdUiPalette* CTdUiPaletteSet::GetActivePalette() const
{
    return GetPalette(m_parts->tabs->currentIndex());
}

bool CTdUiPaletteSet::SetActivePalette(int index)
{
    if (!GetPalette(index))
        return false;
    m_parts->tabs->setCurrentIndex(index);
    return true;
}

void CTdUiPaletteSet::SetAutoRollup(bool isOn)
{
    if (m_parts->isRollup == isOn)
        return;
    m_parts->noteGeometry();
    m_parts->isRollup = isOn;
    m_parts->isOut = false;
    m_parts->arrange();
}

bool CTdUiPaletteSet::GetAutoRollup() const
{
    return m_parts->isRollup;
}

void CTdUiPaletteSet::RollOut()
{
    m_parts->rollOut(false);
}

void CTdUiPaletteSet::RollUp()
{
    m_parts->rollUp();
}

void CTdUiPaletteSet::SetTransparency(bool isOn, int percent)
{
    m_parts->isTransparent = isOn;
    m_parts->transparency = std::clamp(percent, 0, kMostTransparent);
    m_parts->updateOpacity();
}

void CTdUiPaletteSet::AllowDocking(bool mayDock)
{
    m_parts->mayDock = mayDock;
    m_parts->updateAllowedAreas();
}

bool CTdUiPaletteSet::isShown() const
{
    return !isHidden();
}

void CTdUiPaletteSet::setShown(bool shown)
{
    const bool wasShown = isShown();
    setVisible(shown);
    if (shown) {
        m_parts->arrange();
        raise();
    }
    if (shown != wasShown)
        OnShown(shown);
}

bool CTdUiPaletteSet::isRolledUp() const
{
    return m_parts->isRollup && !m_parts->isOut;
}

void CTdUiPaletteSet::EnableDocking(unsigned edges)
{
    m_parts->edges = edges;
    m_parts->updateAllowedAreas();
}

void CTdUiPaletteSet::RestoreControlBar(int bar, const ed::ScreenRect* rect)
{
    const std::optional<ed::DockSide> wanted = ed::sideOfBar(bar);
    if (!wanted)
        return;
    const QRect place = rect ? qtRect(*rect) : QRect();
    m_parts->noteGeometry();
    if (m_parts->isAllowed(*wanted))
        m_parts->dock(*wanted, place);
    else
        m_parts->floatAt(*wanted == ed::DockSide::Floating ? place : QRect());
}

ed::PalettePlacement CTdUiPaletteSet::placement() const
{
    m_parts->noteGeometry();
    ed::PalettePlacement placement;
    placement.side = side();
    placement.isRolledIn = m_parts->isRollup;
    placement.isTransparent = m_parts->isTransparent;
    placement.transparency = m_parts->transparency;
    placement.mayDock = m_parts->mayDock;
    placement.floating = screenRect(m_parts->floating);
    placement.docked = screenRect(m_parts->docked);
    placement.activePalette = std::max(0, m_parts->tabs->currentIndex());
    return placement;
}

void CTdUiPaletteSet::setPlacement(const ed::PalettePlacement& placement)
{
    const bool wasShown = isShown();
    SetAutoRollup(false);
    AllowDocking(placement.mayDock);
    m_parts->floating = qtRect(placement.floating);
    m_parts->docked = qtRect(placement.docked);
    const ed::ScreenRect none;
    RestoreControlBar(static_cast<int>(placement.side), &none);
    SetTransparency(placement.isTransparent, placement.transparency);
    SetActivePalette(placement.activePalette);
    SetAutoRollup(placement.isRolledIn);
    setVisible(wasShown);
}

ed::DockSide CTdUiPaletteSet::side() const
{
    if (isFloating() || !m_parts->frame)
        return ed::DockSide::Floating;
    return sideOfArea(m_parts->frame->dockWidgetArea(const_cast<CTdUiPaletteSet*>(this)));
}

void CTdUiPaletteSet::OnShown(bool) {}

bool CTdUiPaletteSet::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_parts->frame && event->type() == QEvent::Resize)
        m_parts->placeFlyout();
    if (event->type() == QEvent::Enter &&
        (watched == m_parts->strip || (watched == m_parts->titleBar && isFloating())))
        m_parts->rollOut(false);
    if (watched == this && (event->type() == QEvent::Enter || event->type() == QEvent::Leave)) {
        m_parts->isMouseIn = event->type() == QEvent::Enter;
        m_parts->updateOpacity();
    }
    return QDockWidget::eventFilter(watched, event);
}

void CTdUiPaletteSet::closeEvent(QCloseEvent* event)
{
    const bool wasShown = isShown();
    QDockWidget::closeEvent(event);
    if (wasShown && event->isAccepted())
        OnShown(false);
}

void CTdUiPaletteSet::moveEvent(QMoveEvent* event)
{
    QDockWidget::moveEvent(event);
    m_parts->noteGeometry();
}

void CTdUiPaletteSet::resizeEvent(QResizeEvent* event)
{
    QDockWidget::resizeEvent(event);
    m_parts->noteGeometry();
}
