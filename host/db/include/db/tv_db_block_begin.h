#pragma once

#include <db/tv_db_entity.h>

/// What every block begins with: it has the block's name, number included.
class TvDbBlockBegin : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbBlockBegin)
    TvDbBlockBegin() : TvDbEntity("BLOCK") {}
    TvString name() const { return TvString(fields().text("name")); }
};

/// What every block ends with.
class TvDbBlockEnd : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbBlockEnd)
    TvDbBlockEnd() : TvDbEntity("ENDBLK") {}
};

/// What the attributes of an insert, and the vertices of a polyline, end with.
class TvDbSequenceEnd : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbSequenceEnd)
    TvDbSequenceEnd() : TvDbEntity("SEQEND") {}
};
