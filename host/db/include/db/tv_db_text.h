#pragma once

#include <db/tv_db_entity.h>
#include <ge/tv_ge_matrix3d.h>

/// A line of text. Its points are in object coordinates.
class TvDbText : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbText)

    enum TextHorzMode { kTextLeft, kTextCenter, kTextRight, kTextAlign, kTextMid, kTextFit };
    enum TextVertMode { kTextBase, kTextBottom, kTextVertMid, kTextTop };

    TvDbText() : TvDbText("TEXT") {}

    /// The left end of its baseline; where it is set by the alignment point, this follows.
    TvGePoint3d position() const;
    TvStatusCode setPosition(const TvGePoint3d& position);
    /// Where it is aligned to, unless it is left on the baseline.
    TvGePoint3d alignmentPoint() const;
    TvStatusCode setAlignmentPoint(const TvGePoint3d& point);
    /// Position and alignment point agree with text, style and alignment again.
    TvStatusCode adjustAlignment();

    virtual TvString textString() const { return TvString(fields().text("text")); }
    virtual TvStatusCode setTextString(const TvString& text) { return setText("text", text); }
    TVDB_REAL(height, setHeight, "height") ///< of capitals
    TVDB_REAL(rotation, setRotation, "rotation")
    TVDB_REAL(widthFactor, setWidthFactor, "width_factor")
    TVDB_REAL(oblique, setOblique, "oblique")
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_VECTOR(normal, setNormal, "normal")
    TVDB_ID(textStyle, setTextStyle, "style")
    TextHorzMode horizontalMode() const;
    TextVertMode verticalMode() const;
    TvStatusCode setHorizontalMode(TextHorzMode mode) { return setInteger("halign", mode); }
    TvStatusCode setVerticalMode(TextVertMode mode) { return setInteger("valign", mode); }
    bool isMirroredInX() const { return (fields().integer("generation") & 2) != 0; }
    bool isMirroredInY() const { return (fields().integer("generation") & 4) != 0; }

    /// The width of the line, measured or estimated; 0 for an empty one.
    double textWidth() const;
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbText(const char* className) : TvDbEntity(className) {}
};

/// A text that is filled in wherever its block is inserted.
class TvDbAttributeDefinition : public TvDbText
{
    TVRX_DECLARE_MEMBERS(TvDbAttributeDefinition)

    TvDbAttributeDefinition() : TvDbText("ATTDEF") {}
    TVDB_TEXT(tag, setTag, "tag")
    TVDB_TEXT(prompt, setPrompt, "prompt")
    bool isInvisible() const { return (fields().integer("flags") & 1) != 0; }
    bool isConstant() const { return (fields().integer("flags") & 2) != 0; }
    bool isVerifiable() const { return (fields().integer("flags") & 4) != 0; }
    bool isPreset() const { return (fields().integer("flags") & 8) != 0; }
    TvStatusCode setFlags(int flags) { return setInteger("flags", flags); }
    bool lockPositionInBlock() const { return fields().flag("lock_position"); }
    /// It may have several lines, as an MTEXT has.
    bool isMTextAttributeDefinition() const;
    TvString textString() const override;
    TvStatusCode setTextString(const TvString& text) override;
};

/// The text of one insertion for one of its block's definitions.
class TvDbAttribute : public TvDbText
{
    TVRX_DECLARE_MEMBERS(TvDbAttribute)

    TvDbAttribute() : TvDbText("ATTRIB") {}
    TVDB_TEXT(tag, setTag, "tag")
    bool isInvisible() const { return (fields().integer("flags") & 1) != 0; }
    bool isConstant() const { return (fields().integer("flags") & 2) != 0; }
    bool isVerifiable() const { return (fields().integer("flags") & 4) != 0; }
    bool isPreset() const { return (fields().integer("flags") & 8) != 0; }
    bool lockPositionInBlock() const { return fields().flag("lock_position"); }
    bool isMTextAttribute() const;
    /// With several lines: with the codes of MTEXT.
    TvString textString() const override;
    TvStatusCode setTextString(const TvString& text) override;

    /// Takes everything from @p definition, text included, and moves it as its block is moved.
    ///
    /// In a mirrored block it stays readable: it stands where it would, but is not mirrored.
    /// @pre a new attribute, or open for writing. @param blockTransform  of the block reference.
    TvStatusCode setAttributeFromBlock(const TvDbAttributeDefinition* definition,
                                       const TvGeMatrix3d& blockTransform);

    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// Paragraphs of text, with formats in the text.
class TvDbMText : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbMText)

    enum AttachmentPoint {
        kTopLeft = 1,
        kTopCenter,
        kTopRight,
        kMiddleLeft,
        kMiddleCenter,
        kMiddleRight,
        kBottomLeft,
        kBottomCenter,
        kBottomRight
    };

    TvDbMText() : TvDbEntity("MTEXT") {}

    /// Style and layer of the drawing that are current; height of its style.
    TvStatusCode setDatabaseDefaults(TvDbDatabase* database);
    TVDB_POINT(location, setLocation, "ins_pt")
    TVDB_VECTOR(normal, setNormal, "normal")
    TVDB_VECTOR(direction, setDirection, "x_dir")
    TVDB_REAL(textHeight, setTextHeight, "height")
    /// Where lines are broken; 0: only where the text says so.
    TVDB_REAL(width, setWidth, "rect_width")
    TVDB_REAL(lineSpacingFactor, setLineSpacingFactor, "line_factor")
    AttachmentPoint attachment() const;
    TvStatusCode setAttachment(AttachmentPoint point) { return setInteger("attachment", point); }
    TvDbObjectId textStyle() const;
    /// @param style  of the drawing that this is in, or will be put into.
    TvStatusCode setTextStyle(TvDbObjectId style);
    double rotation() const; ///< of the direction, in the plane of the normal

    /// With formats.
    TvString contents() const { return TvString(fields().text("text")); }
    TvStatusCode setContents(const TvString& contents);
    /// Without.
    TvString text() const;

    /// As they were measured when the text was set, else estimated.
    double actualWidth() const;
    double actualHeight() const;
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

private:
    struct Size {
        double width, height;
    };
    Size measured() const;

    TvDbObjectId m_style; // while it is in no drawing
};
