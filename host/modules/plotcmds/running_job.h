#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <plot/job.h>

namespace plotcmds {

/// A job in a thread of its own, and what a window may ask of it meanwhile.
class RunningJob
{
public:
    struct State {
        std::size_t done = 0; ///< pages
        std::vector<std::pair<std::size_t, base::Status>>
            failures;                          ///< page, why it or a part of it is missing
        std::optional<plot::JobReport> report; ///< when it is over
    };

    /// Begins at once.
    explicit RunningJob(plot::JobRequest request);
    /// Ends it, and waits for that: less than a second.
    ~RunningJob();
    RunningJob(const RunningJob&) = delete;
    RunningJob& operator=(const RunningJob&) = delete;

    const plot::JobRequest& request() const { return m_request; }
    State state() const;
    void cancel() { m_isCancelled = true; }

private:
    class Watcher;
    const plot::JobRequest m_request;
    std::atomic<bool> m_isCancelled = false;
    mutable std::mutex m_mutex; // guards m_state
    State m_state;
    std::thread m_thread; // last: it uses the others
};

/// All jobs that run; those that still do when the module goes are ended.
class RunningJobs
{
public:
    static RunningJobs& all();
    std::shared_ptr<RunningJob> start(plot::JobRequest request);
    void forget(const std::shared_ptr<RunningJob>& job);
    bool isEmpty() const { return m_jobs.empty(); }

private:
    std::vector<std::shared_ptr<RunningJob>> m_jobs;
};

} // namespace plotcmds
