#include <db/tv_db_text.h>

#include <cmath>

#include <ge/ocs.h>

#include "field_copy.h"

TVRX_DEFINE_MEMBERS(TvDbAttributeDefinition, TvDbText)
TVRX_DEFINE_MEMBERS(TvDbAttribute, TvDbText)

namespace {

// "att_type"
enum : int { kSingleLine = 1, kMultiLine = 2 };

bool hasSeveralLines(const TvDbText& text)
{
    return text.fields().integer("att_type") > kSingleLine;
}

TvString stringOf(const TvDbText& text)
{
    return TvString(hasSeveralLines(text) ? text.fields().structure("emb").text("text")
                                          : text.fields().text("text"));
}

/// Of several lines the first one is kept as if it were the only one, too.
bool setString(db::RecordEditor fields, bool hasLines, std::u16string_view text)
{
    if (!hasLines)
        return fields.setText("text", text);
    db::RecordEditor lines = fields.structure("emb");
    lines.setReal("ext_width", 0);
    lines.setReal("ext_height", 0);
    lines.setReal("ext_width2", 0);
    lines.setReal("ext_height2", 0);
    return lines.setText("text", text) && fields.setText("text", {});
}

/// How a flat text lies after a move of space.
struct Placement {
    TvGeMatrix3d toWorld, fromWorld; ///< of the axes before, and after
    TvGeVector3d normal;
    double rotation, heightFactor, widthFactor;
};

Placement moved(const TvDbText& text, const TvGeMatrix3d& map)
{
    Placement out;
    out.toWorld = ge::ocsToWcs(text.normal());
    const double c = std::cos(text.rotation()), s = std::sin(text.rotation());
    const TvGeVector3d along = map * (out.toWorld * TvGeVector3d(c, s, 0));
    const TvGeVector3d across = map * (out.toWorld * TvGeVector3d(-s, c, 0));
    TvGeVector3d normal = along.crossProduct(across);
    const double area = normal.length();
    normal = area > 0 ? normal.normal() : text.normal();
    // Mirrored letters could not be read: the text is seen from its other side then.
    if (map.determinant() < 0)
        normal = -normal;
    out.normal = normal;
    out.fromWorld = ge::wcsToOcs(normal);
    const TvGeVector3d flat = out.fromWorld * along;
    out.rotation = std::atan2(flat.y, flat.x);
    const double length = along.length();
    out.heightFactor = length > 0 && area > 0 ? area / length : 1;
    out.widthFactor = length > 0 ? length / out.heightFactor : 1;
    return out;
}

void moveText(TvDbText& text, const TvGeMatrix3d& map)
{
    const Placement placement = moved(text, map);
    const auto point = [&](const TvGePoint3d& from) {
        return placement.fromWorld * (map * (placement.toWorld * from));
    };
    const TvGePoint3d position = point(text.position());
    const TvGePoint3d alignment = point(text.alignmentPoint());
    const bool isAligned =
        text.horizontalMode() != TvDbText::kTextLeft || text.verticalMode() != TvDbText::kTextBase;
    text.setPosition(position);
    text.setAlignmentPoint(isAligned ? alignment : position);
    text.setNormal(placement.normal);
    text.setRotation(placement.rotation);
    text.setHeight(text.height() * placement.heightFactor);
    text.setWidthFactor(text.widthFactor() * placement.widthFactor);
}

void moveLines(db::RecordEditor lines, const TvGeMatrix3d& map, double factor)
{
    const db::Point at = db::fromPoint(map * db::asPoint(lines.point("ins_pt")));
    const db::Point direction = db::fromVector((map * db::asVector(lines.point("x_dir"))).normal());
    lines.setPoint("ins_pt", at);
    lines.setPoint("ins_pt2", at);
    lines.setPoint("x_dir", direction);
    lines.setPoint("x_dir2", direction);
    lines.setPoint("normal", db::fromVector((map * db::asVector(lines.point("normal"))).normal()));
    for (const char* field : {"height", "rect_width", "rect_height", "ext_width", "ext_height",
                              "rect_width2", "rect_height2", "ext_width2", "ext_height2"})
        lines.setReal(field, lines.real(field) * factor);
}

} // namespace

bool TvDbAttributeDefinition::isMTextAttributeDefinition() const
{
    return hasSeveralLines(*this);
}

TvString TvDbAttributeDefinition::textString() const
{
    return stringOf(*this);
}

TvStatusCode TvDbAttributeDefinition::setTextString(const TvString& text)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return setString(edit(), hasSeveralLines(*this), text.view()) ? TvStatus::Ok
                                                                  : TvStatus::NotUnderstood;
}

bool TvDbAttribute::isMTextAttribute() const
{
    return hasSeveralLines(*this);
}

TvString TvDbAttribute::textString() const
{
    return stringOf(*this);
}

TvStatusCode TvDbAttribute::setTextString(const TvString& text)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return setString(edit(), hasSeveralLines(*this), text.view()) ? TvStatus::Ok
                                                                  : TvStatus::NotUnderstood;
}

TvStatusCode TvDbAttribute::setAttributeFromBlock(const TvDbAttributeDefinition* definition,
                                                  const TvGeMatrix3d& blockTransform)
{
    if (!definition)
        return TvStatus::InvalidInput;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor to = edit();
    if (!to)
        return TvStatus::NotUnderstood;
    db::copyFields(definition->fields(), to, db::isCommonField);
    if (hasSeveralLines(*this)) {
        to.setInteger("att_type", kMultiLine);
        moveLines(to.structure("emb"), blockTransform, moved(*this, blockTransform).heightFactor);
    }
    moveText(*this, blockTransform);
    return TvStatus::Ok;
}

TvStatusCode TvDbAttribute::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    return isInvisible() ? TvStatus::NotApplicable : TvDbText::getGeomExtents(out);
}
