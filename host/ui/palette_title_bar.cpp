#include "palette_title_bar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

#include "ui/icon.h"
#include "ui/qt_text.h"
#include "ui/theme.h"

namespace ui {

namespace {

constexpr int kMenuText = 23310, kRollupText = 23311, kKeepOpenText = 23312, kCloseText = 23313;
constexpr int kMarginPx = 4, kIconPx = 14;

} // namespace

PaletteTitleBar::PaletteTitleBar(QWidget* parent, Actions actions) : QWidget(parent)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(kMarginPx, 1, 1, 1);
    row->setSpacing(0);
    row->addStretch(1);
    m_menu = addButton(QStringLiteral("menu"), kMenuText, std::move(actions.showMenu));
    m_pin = addButton(QStringLiteral("pin"), kRollupText, std::move(actions.toggleRollup));
    m_close = addButton(QStringLiteral("close"), kCloseText, std::move(actions.close));
}

QToolButton* PaletteTitleBar::addButton(const QString& picture, int text,
                                        std::function<void()> pressed)
{
    auto* button = new QToolButton(this);
    button->setAutoRaise(true);
    button->setIcon(icon(picture));
    button->setIconSize({kIconPx, kIconPx});
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(textOf(text));
    button->setAccessibleName(textOf(text));
    connect(button, &QToolButton::clicked, this, [pressed = std::move(pressed)] { pressed(); });
    layout()->addWidget(button);
    return button;
}

void PaletteTitleBar::setTitle(const QString& title)
{
    m_title = title;
    update();
}

void PaletteTitleBar::setRollup(bool isOn)
{
    m_pin->setIcon(icon(isOn ? QStringLiteral("unpin") : QStringLiteral("pin")));
    m_pin->setToolTip(textOf(isOn ? kKeepOpenText : kRollupText));
    m_pin->setAccessibleName(m_pin->toolTip());
}

void PaletteTitleBar::setFolded(bool isFolded)
{
    m_isFolded = isFolded;
    for (QToolButton* button : {m_menu, m_pin, m_close})
        button->setVisible(!isFolded);
    updateGeometry();
}

QPoint PaletteTitleBar::menuPoint() const
{
    return m_menu->mapToGlobal(QPoint(0, m_menu->height()));
}

QSize PaletteTitleBar::sizeHint() const
{
    return m_isFolded ? QSize(0, 0) : QWidget::sizeHint();
}

QSize PaletteTitleBar::minimumSizeHint() const
{
    return m_isFolded ? QSize(0, 0)
                      : QSize(QWidget::minimumSizeHint().width(), sizeHint().height());
}

void PaletteTitleBar::paintEvent(QPaintEvent*)
{
    if (m_isFolded)
        return;
    QPainter painter(this);
    painter.fillRect(rect(), color(ColorRole::Raised));
    painter.setPen(color(ColorRole::Border));
    painter.drawLine(rect().bottomLeft(), rect().bottomRight());
    const QRect room(kMarginPx * 2, 0, m_menu->x() - 3 * kMarginPx, height());
    painter.setPen(color(ColorRole::Text));
    painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_title, Qt::ElideRight, room.width()));
}

void PaletteTitleBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        update();
    QWidget::changeEvent(event);
}

} // namespace ui
