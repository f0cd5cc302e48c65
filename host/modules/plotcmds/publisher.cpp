#include "publisher.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <thread>

#include <QApplication>

#include <base/path_rules.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <rx/tv_user_messages.h>
#include <sm/tv_sm_database.h>
#include <sm/tv_sm_sheet_set.h>

#include "plotcmds_ids.h"
#include "printing.h"
#include "progress_dialog.h"
#include "running_job.h"

namespace plotcmds {

namespace {

void tell(int text, std::vector<TvString> arguments = {})
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = kPublishing;
    message.arguments = std::move(arguments);
    message.icon = TvUserMessages::Icon::Information;
    tvrxShowMessage(message);
}

int usefulJobs()
{
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 4U));
}

bool hasWindows()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

/// Without windows: at once, and told at the command line.
void runHere(const plot::JobRequest& job)
{
    ed::UserPrompts* const prompts = ed::userPrompts();
    const auto say = [prompts](int text, const std::vector<TvString>& arguments) {
        if (prompts)
            prompts->say(text, arguments);
    };
    plot::JobWatcher nobody;
    const plot::JobReport report = plot::run(job, nobody);
    for (std::size_t i = 0; i < report.pages.size(); ++i)
        if (!report.pages[i].status)
            say(kFailureLine, {nameOf(job.pages[i]), wordsOf(report.pages[i].status)});
    if (!report.status)
        say(kHasFailed, {wordsOf(report.status)});
    for (const TvString& file : report.files)
        say(kPlotWritten, {file});
}

void start(plot::JobRequest job, std::function<TvString(const plot::JobReport&)> whenDone)
{
    job.jobs = usefulJobs();
    takeOpenDrawings(job);
    if (!hasWindows()) {
        runHere(job);
        return;
    }
    // Owned by the toolkit: it goes when it is closed.
    auto* const window =
        new ProgressDialog(RunningJobs::all().start(std::move(job)), std::move(whenDone));
    window->Create();
    window->show();
}

/// As it was typed or chosen, in full.
TvString completed(TvString path, bool isForFolder)
{
    const base::PathRules& rules = base::PathRules::native();
    if (!rules.isAbsolute(path)) {
        std::error_code none;
        const std::filesystem::path here = std::filesystem::current_path(none);
        path = rules.normalise(rules.join(TvString(std::string_view(here.native())), path));
    }
    return isForFolder || path.endsWithNoCase(u".pdf") ? path : path + u".pdf";
}

} // namespace

void takeOpenDrawings(plot::JobRequest& job)
{
    TvApDocManager* const documents = tvDocManagerPtr();
    if (!documents)
        return;
    std::map<TvString, std::shared_ptr<const std::vector<std::uint8_t>>> taken;
    for (plot::PageOrder& page : job.pages) {
        if (const auto found = taken.find(page.drawing); found != taken.end()) {
            page.content = found->second;
            continue;
        }
        const TvApDocument* const document = documents->documentOf(page.drawing);
        TvDbDatabase* const database = document ? document->database() : nullptr;
        if (database && database->isModified())
            if (auto bytes = database->toBytes(db::FileFormat::Dwg))
                page.content = std::make_shared<const std::vector<std::uint8_t>>(std::move(*bytes));
        taken.emplace(page.drawing, page.content);
    }
}

TvString askTarget(plot::OutputKind kind, const TvString& suggested)
{
    constexpr int kForSaving = 1, kForFolder = 2048;
    const bool isForFolder = kind == plot::kPdfPerSheet || kind == plot::kSvgPerSheet;
    resbuf* answer = nullptr;
    const int status = tvedGetFileNavDialog(
        text::find(isForFolder ? kPublishFolder : kPublishTo), suggested.kwszPtr(),
        isForFolder ? u"" : u"pdf", u"Publish", isForFolder ? kForFolder : kForSaving, answer);
    const TvResbufPtr paths(answer);
    if (status == ed::kCancelled || !paths)
        return {};
    return completed(TvString(paths->resval.rstring), isForFolder);
}

void publishJob(plot::JobRequest job, plot::OutputKind kind, const TvString& suggested)
{
    if (kind == plot::kToPrinter && hasWindows()) { // a printer is chosen in one
        if (const std::vector<TvString> printers = printersOfMachine(); !printers.empty()) {
            const auto choice = askPrinter(printers);
            if (!choice)
                return;
            job.target = temporaryPdf();
            const TvString title = job.info.title;
            start(std::move(job), [choice = *choice, title](const plot::JobReport& report) {
                return printFile(report.files.front(), choice, title);
            });
            return;
        }
    }
    if (job.target.isEmpty())
        job.target = askTarget(kind, suggested);
    if (!job.target.isEmpty())
        start(std::move(job), {});
}

void publish(const std::vector<TvSmSheet*>& sheets, const TvSmSheetSet& set,
             const PublishRequest& request, const TvString& target)
{
    const auto kind = static_cast<plot::OutputKind>(request.kind);
    if (kind < plot::kToPrinter || kind > plot::kSvgPerSheet)
        return;
    plot::JobRequest job = plot::jobOf(sheets, set, kind);
    if (job.pages.empty()) {
        tell(kNothingToPublish);
        return;
    }
    if (request.usePageSetup && !plot::usePageSetup(job, set, request.pageSetupName)) {
        tell(kNoPageSetups, {request.pageSetupName});
        return;
    }
    job.target = target.isEmpty() ? plot::targetOf(set, kind) : target;
    TvString suggested;
    if (set.database())
        suggested = base::PathRules::native().folderOf(set.database()->getFileName());
    if (kind == plot::kOnePdf || kind == plot::kToPrinter)
        suggested = base::PathRules::native().join(suggested, plot::fileNameOf(set) + u".pdf");
    publishJob(std::move(job), kind, suggested);
}

} // namespace plotcmds
