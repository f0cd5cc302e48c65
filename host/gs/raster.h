#pragma once

#include <vector>

#include <cairo.h>

#include <gs/box.h>
#include <gs/display_list.h>

namespace gs {

/// Draws thin lines and small areas straight into the pixels of an image: most of a drawing is
/// that, and asking cairo for each takes several times as long.
///
/// Places are in pixels of the context, y downwards; any number does. Nothing is written outside of
/// the scissors.
class Raster
{
public:
    struct Rectangle {
        int left = 0, top = 0, right = 0, bottom = 0; ///< right and bottom are not in it

        bool isEmpty() const { return left >= right || top >= bottom; }
        Rectangle common(const Rectangle& other) const;
    };

    /// @param context  whose target is drawn into, when it is an image of 32-bit pixels and the
    ///                 context's own coordinates are its pixels, moved by whole ones.
    Raster(cairo_t* context, bool isSmooth);
    ~Raster() { end(); }
    Raster(const Raster&) = delete;
    Raster& operator=(const Raster&) = delete;

    /// Otherwise nothing may be called.
    bool isUsable() const { return m_pixels != nullptr; }
    /// What the context's own clip leaves.
    const Rectangle& whole() const { return m_whole; }
    void setScissors(const Rectangle& scissors) { m_scissors = scissors.common(m_whole); }
    void setColor(std::uint32_t rgb, std::uint8_t alpha);

    /// Between begin() and end() nobody else draws into the image. Both may be called at any time.
    void begin()
    {
        if (!m_isOpen)
            open();
    }
    void end()
    {
        if (m_isOpen)
            close();
    }

    /// A line of one pixel's width.
    void line(const TvGePoint2d& from, const TvGePoint2d& to);
    void pixel(const TvGePoint2d& at);
    void rectangle(const Rectangle& area, std::uint32_t coverage = 255);
    /// Whether fill() may be asked for an area of that size.
    static bool isSmall(double width, double height)
    {
        return width < kLargestArea && height < kLargestArea;
    }
    // An area, by its outline: start, then each of its edges in turn (those that close it, too).
    void startArea(const Box& box);
    void edge(const TvGePoint2d& from, const TvGePoint2d& to);
    void finishArea();

private:
    static constexpr double kLargestArea = 512;

    void open();
    void close();
    template <bool IsSteep>
    void slanted(double from, double to, double across, double slope);
    /// What is drawn with, two channels in each half; a copy of it stays in registers.
    struct Ink {
        std::uint32_t low, high, alpha;

        void blend(std::uint32_t& pixel, std::uint32_t coverage) const;
        /// The same when alpha is 255.
        void blendOpaque(std::uint32_t& pixel, std::uint32_t coverage) const;
        /// @param part  of 256
        void mix(std::uint32_t& pixel, std::uint32_t part) const;
    };
    std::uint32_t* row(int y) const { return m_pixels + static_cast<std::ptrdiff_t>(y) * m_stride; }

    cairo_surface_t* m_surface = nullptr; // not owned; the context's target
    std::uint32_t* m_pixels = nullptr;    // of the context's place (0,0)
    std::ptrdiff_t m_stride = 0;          // pixels
    Rectangle m_whole, m_scissors;
    bool m_isSmooth, m_isOpen = false;
    Ink m_ink{0, 0x00FF0000, 255};
    std::vector<float> m_cover; // of the area: by how much each pixel differs from its left one
    Rectangle m_area;
};

} // namespace gs
