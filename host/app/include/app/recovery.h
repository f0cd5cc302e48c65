#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <base/file_ops.h>
#include <base/status.h>

class TvApDocManager;
class TvDbDatabase;

namespace app {

class DrawingWatch;

/// A drawing that was open when a run ended without an orderly end.
struct LostDrawing {
    TvString file; ///< as the user knows it; of a drawing without a file the name it was shown by
    bool hasFile = true;
    TvString copy; ///< the path of the private copy with the unsaved changes; empty: it had none
};

/// What one run that ended in disorder left behind.
struct LostSession {
    TvString folder;
    std::vector<LostDrawing> drawings;
};

/// Keeps, while the program runs, what a crash would lose: which drawings are open, and private
/// copies of those with unsaved changes. The user's own files are never touched.
///
/// Each run has a folder of its own, which its owner alone can look into. The folder is held by a
/// system lock, so that a folder that nobody holds belongs to a run that has ended; an orderly end
/// takes it away.
class RecoveryKeeper
{
public:
    /// @param parent  the folder of all runs' folders; empty: nothing is kept.
    /// @param ops     not owned; outlives us.
    explicit RecoveryKeeper(const TvString& parent, base::FileOps& ops = base::systemFileOps());
    ~RecoveryKeeper(); ///< end()
    RecoveryKeeper(const RecoveryKeeper&) = delete;
    RecoveryKeeper& operator=(const RecoveryKeeper&) = delete;

    /// Brings the folder up to what is open now. Drawings that did not change since their last copy
    /// cost nothing.
    /// @return the first failure; the next call tries again.
    base::Status keep(TvApDocManager& documents, const DrawingWatch& watch);
    /// Takes the folder away.
    void end();
    /// Leaves the folder to the next start, as a crash would: for an end that nobody could be asked
    /// about.
    void leave();
    /// Empty when it could not be made.
    const TvString& folder() const { return m_folder; }

private:
    struct Copy {
        TvString name; // of the file in the folder; empty: none
        std::uint64_t changes = 0;
    };
    base::Status keepCopy(const void* database, Copy& copy, std::uint64_t changes);
    base::Status write(const TvString& name, std::string_view bytes);

    base::FileOps& m_ops;
    TvString m_folder;
    base::FileOps::Descriptor m_lock = base::FileOps::kNone;
    std::map<const void*, Copy> m_copies; // by database
    std::string m_list;                   // as written last
    int m_lastCopy = 0;
};

/// The runs below @p parent that ended without an orderly end, the oldest first. What makes no
/// sense there is left out.
std::vector<LostSession> lostSessions(const TvString& parent,
                                      base::FileOps& ops = base::systemFileOps());
/// Takes what a run left behind away: it was recovered, or the user does not want it.
void discard(const LostSession& session, base::FileOps& ops = base::systemFileOps());

/// Makes a drawing one that has unsaved changes, without changing anything: what was recovered is
/// kept and asked about until it is saved.
void markAsChanged(TvDbDatabase& database);

} // namespace app
