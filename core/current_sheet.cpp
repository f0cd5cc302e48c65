#include <core/current_sheet.h>

#include <db/tv_db_layout.h>
#include <ed/layouts.h>
#include <ed/tv_ap_doc_manager.h>
#include <sm/kv_db_util.h>

TvSmSheet* GetCurrentDrawingSheet(const TvSmSubset* subset)
{
    TvDbDatabase* database = nullptr;
    const TvChar* drawing = nullptr;
    TvDbHandle layout;
    if (!subset || !KvDbUtil::GetCurrentLayout(database, drawing, layout))
        return nullptr;
    return KvDbUtil::FindSheetFromSubset(subset, drawing, layout);
}

TvSmSheet* FindSheetOfLayoutInActiveDocument(const TvSmSubset* subset, TvDbObjectId layout)
{
    const TvApDocument* document = tvDocManagerPtr() ? tvDocManagerPtr()->curDocument() : nullptr;
    if (!subset || !document || !layout)
        return nullptr;
    const TvString drawing = document->fileName();
    return KvDbUtil::FindSheetFromSubset(subset, drawing.kwszPtr(), layout.handle());
}

bool core::DocumentLayout::currentLayout(TvDbDatabase*& database, TvString& drawingName,
                                         TvDbHandle& layout)
{
    const TvApDocument* document =
        tvDocManagerPtr() ? tvDocManagerPtr()->mdiActiveDocument() : nullptr;
    if (!document || document->database()->tilemode())
        return false;
    const TvDbObjectId shown = ed::currentLayout(*document->database());
    if (!shown)
        return false;
    database = document->database();
    drawingName = document->fileName();
    layout = shown.handle();
    return true;
}
