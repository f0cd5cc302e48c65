#pragma once

#include <cstdint>

class TvSmDatabase;

namespace core {

/// When the images of sheets are refreshed: at events when SSMSHEETSTATUS is 1, by a timer as well
/// when it is 2, never when it is 0 or cannot be read. The timer's period is SSMPOLLTIME.
///
/// Whoever shows the images supplies what is done.
class StatusTimer
{
public:
    /// The timer's number, by which the page knows it.
    static constexpr int kId = 258;

    class Page
    {
    public:
        virtual ~Page() = default;
        virtual void UpdateStatusImages() = 0;
        virtual void ResetStatusImages() = 0;
        /// A timer that runs gets the new period.
        virtual void startTimer(int id, int periodMs) = 0;
        virtual void stopTimer(int id) = 0;
        /// Shown, and not rolled up.
        virtual bool isVisible() const = 0;
    };

    /// @param page  not owned; outlives this.
    explicit StatusTimer(Page& page) : m_page(page) {}

    /// A tree is about to be filled: the timer stops.
    void treeCleared();
    /// A tree was filled: images are refreshed and the timer starts, as the variables say.
    void treeFilled();
    /// SSMSHEETSTATUS is @p mode now. Mode 2 without a readable period leaves the timer as it is;
    /// 0 and 1 stop it.
    void SetSheetStatusMode(std::int16_t mode);
    /// SSMPOLLTIME is @p seconds now. Nothing while the timer does not run.
    void SetPollTime(std::int16_t seconds);
    /// After sheets were added, moved or changed.
    void UpdateSheetStatusIfEnabled();
    /// The timer fired. Nothing while the panel cannot be seen, and while the set or the manager is
    /// busy.
    void fired(const TvSmDatabase* current);

    bool isRunning() const { return m_isRunning; }

private:
    bool start();
    void stop();

    Page& m_page;
    bool m_isRunning = false;
};

} // namespace core
