#include "exports.h"

#include <algorithm>

#include <base/path_rules.h>
#include <base/tarvik_config.h>
#include <db/tv_db_layout.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dictionary.h>
#include <sm/tv_sm_database.h>
#include <sm/tv_sm_publish_options.h>
#include <sm/tv_sm_sheet_set.h>

#include "dialogs.h"
#include "plotcmds_ids.h"
#include "publisher.h"

namespace {

constexpr const TvChar* kGroup = u"KV_PLOT_CMDGROUP";

/// Nothing that goes wrong in here comes out to whoever called by name.
template <class Step>
void quietly(const Step& step)
{
    try {
        step();
    } catch (const std::exception&) { // the caller expects no answer
    }
}

/// By the number of the set's format for publishing.
plot::OutputKind kindOf(long eplotFormat)
{
    switch (eplotFormat) {
    case 0: return plot::kPdfPerSheet;
    case 2: return plot::kSvgPerSheet;
    default: return plot::kOnePdf;
    }
}

std::vector<TvSmSheet*> withoutNulls(const std::vector<TvSmSheet*>& sheets)
{
    std::vector<TvSmSheet*> there = sheets;
    std::erase(there, nullptr);
    return there;
}

/// PLOT: the layout that is shown, to a PDF.
void runPlot()
{
    quietly([] {
        ed::UserPrompts* const prompts = ed::userPrompts();
        TvApDocManager* const documents = tvDocManagerPtr();
        TvApDocument* const document = documents ? documents->curDocument() : nullptr;
        if (!document || !document->database()) {
            if (prompts)
                prompts->say(plotcmds::kNoDrawing, {});
            return;
        }
        TvDbDatabase& database = *document->database();
        plot::JobRequest job;
        job.options = plot::storedPdfOptions();
        job.pages.resize(1);
        plot::PageOrder& page = job.pages.front();
        page.drawing = document->fileName();
        if (!database.tilemode())
            for (const TvDbObjectId id : db::layoutsInTabOrder(database))
                if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
                    layout && layout->getBlockTableRecordId() == database.paperSpaceId())
                    page.layoutName = layout->getLayoutName();
        page.title = page.layoutName.isEmpty() ? TvString(u"Model") : page.layoutName;
        job.info.title = page.title;
        auto bytes = database.toBytes(db::FileFormat::Dwg);
        if (!bytes)
            return;
        page.content = std::make_shared<const std::vector<std::uint8_t>>(std::move(*bytes));
        const base::PathRules& rules = base::PathRules::native();
        const TvString name = plot::fileNameFor(rules.stemOf(page.drawing), page.title) + u".pdf";
        plotcmds::publishJob(std::move(job), plot::kToPrinter,
                             rules.join(rules.folderOf(page.drawing), name));
    });
}

TvEdCommandStack* commands()
{
    return tvrxCast<TvEdCommandStack>(tvrxSysRegistry()->at(kTvRegisteredCommands));
}

} // namespace

void KvCmd_PublishSheetSet(std::vector<TvSmSheet*>* sheets, TvSmSheetSet* set,
                           PublishRequest* request)
{
    if (sheets && set && request)
        quietly([&] { plotcmds::publish(*sheets, *set, *request); });
}

void KvCmd_PublisDlg(TvSmPublishOptions* options, TvSmDatabase* database,
                     std::vector<TvSmSheet*>* sheets)
{
    if (!options || !database || !sheets || !database->getSheetSet())
        return;
    quietly([&] {
        const std::vector<TvSmSheet*> shown = withoutNulls(*sheets);
        const TvSmSheetSet& set = *database->getSheetSet();
        plotcmds::PublishDialog dialog(shown, set, kindOf(options->getEplotFormat()),
                                       plot::isStampWanted());
        if (dialog.DoModal() != text::kIdOk)
            return;
        if (dialog.isStamped() != plot::isStampWanted())
            plot::setStampWanted(dialog.isStamped());
        PublishRequest request;
        request.kind = dialog.kind();
        plotcmds::publish(dialog.chosen(), set, request, dialog.target());
    });
}

void KvCmd_PlotStampSetting()
{
    quietly([] {
        plotcmds::StampDialog dialog(plot::storedStamp());
        if (dialog.DoModal() == text::kIdOk)
            plot::storeStamp(dialog.stamp());
    });
}

void KvCmd_PageSetupDlg(TvDbDatabase* drawing, TvString name, bool isOpen)
{
    if (drawing)
        quietly([&] {
            plotcmds::PageSetupDialog(plot::pageSetupsOf(*drawing), name, isOpen).DoModal();
        });
}

void KvCmd_PDFPublishOption(TvSmDatabase* database)
{
    if (!database || !database->getSheetSet())
        return;
    quietly([&] {
        TvSmPublishOptions* const ofSet = database->getSheetSet()->getPublishOptions();
        plot::PdfOptions options = plot::storedPdfOptions();
        options.mergesLines = ofSet && ofSet->getLinesMerge();
        plotcmds::PdfOptionsDialog dialog(options);
        if (dialog.DoModal() != text::kIdOk)
            return;
        plot::storePdfOptions(dialog.options());
        if (ofSet && dialog.options().mergesLines != ofSet->getLinesMerge())
            ofSet->setLinesMerge(dialog.options().mergesLines);
    });
}

int tvrxEntryPoint(int message, void*)
{
    switch (message) {
    case TvRx::kInitAppMsg:
        if (TvEdCommandStack* const stack = commands())
            stack->addCommand(kGroup, u"PLOT", TvString(text::find(plotcmds::kPlotCommand)), 0,
                              runPlot);
        break;
    case TvRx::kUnloadAppMsg:
        if (TvEdCommandStack* const stack = commands())
            stack->removeGroup(kGroup);
        break;
    default: break;
    }
    return TvRx::kRetOk;
}

int tvrxGetApiVersion()
{
    return TvRx::kApiVersion;
}
