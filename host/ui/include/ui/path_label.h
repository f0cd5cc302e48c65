#pragma once

#include <QLabel>

namespace ui {

/// A label for a path: what is too long for it loses its middle; the tip shows the whole.
class PathLabel : public QLabel
{
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
};

} // namespace ui
