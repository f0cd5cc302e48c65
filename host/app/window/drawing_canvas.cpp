#include "window/drawing_canvas.h"

#include <cmath>

#include <QGestureEvent>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QWheelEvent>

#include <ui/theme.h>

namespace window {

namespace {

constexpr int kSliceMs = 8;           // half a frame: the other half is for what the user does
constexpr double kCrosshairPart = 20; // its arms are a 20th of the window
constexpr double kPickBox = 4;        // half of the box in its middle, window units

app::ScreenPoint pointOf(const QPointF& point)
{
    return {point.x(), point.y()};
}

bool isBackgroundDark(gs::Background background)
{
    return background == gs::Background::Dark;
}

} // namespace

DrawingCanvas::DrawingCanvas(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::BlankCursor);
    setMinimumSize(120, 80);
    grabGesture(Qt::PinchGesture);
    m_slices.setSingleShot(true);
    m_slices.setInterval(0);
    QObject::connect(&m_slices, &QTimer::timeout, this, [this] {
        const bool showsSteps = m_raster.picture().isNull();
        const bool isFinished = m_raster.work(kSliceMs);
        if (isFinished || showsSteps)
            update();
        if (!isFinished)
            m_slices.start();
    });
}

void DrawingCanvas::setList(std::shared_ptr<const gs::DisplayList> list)
{
    m_list = std::move(list);
    m_raster.setList(m_list);
    m_slices.start();
    update();
}

void DrawingCanvas::setBackground(gs::Background background)
{
    if (m_background == background)
        return;
    m_background = background;
    m_raster.setBackground(background);
    m_slices.start();
    update();
}

void DrawingCanvas::setView(const app::ViewTransform& view)
{
    app::ViewTransform sized = view;
    sized.resize(width(), height());
    if (sized == m_view)
        return;
    m_view = sized;
    m_raster.setView(m_view, devicePixelRatioF());
    m_slices.start();
    update();
}

void DrawingCanvas::changed()
{
    m_raster.setView(m_view, devicePixelRatioF());
    m_slices.start();
    update();
    if (onViewChanged)
        onViewChanged();
    if (m_cursor && onCursor)
        onCursor(m_view.toPlan(pointOf(*m_cursor)));
}

void DrawingCanvas::zoomExtents()
{
    if (!m_list)
        return;
    gs::Box all = m_list->extents();
    if (m_list->sheet())
        all.addBox(*m_list->sheet());
    if (all.isEmpty())
        return;
    m_view.fit({all.lowX, all.lowY}, {all.highX, all.highY});
    changed();
}

void DrawingCanvas::zoomBy(double factor)
{
    m_view.zoomAt({width() / 2.0, height() / 2.0}, factor);
    changed();
}

void DrawingCanvas::panByPart(double right, double down)
{
    m_view.panBy(-right * width(), -down * height());
    changed();
}

void DrawingCanvas::beginZoomWindow()
{
    m_isChoosing = true;
    m_chosenFrom.reset();
    setFocus();
    update();
}

void DrawingCanvas::endChoosing()
{
    m_isChoosing = false;
    m_chosenFrom.reset();
    update();
}

void DrawingCanvas::beginPoint(std::optional<TvGePoint2d> base, bool isCorner)
{
    endChoosing();
    m_isAskingPoint = true;
    m_base = base;
    m_isCorner = isCorner;
    update();
}

void DrawingCanvas::endPoint()
{
    m_isAskingPoint = false;
    m_base.reset();
    update();
}

void DrawingCanvas::setFrame(std::optional<gs::Box> frame)
{
    m_frame = frame;
    update();
}

void DrawingCanvas::finishPainting()
{
    m_raster.setView(m_view, devicePixelRatioF());
    constexpr int kLongMs = 1000;
    while (!m_raster.work(kLongMs)) {
    }
    update();
}

QRectF DrawingCanvas::chosen() const
{
    return m_chosenFrom && m_cursor ? QRectF(*m_chosenFrom, *m_cursor).normalized() : QRectF();
}

// Painting

QRegion DrawingCanvas::crosshairRegion() const
{
    if (!m_cursor)
        return {};
    const int arm = static_cast<int>(std::max(width(), height()) / kCrosshairPart) + 2;
    const QPoint at = m_cursor->toPoint();
    const int box = static_cast<int>(kPickBox) + 2;
    return QRegion(QRect(at - QPoint(arm, 2), QSize(2 * arm, 4))) +
           QRect(at - QPoint(2, arm), QSize(4, 2 * arm)) +
           QRect(at - QPoint(box, box), QSize(2 * box, 2 * box));
}

void DrawingCanvas::moveCrosshair(std::optional<QPointF> to)
{
    const QRegion former = crosshairRegion();
    m_cursor = to;
    update(former + crosshairRegion());
}

void DrawingCanvas::paintCrosshair(QPainter& painter) const
{
    if (!m_cursor || m_dragFrom)
        return;
    const double arm = std::max(width(), height()) / kCrosshairPart;
    const QPointF at(std::floor(m_cursor->x()) + 0.5, std::floor(m_cursor->y()) + 0.5);
    painter.setPen(isBackgroundDark(m_background) ? QColor(0xE6, 0xE6, 0xE6)
                                                  : QColor(0x30, 0x30, 0x30));
    const bool isExact = m_isChoosing || m_isAskingPoint;
    const double gap = isExact ? 0 : kPickBox;
    painter.drawLine(at - QPointF(arm, 0), at - QPointF(gap, 0));
    painter.drawLine(at + QPointF(gap, 0), at + QPointF(arm, 0));
    painter.drawLine(at - QPointF(0, arm), at - QPointF(0, gap));
    painter.drawLine(at + QPointF(0, gap), at + QPointF(0, arm));
    if (!isExact)
        painter.drawRect(QRectF(at - QPointF(gap, gap), QSizeF(2 * gap, 2 * gap)));
}

void DrawingCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    m_raster.paint(painter);
    if (const QRectF frame = chosen(); !frame.isNull())
        paintFrame(painter, frame);
    paintRubber(painter);
    paintCrosshair(painter);
}

QPointF DrawingCanvas::screenOf(TvGePoint2d plan) const
{
    const app::ScreenPoint at = m_view.toScreen(plan);
    constexpr double kFar = 1e6; // what is farther off looks the same
    return {std::clamp(at.x, -kFar, kFar), std::clamp(at.y, -kFar, kFar)};
}

void DrawingCanvas::paintFrame(QPainter& painter, const QRectF& frame) const
{
    QColor fill = ui::color(ui::ColorRole::Accent);
    painter.setPen(fill);
    fill.setAlpha(40);
    painter.fillRect(frame, fill);
    painter.drawRect(frame);
}

/// What leads from where the question began to the pointer, and what is dragged.
void DrawingCanvas::paintRubber(QPainter& painter) const
{
    if (m_frame && !m_frame->isEmpty())
        paintFrame(painter, QRectF(screenOf({m_frame->lowX, m_frame->highY}),
                                   screenOf({m_frame->highX, m_frame->lowY})));
    if (!m_isAskingPoint || !m_base || !m_cursor)
        return;
    const QPointF base = screenOf(*m_base);
    if (m_isCorner)
        return paintFrame(painter, QRectF(base, *m_cursor).normalized());
    painter.setPen(ui::color(ui::ColorRole::Accent));
    painter.drawLine(base, *m_cursor);
}

void DrawingCanvas::resizeEvent(QResizeEvent*)
{
    m_view.resize(width(), height());
    m_raster.setView(m_view, devicePixelRatioF());
    m_slices.start();
    if (onResized)
        onResized();
}

// What the user does

bool DrawingCanvas::event(QEvent* event)
{
    if (event->type() == QEvent::NativeGesture)
        return nativeGesture(*static_cast<QNativeGestureEvent*>(event));
    if (event->type() == QEvent::Gesture)
        return gesture(*static_cast<QGestureEvent*>(event));
    return QWidget::event(event);
}

bool DrawingCanvas::nativeGesture(QNativeGestureEvent& event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    m_view.zoomAt(pointOf(event.position()), 1 + event.value());
    changed();
    return true;
}

bool DrawingCanvas::gesture(QGestureEvent& event)
{
    auto* pinch = static_cast<QPinchGesture*>(event.gesture(Qt::PinchGesture));
    if (!pinch)
        return false;
    const QPointF now = mapFromGlobal(pinch->centerPoint());
    const QPointF moved = pinch->centerPoint() - pinch->lastCenterPoint();
    m_view.panBy(moved.x(), moved.y());
    m_view.zoomAt(pointOf(now), pinch->scaleFactor());
    changed();
    return true;
}

void DrawingCanvas::wheelEvent(QWheelEvent* event)
{
    const QPoint pixels = event->pixelDelta();
    const bool isTouchpad = !pixels.isNull() && event->phase() != Qt::NoScrollPhase;
    if (isTouchpad && !(event->modifiers() & Qt::ControlModifier)) {
        m_view.panBy(pixels.x(), pixels.y());
    } else {
        m_view.zoomAt(pointOf(event->position()), app::wheelFactor(event->angleDelta().y()));
    }
    event->accept();
    changed();
}

void DrawingCanvas::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        m_dragFrom = event->position();
        setCursor(Qt::ClosedHandCursor);
        update();
    } else if (event->button() == Qt::LeftButton && m_isChoosing) {
        m_chosenFrom = event->position();
    } else if (event->button() == Qt::LeftButton) {
        if (onFocusTaken)
            onFocusTaken();
        if (m_isAskingPoint && onPoint)
            onPoint(m_view.toPlan(pointOf(event->position())));
    } else if (event->button() == Qt::RightButton && m_isAskingPoint && onEnter) {
        onEnter();
    }
}

void DrawingCanvas::mouseMoveEvent(QMouseEvent* event)
{
    moveCrosshair(event->position());
    if (m_dragFrom) {
        const QPointF moved = event->position() - *m_dragFrom;
        m_dragFrom = event->position();
        m_view.panBy(moved.x(), moved.y());
        return changed();
    }
    if (m_chosenFrom || m_base)
        update();
    if (onCursor)
        onCursor(m_view.toPlan(pointOf(event->position())));
}

void DrawingCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        m_dragFrom.reset();
        setCursor(Qt::BlankCursor);
        update();
    } else if (event->button() == Qt::LeftButton && m_chosenFrom) {
        m_view.zoomWindow(pointOf(*m_chosenFrom), pointOf(event->position()));
        endChoosing();
        changed();
    }
}

void DrawingCanvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        zoomExtents();
    else
        mousePressEvent(event);
}

void DrawingCanvas::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left: return panByPart(-app::kArrowStep, 0);
    case Qt::Key_Right: return panByPart(app::kArrowStep, 0);
    case Qt::Key_Up: return panByPart(0, -app::kArrowStep);
    case Qt::Key_Down: return panByPart(0, app::kArrowStep);
    case Qt::Key_Plus: return zoomBy(app::kWheelStep);
    case Qt::Key_Minus: return zoomBy(1 / app::kWheelStep);
    case Qt::Key_Escape:
        if (m_isChoosing)
            return endChoosing();
        break;
    default: break;
    }
    if (onTyped)
        onTyped(event);
    else
        QWidget::keyPressEvent(event);
}

void DrawingCanvas::leaveEvent(QEvent*)
{
    moveCrosshair(std::nullopt);
}

} // namespace window
