#include "block_names.h"

#include <algorithm>

#include "quiet_edit.h"

namespace db {

namespace {

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

} // namespace

bool isNumberedBlockName(std::u16string_view name)
{
    return !name.empty() && name.front() == u'*';
}

bool isNumberedFrom(std::u16string_view full, std::u16string_view stored)
{
    return full.size() >= stored.size() &&
           base::compareNoCase(full.substr(0, stored.size()), stored) == 0 &&
           std::all_of(full.begin() + static_cast<std::ptrdiff_t>(stored.size()), full.end(),
                       isDigit);
}

std::u16string storedBlockName(std::u16string_view full)
{
    if (isNumberedBlockName(full))
        while (full.size() > 2 && isDigit(full.back()))
            full.remove_suffix(1);
    return std::u16string(full);
}

bool isPaperSpaceName(std::u16string_view stored)
{
    return base::compareNoCase(stored, u"*Paper_Space") == 0;
}

bool isSpaceName(std::u16string_view stored)
{
    return isPaperSpaceName(stored) || base::compareNoCase(stored, u"*Model_Space") == 0;
}

TvString freeNumberedName(const TvDbSymbolTable& blocks, std::u16string_view prefix)
{
    // The number is the block's place in the table, as long as nothing was taken out of that.
    std::uint32_t number = blocks.fields().array("entries").size();
    for (number = number > 0 ? number - 1 : 0;; ++number) {
        const TvString name = TvString(prefix) + base::utf16FromUtf8(std::to_string(number));
        if (!blocks.has(name))
            return name;
    }
}

TvString freeBlockName(const TvDbBlockTableRecord& block, const TvString& wanted)
{
    if (!isNumberedBlockName(wanted.view()) || storedBlockName(wanted.view()) != wanted.view())
        return wanted;
    const TvDbObjectPointer<TvDbBlockTable> table(block.ownerId(), TvDb::kForNotify);
    if (!table || (isSpaceName(wanted.view()) && !table->has(wanted)))
        return wanted;
    return freeNumberedName(*table, wanted.view());
}

TvDbObjectId layerZero(const TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbLayerTable> layers(database.symbolTableId(TvDb::SymbolTable::Layer),
                                                   TvDb::kForNotify);
    TvDbObjectId id;
    if (layers)
        layers->getIdAt(TvString(u"0"), id);
    return id;
}

void placeInBlock(RecordEditor entity, TvDbObjectId block)
{
    const TvDbDatabase& database = *block.database();
    const int mode = block == database.modelSpaceId()   ? 2
                     : block == database.paperSpaceId() ? 1
                                                        : 0;
    entity.setHandle("owner", mode == 0 ? block.handle().value() : 0);
    entity.setInteger("entmode", mode);
}

void listReference(TvDbObjectId block, TvDbObjectId reference)
{
    QuietEdit edit(block);
    if (!edit)
        return;
    ArrayEditor inserts = edit->array("inserts");
    inserts.setHandle(inserts.add(), reference.handle().value());
}

} // namespace db
