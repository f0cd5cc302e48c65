#pragma once

#include <memory>
#include <unordered_map>

#include <db/attached_drawings.h>

#include "scene.h"

namespace gs {

/// What there is to see of a block that is an external reference.
struct AttachedReference {
    std::shared_ptr<TvDbDatabase> drawing;
    std::unique_ptr<Scene> scene; ///< of the drawing; null: not shown
    base::FileStamp file;
    TvGePoint3d origin; ///< of the block, as the drawing that names it has it
    TvString lost;      ///< the path that stands for what cannot be shown; else empty
};

/// The external references that one list shows: each is opened once, and stays while the list is
/// made.
///
/// Keeps: a drawing outlives its scene; no drawing is shown within itself.
class Attachments
{
public:
    /// @param files  not owned; null: files are opened for this list only.
    Attachments(TvDbDatabase& host, ListWriter& writer, db::AttachedDrawings* files);
    ~Attachments();

    using Reference = AttachedReference;
    /// @param namer  draws the insert. @return for a block like others: nothing to show.
    const Reference& of(TvDbObjectId block, Scene& namer);

    /// While a reference is drawn; false: it is being drawn already, or has no scene.
    class Opening
    {
    public:
        Opening(Attachments& all, const Reference& reference);
        ~Opening();
        Opening(const Opening&) = delete;
        Opening& operator=(const Opening&) = delete;
        explicit operator bool() const { return m_isOpen; }

    private:
        Attachments& m_all;
        bool m_isOpen = false;
    };

private:
    bool isHost(const TvString& path) const;
    void open(Reference& reference, const TvDbBlockTableRecord& block, Scene& namer);
    void lose(Reference& reference, const TvDbBlockTableRecord& block, base::Status why);

    static constexpr std::size_t kMostReferences = 1000;
    static constexpr std::uint64_t kMostBytes = std::uint64_t(1) << 30; // of all files together

    ListWriter& m_writer;
    std::unique_ptr<db::AttachedDrawings> m_own;
    db::AttachedDrawings& m_files;
    TvString m_host;
    std::size_t m_count = 0;
    std::uint64_t m_bytes = 0;
    std::unordered_map<TvDbObjectId, Reference> m_references; // values stay where they are
    std::vector<base::FileStamp> m_open;                      // from the host inwards
};

} // namespace gs
