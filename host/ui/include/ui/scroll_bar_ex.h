#pragma once

#include <QScrollBar>

/// A thin scroll bar in the colours of the theme: a handle without arrows, which widens its colour
/// under the mouse. It works as every scroll bar does.
class CScrollBarEx : public QScrollBar
{
public:
    explicit CScrollBarEx(Qt::Orientation orientation, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    /// The handle's rectangle.
    QRect handle() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int along(const QPoint& point) const;
    int length() const;
    int m_grip = -1; ///< where the mouse holds the handle, from its start; -1: not at all
};
