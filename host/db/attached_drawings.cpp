#include <db/attached_drawings.h>

#include <algorithm>

#include <base/kv_file_system.h>

#include "database_extras.h"
#include "database_impl.h"
#include "xref_paths.h"

namespace db {

AttachedDrawings::Opened AttachedDrawings::open(const TvString& saved, const TvString& namer,
                                                const TvString& host)
{
    const XrefPlace place = findXref(saved, namer, host);
    Opened opened;
    opened.path = place.path;
    opened.status = statusOf(place);
    base::FileInfo info;
    if (!place.isThere)
        return opened;
    if (databaseFiles().describeTarget(base::nativePath(place.path), info) != 0) {
        opened.status = TvDb::kXrfFileNotFound; // it went this moment
        return opened;
    }
    const Entry& entry = entryOf(place.path, info.stamp);
    opened.file = info.stamp;
    opened.database = entry.database;
    if (!entry.database)
        opened.status = TvDb::kXrfUnresolved;
    return opened;
}

/// The drawing of that file as it is now.
const AttachedDrawings::Entry& AttachedDrawings::entryOf(const TvString& path,
                                                         const base::FileStamp& file)
{
    const auto found = std::ranges::find(m_entries, path, &Entry::path);
    if (found != m_entries.end())
        m_entries.splice(m_entries.begin(), m_entries, found);
    else
        m_entries.push_front({path, {}, nullptr});
    Entry& entry = m_entries.front();
    if (found == m_entries.end() || entry.file != file) {
        entry.file = file;
        entry.database.reset();
        ++m_loads;
        auto drawing = std::make_shared<TvDbDatabase>(false, true);
        if (drawing->readDwgFile(path, TvDb::kReadAllShare) == TvStatus::Ok)
            entry.database = std::move(drawing);
        drop();
    }
    return entry;
}

/// What nobody uses and goes beyond the limits, the longest unused first; never the first one.
void AttachedDrawings::drop()
{
    std::size_t drawings = 0;
    std::uint64_t bytes = 0;
    for (auto at = std::next(m_entries.begin()); at != m_entries.end();) {
        if (at->database.use_count() > 1) {
            ++at;
            continue;
        }
        ++drawings;
        bytes += at->database ? at->file.size : 0;
        const bool isBeyond = drawings > m_limits.drawings || bytes > m_limits.bytes;
        at = isBeyond ? m_entries.erase(at) : std::next(at);
    }
}

std::size_t AttachedDrawings::kept() const
{
    return static_cast<std::size_t>(std::ranges::count_if(
        m_entries, [](const Entry& entry) { return entry.database != nullptr; }));
}

base::Status whyNotShown(TvDb::XrefStatus status, const TvString& name, const TvString& savedPath,
                         const TvString& path)
{
    switch (status) {
    case TvDb::kXrfFileNotFound: return {base::Failure::NotFound, kXrefMissing, {name, savedPath}};
    case TvDb::kXrfUnresolved:
        if (!KvFileSystem::isTouchAllowed(path))
            return {base::Failure::Unreachable, kXrefNotTouched, {name, savedPath}};
        return {base::Failure::Damaged, kXrefUnreadable, {name, savedPath}};
    default: return {};
    }
}

TvStatusCode readBytesAs(TvDbDatabase& database, std::vector<std::uint8_t> bytes,
                         const TvString& path)
{
    const TvStatusCode status = database.readDwgBytes(std::move(bytes));
    if (status == TvStatus::Ok)
        database.impl().path = database.impl().originalPath = path;
    return status;
}

} // namespace db
