#pragma once

#include <QTimer>

#include <ui/tv_ui_dialog.h>

#include "running_job.h"

namespace plotcmds {

/// Shows how a job gets on, beside the program's window. Closing it ends the job.
class ProgressDialog : public CTvUiDialog
{
public:
    enum Control : int { kLine = 10, kBar = 11, kFailures = 12, kOpenFile = 13 };

    /// @param whenDone  called once, when the job is over and was not cancelled; may be empty. What
    ///                  it answers is shown instead of the usual end; an empty text: the usual one.
    ProgressDialog(std::shared_ptr<RunningJob> job,
                   std::function<TvString(const plot::JobReport&)> whenDone);
    ~ProgressDialog() override;

    /// Looks at the job now; the timer does it otherwise.
    void refresh();
    bool isOver() const { return m_isOver; }

protected:
    bool OnInitDialog() override;
    void OnCancel() override;
    void OnCommand(int id) override;

private:
    void addFailures(const RunningJob::State& state);
    void finish(const plot::JobReport& report);

    std::shared_ptr<RunningJob> m_job;
    std::function<TvString(const plot::JobReport&)> m_whenDone;
    QTimer m_timer;
    std::size_t m_shownFailures = 0;
    bool m_isOver = false;
};

/// What a page is called in messages: number and title, else its layout.
TvString nameOf(const plot::PageOrder& page);
/// What @p status says, in words.
TvString wordsOf(const base::Status& status);

} // namespace plotcmds
