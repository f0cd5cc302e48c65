#include "operations/sheet_drawing.h"

#include <core/sheet_data.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <sm/tv_sm_database.h>

namespace operations {

namespace {

/// The layout that stays, and the block in which it is drawn.
struct Kept {
    TvDbObjectId layout, block;
};

std::vector<TvDbObjectId> otherPapers(const TvDbDictionary& layouts, const TvString& kept)
{
    std::vector<TvDbObjectId> found;
    const std::unique_ptr<TvDbDictionaryIterator> each(layouts.newIterator());
    for (; !each->done(); each->next())
        if (!db::isModelLayoutName(each->name()) && each->name().compareNoCase(kept) != 0)
            found.push_back(each->objectId());
    return found;
}

bool eraseAll(const std::vector<TvDbObjectId>& layouts)
{
    for (const TvDbObjectId id : layouts) {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        if (!layout || layout->erase(true) != TvStatus::Ok)
            return false;
    }
    return true;
}

/// Erases the other papers, and gives the one that stays its name.
bool keepOne(TvDbDatabase& drawing, const SheetDrawing& sheet, Kept& out)
{
    std::vector<TvDbObjectId> others;
    {
        const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
        if (!layouts || layouts->getAt(sheet.templateLayout, out.layout) != TvStatus::Ok)
            return false;
        others = otherPapers(*layouts, sheet.templateLayout);
    }
    if (!eraseAll(others))
        return false;
    const TvDbObjectPointer<TvDbLayout> layout(out.layout, TvDb::kForWrite);
    if (!layout || layout->setLayoutName(sheet.layout) != TvStatus::Ok)
        return false;
    out.block = layout->getBlockTableRecordId();
    return true;
}

/// Whichever paper of the template it was: it is the first one of the drawing now.
bool makeFirstPaper(TvDbDatabase& drawing, const TvDbObjectId block)
{
    TvDbBlockTable* opened = nullptr;
    if (drawing.getSymbolTable(opened, TvDb::kForWrite) != TvStatus::Ok)
        return false;
    bool isDone = true;
    if (opened->paperSpaceId() != block) {
        auto* table = static_cast<TvDbBlockTable*>(TvDbSystemInternals::getImpObject(opened));
        isDone = table->setPaperSpaceId(block) == TvStatus::Ok && // also gives it the name
                 TvDbSystemInternals::getImpDatabase(&drawing)->headerVar()->setpaperSpace(block) ==
                     TvStatus::Ok;
    }
    opened->close();
    return isDone;
}

base::Status cannotMake(const TvDbDatabase& drawing, const SheetDrawing& sheet)
{
    if (!drawing.lastFailure())
        return drawing.lastFailure();
    return {base::Failure::Damaged, base::Reason::DwgObjectMissing, {sheet.templateLayout}};
}

} // namespace

base::Result<TvString> makeSheetDrawing(const TvSmDatabase* database, const SheetDrawing& sheet)
{
    TvDbDatabase drawing(false, false);
    if (drawing.readDwgFile(sheet.templateDrawing, TvDb::kReadAllShare, false, nullptr) !=
        TvStatus::Ok)
        return drawing.lastFailure();
    Kept kept;
    if (!database || !keepOne(drawing, sheet, kept) || !makeFirstPaper(drawing, kept.block))
        return cannotMake(drawing, sheet);
    if (drawing.tilemode())
        drawing.setTilemode(false);
    TvString handle = kept.layout.handle().text();
    if (!WriteSheetData(&drawing, {handle, sheet.layout, sheet.drawing, database->getFileName()}))
        return cannotMake(drawing, sheet);
    if (sheet.isTried) {
        const auto bytes = drawing.toBytes(db::FileFormat::Dwg, TvDb::kAc1032);
        return bytes ? base::Result<TvString>(std::move(handle)) : bytes.status();
    }
    const TvStatusCode saved =
        sheet.mustBeNew ? db::saveNew(drawing, sheet.drawing, db::FileFormat::Dwg, TvDb::kAc1032)
                        : drawing.saveAs(sheet.drawing, false, TvDb::kAc1032, nullptr);
    if (saved != TvStatus::Ok)
        return cannotMake(drawing, sheet);
    return handle;
}

} // namespace operations

bool CreateSheetDrawingFromTemplate(const TvSmDatabase* database, const TvString& drawingPath,
                                    const TvString& layoutName, const TvString& templatePath,
                                    const TvString& templateLayoutName, TvString& handleText)
{
    base::Result<TvString> handle = operations::makeSheetDrawing(
        database, {drawingPath, layoutName, templatePath, templateLayoutName});
    if (handle)
        handleText = *handle;
    return static_cast<bool>(handle);
}
