#include <cmath>
#include <numbers>
#include <stdexcept>

#include <db/tv_db_annotations.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "sample_maker/sketch.h"

namespace samples {

namespace {

double radians(double degrees)
{
    return degrees * std::numbers::pi / 180;
}

TvGePoint3d flat(const TvGePoint2d& point)
{
    return {point.x, point.y, 0};
}

void setAlign(TvDbText& text, Align align)
{
    switch (align) {
    case Align::Left: break;
    case Align::Center: text.setHorizontalMode(TvDbText::kTextCenter); break;
    case Align::Right: text.setHorizontalMode(TvDbText::kTextRight); break;
    case Align::Middle:
        text.setHorizontalMode(TvDbText::kTextCenter);
        text.setVerticalMode(TvDbText::kTextVertMid);
        break;
    }
}

void setLoop(db::RecordEditor hatch, const Points& loop)
{
    constexpr std::int64_t kExternal = 1, kPolyline = 2;
    db::ArrayEditor paths = hatch.array("paths");
    db::RecordEditor path = paths[paths.add()];
    path.setInteger("flags", kExternal | kPolyline);
    path.setFlag("closed", true);
    db::ArrayEditor points = path.array("pts");
    for (const TvGePoint2d& point : loop)
        points[points.add()].setPoint("pt", {point.x, point.y});
}

} // namespace

Pen& Pen::on(const TvString& layer)
{
    m_sketch->layerId(layer); // throws where there is none
    m_layer = layer;
    return *this;
}

Pen& Pen::style(const TvString& textStyle)
{
    m_sketch->textStyleId(textStyle);
    m_style = textStyle;
    return *this;
}

TvDbObjectId Pen::add(TvDbEntity* entity)
{
    std::unique_ptr<TvDbEntity> owned(entity);
    const TvDbObjectPointer<TvDbBlockTableRecord> block(m_block, TvDb::kForWrite);
    if (!block)
        throw std::runtime_error("the block is open elsewhere");
    TvDbObjectId id;
    require(block->appendTvDbEntity(id, entity), "entity");
    owned.release();
    require(entity->setLayer(m_sketch->layerId(m_layer)), "layer");
    return id;
}

Pen& Pen::line(const TvGePoint2d& from, const TvGePoint2d& to)
{
    auto* line = new TvDbLine(flat(from), flat(to));
    add(line);
    line->close();
    return *this;
}

Pen& Pen::polyline(const Points& points, bool isClosed, double width)
{
    auto* polyline = new TvDbPolyline;
    add(polyline);
    for (const TvGePoint2d& point : points)
        require(polyline->addVertexAt(polyline->numVerts(), point), "corner");
    if (width > 0)
        polyline->setConstantWidth(width);
    polyline->setClosed(isClosed);
    polyline->close();
    return *this;
}

Pen& Pen::rectangle(const TvGePoint2d& low, const TvGePoint2d& high, double width)
{
    return polyline({low, {high.x, low.y}, high, {low.x, high.y}}, true, width);
}

Pen& Pen::circle(const TvGePoint2d& center, double radius)
{
    auto* circle = new TvDbCircle;
    add(circle);
    circle->setCenter(flat(center));
    circle->setRadius(radius);
    circle->close();
    return *this;
}

Pen& Pen::arc(const TvGePoint2d& center, double radius, double fromDegrees, double toDegrees)
{
    auto* arc = new TvDbArc;
    add(arc);
    arc->setCenter(flat(center));
    arc->setRadius(radius);
    arc->setStartAngle(radians(fromDegrees));
    arc->setEndAngle(radians(toDegrees));
    arc->close();
    return *this;
}

void Pen::addText(std::unique_ptr<TvDbText> text, const TvGePoint2d& at, double height,
                  const TvString& words, Align align, double rotationDegrees)
{
    TvDbText* added = text.release();
    add(added);
    added->setTextStyle(m_sketch->textStyleId(m_style));
    added->setHeight(height);
    added->setTextString(words);
    if (rotationDegrees != 0)
        added->setRotation(radians(rotationDegrees));
    setAlign(*added, align);
    added->setPosition(flat(at));
    if (align != Align::Left) {
        added->setAlignmentPoint(flat(at));
        require(added->adjustAlignment(), "alignment");
    }
    added->close();
}

Pen& Pen::text(const TvGePoint2d& at, double height, const TvString& text, Align align,
               double rotationDegrees)
{
    addText(std::make_unique<TvDbText>(), at, height, text, align, rotationDegrees);
    return *this;
}

Pen& Pen::attribute(const TvString& tag, const TvString& prompt, const TvString& text,
                    const TvGePoint2d& at, double height, Align align)
{
    auto definition = std::make_unique<TvDbAttributeDefinition>();
    definition->setTag(tag);
    definition->setPrompt(prompt);
    addText(std::move(definition), at, height, text, align, 0);
    return *this;
}

Pen& Pen::paragraph(const TvGePoint2d& topLeft, double width, double height, const TvString& text)
{
    auto* words = new TvDbMText;
    add(words);
    require(words->setTextStyle(m_sketch->textStyleId(m_style)), "text style");
    words->setLocation(flat(topLeft));
    words->setTextHeight(height);
    words->setWidth(width);
    require(words->setContents(text), "text");
    words->close();
    return *this;
}

Pen& Pen::fill(const Points& loop)
{
    auto* hatch = new TvDbHatch;
    add(hatch);
    db::RecordEditor fields = hatch->edit();
    fields.setText("pattern", u"SOLID");
    fields.setFlag("solid", true);
    fields.setInteger("pattern_type", 1);
    setLoop(fields, loop);
    hatch->close();
    return *this;
}

Pen& Pen::hatch(const Points& loop, double degrees, double spacing)
{
    auto* hatch = new TvDbHatch;
    add(hatch);
    db::RecordEditor fields = hatch->edit();
    fields.setText("pattern", u"_USER");
    fields.setFlag("solid", false);
    fields.setInteger("pattern_type", 0);
    fields.setReal("angle", radians(degrees));
    fields.setReal("scale", spacing);
    db::ArrayEditor lines = fields.array("lines");
    db::RecordEditor line = lines[lines.add()];
    line.setReal("l_angle", radians(degrees));
    line.setPoint("l_base", {});
    line.setPoint("l_offset",
                  {-std::sin(radians(degrees)) * spacing, std::cos(radians(degrees)) * spacing});
    setLoop(fields, loop);
    hatch->close();
    return *this;
}

TvDbObjectId Pen::insert(const TvString& block, const TvGePoint2d& at, const Attributes& texts,
                         double scale, double rotationDegrees)
{
    const TvDbObjectId source = m_sketch->blockId(block);
    auto* reference = new TvDbBlockReference(flat(at), source);
    const TvDbObjectId id = add(reference);
    require(reference->setScaleFactors(TvGeScale3d(scale)), "scale");
    reference->setRotation(radians(rotationDegrees));
    const TvDbObjectPointer<TvDbBlockTableRecord> record(source);
    for (const TvDbObjectId entity : record->entityIds()) {
        const TvDbObjectPointer<TvDbAttributeDefinition> definition(entity);
        if (!definition || definition->isConstant())
            continue;
        auto attribute = std::make_unique<TvDbAttribute>();
        TvDbObjectId attributeId;
        require(reference->appendAttribute(attributeId, attribute.get()), "attribute");
        TvDbAttribute* added = attribute.release();
        require(added->setAttributeFromBlock(definition.object(), reference->blockTransform()),
                "attribute of its block");
        added->setLayer(definition->layerId());
        if (const auto given = texts.find(definition->tag()); given != texts.end()) {
            require(added->setTextString(given->second), "text of an attribute");
            added->adjustAlignment();
        }
        added->close();
    }
    reference->close();
    return id;
}

TvDbObjectId Pen::viewport(const TvGePoint2d& low, const TvGePoint2d& high,
                           const TvGePoint2d& viewCenter, double scale)
{
    auto* window = new TvDbViewport;
    const TvDbObjectId id = add(window);
    window->setCenterPoint({(low.x + high.x) / 2, (low.y + high.y) / 2, 0});
    window->setWidth(high.x - low.x);
    window->setHeight(high.y - low.y);
    window->setViewHeight((high.y - low.y) / scale);
    window->setViewCenter(viewCenter);
    require(window->setOn(true), "viewport on");
    require(window->setLocked(true), "viewport locked");
    window->close();
    return id;
}

} // namespace samples
