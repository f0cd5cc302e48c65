#pragma once

#include <db/tv_db_entity.h>
#include <ge/tv_ge_matrix3d.h>

class TvDbAttribute;

/// Walks over the attributes of a block reference, in order, over those that are not erased.
class TvDbObjectIterator
{
public:
    void start() { m_at = 0; }
    bool done() const { return m_at >= m_ids.size(); }
    void step() { ++m_at; }
    TvDbObjectId objectId() const { return done() ? TvDbObjectId() : m_ids[m_at]; }

private:
    friend class TvDbBlockReference;
    std::vector<TvDbObjectId> m_ids;
    std::size_t m_at = 0;
};

/// A block, shown at a place: moved, scaled and turned.
class TvDbBlockReference : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbBlockReference)

    TvDbBlockReference() : TvDbEntity("INSERT") {}
    TvDbBlockReference(const TvGePoint3d& position, TvDbObjectId block);

    /// In world coordinates.
    TvGePoint3d position() const;
    TvStatusCode setPosition(const TvGePoint3d& position);
    TvGeScale3d scaleFactors() const;
    /// InvalidInput when one of the factors is 0.
    TvStatusCode setScaleFactors(const TvGeScale3d& factors);
    TVDB_REAL(rotation, setRotation, "rotation") ///< about the normal
    /// Where it stands, in object coordinates, stays.
    TVDB_VECTOR(normal, setNormal, "normal")

    TvDbObjectId blockTableRecord() const;
    /// InvalidInput for what is no block of the drawing.
    TvStatusCode setBlockTableRecord(TvDbObjectId block);
    /// Where the entities of the block go, its base point taken off.
    TvGeMatrix3d blockTransform() const;

    /// Its attributes that are not erased, in order.
    std::vector<TvDbObjectId> attributeIds() const;
    /// The caller's.
    TvDbObjectIterator* attributeIterator() const;
    /// Puts a new attribute to it, at the end; it is open for writing.
    /// @pre open for writing, in a database. @param attribute  stays the caller's when this fails.
    TvStatusCode appendAttribute(TvDbObjectId& out, TvDbAttribute* attribute);
    TvStatusCode appendAttribute(TvDbAttribute* attribute);

    /// Those of its block's entities, boxed before they are turned; and of its attributes.
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbBlockReference(const char* className) : TvDbEntity(className) {}

private:
    TvStatusCode addSequenceEnd();
};

/// The same in columns and rows.
class TvDbMInsertBlock : public TvDbBlockReference
{
    TVRX_DECLARE_MEMBERS(TvDbMInsertBlock)

    TvDbMInsertBlock() : TvDbBlockReference("MINSERT") {}
    TVDB_INTEGER(columns, setColumns, "cols")
    TVDB_INTEGER(rows, setRows, "rows")
    TVDB_REAL(columnSpacing, setColumnSpacing, "col_spacing")
    TVDB_REAL(rowSpacing, setRowSpacing, "row_spacing")
    /// Where the entities of the block go for one place of the array.
    TvGeMatrix3d blockTransformAt(int column, int row) const;
};
