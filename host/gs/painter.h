#pragma once

#include <cairo.h>

#include <gs/player.h>

#include "raster.h"

namespace gs {

/// Draws single items of a list into a cairo context.
///
/// Works in pixels: no number that reaches cairo is farther from the picture than a few of its
/// widths, because cairo counts in parts of a pixel and overflows.
class Painter
{
public:
    Painter(const DisplayList& list, const View& view, cairo_t* context,
            const PlayOptions& options);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    /// The background, and the sheet of paper.
    void clear();
    void draw(const Item& item);
    /// How far beyond its box an item may be seen, in the list's units.
    double reach() const;

private:
    void useClip(std::uint32_t clip);
    /// The scissors for the clip and its parents; nullopt when one is no rectangle.
    std::optional<Raster::Rectangle> scissorsOf(std::uint32_t clip) const;
    Raster::Rectangle pixelsOf(const Clip& clip) const;
    /// From here on cairo draws, with the clip that is set; or the raster does.
    void useCairo();
    void useRaster(const Item& item, std::uint8_t alpha);
    void setState();
    void addClips(std::uint32_t clip);
    void useColor(const Item& item, std::uint8_t alpha);
    /// @param place  from the path's points to pixels.
    template <class Place>
    void trace(PathView path, const Place& place);
    void trace(PathView path);
    void traceCut(const Path& path);
    PathView pathOf(const PathRange& range) { return m_list.path(range, m_letters); }
    void stroke(const Item& item, PathView path);
    /// Calls @p line with the ends of each line of a path, curves as chords, in pixels.
    /// @param isArea  every subpath is closed.
    template <class Line>
    void walk(PathView path, bool isArea, const Line& line) const;
    void strokeThin(const Item& item, PathView path);
    void fillSmall(const Item& item, PathView path, std::uint8_t alpha);
    void fill(const Item& item, PathView path, Item::Kind kind, std::uint8_t alpha);
    void strokeItem(const Item& item, const PathRange& range);
    void fillItem(const Item& item, const PathRange& range, Item::Kind kind, std::uint8_t alpha);
    /// Makes cairo draw with the colours of the item; false when they cannot be told apart.
    bool useFilling(const Item& item, std::uint8_t alpha);
    void drawCoarse(const Item& item);
    void drawEndless(const Item& item);
    void drawMarker(const Item& item);
    void drawDot(const Item& item);
    void drawSheet();
    double strokeWidth(const Item& item) const;
    double pixelsPerMm() const; ///< of line weights
    /// Within what cairo can count.
    bool isNear(const Box& box) const;

    TvGePoint2d pixel(const TvGePoint2d& point) const
    {
        return {point.x * m_scale + m_left, m_top - point.y * m_scale};
    }

    const DisplayList& m_list;
    const View& m_view;
    cairo_t* m_context; // not owned
    const PlayOptions& m_options;
    double m_scale, m_left, m_top;
    Box m_near; // in the list's units
    Raster m_raster;
    Path m_letters;                            // of the item that is drawn
    bool m_isRaster;                           // may be used with the clip that is set
    std::uint32_t m_clip = Item::kNoClip;      // of the item that is drawn
    std::uint32_t m_cairoClip = Item::kNoClip; // that cairo has
    std::uint64_t m_color = ~std::uint64_t(0); // that is set
};

} // namespace gs
