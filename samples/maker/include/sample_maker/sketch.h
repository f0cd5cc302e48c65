#pragma once

#include <map>
#include <memory>
#include <vector>

#include <db/tv_db_database.h>
#include <db/tv_db_text.h>
#include <ge/tv_ge_point.h>

namespace samples {

class Sketch;

enum class Units { Millimetres, Inches };

/// Where a text stands to its point.
enum class Align { Left, Center, Right, Middle };

using Points = std::vector<TvGePoint2d>;
/// Texts of attributes by their tags; a tag that is missing keeps the text of its definition.
using Attributes = std::map<TvString, TvString>;

/// A sheet of paper, as it lies.
struct Paper {
    TvString layout;  ///< the layout's name
    double width = 0; ///< in the units of the drawing, as all lengths here
    double height = 0;
    TvString media; ///< the paper's name among those of printers
};

/// Draws into one block of a sketch: a paper, the model, or a block of its own.
///
/// What is drawn is on the layer that on() named last, and texts have the style that style() named
/// last; both begin with those that every drawing has. Angles are degrees, counter-clockwise. A
/// mistake (a layer that is not there, say) throws std::runtime_error: whoever draws is a program.
class Pen
{
public:
    Pen(Sketch& sketch, TvDbObjectId block) : m_sketch(&sketch), m_block(block) {}

    TvDbObjectId block() const { return m_block; }
    Pen& on(const TvString& layer);
    Pen& style(const TvString& textStyle);

    Pen& line(const TvGePoint2d& from, const TvGePoint2d& to);
    /// @param width  of the stroke, in drawing units; 0: as the layer has it.
    Pen& polyline(const Points& points, bool isClosed = false, double width = 0);
    Pen& rectangle(const TvGePoint2d& low, const TvGePoint2d& high, double width = 0);
    Pen& circle(const TvGePoint2d& center, double radius);
    Pen& arc(const TvGePoint2d& center, double radius, double fromDegrees, double toDegrees);
    /// @param height  of capitals.
    Pen& text(const TvGePoint2d& at, double height, const TvString& text, Align align = Align::Left,
              double rotationDegrees = 0);
    /// Several lines from the upper left corner down, broken at @p width.
    Pen& paragraph(const TvGePoint2d& topLeft, double width, double height, const TvString& text);
    /// A filled area.
    Pen& fill(const Points& loop);
    /// Parallel lines in an area, so far from each other.
    Pen& hatch(const Points& loop, double degrees, double spacing);
    /// What each insertion of this block fills in, at this place.
    Pen& attribute(const TvString& tag, const TvString& prompt, const TvString& text,
                   const TvGePoint2d& at, double height, Align align = Align::Left);
    /// @return the reference.
    TvDbObjectId insert(const TvString& block, const TvGePoint2d& at, const Attributes& texts = {},
                        double scale = 1, double rotationDegrees = 0);
    /// A window of a paper. @param viewCenter  what of the model is in its middle.
    /// @param scale  paper units by model units: 0.01 for 1 to 100.
    /// @return the viewport, on and locked.
    TvDbObjectId viewport(const TvGePoint2d& low, const TvGePoint2d& high,
                          const TvGePoint2d& viewCenter, double scale);

    /// For what has no function here: @p entity is put into the block, on the pen's layer, and
    /// stays open for writing until the caller closes it.
    TvDbObjectId add(TvDbEntity* entity);

private:
    void addText(std::unique_ptr<TvDbText> text, const TvGePoint2d& at, double height,
                 const TvString& words, Align align, double rotationDegrees);

    Sketch* m_sketch; // not owned
    TvDbObjectId m_block;
    TvString m_layer = u"0";
    TvString m_style = u"Standard";
};

/// A drawing that is being made by a program: the same calls give the same bytes.
///
/// It begins with what every drawing has, in the newest format, and no paper but those that are
/// added. While one is there, drawings are stamped with a time that stands still; so there is one
/// at a time.
class Sketch
{
public:
    explicit Sketch(Units units);
    ~Sketch();
    Sketch(const Sketch&) = delete;
    Sketch& operator=(const Sketch&) = delete;

    TvDbDatabase& drawing() { return *m_drawing; }
    Units units() const { return m_units; }

    /// @param color     index in the table of 255.
    /// @param weightMm  a width that drawings know (0.13, 0.18, 0.25, 0.35, 0.5, 0.7, 1, ...).
    Sketch& layer(const TvString& name, int color, double weightMm = 0.25,
                  const TvString& linetype = u"Continuous", bool isPlotted = true);
    /// @param dashes  lengths of dashes (above 0), gaps (below) and dots (0).
    Sketch& linetype(const TvString& name, const TvString& description,
                     const std::vector<double>& dashes);
    Sketch& textStyle(const TvString& name, const TvString& font);

    Pen model();
    /// A new block with its origin at (0,0).
    Pen newBlock(const TvString& name);
    /// A drawing that is shown as a block of that name. @param path  as it is written into the
    /// drawing.
    void externalReference(const TvString& name, const TvString& path);
    /// A new paper layout behind those that are there. The first one is what the drawing shows.
    Pen newPaper(const Paper& paper);
    /// A view of the model that has a name.
    TvDbObjectId namedView(const TvString& name, const TvGePoint2d& low, const TvGePoint2d& high,
                           const TvString& category = {});
    void describe(const TvString& title, const TvString& author, const TvString& comments);

    /// Shows the model, or the first paper.
    void showModel(bool isShown);
    /// The codec of DWG must be there (dwg::install). Throws std::runtime_error, with the numbers
    /// of status and reason.
    /// @param version  TvDb::TvDbDwgVersion; 0: the newest.
    void save(const TvString& path, int version = 0);

    TvDbObjectId layerId(const TvString& name) const;
    TvDbObjectId blockId(const TvString& name) const;
    TvDbObjectId textStyleId(const TvString& name) const;

private:
    void setMeasure();
    TvDbObjectId layoutFor(const TvString& name);
    void setPaper(TvDbObjectId layout, const Paper& paper);
    void showWhole(TvDbObjectId layout, const Paper& paper);

    class StoppedClock;
    std::unique_ptr<StoppedClock> m_clock;
    const Units m_units;
    std::unique_ptr<TvDbDatabase> m_drawing;
    bool m_hasPaper = false;
};

/// Holds @p status to be Ok; throws std::runtime_error with @p what otherwise.
void require(TvStatusCode status, const char* what);

} // namespace samples
