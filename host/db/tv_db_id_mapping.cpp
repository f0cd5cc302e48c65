#include <db/tv_db_id_mapping.h>

bool TvDbIdMapping::compute(TvDbObjectId original, TvDbObjectId& out) const
{
    const auto at = m_places.find(original);
    out = at == m_places.end() ? TvDbObjectId() : m_entries[at->second].value;
    return !out.isNull();
}

TvDbObjectId TvDbIdMapping::target(TvDbObjectId original) const
{
    TvDbObjectId found;
    compute(original, found);
    return found;
}
