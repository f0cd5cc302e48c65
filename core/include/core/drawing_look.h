#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <base/file_identity.h>
#include <base/tv_string.h>
#include <core/apart_work.h>
#include <core/drawing_info_cache.h>

class TvApDocument;
class TvSmFileReference;
class TvSmTvDbLayoutReference;

namespace core {

/// What the disk tells of the drawing of one sheet.
struct DrawingFacts {
    TvString stored;      ///< the path as the set has it
    bool isThere = false; ///< a file, under the stored path
    bool isInUse = false; ///< somebody has the file of the stored path
    bool isUserKnown = false;
    TvString user, machine; ///< of whoever has it
    TvString resolved;      ///< where something is, file or folder; empty: nowhere
    bool isFile = false;    ///< a file is at the resolved path
    std::int64_t size = -1; ///< of the file that is shown, in bytes
    std::uint64_t modificationTime = 0;
    TvString openDocument;             ///< the document that has the drawing; empty: none
    std::unique_ptr<DrawingInfo> info; ///< what was read anew; null: known already, or unreadable
    bool isInfoFresh = false;          ///< what is known already is still right

    /// The file that is meant; empty when there is none.
    const TvString& path() const;
};

/// Asks the disk about a drawing that a set names, in a thread of its own; see ApartWork.
class DrawingLook
{
public:
    enum class Depth { Place, Facts, Content }; ///< each one tells what the former tells, and more
    struct Question {
        TvString stored;
        std::vector<TvString> places; ///< that may be asked; the first with something counts
        /// A drawing that is open. Its own folder is not asked: it may not answer any more.
        struct OpenDrawing {
            TvString name;
            std::optional<base::FileIdentity> file;
        };
        std::vector<OpenDrawing> documents;
        Depth depth = Depth::Place;
        bool isKnown = false; ///< its content, as of:
        TvString knownPath;
        std::uint64_t knownTime = 0;
        std::int64_t knownSize = -1;
    };
    /// @param known  where contents are remembered; null asks for nothing of the kind.
    /// @note asks the disk nothing.
    static Question questionAbout(const TvSmFileReference& reference, Depth depth,
                                  const DrawingInfoCache* known = nullptr);
    /// At once, in the thread of whoever asks.
    static DrawingFacts answer(const Question& question);

    explicit DrawingLook(Question question);
    ~DrawingLook(); ///< Waits for nothing.
    /// Somebody waits for one of the folders already, and has for longer than anybody here would.
    static bool isSilent(const Question& question);

    bool hasAnswered(int waitMs) const { return m_work.hasDone(1, waitMs); }
    /// @pre it is answered.
    DrawingFacts& facts() { return m_shared->facts; }

private:
    struct Shared {
        Question question;
        DrawingFacts facts;
    };
    std::shared_ptr<Shared> m_shared; // the thread's, too
    ApartWork m_work;
};

/// The document of that very name; null when there is none. Asks the disk nothing.
TvApDocument* openDocumentNamed(const TvString& name);

/// How long the panel waits for the disk before it goes on without the answer.
constexpr int kPatienceMs = 80;

/// The place of a sheet's drawing, when the disk tells it in time.
std::optional<DrawingFacts> placeInTime(const TvSmTvDbLayoutReference& reference,
                                        int waitMs = kPatienceMs);

} // namespace core
