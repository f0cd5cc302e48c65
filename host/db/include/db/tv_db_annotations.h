#pragma once

#include <db/tv_db_entity.h>

/// A measure. What it draws stands in a block of its own.
class TvDbDimension : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbDimension)

    TvDbObjectId dimBlockId() const;
    TVDB_ID(dimensionStyle, setDimensionStyle, "dimstyle")
    /// What is written instead of the measure; empty or "<>" is the measure itself.
    TVDB_TEXT(dimensionText, setDimensionText, "text")
    double measurement() const { return fields().real("measurement"); }
    TvGeVector3d normal() const { return db::asVector(fields().point("normal")); }
    /// The box of what its block draws.
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbDimension(const char* className) : TvDbEntity(className) {}
};

#define TVDB_DIMENSION(Class, dxfName)                                                             \
    class Class : public TvDbDimension                                                             \
    {                                                                                              \
        TVRX_DECLARE_MEMBERS(Class)                                                                \
        Class() : TvDbDimension(dxfName) {}                                                        \
    };

TVDB_DIMENSION(TvDbRotatedDimension, "DIMENSION_LINEAR")
TVDB_DIMENSION(TvDbAlignedDimension, "DIMENSION_ALIGNED")
TVDB_DIMENSION(TvDb3PointAngularDimension, "DIMENSION_ANG3PT")
TVDB_DIMENSION(TvDb2LineAngularDimension, "DIMENSION_ANG2LN")
TVDB_DIMENSION(TvDbRadialDimension, "DIMENSION_RADIUS")
TVDB_DIMENSION(TvDbDiametricDimension, "DIMENSION_DIAMETER")
TVDB_DIMENSION(TvDbOrdinateDimension, "DIMENSION_ORDINATE")
TVDB_DIMENSION(TvDbArcDimension, "ARC_DIMENSION")
TVDB_DIMENSION(TvDbRadialDimensionLarge, "LARGE_RADIAL_DIMENSION")

/// An arrow with what it points from.
class TvDbLeader : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbLeader)

    TvDbLeader() : TvDbEntity("LEADER") {}
    std::vector<TvGePoint3d> vertices() const; ///< the arrow's tip first
    bool isSplined() const { return fields().integer("path_type") == 1; }
    bool hasArrowHead() const { return fields().flag("arrow_on"); }
    TVDB_ID(annotationObjId, setAnnotationObjId, "annotation")
    TVDB_ID(dimensionStyle, setDimensionStyle, "dimstyle")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// Text or a block with any number of leader lines.
class TvDbMLeader : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbMLeader)

    TvDbMLeader() : TvDbEntity("MULTILEADER") {}
    /// Each from its arrow's tip to where the text or block begins.
    std::vector<std::vector<TvGePoint3d>> leaderLines() const;
    bool hasText() const { return context().flag("has_text"); }
    TvString contents() const { return TvString(context().text("text")); } ///< as MTEXT
    TvGePoint3d textLocation() const { return db::asPoint(context().point("location")); }
    double textHeight() const { return context().real("text_height"); }
    TvDbObjectId blockContentId() const;
    TvGePoint3d blockPosition() const { return db::asPoint(context().point("b_location")); }
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

private:
    db::RecordView context() const { return fields().structure("ctx"); }
};

/// A frame with geometric tolerances.
class TvDbFcf : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbFcf)

    TvDbFcf() : TvDbEntity("TOLERANCE") {}
    TVDB_TEXT(text, setText, "text")
    TVDB_POINT(location, setLocation, "ins_pt")
    TVDB_VECTOR(direction, setDirection, "x_dir")
    TVDB_VECTOR(normal, setNormal, "normal")
    TVDB_ID(dimensionStyle, setDimensionStyle, "dimstyle")
};

/// A filled area. Its loops are in object coordinates, at its elevation.
class TvDbHatch : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbHatch)

    TvDbHatch() : TvDbEntity("HATCH") {}
    TvString patternName() const { return TvString(fields().text("pattern")); }
    bool isSolidFill() const { return fields().flag("solid"); }
    bool isGradient() const { return fields().flag("is_gradient"); }
    bool associative() const { return fields().flag("associative"); }
    double patternScale() const { return fields().real("scale"); }
    double patternAngle() const { return fields().real("angle"); }
    TVDB_REAL(elevation, setElevation, "elevation")
    TVDB_VECTOR(normal, setNormal, "normal")
    int numLoops() const { return static_cast<int>(fields().array("paths").size()); }
    /// The box of its loops; splines by their control points.
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// A picture from a file, or an area that hides what is behind it.
class TvDbRasterImage : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbRasterImage)

    TvDbRasterImage() : TvDbRasterImage("IMAGE") {}
    TVDB_ID(imageDefId, setImageDefId, "imagedef")
    TVDB_POINT(origin, setOrigin, "origin") ///< its lower left corner
    /// Along its lower and left edge, over its whole size.
    TvGeVector3d width() const;
    TvGeVector3d height() const;
    bool isClipped() const { return fields().flag("clipping"); }
    /// The corners of what is shown.
    std::vector<TvGePoint3d> boundary() const;
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbRasterImage(const char* className) : TvDbEntity(className) {}
};

class TvDbWipeout : public TvDbRasterImage
{
    TVRX_DECLARE_MEMBERS(TvDbWipeout)
    TvDbWipeout() : TvDbRasterImage("WIPEOUT") {}
};

/// The file of pictures.
class TvDbRasterImageDef : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbRasterImageDef)

    TvDbRasterImageDef() : TvDbObject("IMAGEDEF") {}
    TvString sourceFileName() const { return TvString(fields().text("path")); }
    TvStatusCode setSourceFileName(const TvString& path);
};

/// A page of another document under the drawing.
class TvDbUnderlayReference : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbUnderlayReference)

    TvDbUnderlayReference() : TvDbUnderlayReference("PDFUNDERLAY") {}
    TVDB_ID(definitionId, setDefinitionId, "definition")
    TVDB_POINT(position, setPosition, "ins_pt")
    TVDB_REAL(rotation, setRotation, "angle")

protected:
    explicit TvDbUnderlayReference(const char* className) : TvDbEntity(className) {}
};

/// The document and page of underlays.
class TvDbUnderlayDefinition : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbUnderlayDefinition)

    TvDbUnderlayDefinition() : TvDbObject("PDFDEFINITION") {}
    TvString sourceFileName() const { return TvString(fields().text("path")); }
    TvString itemName() const { return TvString(fields().text("item")); }
    TvStatusCode setSourceFileName(const TvString& path);
};
