#pragma once

#include <memory>

#include <QImage>

#include <app/view_transform.h>
#include <gs/display_list.h>
#include <gs/player.h>

class QPainter;

namespace window {

/// The picture of a drawing that a window shows: painted in slices, so that no frame waits for a
/// large drawing.
///
/// The last picture that was finished is shown at once, moved and scaled to where the view is now,
/// while the new one is being painted behind it.
class DrawingRaster
{
public:
    /// What is shown; null: nothing. What was painted of another list is forgotten.
    void setList(std::shared_ptr<const gs::DisplayList> list);
    void setBackground(gs::Background background);
    /// @param pixelRatio  device pixels by window unit.
    void setView(const app::ViewTransform& view, double pixelRatio);

    /// Paints for about so long. @return whether the picture is finished.
    bool work(int milliseconds);
    bool isFinished() const { return m_isFinished; }
    /// What there is of it, over the whole window.
    void paint(QPainter& painter) const;
    /// The finished picture; null before there is one.
    const QImage& picture() const { return m_front; }

private:
    void restart();
    gs::View pixelView() const;
    QRgb clearColor() const;

    std::shared_ptr<const gs::DisplayList> m_list;
    gs::PlayOptions m_options;
    app::ViewTransform m_view; // what is wanted
    double m_pixelRatio = 1;
    QImage m_front, m_back;
    app::ViewTransform m_frontView;
    gs::PlayProgress m_progress;
    bool m_isFinished = false;
};

} // namespace window
