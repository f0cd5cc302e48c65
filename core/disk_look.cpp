#include <core/disk_look.h>

#include <cerrno>
#include <map>
#include <set>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <base/status.h>
#include <db/file_open_info_tip_manager.h>
#include <sm/tv_sm_file_reference.h>

#include "silent_folders.h"

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
    explicit Asking(base::FileOps& ops) : m_ops(ops) {}

    /// @param isGivenUp  from then on nothing is asked: the files may be gone.
    DiskLook::Answer answer(const DiskLook::Question& question, const ApartWork::GivenUp& isGivenUp)
    {
        m_isGivenUp = &isGivenUp;
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
        const std::string folderName = folderOfNative(path);
        Folder& folder = m_folders[folderName];
        if (folder.isAway)
            return DiskLook::What::Nothing;
        const AskedFolder asked(folderName);
        base::FileInfo info;
        int error = m_ops.describeName(path, info);
        const bool isLink = !error && info.kind == Kind::Link;
        if (*m_isGivenUp)
            return DiskLook::What::Nothing;
        if (isLink)
            error = m_ops.describeTarget(path, info);
        folder.isAway = isAway(error);
        if (error)
            return DiskLook::What::Nothing;
        if (info.kind != Kind::Regular)
            return info.kind == Kind::Folder ? DiskLook::What::Other : DiskLook::What::Nothing;
        if (*m_isGivenUp)
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
    const ApartWork::GivenUp* m_isGivenUp = nullptr; // of the step that runs
    std::map<std::string, Folder> m_folders;         // by name, with the slash at its end
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
        : questions(std::move(asked)), answers(questions.size()), asking(files)
    {
    }
    const std::vector<Question> questions;
    std::vector<Answer> answers; // each is written before its step is done
    Asking asking;               // the thread's
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
    : m_shared(std::make_shared<Shared>(std::move(questions), ops)),
      m_work(m_shared->questions.size(),
             [shared = m_shared](std::size_t i, const ApartWork::GivenUp& isGivenUp) {
                 shared->answers[i] = shared->asking.answer(shared->questions[i], isGivenUp);
             })
{
}

DiskLook::Answer DiskLook::answer(std::size_t question) const
{
    return m_shared->answers[question];
}

} // namespace core
