#include <algorithm>
#include <mutex>

#include <base/atomic_replace.h>
#include <base/file_identity.h>
#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/file_open_info_tip_manager.h>

#include "database_extras.h"

namespace db {

namespace {

constexpr std::uint64_t kLargestFile = std::uint64_t(1) << 31;

base::FileOps* g_files = nullptr;
base::Clock* g_clock = nullptr;
OpenDocuments* g_documents = nullptr;

/// A database that holds a file for writing.
struct Holder {
    const DatabaseImpl* database;
    std::optional<base::FileIdentity> file; ///< the disk is not asked for it again and again
};
std::vector<Holder> g_holders;
std::mutex g_holdersMutex; // others may be made and go in other threads

bool holds(const Holder& holder, const TvString& path,
           const std::optional<base::FileIdentity>& meant)
{
    const base::PathRules& rules = base::PathRules::native();
    const TvString& held = holder.database->originalPath;
    if (rules.normalise(held) == rules.normalise(path))
        return true;
    // What it holds may lie where nothing answers: it is asked about only if all speaks for it.
    return (meant ? holder.file == meant : rules.isSame(held, path)) && isSameFile(held, path);
}

} // namespace

bool isSameFile(const TvString& a, const TvString& b)
{
    const base::PathRules& rules = base::PathRules::native();
    if (rules.normalise(a) == rules.normalise(b) || KvFileSystem::isSameFile(a, b))
        return true;
    // Of two spellings the disk knows whether they are two files, as long as one of them is there.
    const auto isThere = [](const TvString& path) {
        return KvFileSystem::pathFileExists(path, 1, 0);
    };
    return !isThere(a) && !isThere(b) && rules.isSame(a, b);
}

TvStatusCode codeFor(const base::Status& status, TvStatusCode otherwise)
{
    switch (status.failure()) {
    case base::Failure::None: return TvStatus::Ok;
    case base::Failure::NotFound: return TvStatus::FileNotFound;
    case base::Failure::ReadOnly: return TvStatus::FileReadOnly;
    case base::Failure::Conflict: return TvStatus::FileChanged;
    case base::Failure::Locked: return TvStatus::FileInUse;
    case base::Failure::Unsupported: return TvStatus::VersionNotWritable;
    default: return otherwise;
    }
}

void setOpenDocuments(OpenDocuments* documents)
{
    g_documents = documents;
}

void setDatabaseEnvironment(base::FileOps* ops, base::Clock* clock)
{
    g_files = ops;
    g_clock = clock;
}

TvDbDatabase* documentDatabase(const TvString& path)
{
    return g_documents ? g_documents->databaseOf(path) : nullptr;
}

base::FileOps& databaseFiles()
{
    return g_files ? *g_files : base::systemFileOps();
}

base::Clock& databaseClock()
{
    return g_clock ? *g_clock : base::systemClock();
}

bool isHeldByAnother(const TvString& path, const DatabaseImpl& asking)
{
    const std::optional<base::FileIdentity> meant = base::identityOf(path);
    for (const Holder& holder : g_holders)
        if (holder.database != &asking && holder.database->holdsFile && holds(holder, path, meant))
            return true;
    return isUsedByAnother(path, asking.owner());
}

void noteSaved(const DatabaseImpl& database)
{
    const auto holder = std::ranges::find(g_holders, &database, &Holder::database);
    if (holder != g_holders.end() && isSameFile(database.path, database.originalPath))
        holder->file = base::identityOf(database.path);
}

DatabaseImpl::~DatabaseImpl()
{
    {
        const std::lock_guard guard(g_holdersMutex);
        std::erase_if(g_holders, [this](const Holder& each) { return each.database == this; });
    }
    endUse(m_owner);
}

// Reading

TvStatusCode DatabaseImpl::readBytes(std::vector<std::uint8_t> bytes)
{
    if (m_file || slotCount() > 0)
        return TvStatus::InvalidInput;
    const std::span<const std::uint8_t> head(bytes.data(),
                                             std::min<std::size_t>(bytes.size(), 4096));
    const Codec* codec = codecFor(head);
    if (!codec)
        return fail({base::Failure::Unsupported, base::Reason::DwgNotDrawing},
                    TvStatus::FileNotReadable);
    base::Result<std::unique_ptr<DrawingFile>> file = codec->open(std::move(bytes));
    if (!file)
        return fail(file.status(), TvStatus::FileNotReadable);
    if (base::Status status = take(std::move(*file)); !status)
        return fail(std::move(status), TvStatus::FileNotReadable);
    return TvStatus::Ok;
}

TvStatusCode DatabaseImpl::readFile(const TvString& wanted, int mode)
{
    if (m_file || slotCount() > 0)
        return TvStatus::InvalidInput;
    const bool isExclusive = mode == TvDb::kReadAndWrite || mode == TvDb::kShareNoWrite;
    if (isExclusive && isHeldByAnother(wanted, *this))
        return fail(statusOfHeld(wanted), TvStatus::FileInUse);
    base::Result<base::FileContent> content =
        base::readWhole(databaseFiles(), wanted, kLargestFile);
    if (!content)
        return fail(content.status(), codeFor(content.status(), TvStatus::FileNotReadable));
    const auto* first = reinterpret_cast<const std::uint8_t*>(content->bytes.data());
    const base::ContentHash hash = base::hashOf(content->bytes);
    const base::FileStamp stamp = content->stamp;
    std::vector<std::uint8_t> bytes(first, first + content->bytes.size());
    content->bytes = {};
    if (const TvStatusCode status = readBytes(std::move(bytes)))
        return status;
    path = originalPath = wanted;
    fileHash = hash;
    holdsFile = mode == TvDb::kReadAndWrite;
    if (holdsFile) {
        const std::lock_guard guard(g_holdersMutex);
        g_holders.push_back({this, base::FileIdentity{stamp.device, stamp.inode}});
    }
    return TvStatus::Ok;
}

} // namespace db

TvStatusCode TvDbDatabase::readDbByDocName(const TvString& path)
{
    TvDbDatabase* open = db::documentDatabase(path);
    if (!open)
        return readDwgFile(path);
    base::Result<std::vector<std::uint8_t>> bytes = open->toBytes(db::FileFormat::Dwg);
    if (!bytes)
        return m_impl->fail(bytes.status(), TvStatus::FileNotReadable);
    const TvStatusCode status = readDwgBytes(std::move(*bytes));
    if (status == TvStatus::Ok)
        m_impl->path = m_impl->originalPath = path;
    return status;
}
