#include "running_job.h"

#include <algorithm>

namespace plotcmds {

class RunningJob::Watcher : public plot::JobWatcher
{
public:
    explicit Watcher(RunningJob& job) : m_job(job) {}
    void pageDone(std::size_t page, const plot::PageOutcome& outcome) override
    {
        const std::scoped_lock lock(m_job.m_mutex);
        ++m_job.m_state.done;
        if (!outcome.status)
            m_job.m_state.failures.emplace_back(page, outcome.status);
        for (const base::Status& remark : outcome.remarks)
            m_job.m_state.failures.emplace_back(page, remark);
    }
    bool isCancelled() override { return m_job.m_isCancelled; }

private:
    RunningJob& m_job;
};

RunningJob::RunningJob(plot::JobRequest request)
    : m_request(std::move(request)), m_thread([this] {
          Watcher watcher(*this);
          plot::JobReport report = plot::run(m_request, watcher);
          const std::scoped_lock lock(m_mutex);
          m_state.report = std::move(report);
      })
{
}

RunningJob::~RunningJob()
{
    cancel();
    m_thread.join();
}

RunningJob::State RunningJob::state() const
{
    const std::scoped_lock lock(m_mutex);
    return m_state;
}

RunningJobs& RunningJobs::all()
{
    static RunningJobs jobs;
    return jobs;
}

std::shared_ptr<RunningJob> RunningJobs::start(plot::JobRequest request)
{
    m_jobs.push_back(std::make_shared<RunningJob>(std::move(request)));
    return m_jobs.back();
}

void RunningJobs::forget(const std::shared_ptr<RunningJob>& job)
{
    std::erase(m_jobs, job);
}

} // namespace plotcmds
