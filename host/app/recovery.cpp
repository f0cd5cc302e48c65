#include "app/recovery.h"

#include <algorithm>
#include <filesystem>

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <base/atomic_replace.h>
#include <base/clock.h>
#include <base/kv_file_system.h>
#include <db/tv_db_database.h>
#include <ed/tv_ap_doc_manager.h>

#include "app/drawing_watch.h"

namespace app {

namespace {

using nlohmann::json;

constexpr std::u16string_view kLockFile = u"run.lock", kList = u"open.json";
constexpr std::int64_t kLongestList = 1 << 20;
constexpr std::size_t kMostDrawings = 1000;

TvString joined(const TvString& folder, std::u16string_view name)
{
    return base::PathRules::native().join(folder, name);
}

/// Paths are the system's bytes, which need be no UTF-8: as hexadecimal digits where they are not.
json textOf(const TvString& path)
{
    const std::string bytes = base::nativePath(path);
    if (base::isWellFormedUtf8(bytes))
        return bytes;
    json numbers = json::array();
    for (const char byte : bytes)
        numbers.push_back(static_cast<unsigned char>(byte));
    return numbers;
}

TvString pathOf(const json& member)
{
    if (member.is_string())
        return base::pathFromNative(member.get_ref<const std::string&>());
    std::string bytes;
    if (member.is_array())
        for (const json& byte : member)
            bytes += static_cast<char>(byte.is_number_unsigned() ? byte.get<unsigned>() & 0xFF : 0);
    return base::pathFromNative(bytes);
}

/// A name that we gave to a copy: nothing that leads out of the folder.
bool isCopyName(const std::string& name)
{
    return !name.empty() && name.find_first_not_of("0123456789.dwgxf") == std::string::npos &&
           name.find("..") == std::string::npos;
}

std::vector<LostDrawing> readList(const TvString& folder)
{
    std::vector<LostDrawing> drawings;
    const auto bytes = KvFileSystem::readFile(joined(folder, kList), kLongestList);
    if (!bytes)
        return drawings;
    const auto* text = reinterpret_cast<const char*>(bytes->data());
    const json whole = json::parse(text, text + bytes->size(), nullptr, false);
    if (!whole.is_object() || !whole.contains("drawings") || !whole["drawings"].is_array())
        return drawings;
    for (const json& row : whole["drawings"]) {
        if (!row.is_object() || !row.contains("file") || drawings.size() == kMostDrawings)
            continue;
        LostDrawing drawing{pathOf(row["file"]), row.value("named", json(true)) != json(false), {}};
        const json copy = row.value("copy", json());
        if (copy.is_string() && isCopyName(copy.get<std::string>())) {
            const TvString path = joined(folder, TvString(copy.get<std::string>().c_str()));
            if (KvFileSystem::isFileExisting(path))
                drawing.copy = path;
        }
        drawings.push_back(std::move(drawing));
    }
    return drawings;
}

bool isHeld(const TvString& folder, base::FileOps& ops)
{
    base::FileOps::Descriptor file = base::FileOps::kNone;
    if (ops.open(base::nativePath(joined(folder, kLockFile)),
                 base::FileOps::OpenMode::ReadWriteNoFollow, file) != 0)
        return true; // not one of ours, or being made at this moment
    bool held = true;
    if (ops.isByteLocked(file, 0, held) != 0)
        held = true;
    ops.close(file);
    return held;
}

void removeFolder(const TvString& folder, base::FileOps& ops)
{
    // The lock file last: until then it is known as a folder of ours.
    std::vector<KvFileSystem::Entry> entries = KvFileSystem::listFolder(folder);
    std::ranges::stable_partition(entries,
                                  [](const auto& entry) { return entry.name != kLockFile; });
    for (const KvFileSystem::Entry& entry : entries)
        ops.remove(base::nativePath(joined(folder, entry.name)));
    std::error_code ignored; // one that is not empty stays
    std::filesystem::remove(base::nativePath(folder), ignored);
}

bool makePrivate(const TvString& folder)
{
    if (!KvFileSystem::createDirectory(folder))
        return false;
    std::error_code failure;
    std::filesystem::permissions(base::nativePath(folder), std::filesystem::perms::owner_all,
                                 failure);
    return !failure;
}

} // namespace

RecoveryKeeper::RecoveryKeeper(const TvString& parent, base::FileOps& ops) : m_ops(ops)
{
    if (parent.isEmpty())
        return;
    const TvString name(std::to_string(base::systemClock().utcNs()) + "-" +
                        std::to_string(::getpid()));
    const TvString folder = joined(parent, name);
    if (!makePrivate(parent) || !makePrivate(folder))
        return;
    if (m_ops.open(base::nativePath(joined(folder, kLockFile)),
                   base::FileOps::OpenMode::CreateExclusive, m_lock) != 0 ||
        m_ops.lockByte(m_lock, 0) != 0) {
        removeFolder(folder, m_ops);
        return;
    }
    m_folder = folder;
}

RecoveryKeeper::~RecoveryKeeper()
{
    end();
}

void RecoveryKeeper::end()
{
    if (!m_folder.isEmpty())
        removeFolder(m_folder, m_ops);
    leave();
}

void RecoveryKeeper::leave()
{
    m_folder.setEmpty();
    if (m_lock != base::FileOps::kNone)
        m_ops.close(m_lock);
    m_lock = base::FileOps::kNone;
}

base::Status RecoveryKeeper::write(const TvString& name, std::string_view bytes)
{
    base::ReplaceRequest request;
    request.bytes = std::as_bytes(std::span(bytes));
    return base::replaceFile(m_ops, joined(m_folder, name), request);
}

base::Status RecoveryKeeper::keepCopy(const void* key, Copy& copy, std::uint64_t changes)
{
    auto& database = *static_cast<TvDbDatabase*>(const_cast<void*>(key));
    bool isDwg = true;
    auto bytes = database.toBytes(db::FileFormat::Dwg);
    if (!bytes) { // some drawings that came as DXF cannot be anything else
        isDwg = false;
        bytes = database.toBytes(db::FileFormat::Dxf);
    }
    if (!bytes)
        return bytes.status();
    const TvString former = copy.name;
    const TvString name = TvString().format(isDwg ? u"%d.dwg" : u"%d.dxf", ++m_lastCopy);
    const auto* text = reinterpret_cast<const char*>(bytes->data());
    if (base::Status status = write(name, {text, bytes->size()}); !status)
        return status;
    copy = {name, changes};
    if (!former.isEmpty())
        m_ops.remove(base::nativePath(joined(m_folder, former)));
    return {};
}

base::Status RecoveryKeeper::keep(TvApDocManager& documents, const DrawingWatch& watch)
{
    base::Status first;
    if (m_folder.isEmpty())
        return first;
    std::map<const void*, Copy> former = std::exchange(m_copies, {});
    json list = json::array();
    const std::unique_ptr<TvApDocumentIterator> each(documents.newTvApDocumentIterator());
    for (; !each->done(); each->step()) {
        TvApDocument& document = *each->document();
        TvDbDatabase* database = document.database();
        Copy& copy = m_copies[database] = former[database];
        former.erase(database);
        const std::uint64_t changes = watch.changes(database);
        if (!database->isModified() && !copy.name.isEmpty())
            m_ops.remove(base::nativePath(joined(m_folder, std::exchange(copy, {}).name)));
        else if (database->isModified() && (copy.name.isEmpty() || copy.changes != changes))
            if (base::Status status = keepCopy(database, copy, changes); !status && first)
                first = status;
        json row = {{"file", textOf(document.fileName())}, {"named", document.isNamedDrawing()}};
        if (!copy.name.isEmpty())
            row["copy"] = copy.name.utf8();
        list.push_back(std::move(row));
    }
    const std::string text = json{{"drawings", std::move(list)}}.dump(1) + "\n";
    if (text != m_list) {
        if (base::Status status = write(TvString(kList), text); !status)
            return first ? status : first;
        m_list = text;
    }
    for (const auto& [database, copy] : former) // of drawings that were closed
        if (!copy.name.isEmpty())
            m_ops.remove(base::nativePath(joined(m_folder, copy.name)));
    return first;
}

std::vector<LostSession> lostSessions(const TvString& parent, base::FileOps& ops)
{
    std::vector<LostSession> sessions;
    if (parent.isEmpty())
        return sessions;
    for (const KvFileSystem::Entry& entry : KvFileSystem::listFolder(parent)) {
        const TvString folder = joined(parent, entry.name);
        if (entry.isDirectory && !isHeld(folder, ops))
            sessions.push_back({folder, readList(folder)});
    }
    return sessions;
}

void markAsChanged(TvDbDatabase& database)
{
    const bool wasRecording = database.undoRecording();
    database.disableUndoRecording(true);
    db::RecordEditor header = database.editHeader();
    header.setReal("LTSCALE", database.headerRecord().real("LTSCALE"));
    database.disableUndoRecording(!wasRecording);
}

void discard(const LostSession& session, base::FileOps& ops)
{
    removeFolder(session.folder, ops);
}

} // namespace app
