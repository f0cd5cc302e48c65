#pragma once

#include <vector>

#include <plot/publish_request.h>
#include <rx/tv_rx_module.h>

class TvDbDatabase;
class TvSmDatabase;
class TvSmPublishOptions;
class TvSmSheet;
class TvSmSheetSet;

// What is looked up in this module by name. Null arguments make each of them do nothing.

/// Publishes the sheets in their order. Copies what it is handed, starts, and returns.
TVRX_EXPORT void KvCmd_PublishSheetSet(std::vector<TvSmSheet*>* sheets, TvSmSheetSet* set,
                                       PublishRequest* request);
/// Lets the user choose among the sheets, the format and the place, and publishes.
TVRX_EXPORT void KvCmd_PublisDlg(TvSmPublishOptions* options, TvSmDatabase* database,
                                 std::vector<TvSmSheet*>* sheets); // sic
/// What the stamp tells.
TVRX_EXPORT void KvCmd_PlotStampSetting();
/// Shows the page setups of a drawing. Changes nothing.
TVRX_EXPORT void KvCmd_PageSetupDlg(TvDbDatabase* drawing, TvString name, bool isOpen);
/// What a PDF holds. The caller holds the lock of the database.
TVRX_EXPORT void KvCmd_PDFPublishOption(TvSmDatabase* database);

TVRX_EXPORT int tvrxEntryPoint(int message, void* appId);
TVRX_EXPORT int tvrxGetApiVersion();
