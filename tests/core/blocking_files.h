#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include <base/faulty_file_ops.h>

/// A file server that is away: each question waits until it is back. Notes who asks.
class BlockingFiles : public base::FaultyFileOps
{
public:
    explicit BlockingFiles(std::thread::id forbidden)
        : FaultyFileOps(base::systemFileOps()), m_forbidden(forbidden)
    {
    }
    ~BlockingFiles() override
    {
        answer();
        waitForEnd();
    }
    int describeName(const std::string& path, base::FileInfo& out) override
    {
        wait();
        return base::systemFileOps().describeName(path, out);
    }
    int list(const std::string& folder, std::vector<std::string>& out) override
    {
        wait();
        return base::systemFileOps().list(folder, out);
    }
    /// It is back.
    void answer()
    {
        const std::lock_guard guard(m_mutex);
        m_isBack = true;
        m_changed.notify_all();
    }
    /// Until somebody has asked.
    void waitForQuestion()
    {
        std::unique_lock guard(m_mutex);
        m_changed.wait(guard, [this] { return m_asked > 0; });
    }
    /// Until nobody is in here any more.
    void waitForEnd()
    {
        std::unique_lock guard(m_mutex);
        m_changed.wait(guard, [this] { return m_inside == 0; });
    }
    int asked() const
    {
        const std::lock_guard guard(m_mutex);
        return m_asked;
    }
    /// How often a thread asked that must never wait.
    int askedByForbidden() const
    {
        const std::lock_guard guard(m_mutex);
        return m_askedByForbidden;
    }

private:
    void wait()
    {
        std::unique_lock guard(m_mutex);
        ++m_asked;
        m_askedByForbidden += std::this_thread::get_id() == m_forbidden;
        m_changed.notify_all();
        ++m_inside;
        if (std::this_thread::get_id() != m_forbidden)
            m_changed.wait(guard, [this] { return m_isBack; });
        --m_inside;
        m_changed.notify_all();
    }

    const std::thread::id m_forbidden;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isBack = false;
    int m_asked = 0, m_askedByForbidden = 0, m_inside = 0;
};
