#pragma once

#include <map>

#include <base/file_ops.h>
#include <operations/rename_journal.h>

namespace operations {

/// The moves of a rename, forth and back. Each can be done again from anywhere in its middle.
class RenameFiles
{
public:
    /// @param ops, journal  not owned; outlive us.
    RenameFiles(base::FileOps& ops, const RenameJournal& journal) : m_ops(ops), m_journal(journal)
    {
    }
    /// What a drawing was when it was read; one that is something else when it leaves is a
    /// conflict.
    void noteRead(std::size_t drawing, const base::FileStamp& stamp) { m_read[drawing] = stamp; }
    /// Writes a new content, with the rights of the drawing, flushes it and reads it back.
    base::Status stage(std::size_t drawing, std::span<const std::byte> bytes);
    /// A drawing leaves its name; somebody who has it open keeps it there (Locked).
    base::Status leave(std::size_t drawing);
    /// The new content takes its name.
    base::Status arrive(std::size_t drawing);
    /// All that arrived wait again beside their places.
    base::Status takeBackArrivals();
    /// All that left are at their old names again, and new contents are gone.
    base::Status takeBackLeaves();
    /// Nobody needs the former contents any more. @return whether all are gone.
    bool removeFormer();
    /// Down to the disk: the folders' names.
    base::Status flushFolders();
    /// Whether the drawing takes part in the moves at all.
    bool isTouched(std::size_t drawing) const;

private:
    bool isThere(const std::string& path);
    base::Status isAsRead(std::size_t drawing, const std::string& path);
    bool isContentOf(std::size_t drawing, const TvString& path);
    std::string keptPath(std::size_t drawing) const;
    /// Also where a former try broke off between the two halves of a move.
    base::Status move(const std::string& from, const std::string& to, const TvString& told);
    base::FileOps& m_ops;
    const RenameJournal& m_journal;
    std::map<std::size_t, base::FileStamp> m_read;
};

} // namespace operations
