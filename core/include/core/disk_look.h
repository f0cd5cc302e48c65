#pragma once

#include <memory>
#include <string>
#include <vector>

#include <base/file_ops.h>
#include <base/tv_string.h>
#include <core/apart_work.h>

class TvSmFileReference;

namespace core {

/// Asks the disk about files in a thread of its own, so that whoever shows the answers never waits
/// longer than he wants to. A call of the system to a file server that is away may take minutes,
/// and nothing can interrupt it.
///
/// Questions are answered one after the other. A folder that does not answer is not asked again,
/// and the marks of those who have drawings open are listed once for each folder.
class DiskLook
{
public:
    struct Question {
        std::vector<std::string>
            places; ///< as the system names them; the first that is there counts
    };
    enum class What { Nothing, File, FileInUse, Other };
    struct Answer {
        What what = What::Nothing;
        std::size_t place = 0; ///< which of the places
    };

    /// @note asks the disk nothing. Places that must not be touched are left out.
    static Question questionAbout(const TvSmFileReference& reference);

    /// @param ops  asked in the other thread; not owned, outlives it.
    explicit DiskLook(std::vector<Question> questions, base::FileOps& ops = base::systemFileOps());

    static constexpr int kForEver = ApartWork::kForEver;
    /// Whether the first @p count questions are answered, within @p waitMs.
    bool hasAnswered(std::size_t count, int waitMs) const { return m_work.hasDone(count, waitMs); }
    /// @pre it is answered.
    Answer answer(std::size_t question) const;

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared; // the thread's, too
    ApartWork m_work;
};

} // namespace core
