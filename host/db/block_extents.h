#pragma once

#include <unordered_map>

#include <db/tv_db_entity.h>
#include <ge/tv_ge_matrix3d.h>

class TvDbBlockReference;

namespace db {

/// The boxes of blocks, each worked out once however often it is inserted. Blocks that insert
/// themselves end there.
class BlockExtents
{
public:
    /// In the block's coordinates; empty when it draws nothing.
    const TvDbExtents& of(TvDbObjectId block);
    TvDbExtents of(const TvDbBlockReference& reference);

private:
    static constexpr int kDeepest = 100; // insertions within each other

    std::unordered_map<TvDbObjectId, TvDbExtents> m_known;
    int m_depth = 0;
};

} // namespace db
