// A plot module that only tells what it was asked for.

#include <functional>

#include <db/tv_db_layout.h>
#include <plot/page_setup.h>
#include <plot/publish_request.h>
#include <rx/tv_rx_module.h>
#include <sm/tv_sm_database.h>

#include "../plot_calls.h"

namespace {

PlotCalls* g_calls = nullptr; // the test's

#ifndef KV_WITHOUT_ENTRIES
std::vector<std::string> titlesOf(const std::vector<TvSmSheet*>& sheets)
{
    std::vector<std::string> titles;
    for (const TvSmSheet* sheet : sheets)
        titles.push_back(sheet->getTitle().utf8());
    return titles;
}
#endif

} // namespace

TVRX_EXPORT void tellCalls(PlotCalls* calls)
{
    g_calls = calls;
}

#ifndef KV_WITHOUT_ENTRIES
TVRX_EXPORT void KvCmd_PublishSheetSet(std::vector<TvSmSheet*>* sheets, TvSmSheetSet* set,
                                       PublishRequest* request)
{
    if (g_calls)
        g_calls->published.push_back(
            {titlesOf(*sheets), set, *request, set->database()->getLockStatus()});
}

TVRX_EXPORT void KvCmd_PublisDlg(TvSmPublishOptions* options, TvSmDatabase* database,
                                 std::vector<TvSmSheet*>* sheets)
{
    if (g_calls)
        g_calls->dialogs.push_back({options, database, titlesOf(*sheets)});
}

TVRX_EXPORT void KvCmd_PlotStampSetting()
{
    if (g_calls)
        ++g_calls->stampSettings;
}

/// Also changes what it is given, as a user might.
TVRX_EXPORT void KvCmd_PageSetupDlg(TvDbDatabase* drawing, TvString setName, bool isOpen)
{
    if (!g_calls)
        return;
    g_calls->pageSetups.push_back({drawing, setName, isOpen, {}});
    for (const plot::PageSetup& setup : plot::pageSetupsOf(*drawing))
        g_calls->pageSetups.back().names.push_back(setup.name);
    TvDbObjectId id;
    db::addLayout(*drawing, u"By the plot module", id);
}

TVRX_EXPORT void KvCmd_PDFPublishOption(TvSmDatabase* database)
{
    if (!g_calls)
        return;
    g_calls->pdfLocks.push_back(database->getLockStatus());
    database->getSheetSet()->setDesc(u"by the plot module");
}
#endif
