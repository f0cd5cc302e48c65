#pragma once

#include <list>
#include <memory>
#include <vector>

#include <base/file_ops.h>
#include <base/reasons.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_xref_graph.h>

namespace db {

/// Why an external reference is not shown: the numbers of texts, as any base::Reason.
/// 1: the reference's name, 2: the path as the drawing has it.
constexpr base::Reason kXrefMissing{23930};    ///< there is no such file
constexpr base::Reason kXrefUnreadable{23931}; ///< it is no drawing, or a damaged one
constexpr base::Reason kXrefNotTouched{23932}; ///< on a network host that nobody agreed to
constexpr base::Reason kXrefTooMany{23933};    ///< more than one picture shows

/// The drawings that others show as external references, opened for looking.
///
/// A file is read when it is first asked for, and stays in memory while it is the same on the disk:
/// also after nobody uses it any more, as far as the limits go. It is never written and never held:
/// anybody may replace it, and the next question reads it anew. What cannot be read is not tried
/// again until it changes.
/// @note one thread at a time: who draws in several has one of these in each.
class AttachedDrawings
{
public:
    /// How much is kept of what nobody uses at the moment.
    struct Limits {
        std::size_t drawings = 32;
        std::uint64_t bytes = std::uint64_t(256) << 20; ///< of their files
    };

    AttachedDrawings() : AttachedDrawings(Limits()) {}
    explicit AttachedDrawings(const Limits& limits) : m_limits(limits) {}
    AttachedDrawings(const AttachedDrawings&) = delete;
    AttachedDrawings& operator=(const AttachedDrawings&) = delete;

    struct Opened {
        std::shared_ptr<TvDbDatabase> database; ///< null unless status is kXrfResolved
        TvString path;                          ///< of the file; where it should be
        TvDb::XrefStatus status = TvDb::kXrfUnresolved;
        base::FileStamp file; ///< which one it is; its size is 0 when there is none
    };
    /// Opens the drawing that a reference means. Paths are understood as in an XrefGraph.
    /// @param saved  as the drawing has it.
    /// @param namer  the drawing that names it; empty when it has no file.
    /// @param host   the drawing that shows that one.
    Opened open(const TvString& saved, const TvString& namer, const TvString& host);

    /// How many files were read so far.
    std::size_t loads() const { return m_loads; }
    /// How many drawings are in memory because of this.
    std::size_t kept() const;

private:
    struct Entry {
        TvString path;
        base::FileStamp file;
        std::shared_ptr<TvDbDatabase> database; // null: it cannot be read
    };
    const Entry& entryOf(const TvString& path, const base::FileStamp& file);
    void drop();

    Limits m_limits;
    std::list<Entry> m_entries; // the one that was used last in front
    std::size_t m_loads = 0;
};

/// An external reference that is not shown though nobody wants it so.
struct LostReference {
    TvString name, savedPath;
    base::Status why; ///< kXrefMissing and the like
};
/// Why the reference is not shown; success for those that are, and those that nobody wants to see.
base::Status whyNotShown(TvDb::XrefStatus status, const TvString& name, const TvString& savedPath,
                         const TvString& path);
/// The references of @p host, and theirs, that cannot be shown. Opens them all.
std::vector<LostReference> lostReferences(TvDbDatabase& host, AttachedDrawings& attached);

/// Reads a drawing from bytes that stand for the file @p path: what it names begins there.
/// @return as TvDbDatabase::readDwgBytes().
TvStatusCode readBytesAs(TvDbDatabase& database, std::vector<std::uint8_t> bytes,
                         const TvString& path);

} // namespace db
