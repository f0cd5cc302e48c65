#include "db/schema.h"

#include <bit>

namespace db {

namespace {

std::size_t bucketOf(FieldId id, std::size_t mask)
{
    return static_cast<std::size_t>(id) * 0x9E37u >> 3 & mask;
}

} // namespace

void StructDef::index()
{
    // Few fields share a bucket: most questions end at the first one.
    m_buckets.assign(std::bit_ceil(fields.size() * 4 + 1), 0);
    const std::size_t mask = m_buckets.size() - 1;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        std::size_t at = bucketOf(fields[i].id, mask);
        while (m_buckets[at] != 0)
            at = (at + 1) & mask;
        m_buckets[at] = static_cast<std::uint16_t>(i + 1);
    }
}

const FieldDef* StructDef::find(FieldId id) const
{
    if (m_buckets.empty())
        return nullptr;
    const std::size_t mask = m_buckets.size() - 1;
    for (std::size_t at = bucketOf(id, mask); m_buckets[at] != 0; at = (at + 1) & mask)
        if (fields[m_buckets[at] - 1u].id == id)
            return &fields[m_buckets[at] - 1u];
    return nullptr;
}

} // namespace db
