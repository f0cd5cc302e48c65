#pragma once

#include <db/ge_values.h>
#include <db/tv_db_database.h>
#include <ge/tv_db_extents.h>

/// An object that is drawn.
///
/// Angles are radians. Points are in world coordinates, but where a class says that they are in
/// object coordinates: those of its normal (ge/ocs.h).
class TvDbEntity : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbEntity)

    /// The block that it stands in.
    TvDbObjectId blockId() const { return ownerId(); }
    TvDbObjectId layerId() const;
    TvString layer() const;
    /// InvalidInput for what is no layer of this drawing.
    TvStatusCode setLayer(TvDbObjectId layer);
    bool isVisible() const;
    TvStatusCode setVisibility(bool visible);
    /// What it says: perhaps ByLayer or ByBlock.
    TvDbObjectId linetypeId() const;
    double linetypeScale() const;

    /// The box around what it draws, in the coordinates of its block.
    /// @return NotApplicable when it draws nothing, or nobody knows what.
    virtual TvStatusCode getGeomExtents(TvDbExtents& out) const;

protected:
    explicit TvDbEntity(const char* className) : TvDbObject(className) {}
    TvDbEntity() = default;

    // For accessors: NotOpenForWrite; NotUnderstood for what cannot be changed, InvalidInput for
    // what is no number.
    TvStatusCode setInteger(db::FieldKey key, std::int64_t value);
    TvStatusCode setReal(db::FieldKey key, double value);
    TvStatusCode setPoint(db::FieldKey key, const db::Point& value);
    TvStatusCode setText(db::FieldKey key, const TvString& value);
};

// Accessors of fields, by name of the getter, name of the setter, name of the field.
#define TVDB_REAL(getter, setter, field)                                                           \
    double getter() const                                                                          \
    {                                                                                              \
        return fields().real(field);                                                               \
    }                                                                                              \
    TvStatusCode setter(double value)                                                              \
    {                                                                                              \
        return TvDbEntity::setReal(field, value);                                                  \
    }
#define TVDB_INTEGER(getter, setter, field)                                                        \
    int getter() const                                                                             \
    {                                                                                              \
        return static_cast<int>(fields().integer(field));                                          \
    }                                                                                              \
    TvStatusCode setter(int value)                                                                 \
    {                                                                                              \
        return TvDbEntity::setInteger(field, value);                                               \
    }
#define TVDB_POINT(getter, setter, field)                                                          \
    TvGePoint3d getter() const                                                                     \
    {                                                                                              \
        return db::asPoint(fields().point(field));                                                 \
    }                                                                                              \
    TvStatusCode setter(const TvGePoint3d& value)                                                  \
    {                                                                                              \
        return TvDbEntity::setPoint(field, db::fromPoint(value));                                  \
    }
#define TVDB_POINT2D(getter, setter, field)                                                        \
    TvGePoint2d getter() const                                                                     \
    {                                                                                              \
        return db::asPoint2d(fields().point(field));                                               \
    }                                                                                              \
    TvStatusCode setter(const TvGePoint2d& value)                                                  \
    {                                                                                              \
        return TvDbEntity::setPoint(field, db::fromPoint(value));                                  \
    }
#define TVDB_VECTOR(getter, setter, field)                                                         \
    TvGeVector3d getter() const                                                                    \
    {                                                                                              \
        return db::asVector(fields().point(field));                                                \
    }                                                                                              \
    TvStatusCode setter(const TvGeVector3d& value)                                                 \
    {                                                                                              \
        return TvDbEntity::setPoint(field, db::fromVector(value));                                 \
    }
#define TVDB_TEXT(getter, setter, field)                                                           \
    TvString getter() const                                                                        \
    {                                                                                              \
        return TvString(fields().text(field));                                                     \
    }                                                                                              \
    TvStatusCode setter(const TvString& value)                                                     \
    {                                                                                              \
        return TvDbEntity::setText(field, value);                                                  \
    }
#define TVDB_ID(getter, setter, field)                                                             \
    TvDbObjectId getter() const                                                                    \
    {                                                                                              \
        return idField(field);                                                                     \
    }                                                                                              \
    TvStatusCode setter(TvDbObjectId value)                                                        \
    {                                                                                              \
        return setIdField(field, value);                                                           \
    }
