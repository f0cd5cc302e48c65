#pragma once

#include <optional>

#include <db/resbuf.h>
#include <db/tv_db_entity.h>

namespace gs {

/// A dimension style as one entity uses it: what the entity says in its extended data counts first.
class DimensionStyle
{
public:
    DimensionStyle(const TvDbEntity& entity, TvDbObjectId style);

    /// A variable by its name among the style's fields and its group code.
    double real(const char* field, int code) const;
    std::int64_t integer(const char* field, int code) const;
    TvDbObjectId object(const char* field, int code) const;
    /// A colour; the style's own is a structure.
    db::RecordView colorOfStyle(const char* field) const;
    std::optional<std::int64_t> ownInteger(int code) const;
    db::Version version() const;

private:
    const resbuf* own(int code) const;

    const TvDbEntity& m_entity;
    TvDbObjectPointer<TvDbObject> m_style;
    TvResbufPtr m_own;
};

} // namespace gs
