#pragma once

#include <set>

#include "base/publish.h"
#include "file_guard.h"
#include "move_to_free_name.h"
#include "publish_names.h"

namespace base {

/// One commit on its way to disk: the steps of publishVersion().
class Publication
{
public:
    /// What to do when a replace failed half-way and left no file under the name.
    enum class Healing { Yes, No };

    /// All but @p names and @p request.bytes are copied or outlive us.
    Publication(FileOps& ops, Clock& clock, PublishNames names, const PublishRequest& request,
                Healing healing);
    Publication(const Publication&) = delete;
    Publication& operator=(const Publication&) = delete;

    Result<PublishOutcome> run();

private:
    /// How a step ended, and where the commit goes from there.
    enum class Step {
        Next,     ///< The next step.
        Done,     ///< Published: nothing more to do.
        Again,    ///< Withdraw, wait, and start again from the payload.
        Conflict, ///< Somebody else's version is there.
        Failed,   ///< m_failure says why.
    };
    /// Whose version the file's name stands for.
    enum class Content { Ours, Superseded, Base, Other, Missing, Unknown };

    Step tryOnce();
    Status checkTarget();
    Step writePayload();
    Step verifyPayload();
    Step nameTwice();
    Step fence();
    Step compareBase();
    Step compareVanished();
    Step settle(const FileStamp& stamp);
    Step keepReplaced();
    Step linkReplaced(std::uint64_t number);
    Step copyReplaced(std::uint64_t number);
    Step putInPlace();
    Step afterLoss();
    Step afterError(int error);
    Step flushFolder();
    Step confirm();
    Step restore();
    Step keepPublished();
    void trim();

    Content whatIsThere();
    bool isSuperseded();
    bool isOurs(const std::string& version);
    bool deservesManners(const HelperFile& rival, const FileInfo& info) const;
    int findRivals(std::vector<HelperFile>& rivals);
    int findMetadataSource(std::string& out);
    void waitForOthers();
    bool hasPatience();
    void withdraw();
    Status conflict();
    std::string keepRecovery();
    int writeRecovery(const std::string& path);

    Step fail(int error);
    Step fail(Status status);

    FileOps& m_ops; // not owned
    Clock& m_clock; // not owned
    const PublishNames m_names;
    const PublishRequest m_request;
    const Healing m_healing;
    const ContentHash m_hash; ///< Of our version.
    const std::string m_token;
    const std::string m_payload, m_pending, m_revoked; ///< Our names beside the file.
    const std::int64_t m_startNs;

    FileGuard m_folder;                 ///< Open from the first check to the flush.
    std::string m_rightsFrom;           ///< Whose mode and owner the payload has.
    bool m_isCopying = false;           ///< Hard links are refused here.
    FileStamp m_ours;                   ///< Of the payload, which keeps it through the rename.
    std::vector<HelperFile> m_versions; ///< As the fence saw them, the newest first.
    FileStamp m_replaced;               ///< Of the version that goes.
    bool m_isAbsent = false;            ///< There is nothing to replace.
    std::uint64_t m_number = 1;         ///< Of our version among the published ones.
    std::string m_keptAs;               ///< The name that the version being replaced keeps.
    std::string m_yieldTo;              ///< Path of the payload that goes first, for one round.
    int m_rounds = 0;                   ///< Started again without knowing whom to wait for.
    std::set<std::string> m_waitedFor;  ///< Paths of payloads that had their second.
    FileStamp m_stamp;                  ///< Of the published file.
    Status m_failure;
};

/// Whether two stamps are of one file, in whatever state.
inline bool isOneFile(const FileStamp& a, const FileStamp& b)
{
    return a.device == b.device && a.inode == b.inode;
}

/// Puts the newest published version back where the file is missing; never over a file. NotFound
/// when there is none.
Status healVanished(FileOps& ops, Clock& clock, const PublishNames& names);

} // namespace base
