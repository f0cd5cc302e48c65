#pragma once

#include <sample_maker/templates.h>

namespace samples {

/// Draws what stands on building plans, in millimetres of the building: texts and signs are given
/// the scale of the sheet on which they will be seen.
class Draft
{
public:
    /// @param scale  the denominator: 50 for 1 to 50.
    Draft(Sketch& sketch, const Pen& pen, double scale)
        : m_sketch(&sketch), m_pen(pen), m_scale(scale)
    {
    }

    Pen& pen() { return m_pen; }
    Sketch& sketch() { return *m_sketch; }
    double scale() const { return m_scale; }
    /// Millimetres on paper as they are in the building.
    double paper(double mm) const { return mm * m_scale; }

    /// A filled rectangle.
    Draft& solid(const TvString& layer, const TvGePoint2d& low, const TvGePoint2d& high);
    /// A measure between two points, level or upright.
    /// @param at  where the line of the measure stands: y of a level one, x of an upright one.
    Draft& measureX(double from, double to, double featureY, double at);
    Draft& measureY(double from, double to, double featureX, double at);
    /// Measures from each to the next.
    Draft& chainX(const std::vector<double>& stops, double featureY, double at);
    Draft& chainY(const std::vector<double>& stops, double featureX, double at);
    /// A word of @p mm height on paper.
    Draft& word(const TvGePoint2d& at, double mm, const TvString& text, Align align = Align::Left);
    /// The name of a room above its area.
    Draft& room(const TvGePoint2d& at, const TvString& name, double squareMetres);
    /// A height above the ground floor, on a triangle that points at it.
    Draft& level(const TvGePoint2d& at, double heightMm);
    /// What a drawing is called, with its scale, on a line below it.
    Draft& title(const TvGePoint2d& at, const TvString& name);
    /// A word with a line to what it is about, with a dot at its end.
    Draft& note(const TvGePoint2d& point, const TvGePoint2d& at, const TvString& text);

private:
    void measure(const TvGePoint2d& from, const TvGePoint2d& to, const TvGePoint2d& linePoint,
                 double angleDegrees);

    Sketch* m_sketch;
    Pen m_pen;
    double m_scale;
};

/// Layers, linetypes and blocks of building plans, with those of sheets.
/// @return the form of an A2 sheet.
SheetForm addDrafting(Sketch& sketch);

/// The layers.
namespace on {
inline constexpr TvChar kWalls[] = u"Walls";         // what is cut
inline constexpr TvChar kOutlines[] = u"Outlines";   // what is seen
inline constexpr TvChar kThin[] = u"Thin Lines";     // surfaces, treads, swings
inline constexpr TvChar kFurniture[] = u"Furniture"; // what is not built
inline constexpr TvChar kHidden[] = u"Hidden";       // above or below
inline constexpr TvChar kAxes[] = u"Axes";
inline constexpr TvChar kHatches[] = u"Hatches";
inline constexpr TvChar kMeasures[] = u"Measures";
inline constexpr TvChar kTexts[] = u"Texts";
inline constexpr TvChar kGround[] = u"Ground";
inline constexpr TvChar kPlants[] = u"Plants";
inline constexpr TvChar kWater[] = u"Water";
inline constexpr TvChar kRoof[] = u"Roof";
inline constexpr TvChar kInsulation[] = u"Insulation";
inline constexpr TvChar kTimber[] = u"Timber";
inline constexpr TvChar kReferences[] = u"References";
inline constexpr TvChar kPaper[] = u"Paper"; // white: hides what is below
} // namespace on

} // namespace samples
