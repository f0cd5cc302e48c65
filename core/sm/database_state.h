#pragma once

#include <optional>
#include <unordered_set>

#include <base/content_hash.h>
#include <base/edit_lock.h>
#include <base/publish.h>

#include "handle_index.h"
#include "internals.h"
#include "sm/load_version.h"

namespace sm {

/// Memory for the objects of a file: a few large blocks, since half of a load would be page faults
/// and allocations otherwise. Gives nothing back before it goes as a whole.
class Arena
{
public:
    void* take(std::size_t size)
    {
        size = (size + 15) & ~std::size_t(15);
        if (size > m_left)
            addBlock(size);
        std::byte* at = m_at;
        m_at += size;
        m_left -= size;
        return at;
    }

private:
    static constexpr std::size_t kBlock = 256 * 1024;
    void addBlock(std::size_t atLeast)
    {
        const std::size_t size =
            std::max<std::size_t>(atLeast, m_blocks.empty() ? 16 * 1024 : 1024 * 1024);
        m_blocks.emplace_back(new std::byte[size]);
        m_at = m_blocks.back().get();
        m_left = size;
    }
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::byte* m_at = nullptr;
    std::size_t m_left = 0;
};

/// Event sinks by cookie. Sinks may come and go while they are being told.
class Sinks
{
public:
    int add(TvSmEvents* sink);
    bool remove(int cookie);
    void tell(int code, TvSmPersist* object);
    bool isTelling() const { return m_telling > 0; }

private:
    struct Entry {
        int cookie;
        TvSmEvents* sink; // not owned
    };
    std::vector<Entry> m_entries;
    int m_nextCookie = 1;
    int m_telling = 0;
};

/// How a database came to be, which decides when it takes changes.
enum class DatabaseKind {
    Scratch,  ///< By direct construction: at any time.
    Building, ///< Made by the manager, not saved yet: at any time.
    Shared,   ///< Opened, or saved once: under the lock.
};

/// Everything behind a TvSmDatabase.
///
/// Invariants:
///  1. Handles only count up; a handle that was given out in this process or stands in the file is
///  never given again.
///  2. The set itself keeps its address for the life of the database; any other object from its
///  first appearance on.
///  3. The journal holds steps only while the lock is held.
///  4. What save and commit write is the state without the journal (save) or with it (commit),
///  never a mixture.
///  5. m_base is the hash of what was last read from, or written to, m_fileName; none before that.
class DatabaseState
{
public:
    explicit DatabaseState(TvSmDatabase& db);
    ~DatabaseState();
    DatabaseState(const DatabaseState&) = delete;
    DatabaseState& operator=(const DatabaseState&) = delete;

    TvSmDatabase& database() { return m_database; }
    TvSmSheetSet& set() { return m_set; }

    // A set larger than this is no set: 100,000 sheets take a tenth of it.
    static constexpr std::uint64_t kLargestFile = kLargestSetFile;

    // --- objects
    std::uint64_t newHandle()
    {
        while (m_index.find(m_nextHandle)) // one that a file has beyond all counting
            ++m_nextHandle;
        return m_nextHandle++;
    }
    void noteHandle(std::uint64_t handle)
    {
        if (handle < kCountedHandles)
            m_nextHandle = std::max(m_nextHandle, handle + 1);
    }
    void enter(TvSmPersist& object); ///< Bound by its maker, who holds it.
    void leave(TvSmPersist& object); ///< Its maker deletes it.
    void adopt(TvSmPersist& object); ///< Handed over: the database owns it from now on.
    void* takeMemory(std::size_t size) { return m_arena.take(size); }
    void setPartHandle(TvSmPersist& part, std::uint64_t handle);
    void giveNewHandle(TvSmPersist& object);
    /// Whether the file means @p known when it has its handle: not if its handle never reached a
    /// file, nor if it is part of something that was taken out and has another owner now.
    bool canComeBack(TvSmPersist& known, const TvSmPersist* owner) const;
    /// Whether nothing was ever put into the set.
    bool isUntouched() const;
    /// A new object of a class for the reader or createX, owned by the database, with a handle when
    /// @p handle is not 0.
    template <class T>
    T* make(std::uint64_t handle, TvSmPersist* owner, Internals::Life life);
    TvSmPersist* find(std::uint64_t handle) const
    {
        return handle ? m_index.find(handle) : nullptr;
    }
    TvSmPersist* findInSet(std::uint64_t handle) const;

    // --- permission and journal
    bool takesChanges() const;
    Journal* journal() { return m_inTransaction ? &m_journal : nullptr; }

    // --- file
    const TvString& fileName() const { return m_fileName; }
    bool setFileName(const TvString& path);
    bool load(const TvString& path);
    bool loadVersion(base::VersionRead&& version);
    bool save();
    bool lock();
    bool unlock(bool commit);
    base::LockInfo lockInfo();
    int lockStatus();
    /// First content of a database that the manager makes. @pre Nothing was loaded yet.
    bool openFirst(const TvString& path);
    bool copyTemplate(const TvString& path);

    // --- the rest
    TvString version() const { return m_version; }
    bool isBusy() const { return m_busy > 0 || m_transmitting; }
    void setTransmitting(bool transmitting) { m_transmitting = transmitting; }
    Sinks& sinks() { return m_sinks; }
    DatabaseKind kind() const { return m_kind; }
    void setKind(DatabaseKind kind) { m_kind = kind; }
    bool isReadOnlyVersion() const { return m_readOnlyVersion; }
    bool isLocked() const { return m_inTransaction; }
    const base::Status& status() const { return m_status; }
    void setStatus(base::Status status) { m_status = std::move(status); }
    const std::optional<base::ContentHash>& base() const { return m_base; }
    void setBase(const base::ContentHash& hash) { m_base = hash; }
    TvString folder() const;

    // --- views by category: grouped when asked, dropped at any change of the set
    const std::vector<TvSmSheetView*>& viewsIn(const TvSmViewCategory& category);
    void forgetGroups() { m_groupsValid = false; }

    // --- for reader and writer
    /// Comments and the like before, or behind, the root element; one line each.
    std::vector<std::string>& aroundRoot(bool before) { return m_aroundRoot[before ? 0 : 1]; }
    std::size_t expectedSize() const { return m_expectedSize; }
    void setVersion(const TvString& version, bool readOnly);
    void setNextHandle(std::uint64_t next) { m_savedNextHandle = next, noteHandle(next - 1); }
    /// Nobody counts as far as this: a file that says so must not use up what is left of the
    /// handles.
    static constexpr std::uint64_t kCountedHandles = kHandleLimit / 2;
    std::uint64_t savedNextHandle() const { return m_savedNextHandle; }

private:
    friend class BusyScope;
    base::Status replaceContent(std::vector<std::byte> bytes, const TvString& path);
    base::Status readInto(std::vector<std::byte>& bytes, const TvString& path);
    void parkAll();
    void replaceBuffer(std::vector<std::byte> text);
    void groupViews(const TvSmSubset& subset, std::uint64_t fallback);
    void takeFileName(const TvString& path);
    base::Status readFresh();
    bool takeOver(const TvString& from, base::VersionRead&& read);
    void markDefaultCategory();
    base::Status publish(const std::string& text, bool keepRecovery);
    base::Status commitChanges();
    bool isFileThere();
    void becomeShared();

    TvSmDatabase& m_database;
    std::vector<TvSmPersist*> m_owned; // all of the database's objects but the set and the parts
    Arena m_arena;
    HandleIndex m_index;
    std::unordered_set<TvSmPersist*> m_held; // bound, but their makers' so far
    std::vector<std::byte> m_buffer; // the file's text, decoded in place: what slices point into
    std::vector<std::string> m_aroundRoot[2];
    std::size_t m_expectedSize = 4096; // of the text to be written
    std::uint64_t m_nextHandle = 1;
    std::uint64_t m_savedNextHandle = 1; // as of the last commit: what the file says
    TvSmSheetSet m_set;

    DatabaseKind m_kind = DatabaseKind::Scratch;
    TvString m_fileName;
    std::optional<base::EditLock> m_editLock;
    std::optional<base::ContentHash> m_base;
    base::FileStamp m_stamp;
    TvString m_version;
    bool m_readOnlyVersion = false;
    bool m_mustWrite =
        false; // the next commit writes even when nothing changed: new name, or never written

    Journal m_journal;
    bool m_inTransaction = false;
    bool m_unlocking = false;
    int m_busy = 0;
    bool m_transmitting = false;
    bool m_mayFailHalfRead = false; // a database that is thrown away if its first read fails
    Sinks m_sinks;
    base::Status m_status;

    std::unordered_map<std::uint64_t, std::vector<TvSmSheetView*>> m_groups;
    bool m_groupsValid = false;
};

/// Says "busy" for as long as it lives.
class BusyScope
{
public:
    explicit BusyScope(DatabaseState& state) : m_state(state) { ++m_state.m_busy; }
    ~BusyScope() { --m_state.m_busy; }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    DatabaseState& m_state;
};

template <class T>
T* DatabaseState::make(std::uint64_t handle, TvSmPersist* owner, Internals::Life life)
{
    T* object = new (m_arena.take(sizeof(T))) T();
    Internals::bind(*object, &m_database, owner, life);
    Internals::setDatabaseOwned(*object, true);
    m_owned.push_back(object);
    if (handle != 0) {
        Internals::setHandle(*object, handle);
        m_index.set(handle, object);
    }
    return object;
}

} // namespace sm
