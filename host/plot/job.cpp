#include "plot/job.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <variant>

#include <base/atomic_replace.h>
#include <base/kv_file_system.h>
#include <db/attached_drawings.h>
#include <db/tv_db_database.h>

#include "page_content.h"
#include "pdf_file.h"
#include "plot/page.h"
#include "plot/reasons.h"
#include "svg_painter.h"

namespace plot {

namespace {

constexpr std::chrono::milliseconds kBetweenLooks(50); // at whether it is cancelled
constexpr int kMostJobs = 16;
// Of files of references that are kept between pages, by all threads together.
constexpr std::uint64_t kKeptBytes = std::uint64_t(512) << 20;

base::Status cancelled()
{
    return {base::Failure::Interrupted, base::Reason::Cancelled};
}

/// A page that one of the threads made: for a PDF, as a file, or why there is none.
using Made = std::variant<base::Status, PageContent, std::string>;
struct MadePage {
    Made content;
    std::vector<base::Status> remarks;
};

/// Makes one page, from the drawing on.
class PageMaker
{
public:
    PageMaker(const JobRequest& request, const PageSetup* setup, const std::atomic<bool>& stop)
        : m_request(request), m_setup(setup), m_stop(stop)
    {
    }

    /// @param attached  of the thread that makes it.
    MadePage make(const PageOrder& order, db::AttachedDrawings& attached) const
    {
        MadePage made;
        try {
            made.content = makeUnguarded(order, attached, made.remarks);
        } catch (const std::exception& problem) {
            made.content = base::Status(base::Failure::Io, kFileNotMade,
                                        {order.layoutName, TvString(problem.what())});
        }
        return made;
    }

private:
    Made makeUnguarded(const PageOrder& order, db::AttachedDrawings& attached,
                       std::vector<base::Status>& remarks) const
    {
        TvDbDatabase database(false, true);
        if (base::Status status = read(database, order); !status)
            return status;
        const TvDbObjectId layout = findLayout(database, order.layoutHandle, order.layoutName);
        if (layout.isNull())
            return base::Status(base::Failure::NotFound, kLayoutMissing,
                                {order.layoutName, order.drawing});
        PageOptions options;
        options.setup = m_setup;
        options.isMonochrome = m_request.options.isMonochrome;
        options.stop = &m_stop;
        options.attached = &attached;
        const auto page = makePage(database, layout, options);
        if (!page)
            return page.status();
        for (const db::LostReference& lost : page->list.lost())
            remarks.push_back(lost.why);
        return m_request.output == Output::SvgPerSheet ? svg(*page, order) : pdf(*page, order);
    }

    static base::Status read(TvDbDatabase& database, const PageOrder& order)
    {
        const TvStatusCode status = order.content
                                        ? db::readBytesAs(database, *order.content, order.drawing)
                                        : database.readDwgFile(order.drawing, TvDb::kReadAllShare);
        if (status == TvStatus::Ok)
            return {};
        if (!database.lastFailure())
            return database.lastFailure();
        return {base::Failure::NotFound, base::Reason::FileMissing, {order.drawing}};
    }

    Made pdf(const Page& page, const PageOrder& order) const
    {
        auto content = pdfContentOf(page, order, m_request.stamp, m_request.options, &m_stop);
        return content ? Made(std::move(*content)) : Made(cancelled());
    }
    Made svg(const Page& page, const PageOrder& order) const
    {
        auto text = svgOf(page, order, m_request.stamp, m_request.options, &m_stop);
        return text ? Made(std::move(*text)) : Made(cancelled());
    }

    const JobRequest& m_request;
    const PageSetup* m_setup; // not owned; null: each layout's own
    const std::atomic<bool>& m_stop;
};

/// Threads that make pages ahead of who writes them, in any order, but never far ahead: what was
/// made and not fetched is a few pages.
///
/// Each page has a database of its own; what the libraries share is guarded by them.
class Workers
{
public:
    Workers(const JobRequest& request, const PageSetup* setup)
        : m_request(request), m_maker(request, setup, m_stop)
    {
        const int jobs = std::clamp(request.jobs, 1, kMostJobs);
        m_ahead = static_cast<std::size_t>(jobs) + 1;
        m_kept.bytes = kKeptBytes / static_cast<std::uint64_t>(jobs);
        for (int i = 0; i < jobs; ++i)
            m_threads.emplace_back([this] { work(); });
    }
    ~Workers()
    {
        stop();
        for (std::thread& thread : m_threads)
            thread.join();
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    void stop()
    {
        {
            const std::scoped_lock lock(m_mutex); // nobody misses it on the way to wait
            m_stop = true;
        }
        m_changed.notify_all();
    }
    /// The next page in order; nullopt when the watcher wants it to end.
    std::optional<MadePage> fetch(JobWatcher& watcher)
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            if (const auto found = m_made.find(m_fetched); found != m_made.end()) {
                MadePage made = std::move(found->second);
                m_made.erase(found);
                ++m_fetched;
                m_changed.notify_all();
                return made;
            }
            m_changed.wait_for(lock, kBetweenLooks);
            lock.unlock(); // the watcher may show a window
            const bool isCancelled = watcher.isCancelled();
            lock.lock();
            if (isCancelled)
                return std::nullopt;
        }
    }

private:
    void work()
    {
        db::AttachedDrawings attached(m_kept);
        std::unique_lock lock(m_mutex);
        while (!m_stop && m_next < m_request.pages.size()) {
            if (m_next >= m_fetched + m_ahead) {
                m_changed.wait(lock);
                continue;
            }
            const std::size_t page = m_next++;
            lock.unlock();
            MadePage made = m_maker.make(m_request.pages[page], attached);
            lock.lock();
            m_made.emplace(page, std::move(made));
            m_changed.notify_all();
        }
    }

    const JobRequest& m_request;
    std::atomic<bool> m_stop = false;
    PageMaker m_maker;
    db::AttachedDrawings::Limits m_kept; // by each thread
    std::mutex m_mutex;                  // guards what follows
    std::condition_variable m_changed;
    std::size_t m_next = 0, m_fetched = 0, m_ahead = 2;
    std::map<std::size_t, MadePage> m_made;
    std::vector<std::thread> m_threads;
};

base::Status replace(const TvString& path, std::span<const std::byte> bytes)
{
    base::ReplaceRequest request;
    request.bytes = bytes;
    return base::replaceFile(base::systemFileOps(), path, request);
}

base::Status writePdf(PdfFile& pdf, const TvString& path)
{
    if (base::Status status = pdf.finish(); !status)
        return status;
    base::ReplaceRequest request;
    request.content = [&file = pdf.content()](std::uint64_t offset, std::span<std::byte> buffer,
                                              std::size_t& out) {
        out =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), file.size() - offset));
        return file.read(offset, buffer.first(out)) ? 0 : EIO;
    };
    return base::replaceFile(base::systemFileOps(), path, request);
}

/// A job on its way.
class Job
{
public:
    Job(const JobRequest& request, JobWatcher& watcher) : m_request(request), m_watcher(watcher)
    {
        m_report.pages.resize(request.pages.size());
    }

    JobReport run()
    {
        if (m_request.pages.empty())
            m_report.status = {base::Failure::Usage, kNothingMade};
        else if (prepare())
            makePages();
        return std::move(m_report);
    }

private:
    bool prepare()
    {
        if (!m_request.setupName.isEmpty()) {
            auto setup = readPageSetup(m_request.setupDrawing, m_request.setupName);
            if (!setup) {
                m_report.status = setup.status();
                return false;
            }
            m_setup = std::move(*setup);
        }
        if (m_request.output == Output::OnePdf) {
            m_pdf = std::make_unique<PdfFile>(m_request.info, m_request.options,
                                              base::PathRules::native().folderOf(m_request.target));
            return true;
        }
        return makeFolder();
    }

    bool makeFolder()
    {
        if (KvFileSystem::createDirectory(m_request.target))
            return true;
        m_report.status = {
            base::Failure::Unreachable, base::Reason::FolderUnreachable, {m_request.target}};
        return false;
    }

    void makePages()
    {
        Workers workers(m_request, m_setup ? &*m_setup : nullptr);
        for (std::size_t i = 0; i < m_request.pages.size(); ++i) {
            auto made = m_watcher.isCancelled() ? std::nullopt : workers.fetch(m_watcher);
            if (!made) {
                for (; i < m_request.pages.size(); ++i)
                    m_report.pages[i].status = cancelled();
                return end(cancelled());
            }
            PageOutcome& outcome = m_report.pages[i];
            outcome = write(i, std::move(made->content));
            outcome.remarks = std::move(made->remarks);
            m_watcher.pageDone(i, outcome);
        }
        workers.stop();
        // Files of single sheets are all there already.
        if (m_pdf && m_watcher.isCancelled())
            return end(cancelled());
        finish();
    }

    /// Ends the job without the one PDF, so that no page is in it.
    void end(base::Status status)
    {
        m_report.status = std::move(status);
        if (!m_pdf)
            return;
        for (PageOutcome& page : m_report.pages)
            page.file = TvString();
    }

    PageOutcome write(std::size_t number, Made made)
    {
        PageOutcome outcome;
        if (base::Status* const status = std::get_if<base::Status>(&made)) {
            outcome.status = std::move(*status);
            return outcome;
        }
        const PageOrder& order = m_request.pages[number];
        if (m_pdf) {
            outcome.status = m_pdf->add(number, order, std::move(std::get<PageContent>(made)));
            outcome.file = m_request.target;
            return outcome;
        }
        outcome.file = fileFor(order);
        outcome.status = writeOne(number, order, std::move(made), outcome.file);
        if (outcome.status)
            m_report.files.push_back(outcome.file);
        else
            outcome.file = TvString();
        return outcome;
    }

    base::Status writeOne(std::size_t number, const PageOrder& order, Made made,
                          const TvString& path)
    {
        if (const std::string* const text = std::get_if<std::string>(&made))
            return replace(path, std::as_bytes(std::span(*text)));
        DocumentInfo info = m_request.info;
        if (!order.title.isEmpty())
            info.title = order.title;
        PdfFile pdf(info, m_request.options, m_request.target);
        if (base::Status status = pdf.add(number, order, std::move(std::get<PageContent>(made)));
            !status)
            return status;
        return writePdf(pdf, path);
    }

    TvString fileFor(const PageOrder& order)
    {
        const TvString name = order.fileName.isEmpty() ? fileNameFor(order.number, order.title)
                                                       : fileNameFor(order.fileName, TvString());
        TvString free = name;
        for (int i = 2; !m_taken.insert(free.toLower()).second; ++i)
            free.format(TvString(u"%ls (%d)"), name, i);
        free += m_request.output == Output::SvgPerSheet ? u".svg" : u".pdf";
        return base::PathRules::native().join(m_request.target, free);
    }

    void finish()
    {
        const bool hasNone = m_pdf ? m_pdf->isEmpty() : m_report.files.empty();
        if (hasNone) {
            m_report.status = m_report.pages.front().status;
            return;
        }
        if (!m_pdf)
            return;
        if (base::Status status = writePdf(*m_pdf, m_request.target); !status)
            end(std::move(status));
        else
            m_report.files.push_back(m_request.target);
    }

    const JobRequest& m_request;
    JobWatcher& m_watcher;
    JobReport m_report;
    std::optional<PageSetup> m_setup;
    std::unique_ptr<PdfFile> m_pdf; // of the one file; null: one for each sheet
    std::set<TvString> m_taken;     // names of files, in small letters
};

} // namespace

std::size_t JobReport::failures() const
{
    return static_cast<std::size_t>(
        std::ranges::count_if(pages, [](const PageOutcome& page) { return !page.status; }));
}

JobReport run(const JobRequest& request, JobWatcher& watcher)
{
    return Job(request, watcher).run();
}

TvString fileNameFor(const TvString& number, const TvString& title)
{
    constexpr int kLongest = 120;
    TvString name = number;
    if (!number.isEmpty() && !title.isEmpty())
        name += u" ";
    name += title;
    std::u16string clean;
    for (const TvChar unit : name.view()) {
        const bool isForbidden =
            unit < 0x20 || std::u16string_view(u"<>:\"/\\|?*").find(unit) != std::u16string::npos;
        clean += isForbidden ? u'_' : unit;
    }
    TvString made = TvString(clean).left(kLongest).trimmed();
    while (made.endsWith(u"."))
        made = made.left(made.length() - 1).trimmed();
    if (!base::PathRules::isValidNewName(made))
        made = TvString(u"sheet") + (made.isEmpty() ? u"" : u" ") + made.view();
    return made;
}

} // namespace plot
