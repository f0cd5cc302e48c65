#include <db/tv_db_symbol_table.h>

#include "block_names.h"
#include "quiet_edit.h"
#include "viewport_lists.h"

#include <db/tv_db_layout.h>

TVRX_DEFINE_MEMBERS(TvDbBlockTable, TvDbSymbolTable)

namespace {

/// Everything that notes where it stands: the entities of a block, and what it begins and ends
/// with.
std::vector<TvDbObjectId> membersOf(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    if (!record)
        return {};
    std::vector<TvDbObjectId> members = record->entityIds();
    for (const TvDbObjectId id : {record->blockBeginId(), record->blockEndId()})
        if (id.isValid())
            members.push_back(id);
    return members;
}

bool areChangeable(const std::vector<TvDbObjectId>& ids)
{
    for (const TvDbObjectId id : ids)
        if (!db::isChangeable(id))
            return false;
    return true;
}

void placeAll(const std::vector<TvDbObjectId>& members, TvDbObjectId block)
{
    for (const TvDbObjectId id : members)
        if (db::QuietEdit edit(id); edit)
            db::placeInBlock(*edit, block);
}

/// The name that stands in the block's BLOCK entity.
void setFullName(TvDbObjectId block, const TvString& name)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    if (!record)
        return;
    if (db::QuietEdit edit(record->blockBeginId()); edit)
        edit->setText("name", name.view());
    // New drawings keep the number in the record, too.
    if (db::QuietEdit edit(block); edit)
        edit->setText("name", db::storedBlockName(name.view()));
}

TvString nameOf(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    return record ? record->getName() : TvString();
}

/// The drawing's variables of paper space are those of the layout that is shown.
void takePaperVariables(TvDbDatabase& database, TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    const TvDbObjectPointer<TvDbLayout> layout(record ? record->getLayoutId() : TvDbObjectId(),
                                               TvDb::kForNotify);
    if (!layout)
        return;
    struct Pair {
        const char *variable, *field;
    };
    constexpr Pair kPoints[] = {{"PLIMMIN", "limmin"},          {"PLIMMAX", "limmax"},
                                {"PEXTMIN", "extmin"},          {"PEXTMAX", "extmax"},
                                {"PUCSORG", "ucs_origin"},      {"PUCSXDIR", "ucs_x"},
                                {"PINSBASE", "insertion_base"}, {"PUCSYDIR", "ucs_y"}};
    db::RecordEditor header = database.editHeader();
    for (const Pair& pair : kPoints)
        header.setPoint(pair.variable, layout->fields().point(pair.field));
    header.setReal("PELEVATION", layout->fields().real("ucs_elevation"));
    header.setInteger("PUCSORTHOVIEW", layout->fields().integer("ucs_ortho"));
    header.setHandle("PUCSNAME", layout->fields().handle("named_ucs"));
    header.setHandle("PUCSBASE", layout->fields().handle("base_ucs"));
}

} // namespace

TvDbObjectId TvDbBlockTable::modelSpaceId() const
{
    return idField("model_space");
}

TvDbObjectId TvDbBlockTable::paperSpaceId() const
{
    return idField("paper_space");
}

TvStatusCode TvDbBlockTable::setPaperSpaceId(TvDbObjectId block)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const TvDbObjectId before = paperSpaceId();
    if (block == before && before.isValid())
        return TvStatus::Ok;
    const db::ArrayView entries = fields().array("entries");
    std::uint32_t place = 0;
    while (place < entries.size() && (block.isNull() || idOf(entries.handle(place)) != block))
        ++place;
    {
        const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
        if (place == entries.size() || !record ||
            !db::isPaperSpaceName(db::storedBlockName(record->getName().view())))
            return TvStatus::InvalidInput;
    }
    const std::vector<TvDbObjectId> outgoing = membersOf(before), incoming = membersOf(block);
    if (!areChangeable(outgoing) || !areChangeable(incoming) || !edit())
        return TvStatus::NotUnderstood;
    const TvString shownName = nameOf(before), otherName = nameOf(block);
    edit().array("entries").setHandle(place, before.handle().value());
    edit().setHandle("paper_space", block.handle().value());
    database()->editHeader().setHandle("BRPSPACE", block.handle().value());
    placeAll(outgoing, before);
    placeAll(incoming, block);
    setFullName(before, otherName);
    setFullName(block, shownName.isEmpty() ? TvString(u"*Paper_Space") : shownName);
    forgetNames();
    takePaperVariables(*database(), block);
    db::matchViewportTable(*database());
    return TvStatus::Ok;
}
