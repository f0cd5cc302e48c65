#pragma once

#include <db/tv_db_database.h>

/// An object that is drawn.
class TvDbEntity : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbEntity)

    /// The block that it stands in.
    TvDbObjectId blockId() const { return ownerId(); }
    TvDbObjectId layerId() const;
    TvString layer() const;
    TvStatusCode setLayer(TvDbObjectId layer);
    bool isVisible() const;
    TvStatusCode setVisibility(bool visible);
    TvDbObjectId linetypeId() const;
    double linetypeScale() const;

protected:
    explicit TvDbEntity(const char* className) : TvDbObject(className) {}
    TvDbEntity() = default;
};
