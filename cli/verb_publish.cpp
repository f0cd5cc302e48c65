#include <algorithm>
#include <iterator>
#include <thread>

#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <plot/page_setup.h>
#include <plot/sheet_list.h>
#include <sm/publishing.h>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

constexpr char16_t kPdf[] = u".pdf";
constexpr int kMostJobs = 16, kUsualJobs = 4;

struct Format {
    const char* name;
    plot::OutputKind kind;
};
constexpr Format kFormats[] = {
    {"pdf", plot::kOnePdf}, {"pdf-per-sheet", plot::kPdfPerSheet}, {"svg", plot::kSvgPerSheet}};

enum class Progress { None, Plain, Json };
struct ProgressForm {
    const char* name;
    Progress progress;
};
/// Whatever the terminal is, lines are read well: "auto" is plain, but silent beside a document.
constexpr ProgressForm kProgress[] = {{"auto", Progress::Plain},
                                      {"plain", Progress::Plain},
                                      {"json", Progress::Json},
                                      {"none", Progress::None}};

template <class Row, std::size_t Count>
const Row& rowOf(const Row (&rows)[Count], const std::string& name, const TvChar* option)
{
    const auto found = std::ranges::find(rows, name, [](const Row& row) { return row.name; });
    if (found == std::end(rows))
        refuseUsage(Word::NotAChoice, TvString(option), TvString(std::string_view(name)));
    return *found;
}

Progress progressOf(const PublishRequest& request, const Console& console)
{
    if (request.progress == "auto" && console.isJson())
        return Progress::None;
    return rowOf(kProgress, request.progress, u"--progress").progress;
}

int jobsOf(const PublishRequest& request)
{
    if (!request.jobs)
        return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kUsualJobs);
    if (*request.jobs < 1 || *request.jobs > kMostJobs)
        refuseUsage(Word::JobsOutOfRange, kMostJobs);
    return *request.jobs;
}

/// In the order of the tree, or of the handles that were given.
std::vector<TvSmSheet*> sheetsOf(const OpenedSet& opened, const PublishRequest& request)
{
    std::vector<TvSmSheet*> sheets;
    std::vector<TvSmComponent*> selection;
    for (const TvString& handle : request.select) {
        TvSmComponent& component = componentAt(opened.database(), handle);
        const Kind kind = kindOf(component);
        if (kind != Kind::SheetSet && kind != Kind::Subset && kind != Kind::Sheet)
            refuseUsage(Word::NotPublishable, handle, kindWords(kind));
        selection.push_back(&component);
    }
    if (selection.empty())
        CollectPublishableSheets(&opened.set(), sheets, true);
    else
        CollectSelectedPublishableSheets(selection, sheets);
    if (sheets.empty())
        refuse(ExitCode::NoInput, Word::NothingToPublish);
    if (request.reverse)
        std::ranges::reverse(sheets);
    return sheets;
}

/// Where the one PDF goes: as was asked, else where the set's options say, else beside the set.
TvString filePathOf(const OpenedSet& opened, const PublishRequest& request)
{
    const base::PathRules& rules = base::PathRules::native();
    if (request.out.isEmpty()) {
        const TvString chosen = plot::targetOf(opened.set(), plot::kOnePdf);
        const TvString set = opened.database().getFileName();
        return chosen.isEmpty() ? rules.join(rules.folderOf(set), rules.stemOf(set) + kPdf)
                                : chosen;
    }
    const TvString path = fullPath(request.out);
    if (KvFileSystem::isDirectory(path))
        return rules.join(path, plot::fileNameOf(opened.set()) + kPdf);
    if (rules.extensionOf(path).isEmpty())
        return path + kPdf;
    // Any other name could be that of a drawing or a set, which would be replaced.
    if (!path.endsWithNoCase(kPdf))
        refuseUsage(Word::NotAPdfName, rules.fileNameOf(path));
    return path;
}

TvString folderPathOf(const OpenedSet& opened, const PublishRequest& request, plot::OutputKind kind)
{
    if (!request.out.isEmpty())
        return fullPath(request.out);
    const TvString chosen = plot::targetOf(opened.set(), kind);
    const base::PathRules& rules = base::PathRules::native();
    const TvString set = opened.database().getFileName();
    return chosen.isEmpty() ? rules.join(rules.folderOf(set), rules.stemOf(set)) : chosen;
}

void takePageSetup(plot::JobRequest& job, const OpenedSet& opened, const TvString& name)
{
    if (name.isEmpty())
        return;
    if (!plot::usePageSetup(job, opened.set(), name))
        refuse(ExitCode::NoInput, Word::NoPageSetups);
    if (const auto setup = plot::readPageSetup(job.setupDrawing, name); !setup)
        refuse(setup.status(), Doing::Reading);
}

/// Tells each sheet when it is done, and lets the user end all of it.
class Watcher : public plot::JobWatcher
{
public:
    Watcher(const plot::JobRequest& job, Progress progress, Console& console)
        : m_job(job), m_progress(progress), m_console(console)
    {
    }
    void pageDone(std::size_t page, const plot::PageOutcome& outcome) override
    {
        ++m_done;
        if (m_progress == Progress::Json)
            tellEvent(page, outcome);
        else if (m_progress == Progress::Plain)
            tellLine(page, outcome);
    }
    bool isCancelled() override { return m_console.isInterrupted(); }

private:
    void tellLine(std::size_t page, const plot::PageOutcome& outcome)
    {
        const plot::PageOrder& order = m_job.pages[page];
        const Word word = outcome.status ? Word::PageDone : Word::PageFailed;
        m_console.say(
            words(word, m_done, static_cast<int>(m_job.pages.size()), order.number, order.title));
    }
    void tellEvent(std::size_t page, const plot::PageOutcome& outcome)
    {
        const plot::PageOrder& order = m_job.pages[page];
        m_console.event({{"event", "sheet"},
                         {"index", m_done},
                         {"count", m_job.pages.size()},
                         {"number", jsonText(order.number)},
                         {"title", jsonText(order.title)},
                         {"ok", static_cast<bool>(outcome.status)}});
    }

    const plot::JobRequest& m_job;
    Progress m_progress;
    Console& m_console;
    int m_done = 0;
};

Json jsonOf(const Message& message)
{
    return {{"code", jsonText(message.code())}, {"message", jsonText(message.text)}};
}

Json jsonOf(const TvSmSheet& sheet, const plot::PageOutcome& outcome)
{
    Json row = {{"handle", jsonText(handleOf(sheet))},
                {"number", jsonText(sheet.getNumber())},
                {"title", jsonText(sheet.getTitle())},
                {"ok", static_cast<bool>(outcome.status)},
                {"file", nullptr},
                {"error", nullptr}};
    if (!outcome.file.isEmpty())
        row["file"] = jsonText(outcome.file);
    if (!outcome.status)
        row["error"] = jsonOf(messageOf(outcome.status));
    Json remarks = Json::array();
    for (const base::Status& remark : outcome.remarks)
        remarks.push_back(jsonOf(messageOf(remark)));
    row["remarks"] = std::move(remarks);
    return row;
}

void warnOf(const TvSmSheet& sheet, const base::Status& status, Console& console)
{
    Message message = messageOf(status);
    message.text = labelOf(sheet) + u": " + message.text;
    message.advice = {};
    console.warn(message);
}

ExitCode report(const std::vector<TvSmSheet*>& sheets, const plot::JobReport& done,
                Console& console)
{
    Json rows = Json::array(), files = Json::array();
    for (std::size_t i = 0; i < done.pages.size(); ++i) {
        if (console.isJson()) // nobody reads them otherwise
            rows.push_back(jsonOf(*sheets[i], done.pages[i]));
        if (!done.pages[i].status)
            warnOf(*sheets[i], done.pages[i].status, console);
        for (const base::Status& remark : done.pages[i].remarks)
            warnOf(*sheets[i], remark, console);
    }
    for (const TvString& file : done.files) {
        console.line({{file}});
        files.push_back(jsonText(file));
    }
    const int failed = static_cast<int>(done.failures());
    const int made = static_cast<int>(done.pages.size()) - failed;
    console.document()["files"] = std::move(files);
    console.document()["published"] = made;
    console.document()["failed"] = failed;
    console.document()["sheets"] = std::move(rows);
    console.say(words(Word::PublishSummary, made, static_cast<int>(done.pages.size()),
                      static_cast<int>(done.files.size())));
    if (failed == 0)
        return ExitCode::Ok;
    return made == 0 ? ExitCode::NoInput : ExitCode::PartlyFailed;
}

ExitCode publish(const PublishRequest& request, Console& console)
{
    const Format& format = rowOf(kFormats, request.format, u"--format");
    const Progress progress = progressOf(request, console);
    const int jobs = jobsOf(request);
    for (const TvString& handle : request.select)
        requireHandle(handle);
    const OpenedSet opened(request.file, console);
    const std::vector<TvSmSheet*> sheets = sheetsOf(opened, request);
    plot::JobRequest job = plot::jobOf(sheets, opened.set(), format.kind);
    takePageSetup(job, opened, request.pageSetup);
    job.target = format.kind == plot::kOnePdf ? filePathOf(opened, request)
                                              : folderPathOf(opened, request, format.kind);
    job.jobs = jobs;
    console.document()["file"] = jsonText(opened.database().getFileName());
    console.document()["format"] = format.name;
    Watcher watcher(job, progress, console);
    const plot::JobReport done = plot::run(job, watcher);
    console.stopIfInterrupted();
    if (!done.status)
        refuse(done.status, Doing::Writing);
    return report(sheets, done, console);
}

} // namespace

Outcome run(const PublishRequest& request, Console& console)
{
    return attempt(console, [&] { return publish(request, console); });
}

} // namespace cli
