#include "progress_dialog.h"

#include <QDesktopServices>
#include <QListWidget>
#include <QProgressBar>
#include <QUrl>

#include <base/path_rules.h>
#include <resources/texts.h>
#include <ui/qt_text.h>

#include "plotcmds_ids.h"

namespace plotcmds {

namespace {

constexpr int kBetweenLooksMs = 100;

} // namespace

TvString nameOf(const plot::PageOrder& page)
{
    TvString name = page.number;
    if (!name.isEmpty() && !page.title.isEmpty())
        name += u" - ";
    name += page.title.view();
    return name.isEmpty() ? page.layoutName : name;
}

TvString wordsOf(const base::Status& status)
{
    std::vector<base::FormatArgument> arguments(status.arguments().begin(),
                                                status.arguments().end());
    TvString words;
    return words.formatArguments(TvString(text::find(static_cast<int>(status.reason()))),
                                 arguments);
}

ProgressDialog::ProgressDialog(std::shared_ptr<RunningJob> job,
                               std::function<TvString(const plot::JobReport&)> whenDone)
    : CTvUiDialog(kProgressDialog), m_job(std::move(job)), m_whenDone(std::move(whenDone))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    connect(&m_timer, &QTimer::timeout, this, [this] { refresh(); });
}

ProgressDialog::~ProgressDialog()
{
    RunningJobs::all().forget(m_job);
}

bool ProgressDialog::OnInitDialog()
{
    if (auto* bar = Item<QProgressBar>(kBar)) {
        bar->setRange(0, static_cast<int>(m_job->request().pages.size()));
        bar->setTextVisible(false);
    }
    m_timer.start(kBetweenLooksMs);
    refresh();
    return true;
}

void ProgressDialog::refresh()
{
    if (m_isOver)
        return;
    const RunningJob::State state = m_job->state();
    const auto& pages = m_job->request().pages;
    addFailures(state);
    if (auto* bar = Item<QProgressBar>(kBar))
        bar->setValue(static_cast<int>(state.done));
    if (state.report) {
        finish(*state.report);
        return;
    }
    const std::size_t at = std::min(state.done, pages.size() - 1);
    SetDlgItemText(kLine,
                   TvString().format(TvString(text::find(kSheetOf)), static_cast<int>(at) + 1,
                                     static_cast<int>(pages.size()), nameOf(pages[at])));
}

void ProgressDialog::addFailures(const RunningJob::State& state)
{
    auto* list = Item<QListWidget>(kFailures);
    for (; list && m_shownFailures < state.failures.size(); ++m_shownFailures) {
        const auto& [page, status] = state.failures[m_shownFailures];
        list->addItem(ui::toQt(TvString()
                                   .format(TvString(text::find(kFailureLine)),
                                           nameOf(m_job->request().pages[page]), wordsOf(status))
                                   .view()));
    }
}

void ProgressDialog::finish(const plot::JobReport& report)
{
    m_isOver = true;
    m_timer.stop();
    const int failures = static_cast<int>(report.failures());
    const int made = static_cast<int>(report.pages.size()) - failures;
    TvString line;
    if (report.status.failure() == base::Failure::Interrupted)
        line = TvString(text::find(kWasCancelled));
    else if (!report.status)
        line.format(TvString(text::find(kHasFailed)), wordsOf(report.status));
    else if (m_whenDone)
        line = m_whenDone(report);
    if (line.isEmpty())
        line.format(TvString(text::find(failures > 0 ? kFinishedWithFailures : kFinished)), made,
                    failures);
    SetDlgItemText(kLine, line);
    SetDlgItemText(text::kIdCancel, TvString(text::find(kClose)));
    ShowDlgItem(kOpenFile, !report.files.empty() && !m_whenDone);
}

void ProgressDialog::OnCancel()
{
    if (m_isOver) {
        close();
        EndDialog(text::kIdCancel);
        return;
    }
    m_job->cancel();
    SetDlgItemText(kLine, TvString(text::find(kCancelling)));
}

void ProgressDialog::OnCommand(int id)
{
    if (id != kOpenFile)
        return;
    const RunningJob::State state = m_job->state();
    if (!state.report || state.report->files.empty())
        return;
    const TvString& first = state.report->files.front();
    // Of several files, the folder that they are in.
    const TvString target =
        state.report->files.size() == 1 ? first : base::PathRules::native().folderOf(first);
    QDesktopServices::openUrl(QUrl::fromLocalFile(ui::toQt(target)));
}

} // namespace plotcmds
