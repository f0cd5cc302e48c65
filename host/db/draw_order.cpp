#include <algorithm>
#include <unordered_map>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

std::vector<TvDbObjectId> TvDbBlockTableRecord::entityIdsInDrawOrder() const
{
    std::vector<TvDbObjectId> ids = entityIds();
    const TvDbObjectPointer<TvDbDictionary> dictionary(extensionDictionary(), TvDb::kForNotify);
    TvDbObjectId tableId;
    if (!dictionary || dictionary->getAt(TvString(u"ACAD_SORTENTS"), tableId) != TvStatus::Ok)
        return ids;
    const TvDbObjectPointer<TvDbObject> table(tableId, TvDb::kForNotify);
    if (!table)
        return ids;
    // Entities are drawn by handle; some at the place of another handle than their own.
    std::unordered_map<std::uint64_t, std::uint64_t> places;
    const db::ArrayView entities = table->fields().array("entities"),
                        handles = table->fields().array("sort_handles");
    for (std::uint32_t i = 0; i < std::min(entities.size(), handles.size()); ++i)
        places.emplace(entities.handle(i), handles.handle(i));
    const auto placeOf = [&](TvDbObjectId id) {
        const std::uint64_t handle = id.handle().value();
        const auto at = places.find(handle);
        return at == places.end() ? handle : at->second;
    };
    std::stable_sort(ids.begin(), ids.end(),
                     [&](TvDbObjectId a, TvDbObjectId b) { return placeOf(a) < placeOf(b); });
    return ids;
}
