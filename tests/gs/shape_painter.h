#pragma once

#include <filesystem>
#include <string>

#include <cairo.h>

#include <gs/hatch_shape.h>
#include <gs/linetype.h>
#include <gs/text_shape.h>

/// Paints shapes into a small picture: for counting ink, and for looking at.
class ShapePainter
{
public:
    /// @param seen  what of the drawing the picture shows; @p scale pixels a unit.
    ShapePainter(const gs::Box& seen, double scale);
    ~ShapePainter();
    ShapePainter(const ShapePainter&) = delete;
    ShapePainter& operator=(const ShapePainter&) = delete;

    void paint(const gs::TextShape& shape, const gs::FlatMap& map = {});
    void paint(const gs::HatchShape& shape, const gs::FlatMap& map = {});
    void stroke(const gs::Path& path, const gs::FlatMap& map = {});
    void fill(const gs::Path& path, bool isEvenOdd, const gs::FlatMap& map = {});
    void setColor(double red, double green, double blue);

    /// Whether the place is darker than paper.
    bool isInked(const TvGePoint2d& place) const;
    /// Into the folder that KV_SAMPLES names; nothing when it names none.
    void save(const std::string& name) const;

private:
    void trace(const gs::Path& path, const gs::FlatMap& map);
    void setColor(const gs::OwnColor& color);

    cairo_surface_t* m_picture; // owned
    cairo_t* m_pen;             // owned
    gs::Box m_seen;
    double m_scale;
};
