#pragma once

#include <QAbstractButton>

namespace ui {

/// The strip at an edge to which a docked palette set rolls in. A click, Space or Enter presses it.
class PaletteStrip : public QAbstractButton
{
public:
    explicit PaletteStrip(QWidget* parent);

    /// At the left and right the title runs along the strip.
    void setUpright(bool isUpright);
    QSize sizeHint() const override;
    /// Across, in pixels.
    int thickness() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_isUpright = true;
};

} // namespace ui
