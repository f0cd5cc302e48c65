#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QTimer>
#include <QWidget>

#include <window/drawing_raster.h>

class QGestureEvent;
class QNativeGestureEvent;

namespace window {

/// The widget that shows a display list: pans, zooms, and draws the crosshairs. It knows nothing of
/// documents.
///
/// Wheel: zoom at the cursor. Middle button: pan; twice: all. Two fingers: pan; pinch, or with
/// Ctrl: zoom. Arrow keys: pan. Plus and minus: zoom.
class DrawingCanvas : public QWidget
{
public:
    explicit DrawingCanvas(QWidget* parent = nullptr);

    void setList(std::shared_ptr<const gs::DisplayList> list);
    const std::shared_ptr<const gs::DisplayList>& list() const { return m_list; }
    void setBackground(gs::Background background);

    const app::ViewTransform& view() const { return m_view; }
    /// The size stays the widget's own.
    void setView(const app::ViewTransform& view);
    /// All that is drawn, or the sheet.
    void zoomExtents();
    void zoomBy(double factor); ///< at the middle
    void panByPart(double right, double down);
    /// The next drag of the left button chooses what fills the window; escape ends it.
    void beginZoomWindow();
    bool isChoosingWindow() const { return m_isChoosing; }

    /// A command wants a point: the left button gives it, the right one is Enter.
    /// @param base      a line leads from there to the pointer, in the list's plane; or none.
    /// @param isCorner  a rectangle instead of the line.
    void beginPoint(std::optional<TvGePoint2d> base, bool isCorner);
    void endPoint();
    bool isAskingPoint() const { return m_isAskingPoint; }
    /// A frame around what is dragged, in the list's plane; none.
    void setFrame(std::optional<gs::Box> frame);

    /// Paints until the picture is finished: for pictures of the program itself, and tests.
    void finishPainting();
    const DrawingRaster& raster() const { return m_raster; }

    std::function<void(TvGePoint2d)> onCursor; ///< in the list's plane
    std::function<void()> onViewChanged;
    std::function<void()> onResized;         ///< the view has its new size already
    std::function<void(QKeyEvent*)> onTyped; ///< keys that are none of ours
    std::function<void()> onFocusTaken;
    std::function<void(TvGePoint2d)> onPoint; ///< that was asked for, in the list's plane
    std::function<void()> onEnter;            ///< the right button, while a point is asked for

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void changed();
    void moveCrosshair(std::optional<QPointF> to);
    QRegion crosshairRegion() const;
    void paintCrosshair(QPainter& painter) const;
    bool nativeGesture(QNativeGestureEvent& event);
    bool gesture(QGestureEvent& event);
    void endChoosing();
    QRectF chosen() const;
    void paintFrame(QPainter& painter, const QRectF& frame) const;
    void paintRubber(QPainter& painter) const;
    QPointF screenOf(TvGePoint2d plan) const;

    std::shared_ptr<const gs::DisplayList> m_list;
    DrawingRaster m_raster;
    app::ViewTransform m_view;
    QTimer m_slices;
    std::optional<QPointF> m_cursor;
    std::optional<QPointF> m_dragFrom; // of the middle button
    bool m_isChoosing = false;
    std::optional<QPointF> m_chosenFrom;
    bool m_isAskingPoint = false;
    bool m_isCorner = false;
    std::optional<TvGePoint2d> m_base; // in the list's plane
    std::optional<gs::Box> m_frame;
    gs::Background m_background = gs::Background::Dark;
};

} // namespace window
