#include "panel_windows/sheet_set_tool_tip_ctrl.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTextLayout>
#include <QToolTip>

#include <core/session.h>
#include <sm/tv_sm_database.h>
#include <ui/kv_preview_static.h>
#include <ui/qt_text.h>

namespace {

constexpr QColor kPaper(241, 242, 247), kInk(0, 0, 0), kLine(0x77, 0x77, 0x77);
constexpr int kRestGap = 2, kLineGap = 1, kPictureGap = 10; // below the title, in pixels
constexpr int kBottom = 4, kBesideCursor = 20, kWider = 5;

/// Words in lines: broken between words, and where a word is longer than a line.
class Words
{
public:
    Words(const TvString& text, const QFont& font, int width, Qt::Alignment alignment)
        : m_layout(ui::toQt(text).replace(QLatin1Char('\n'), QChar::LineSeparator), font)
    {
        QTextOption option(alignment);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        m_layout.setTextOption(option);
        m_layout.beginLayout();
        for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
            line.setLineWidth(width);
            line.setPosition(QPointF(0, m_height));
            m_height += line.height();
            m_width = std::max(m_width, line.naturalTextWidth());
        }
        m_layout.endLayout();
    }
    int width() const { return qCeil(m_width); }
    int height() const { return qCeil(m_height); }
    /// The top of line @p index, or the end of the last one.
    int topOf(int index) const
    {
        return index < m_layout.lineCount() ? qFloor(m_layout.lineAt(index).y()) : height();
    }
    void draw(QPainter& painter, const QPoint& at) const { m_layout.draw(&painter, at); }

private:
    QTextLayout m_layout;
    double m_width = 0, m_height = 0;
};

int lineFeedsAtFront(const TvString& text)
{
    int count = 0;
    while (count < text.length() && text.at(count) == u'\n')
        ++count;
    return count;
}

core::TipStyle withoutPreview(core::TipStyle style)
{
    style.mode = style.showsDetails() ? core::TipStyle::NameAndDetails : core::TipStyle::Name;
    return style;
}

} // namespace

/// Where everything stands, in pixels of the tip.
struct CTarvSheetSetToolTipCtrl::Layout {
    core::TipParts parts;
    QSize size;
    int width = 0; ///< of the words
    int titleHeight = 0;
    int restTop = 0;
    QRect picture; ///< empty: none
};

CTarvSheetSetToolTipCtrl::CTarvSheetSetToolTipCtrl()
    : QWidget(nullptr, Qt::ToolTip | Qt::BypassGraphicsProxyWidget)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(QToolTip::font());
    connect(&m_again, &QTimer::timeout, this, [this] { lookAgain(); });
}

CTarvSheetSetToolTipCtrl::~CTarvSheetSetToolTipCtrl() = default;

/// Asks the disk about the item, unless somebody waits for that folder already.
void CTarvSheetSetToolTipCtrl::beginLook(int waitMs)
{
    m_look.reset();
    m_isWaiting = false;
    auto question = core::tipQuestion(GetCurrentDatabase(), m_handle, core::tipStyle(),
                                      core::drawingInfoCache());
    if (!question)
        return;
    m_isWaiting = true;
    if (core::DrawingLook::isSilent(*question))
        return;
    m_look.emplace(std::move(*question));
    m_isWaiting = !m_look->hasAnswered(waitMs);
}

void CTarvSheetSetToolTipCtrl::GetTipText(TvString& out)
{
    beginLook(core::kPatienceMs);
    makeWords();
    out = m_tip.text;
}

/// Of what is known now.
void CTarvSheetSetToolTipCtrl::makeWords()
{
    const core::TipStyle style = core::tipStyle();
    core::DrawingFacts* facts = m_look && !m_isWaiting ? &m_look->facts() : nullptr;
    core::fillTip(GetCurrentDatabase(), m_handle, style, facts, core::drawingInfoCache(), m_tip);
    m_picture =
        m_tip.preview ? ui::previewImage(std::as_bytes(std::span(m_tip.preview->bytes))) : QImage();
    // What cannot be shown needs no room.
    if (m_tip.preview && m_picture.isNull())
        core::fillTip(GetCurrentDatabase(), m_handle, withoutPreview(style), facts,
                      core::drawingInfoCache(), m_tip);
}

bool CTarvSheetSetToolTipCtrl::Update(const QPoint& at)
{
    TvString words;
    GetTipText(words);
    m_tip.text = words;
    setVisible(false);
    if (words.isEmpty())
        return false;
    m_at = at;
    place();
    show();
    if (m_isWaiting)
        m_again.start(kAgainMs);
    return true;
}

void CTarvSheetSetToolTipCtrl::place()
{
    setAccessibleName(ui::toQt(core::tipParts(m_tip, core::tipStyle()).title));
    resize(sizeHint());
    move(placeBeside(m_at));
}

/// Until the disk has answered, as long as the tip is up.
void CTarvSheetSetToolTipCtrl::lookAgain()
{
    if (!m_look)
        beginLook(0);
    else
        m_isWaiting = !m_look->hasAnswered(0);
    if (m_isWaiting)
        return;
    m_again.stop();
    makeWords();
    if (m_tip.text.isEmpty())
        return hide();
    place();
    update();
}

void CTarvSheetSetToolTipCtrl::hideEvent(QHideEvent* event)
{
    m_again.stop();
    QWidget::hideEvent(event);
}

/// The words leave room for the picture by line feeds; where the font's lines are too low for that,
/// the words move down.
CTarvSheetSetToolTipCtrl::Layout CTarvSheetSetToolTipCtrl::layOut() const
{
    const core::TipStyle style = core::tipStyle();
    const bool hasPicture = style.showsPreview() && !m_picture.isNull();
    Layout layout;
    core::Tip shown = m_tip;
    if (!hasPicture)
        shown.preview = nullptr;
    layout.parts = core::tipParts(shown, style);
    const core::PreviewRoom& room = core::previewRoom(style.size);
    const int most = kMaxWidth - 2 * kInset;
    const Words freeTitle(layout.parts.title, font(), most, Qt::AlignLeft);
    const Words freeRest(layout.parts.rest, font(), most, Qt::AlignLeft);
    layout.width = std::max({freeTitle.width(), freeRest.width(), hasPicture ? room.width : 0});
    layout.titleHeight = freeTitle.height();
    int bottom = layout.titleHeight;
    if (hasPicture) {
        layout.picture = QRect(kInset + (layout.width - room.width) / 2,
                               layout.titleHeight + kPictureGap, room.width, room.height);
        bottom = layout.picture.bottom() + 1;
    }
    layout.restTop = layout.titleHeight + kRestGap;
    if (!layout.parts.rest.isEmpty()) {
        const int firstWords = layout.restTop + freeRest.topOf(lineFeedsAtFront(layout.parts.rest));
        if (hasPicture)
            layout.restTop += std::max(0, bottom + kRestGap - firstWords);
        bottom = std::max(bottom, layout.restTop + freeRest.height());
    }
    layout.size = QSize(layout.width + 2 * kInset, bottom + kBottom);
    return layout;
}

QSize CTarvSheetSetToolTipCtrl::sizeHint() const
{
    return layOut().size;
}

void CTarvSheetSetToolTipCtrl::paintEvent(QPaintEvent*)
{
    PaintTip();
}

void CTarvSheetSetToolTipCtrl::PaintTip()
{
    QPainter painter(this);
    painter.fillRect(rect(), kPaper);
    const Layout layout = layOut();
    painter.setPen(kInk);
    Words(layout.parts.title, font(), layout.width, Qt::AlignHCenter).draw(painter, {kInset, 0});
    if (!layout.parts.hasLine)
        return;
    Words(layout.parts.rest, font(), layout.width, Qt::AlignLeft)
        .draw(painter, {kInset, layout.restTop});
    painter.fillRect(QRect(kInset, layout.titleHeight + kLineGap, layout.width + kWider, 1), kLine);
    if (layout.picture.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(layout.picture, m_picture);
}

/// Below the cursor; above it where there is no room, and never off the screen.
QPoint CTarvSheetSetToolTipCtrl::placeBeside(const QPoint& at) const
{
    const QScreen* screen = QGuiApplication::screenAt(at);
    const QRect room = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    QRect place(at + QPoint(0, kBesideCursor), size());
    if (place.bottom() > room.bottom())
        place.moveBottom(at.y() - kInset);
    place.moveRight(std::min(place.right(), room.right()));
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
    return place.topLeft();
}
