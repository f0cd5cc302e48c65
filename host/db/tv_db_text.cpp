#include <db/tv_db_text.h>

#include <cmath>

#include <ge/ocs.h>

#include <db/text_measure.h>

TVRX_DEFINE_MEMBERS(TvDbText, TvDbEntity)

namespace {

// Below the baseline, of the height of capitals: as far as letters like "g" reach.
constexpr double kDescent = 1.0 / 3;

/// The point of a text that its modes align, along the line and across it, from the left end of
/// its baseline.
TvGeVector2d anchorOf(const TvDbText& text, double width)
{
    double along = 0, across = 0;
    switch (text.horizontalMode()) {
    case TvDbText::kTextCenter:
    case TvDbText::kTextMid: along = width / 2; break;
    case TvDbText::kTextRight: along = width; break;
    default: break;
    }
    switch (text.verticalMode()) {
    case TvDbText::kTextBottom: across = -text.height() * kDescent; break;
    case TvDbText::kTextVertMid: across = text.height() / 2; break;
    case TvDbText::kTextTop: across = text.height(); break;
    default: break;
    }
    if (text.horizontalMode() == TvDbText::kTextMid)
        across = text.height() / 2;
    return {along, across};
}

bool isBetweenPoints(const TvDbText& text)
{
    return text.horizontalMode() == TvDbText::kTextAlign ||
           text.horizontalMode() == TvDbText::kTextFit;
}

} // namespace

TvGePoint3d TvDbText::position() const
{
    const db::Point at = fields().point("ins_pt");
    return {at.x, at.y, fields().real("elevation")};
}

TvStatusCode TvDbText::setPosition(const TvGePoint3d& position)
{
    if (const TvStatusCode status = setPoint("ins_pt", db::fromPoint(position)))
        return status;
    return setReal("elevation", position.z);
}

TvGePoint3d TvDbText::alignmentPoint() const
{
    const db::Point at = fields().point("align_pt");
    return {at.x, at.y, fields().real("elevation")};
}

TvStatusCode TvDbText::setAlignmentPoint(const TvGePoint3d& point)
{
    if (const TvStatusCode status = setPoint("align_pt", db::fromPoint(point)))
        return status;
    return setReal("elevation", point.z);
}

TvDbText::TextHorzMode TvDbText::horizontalMode() const
{
    const std::int64_t mode = fields().integer("halign");
    return mode >= kTextLeft && mode <= kTextFit ? static_cast<TextHorzMode>(mode) : kTextLeft;
}

TvDbText::TextVertMode TvDbText::verticalMode() const
{
    const std::int64_t mode = fields().integer("valign");
    return mode >= kTextBase && mode <= kTextTop ? static_cast<TextVertMode>(mode) : kTextBase;
}

double TvDbText::textWidth() const
{
    db::TextLook look = db::lookOfStyle(textStyle(), height(), widthFactor());
    look.oblique = oblique();
    return db::textWidth(db::plainLine(textString().view()), look);
}

TvStatusCode TvDbText::adjustAlignment()
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (horizontalMode() == kTextLeft && verticalMode() == kTextBase)
        return TvStatus::Ok;
    const TvGePoint3d target = alignmentPoint();
    if (isBetweenPoints(*this)) {
        // The line runs from one point to the other, as wide as that.
        const TvGeVector3d line = target - position();
        const double width = textWidth(), length = std::hypot(line.x, line.y);
        if (width <= 0 || length <= 0)
            return TvStatus::Ok;
        setRotation(std::atan2(line.y, line.x));
        return horizontalMode() == kTextFit ? setWidthFactor(widthFactor() * length / width)
                                            : setHeight(height() * length / width);
    }
    const TvGeVector2d anchor = anchorOf(*this, textWidth());
    const double c = std::cos(rotation()), s = std::sin(rotation());
    return setPosition({target.x - (anchor.x * c - anchor.y * s),
                        target.y - (anchor.x * s + anchor.y * c), target.z});
}

TvStatusCode TvDbText::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    const double width = textWidth(), high = height();
    if (width <= 0 || high <= 0)
        return TvStatus::NotApplicable;
    const double c = std::cos(rotation()), s = std::sin(rotation()), slant = std::tan(oblique());
    const TvGeMatrix3d toWorld = ge::ocsToWcs(normal());
    const TvGePoint3d base = position();
    for (const double across : {-high * kDescent, high})
        for (const double along : {0.0, width}) {
            const double x = along + (std::abs(slant) < 10 ? slant * across : 0);
            out.addPoint(toWorld * TvGePoint3d(base.x + x * c - across * s,
                                               base.y + x * s + across * c, base.z));
        }
    return out.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}
