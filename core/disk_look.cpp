#include <core/disk_look.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <base/status.h>
#include <db/file_open_info_tip_manager.h>
#include <sm/tv_sm_file_reference.h>

namespace core {

namespace {

constexpr std::string_view kMarkEnd = ".lk"; // of the hidden file of whoever has a drawing open

/// The share has dropped out: the rest of the folder will not answer either.
bool isAway(int error)
{
    return error == EIO ||
           base::Status::fromSystem(error, {}).failure() == base::Failure::Unreachable;
}

/// What is known of a folder in one look.
struct Folder {
    bool isAway = false;
    bool isListed = false;
    bool canBeListed = false;
    std::set<std::string> marks; ///< names of hidden files
};

/// The work of the thread: knows nothing of sheet sets.
class Asking
{
public:
    /// @param isGivenUp  from then on nothing is asked: the files may be gone.
    Asking(base::FileOps& ops, const std::atomic<bool>& isGivenUp)
        : m_ops(ops), m_isGivenUp(isGivenUp)
    {
    }

    DiskLook::Answer answer(const DiskLook::Question& question)
    {
        for (std::size_t i = 0; i < question.places.size(); ++i)
            if (const DiskLook::What what = lookAt(question.places[i]);
                what != DiskLook::What::Nothing)
                return {what, i};
        return {};
    }

private:
    DiskLook::What lookAt(const std::string& path)
    {
        using Kind = base::FileInfo::Kind;
        const std::size_t slash = path.rfind('/');
        const std::string folderName = path.substr(0, slash + 1); // npos + 1 is 0
        Folder& folder = m_folders[folderName];
        if (folder.isAway)
            return DiskLook::What::Nothing;
        base::FileInfo info;
        int error = m_ops.describeName(path, info);
        const bool isLink = !error && info.kind == Kind::Link;
        if (m_isGivenUp)
            return DiskLook::What::Nothing;
        if (isLink)
            error = m_ops.describeTarget(path, info);
        folder.isAway = isAway(error);
        if (error)
            return DiskLook::What::Nothing;
        if (info.kind != Kind::Regular)
            return info.kind == Kind::Folder ? DiskLook::What::Other : DiskLook::What::Nothing;
        if (m_isGivenUp)
            return DiskLook::What::Nothing;
        const bool mayHaveMark =
            isLink || hasMark(folder, folderName, path.substr(folderName.size()));
        return mayHaveMark && CFileOpenInfoTipManager::IsInfoFileExists(base::pathFromNative(path))
                   ? DiskLook::What::FileInUse
                   : DiskLook::What::File;
    }

    bool hasMark(Folder& folder, const std::string& folderName, const std::string& name)
    {
        if (!folder.isListed)
            list(folder, folderName);
        return !folder.canBeListed || folder.marks.contains("." + name + std::string(kMarkEnd));
    }

    void list(Folder& folder, const std::string& folderName)
    {
        std::vector<std::string> names;
        folder.isListed = true;
        folder.canBeListed = m_ops.list(folderName.empty() ? "." : folderName, names) == 0;
        for (std::string& name : names)
            if (name.starts_with('.') && name.ends_with(kMarkEnd))
                folder.marks.insert(std::move(name));
    }

    base::FileOps& m_ops;
    const std::atomic<bool>& m_isGivenUp;
    std::map<std::string, Folder> m_folders; // by name, with the slash at its end
};

/// Whether a path leads to a place of this system that may be asked.
bool mayAsk(const TvString& path)
{
    const bool hasDrive = base::PathRules::native().flavour() == base::PathFlavour::Posix &&
                          !base::PathRules::isSeparator(path.at(0));
    return !hasDrive && KvFileSystem::isTouchAllowed(path);
}

} // namespace

struct DiskLook::Shared {
    Shared(std::vector<Question>&& asked, base::FileOps& files)
        : questions(std::move(asked)), ops(files), answers(questions.size())
    {
    }

    void run()
    {
        Asking asking(ops, isGivenUp);
        for (std::size_t i = 0; i < questions.size() && !isGivenUp; ++i) {
            answers[i] = asking.answer(questions[i]);
            const std::lock_guard guard(mutex);
            answered = i + 1;
            if (answered >= wanted)
                changed.notify_all();
        }
        const std::lock_guard guard(mutex);
        isOver = true;
        changed.notify_all();
    }

    const std::vector<Question> questions;
    base::FileOps& ops;
    std::atomic<bool> isGivenUp = false;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Answer> answers; // written before answered says so
    std::size_t answered = 0;    // guarded, as the next two
    std::size_t wanted = 0;
    bool isOver = false;
};

DiskLook::Question DiskLook::questionAbout(const TvSmFileReference& reference)
{
    Question question;
    for (const TvString& place : sm::placesOf(reference))
        if (mayAsk(place))
            question.places.push_back(base::nativePath(place));
    return question;
}

DiskLook::DiskLook(std::vector<Question> questions, base::FileOps& ops)
    : m_shared(std::make_shared<Shared>(std::move(questions), ops))
{
    if (m_shared->questions.empty()) {
        m_shared->isOver = true;
        return;
    }
    try {
        std::thread([shared = m_shared] { shared->run(); }).detach();
    } catch (const std::system_error&) {
        m_shared->run(); // no threads to be had: better late than never
    }
}

DiskLook::~DiskLook()
{
    constexpr std::chrono::milliseconds kForOneCall(50);
    m_shared->isGivenUp = true;
    std::unique_lock guard(m_shared->mutex);
    m_shared->changed.wait_for(guard, kForOneCall, [this] { return m_shared->isOver; });
}

bool DiskLook::hasAnswered(std::size_t count, int waitMs) const
{
    if (count <= m_seen)
        return true;
    std::unique_lock guard(m_shared->mutex);
    m_shared->wanted = count;
    const auto isThere = [&] { return m_shared->answered >= count; };
    if (waitMs == kForEver)
        m_shared->changed.wait(guard, isThere);
    else
        m_shared->changed.wait_for(guard, std::chrono::milliseconds(waitMs), isThere);
    m_seen = m_shared->answered;
    return count <= m_seen;
}

DiskLook::Answer DiskLook::answer(std::size_t question) const
{
    return m_shared->answers[question];
}

bool answersInTime(const TvSmFileReference& reference, int waitMs, bool& isFile)
{
    const DiskLook look({DiskLook::questionAbout(reference)});
    const bool isAnswered = look.hasAnswered(1, waitMs);
    const auto what = isAnswered ? look.answer(0).what : DiskLook::What::Nothing;
    isFile = what == DiskLook::What::File || what == DiskLook::What::FileInUse;
    return isAnswered;
}

} // namespace core
