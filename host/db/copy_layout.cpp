#include <db/tv_db_layout.h>

#include <algorithm>

#include "clone.h"
#include "field_copy.h"
#include "layout_parts.h"
#include "quiet_edit.h"
#include "viewport_lists.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_transaction.h>

namespace db {

namespace {

/// What another layout cannot have as well: its name, its place, and what belongs to its block.
bool isOwnField(std::string_view name)
{
    static constexpr std::string_view kNames[] = {"name",        "tab_order",       "block_record",
                                                  "n_viewports", "active_viewport", "viewports"};
    return isCommonField(name) || std::ranges::find(kNames, name) != std::end(kNames);
}

struct Source {
    TvDbObjectId layout, block;
    std::vector<TvDbObjectId> entities;
    TvDbObjectId activeViewport;
};

std::unique_ptr<TvDbLayout> layoutLike(const Source& source, const TvString& name)
{
    auto made = std::make_unique<TvDbLayout>();
    const TvDbObjectPointer<TvDbLayout> from(source.layout, TvDb::kForNotify);
    if (from)
        copyFields(from->fields(), made->edit(), isOwnField);
    made->edit().setText("name", name.view());
    made->edit().setInteger("tab_order", nextTab(*source.layout.database()));
    return made;
}

TvStatusCode copyContent(const Source& source, TvDbObjectId layout, TvDbObjectId block)
{
    TvDbDatabase& database = *layout.database();
    Clone clone(database, database, block.handle().value(), database.handseed().value());
    clone.allowViewports();
    clone.standsFor(source.block.handle().value(), block.handle().value());
    clone.standsFor(source.layout.handle().value(), layout.handle().value());
    for (const TvDbObjectId id : source.entities)
        clone.add(id);
    clone.addExtensionOf(source.block);
    if (const TvStatusCode status = clone.prepare())
        return database.impl().fail(clone.failure(), status);
    TvDbIdMapping mapping;
    clone.commit(&mapping);
    listViewports(layout);
    if (QuietEdit edit(layout); edit)
        edit->setHandle("active_viewport", mapping.target(source.activeViewport).handle().value());
    return TvStatus::Ok;
}

TvStatusCode copy(const Source& source, const TvString& name, TvDbObjectId& out)
{
    TvDbDatabase& database = *source.layout.database();
    if (const TvStatusCode status = putLayout(database, layoutLike(source, name), out))
        return status;
    TvDbObjectId block;
    if (const TvDbObjectPointer<TvDbLayout> layout(out, TvDb::kForNotify); layout)
        block = layout->getBlockTableRecordId();
    return copyContent(source, out, block);
}

} // namespace

TvStatusCode copyLayout(TvDbObjectId id, const TvString& name, TvDbObjectId& out)
{
    out.setNull();
    Source source{id, {}, {}, {}};
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
        if (!layout || layout->isErased())
            return TvStatus::NotThatObject;
        if (layout->isModelLayout())
            return TvStatus::NotApplicable;
        source.block = layout->getBlockTableRecordId();
        source.activeViewport = layout->idOf(layout->fields().handle("active_viewport"));
    }
    TvDbDatabase& database = *id.database();
    if (const TvStatusCode status = checkNewLayoutName(database, name))
        return status;
    {
        const TvDbObjectPointer<TvDbBlockTableRecord> block(source.block, TvDb::kForNotify);
        if (!block)
            return TvStatus::NotThatObject;
        source.entities = block->entityIds();
    }
    TvDbTransactionManager& transactions = *database.transactionManager();
    transactions.startTransaction();
    const TvStatusCode status = copy(source, name, out);
    if (status == TvStatus::Ok) {
        transactions.endTransaction();
    } else {
        transactions.abortTransaction();
        out.setNull();
    }
    return status;
}

TvStatusCode placeLayout(TvDbObjectId id, int place)
{
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
        if (!layout || layout->isErased())
            return TvStatus::NotThatObject;
        if (layout->isModelLayout())
            return TvStatus::NotApplicable;
    }
    if (place < 1)
        return TvStatus::OutOfRange;
    std::vector<TvDbObjectId> tabs = layoutsInTabOrder(*id.database());
    std::erase(tabs, id);
    const std::size_t sheets = tabs.empty() ? 0 : tabs.size() - 1; // the model layout is the first
    const std::size_t at = 1 + std::min<std::size_t>(place - 1, sheets);
    tabs.insert(tabs.begin() + static_cast<std::ptrdiff_t>(std::min(at, tabs.size())), id);
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        const TvDbObjectPointer<TvDbLayout> layout(tabs[i], TvDb::kForNotify);
        if (!layout || layout->isModelLayout() || layout->getTabOrder() == static_cast<int>(i))
            continue;
        if (QuietEdit edit(tabs[i]); edit)
            edit->setInteger("tab_order", static_cast<std::int64_t>(i));
    }
    return TvStatus::Ok;
}

} // namespace db
