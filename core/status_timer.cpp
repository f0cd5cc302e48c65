#include <core/status_timer.h>

#include <core/short_variable.h>
#include <sm/kv_db_util.h>

namespace core {

namespace {

constexpr std::int16_t kNever = 0, kByTimer = 2;
constexpr int kMsPerSecond = 1000;

std::int16_t mode()
{
    return shortVariable(u"SSMSHEETSTATUS").value_or(kNever);
}

} // namespace

/// False, and the timer as it was, when the period cannot be read.
bool StatusTimer::start()
{
    const std::optional<std::int16_t> seconds = shortVariable(u"SSMPOLLTIME");
    if (!seconds)
        return false;
    m_page.startTimer(kId, *seconds * kMsPerSecond);
    return m_isRunning = true;
}

void StatusTimer::stop()
{
    if (m_isRunning)
        m_page.stopTimer(kId);
    m_isRunning = false;
}

void StatusTimer::treeCleared()
{
    stop();
}

void StatusTimer::treeFilled()
{
    if (mode() != kNever)
        m_page.UpdateStatusImages();
    if (mode() == kByTimer)
        start();
}

void StatusTimer::SetSheetStatusMode(std::int16_t mode)
{
    if (mode == kNever)
        m_page.ResetStatusImages();
    else
        m_page.UpdateStatusImages();
    if (mode == kByTimer)
        start();
    else
        stop();
}

void StatusTimer::SetPollTime(std::int16_t seconds)
{
    if (!m_isRunning)
        return;
    m_page.stopTimer(kId);
    m_page.startTimer(kId, seconds * kMsPerSecond);
}

void StatusTimer::UpdateSheetStatusIfEnabled()
{
    if (mode() != kNever)
        m_page.UpdateStatusImages();
}

void StatusTimer::fired(const TvSmDatabase* current)
{
    const TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    if (m_page.isVisible() && !(current && current->isBusy()) && !(manager && manager->isBusy()))
        m_page.UpdateStatusImages();
}

} // namespace core
