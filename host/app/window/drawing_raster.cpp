#include "window/drawing_raster.h"

#include <cmath>

#include <QElapsedTimer>
#include <QPainter>

#include <cairo.h>

namespace window {

namespace {

/// A context that paints into a picture, as long as it lives.
class PictureContext
{
public:
    explicit PictureContext(QImage& picture)
        : m_surface(cairo_image_surface_create_for_data(picture.bits(), CAIRO_FORMAT_RGB24,
                                                        picture.width(), picture.height(),
                                                        static_cast<int>(picture.bytesPerLine()))),
          m_context(cairo_create(m_surface))
    {
    }
    ~PictureContext()
    {
        cairo_destroy(m_context);
        cairo_surface_finish(m_surface);
        cairo_surface_destroy(m_surface);
    }
    PictureContext(const PictureContext&) = delete;
    PictureContext& operator=(const PictureContext&) = delete;
    cairo_t* get() const { return m_context; }

private:
    cairo_surface_t* m_surface;
    cairo_t* m_context;
};

int pixelsOf(double units, double ratio)
{
    return std::clamp(static_cast<int>(std::lround(units * ratio)), 1, 16384);
}

} // namespace

void DrawingRaster::setList(std::shared_ptr<const gs::DisplayList> list)
{
    m_list = std::move(list);
    restart();
}

void DrawingRaster::setBackground(gs::Background background)
{
    if (m_options.background == background)
        return;
    m_options.background = background;
    m_front = {};
    restart();
}

void DrawingRaster::setView(const app::ViewTransform& view, double pixelRatio)
{
    if (m_view == view && m_pixelRatio == pixelRatio)
        return;
    m_view = view;
    m_pixelRatio = pixelRatio;
    restart();
}

void DrawingRaster::restart()
{
    m_progress = {};
    m_back = {};
    m_isFinished = false;
}

gs::View DrawingRaster::pixelView() const
{
    return {m_view.center(), m_view.scale() * m_pixelRatio, m_back.width(), m_back.height()};
}

QRgb DrawingRaster::clearColor() const
{
    const bool isOnDesk =
        m_options.background == gs::Background::Paper && m_list && m_list->sheet().has_value();
    return isOnDesk ? gs::deskRgb() : gs::rgbOf(m_options.background);
}

bool DrawingRaster::work(int milliseconds)
{
    if (m_isFinished)
        return true;
    if (m_back.isNull()) {
        m_back = QImage(pixelsOf(m_view.width(), m_pixelRatio),
                        pixelsOf(m_view.height(), m_pixelRatio), QImage::Format_RGB32);
        m_back.fill(clearColor());
    }
    if (m_list) {
        QElapsedTimer timer;
        timer.start();
        m_options.isCancelled = [&] { return timer.elapsed() >= milliseconds; };
        const PictureContext context(m_back);
        m_progress = gs::play(*m_list, pixelView(), context.get(), m_options, m_progress);
        m_options.isCancelled = nullptr;
    }
    if (m_list && !m_progress.isDone)
        return false;
    m_front = std::move(m_back);
    m_front.setDevicePixelRatio(m_pixelRatio);
    m_frontView = m_view;
    m_back = {};
    return m_isFinished = true;
}

void DrawingRaster::paint(QPainter& painter) const
{
    painter.save();
    if (m_isFinished) { // covers all
        painter.drawImage(QPointF(0, 0), m_front);
    } else if (m_front.isNull() && !m_back.isNull()) {
        QImage begun = m_back;
        begun.setDevicePixelRatio(m_pixelRatio);
        painter.drawImage(QPointF(0, 0), begun);
    } else {
        painter.fillRect(QRectF(0, 0, m_view.width(), m_view.height()), QColor(clearColor()));
        const app::PictureShift shift = app::shiftOf(m_frontView, m_view);
        const bool isSensible = std::isfinite(shift.scale) && shift.scale < 1e3;
        if (!m_front.isNull() && isSensible) {
            painter.translate(shift.dx, shift.dy);
            painter.scale(shift.scale, shift.scale);
            painter.drawImage(QPointF(0, 0), m_front);
        }
    }
    painter.restore();
}

} // namespace window
