#include "ask_in_time.h"

#include <algorithm>
#include <atomic>

#include <base/clock.h>
#include <base/path_rules.h>
#include <core/apart_work.h>
#include <core/drawing_look.h>

#include "silent_folders.h"

namespace core {

namespace {

constexpr std::size_t kMostLanes = 8;

std::string folderOf(const TvString& path)
{
    return folderOfNative(base::nativePath(path));
}

std::shared_ptr<void> noteAsked(const TvString& path)
{
    return std::make_shared<AskedFolder>(folderOf(path));
}

bool isAnySilent(const sm::DiskQuestion& question)
{
    return std::ranges::any_of(
        question.paths, [](const TvString& path) { return isSilent(folderOf(path), kPatienceMs); });
}

/// Questions that one thread asks, one after the other.
class Lane
{
public:
    void add(std::size_t index, sm::DiskQuestion question)
    {
        m_indices.push_back(index);
        m_shared->questions.push_back(std::move(question));
    }
    void begin(sm::Wanted wanted)
    {
        m_shared->answers.resize(m_shared->questions.size());
        m_work = std::make_unique<ApartWork>(
            m_shared->questions.size(),
            [all = m_shared, wanted](std::size_t i, const ApartWork::GivenUp&) {
                if (all->hasYes && wanted == sm::Wanted::FirstYes)
                    return;
                all->answers[i] = all->questions[i].ask(&noteAsked);
                all->hasYes = all->hasYes || all->answers[i];
            });
    }
    /// Takes what is answered within @p waitMs, and waits for no more.
    void take(int waitMs, std::vector<bool>& answers)
    {
        m_work->hasDone(m_indices.size(), waitMs);
        for (std::size_t i = 0; i < m_work->done(); ++i)
            answers[m_indices[i]] = m_shared->answers[i];
        m_work->giveUp();
    }

private:
    struct Shared {
        std::vector<sm::DiskQuestion> questions;
        std::vector<char> answers; // each is written before its step is done
        bool hasYes = false;       // the thread's
    };
    std::vector<std::size_t> m_indices;
    std::shared_ptr<Shared> m_shared = std::make_shared<Shared>(); // the thread's, too
    std::unique_ptr<ApartWork> m_work;                             // null until it begins
};

/// What is asked of one folder stands in one lane: a folder that is away holds up few others.
std::vector<Lane> lanesOf(std::vector<sm::DiskQuestion>&& questions)
{
    std::vector<std::string> folders;
    std::vector<Lane> lanes;
    for (std::size_t i = 0; i < questions.size(); ++i) {
        if (questions[i].paths.empty() || isAnySilent(questions[i]))
            continue;
        const std::string folder = folderOf(questions[i].paths.front());
        auto at = std::ranges::find(folders, folder);
        if (at == folders.end() && folders.size() < kMostLanes) {
            at = folders.insert(folders.end(), folder);
            lanes.emplace_back();
        }
        const std::size_t lane =
            at == folders.end() ? i % kMostLanes : static_cast<std::size_t>(at - folders.begin());
        lanes[lane].add(i, std::move(questions[i]));
    }
    return lanes;
}

} // namespace

std::vector<bool> askInTime(std::vector<sm::DiskQuestion> questions, sm::Wanted wanted)
{
    constexpr std::int64_t kNsPerMs = 1'000'000;
    std::vector<bool> answers(questions.size());
    std::vector<Lane> lanes = lanesOf(std::move(questions));
    const std::int64_t end = base::systemClock().steadyNs() + kPatienceMs * kNsPerMs;
    for (Lane& lane : lanes)
        lane.begin(wanted);
    for (Lane& lane : lanes) {
        const std::int64_t left = end - base::systemClock().steadyNs();
        lane.take(static_cast<int>(std::max<std::int64_t>(left, 0) / kNsPerMs), answers);
    }
    return answers;
}

} // namespace core
