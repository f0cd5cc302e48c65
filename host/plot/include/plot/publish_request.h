#pragma once

#include <cstdint>
#include <vector>

#include <base/tv_string.h>

class TvDbDatabase;
class TvSmDatabase;
class TvSmPublishOptions;
class TvSmSheet;
class TvSmSheetSet;

/// How a list of sheets is published. Crosses the border of modules: the order of its members is
/// known to others.
struct PublishRequest {
    bool usePageSetup = false;   ///< a page setup takes the place of the sheets' own
    bool multipleSheets = false; ///< with usePageSetup: the list has more than one sheet
    std::int32_t kind = 0;       ///< of the output, 0 to 3: what each one is, the plot module knows
    TvString pageSetupName;      ///< of usePageSetup; empty otherwise
};
static_assert(sizeof(bool) == 1);

namespace plot {

// What the plot module exports, each under the name that stands beside it. Nothing that is handed
// over is owned by it; pointers are not null unless they say so.

/// KvCmd_PublishSheetSet. @param sheets  in the order of the pages; may be empty.
using PublishSheetSet = void (*)(std::vector<TvSmSheet*>* sheets, TvSmSheetSet* set,
                                 PublishRequest* request);
/// KvCmd_PublisDlg (sic): the dialog in which all of it is chosen. @param sheets  in tree order.
using PublishDialog = void (*)(TvSmPublishOptions* options, TvSmDatabase* database,
                               std::vector<TvSmSheet*>* sheets);
/// KvCmd_PlotStampSetting.
using PlotStampSetting = void (*)();
/// KvCmd_PageSetupDlg: the page setups of a drawing.
/// @param isOpen  it is the database of an open document; otherwise it is read for this and goes
///                afterwards: changes stay only if the module saves them.
using PageSetupDialog = void (*)(TvDbDatabase* drawing, TvString setName, bool isOpen);
/// KvCmd_PDFPublishOption: called under the lock, and committed afterwards.
using PdfPublishOption = void (*)(TvSmDatabase* database);

} // namespace plot
