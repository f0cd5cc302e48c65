#include "viewport_lists.h"

#include <algorithm>

#include "database_impl.h"
#include "new_object.h"
#include "quiet_edit.h"

#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

namespace db {

namespace {

bool hasViewportList(const TvDbDatabase& database)
{
    return database.impl().version() != Version::Ac1015;
}

TvDbObjectId layoutOf(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    return record ? record->getLayoutId() : TvDbObjectId();
}

/// The viewport that a record of the table stands for; 0 for the table's first record, which stands
/// for none.
std::uint64_t viewportOf(TvDbObjectId header)
{
    const TvDbObjectPointer<TvDbObject> record(header, TvDb::kForNotify);
    return record ? record->fields().handle("viewport") : 0;
}

/// A new record of the table for @p viewport.
std::uint64_t addHeader(TvDbDatabase& database, TvDbObjectId table, TvDbObjectId viewport)
{
    std::unique_ptr<TvDbObject> header = newObject(*classNamed("VPENT_HDR"));
    RecordEditor fields = header->edit();
    fields.setFlag("xref_ref", true);
    fields.setFlag("is_on", true);
    fields.setHandle("viewport", viewport.handle().value());
    TvDbObjectId id;
    if (database.addTvDbObject(id, header.get(), table) != TvStatus::Ok)
        return 0;
    header.release()->close();
    return id.handle().value();
}

} // namespace

bool isViewport(TvDbObjectId id)
{
    const TvRxClass* type = id.objectClass();
    return type && type->isDerivedFrom(TvDbViewport::desc());
}

std::vector<TvDbObjectId> viewportsOf(TvDbObjectId block)
{
    std::vector<TvDbObjectId> viewports;
    if (const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify); record)
        for (const TvDbObjectId id : record->entityIds())
            if (isViewport(id))
                viewports.push_back(id);
    return viewports;
}

void listViewports(TvDbObjectId layout)
{
    const TvDbObjectPointer<TvDbLayout> object(layout, TvDb::kForNotify);
    if (!object || !hasViewportList(*object->database()))
        return;
    const std::vector<TvDbObjectId> viewports = viewportsOf(object->getBlockTableRecordId());
    QuietEdit edit(layout);
    if (!edit)
        return;
    ArrayEditor list = edit->array("viewports");
    list.resize(static_cast<std::uint32_t>(viewports.size()));
    for (std::uint32_t i = 0; i < viewports.size(); ++i)
        list.setHandle(i, viewports[i].handle().value());
}

void listNewViewport(TvDbObjectId block, TvDbObjectId viewport)
{
    TvDbDatabase& database = *block.database();
    const TvDbObjectId layout = layoutOf(block);
    const TvDbObjectPointer<TvDbLayout> object(layout, TvDb::kForNotify);
    if (object) {
        // Layouts that were not shown last often have no list, though they have viewports.
        if (hasViewportList(database) && object->fields().array("viewports").isEmpty()) {
            listViewports(layout);
        } else if (QuietEdit edit(layout); edit && hasViewportList(database)) {
            ArrayEditor list = edit->array("viewports");
            list.setHandle(list.add(), viewport.handle().value());
        }
        if (!object->idOf(object->fields().handle("active_viewport")).isValid())
            if (QuietEdit edit(layout); edit)
                edit->setHandle("active_viewport", viewport.handle().value());
    }
    if (block == database.paperSpaceId())
        matchViewportTable(database);
}

void matchViewportTable(TvDbDatabase& database)
{
    if (hasViewportList(database))
        return;
    const TvDbObjectId table = database.find(database.headerRecord().handle("VXCTL"));
    QuietEdit control(table);
    if (!control)
        return;
    const std::vector<TvDbObjectId> viewports = viewportsOf(database.paperSpaceId());
    std::map<std::uint64_t, std::uint64_t> known; // headers by viewport
    ArrayEditor entries = control->array("entries");
    for (std::uint32_t i = entries.size(); i-- > 0;) {
        const TvDbObjectId header = database.find(entries.handle(i));
        const std::uint64_t viewport = viewportOf(header);
        const bool isWanted =
            viewport == 0 || std::find(viewports.begin(), viewports.end(),
                                       database.find(viewport)) != viewports.end();
        if (viewport != 0 && isWanted && known.emplace(viewport, header.handle().value()).second)
            continue;
        if (viewport == 0)
            continue;
        entries.erase(i);
        if (QuietEdit old(database.find(viewport)); old)
            old->setHandle("vp_ent_hdr", 0);
        if (TvDbObjectPointer<TvDbObject> erased(header, TvDb::kForWrite); erased)
            erased->erase();
    }
    std::uint64_t next = 0; // each record names the one that follows it
    for (std::size_t i = viewports.size(); i-- > 0;) {
        const std::uint64_t viewport = viewports[i].handle().value();
        std::uint64_t header = known.count(viewport) ? known[viewport] : 0;
        if (header == 0 && (header = addHeader(database, table, viewports[i])) != 0)
            entries.setHandle(entries.add(), header);
        if (QuietEdit edit(viewports[i]); edit)
            edit->setHandle("vp_ent_hdr", header);
        if (QuietEdit edit(database.find(header)); edit)
            edit->setHandle("previous", next);
        next = header;
    }
    if (database.headerRecord().handle("VPENTHDR") != next)
        database.editHeader().setHandle("VPENTHDR", next);
}

} // namespace db
