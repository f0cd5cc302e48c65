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
    const std::size_t mask = std::bit_ceil(fields.size() * 4 + 1) - 1;
    m_buckets.assign((mask + 1) * 2, 0);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        std::size_t at = bucketOf(fields[i].id, mask);
        while (m_buckets[at * 2] != 0)
            at = (at + 1) & mask;
        m_buckets[at * 2] = static_cast<std::uint16_t>(fields[i].id);
        m_buckets[at * 2 + 1] = static_cast<std::uint16_t>(i);
    }
}

const FieldDef* StructDef::find(FieldId id) const
{
    // The buckets tell without a look at the fields, which are large. No bucket holds None.
    const std::uint16_t* const buckets = m_buckets.data();
    const std::size_t mask = m_buckets.size() / 2 - 1;
    if (!buckets || id == FieldId::None)
        return nullptr;
    for (std::size_t at = bucketOf(id, mask); buckets[at * 2] != 0; at = (at + 1) & mask)
        if (buckets[at * 2] == static_cast<std::uint16_t>(id))
            return fields.data() + buckets[at * 2 + 1];
    return nullptr;
}

} // namespace db
