#pragma once

#include <db/tv_db_object_id.h>
#include <sm/environment.h>

class TvSmSheet;
class TvSmSubset;

/// The sheet below @p subset that is the current layout of the active document; null when it is
/// none, in model space and without a document.
TvSmSheet* GetCurrentDrawingSheet(const TvSmSubset* subset);
/// The sheet below @p subset that is that layout of the current document; null when it is none.
TvSmSheet* FindSheetOfLayoutInActiveDocument(const TvSmSubset* subset, TvDbObjectId layout);

namespace core {

/// Tells the sheet-set model which layout the active document shows.
class DocumentLayout : public sm::CurrentLayoutProvider
{
public:
    bool currentLayout(TvDbDatabase*& database, TvString& drawingName, TvDbHandle& layout) override;
};

} // namespace core
