#include "panel_windows/open_combo_box.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>

#include <core/open_menu.h>
#include <core/session.h>
#include <core/watch_poller.h>
#include <sm/tv_sm_database.h>
#include <ui/icon.h>
#include <ui/qt_text.h>

#include "wait_for_disk.h"

namespace {

constexpr int kOpenText = 420;
constexpr int kIconPx = 16;

/// Anybody may have written what says who holds a lock.
TvString withoutControls(const TvString& text)
{
    TvString shown;
    for (const TvChar unit : text.view())
        if (unit >= u' ' && (unit < 0x7F || unit > 0x9F))
            shown += unit;
    return shown;
}

} // namespace

COpenComboBox::COpenComboBox(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

QString COpenComboBox::text()
{
    const TvSmDatabase* current = GetCurrentDatabase();
    return current ? ui::toQt(current->getSheetSet()->getName()) : ui::textOf(kOpenText);
}

bool COpenComboBox::isLocked()
{
    return core::lockStatusAtHand(GetCurrentDatabase()) != 0;
}

QString COpenComboBox::tip()
{
    constexpr int kWithOwner = 8928, kWithState = 8929, kFirstState = 22230;
    const TvSmDatabase* current = GetCurrentDatabase();
    if (!current)
        return {};
    const TvString file = current->getFileName();
    const base::LockInfo lock = core::lockInfoAtHand(current);
    if (lock.state == base::LockState::Free)
        return ui::toQt(file);
    const TvString state = ui::fromQt(ui::textOf(kFirstState + static_cast<int>(lock.state)));
    if (!lock.owner)
        return ui::textOf(kWithState, std::vector<TvString>{file, state});
    return ui::textOf(kWithOwner,
                      std::vector<TvString>{file, state, withoutControls(lock.owner->user),
                                            withoutControls(lock.owner->host)});
}

void COpenComboBox::openMenu()
{
    const core::OpenMenu open;
    const QPoint at = mapToGlobal(rect().bottomLeft() + QPoint(0, 1));
    const int id = ed::popupMenu(open.menu(), at.x(), at.y());
    const TvString file = open.recentOf(id);
    if (file.isEmpty() || panel::waitForFile(this, file))
        open.choose(id);
}

QSize COpenComboBox::sizeHint() const
{
    return {120, fontMetrics().height() + 10};
}

bool COpenComboBox::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip().toHtmlEscaped(),
                           this);
        return true;
    }
    return QWidget::event(event);
}

void COpenComboBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.subControls = QStyle::SC_All;
    option.frame = true;
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    option.currentText = text();
    if (isLocked()) {
        option.currentIcon = ui::icon(TvString(u"lock"));
        option.iconSize = QSize(kIconPx, kIconPx);
    }
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    const int icon = option.currentIcon.isNull() ? 0 : kIconPx + 4;
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideRight, field.width() - icon - 4);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void COpenComboBox::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        openMenu();
}

void COpenComboBox::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Down:
    case Qt::Key_F4:
    case Qt::Key_Return:
    case Qt::Key_Enter: return openMenu();
    default: QWidget::keyPressEvent(event);
    }
}
