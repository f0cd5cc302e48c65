#pragma once

#include <atomic>
#include <deque>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include <base/content_hash.h>
#include <base/path_rules.h>

#include "change_log.h"
#include "object_slot.h"

#include <db/default_drawing.h>
#include <db/drawing_file.h>
#include <db/tv_db_data_link.h>
#include <db/tv_db_object_context.h>
#include <db/tv_db_transaction.h>

namespace db {

/// What a database is made of; the public class forwards to it.
class DatabaseImpl
{
public:
    DatabaseImpl(TvDbDatabase& owner, bool noDocument);
    ~DatabaseImpl();

    /// Takes the content of a file. @pre nothing is there.
    base::Status take(std::unique_ptr<DrawingFile> file);
    /// Fills an empty database with the objects of a new drawing of that version.
    void makeDefault(Version version = Version::Ac1032,
                     Measurement measurement = Measurement::Metric);

    TvDbDatabase& owner() const { return m_owner; }
    /// Null for a drawing that was never in a file.
    const DrawingFile* file() const { return m_file.get(); }
    /// How its records are stored: the file's version, or the current one.
    Version version() const { return m_version; }

    ObjectSlot* find(std::uint64_t handle) const;
    /// Makes the slot's object be there. Ok, or why it cannot be.
    TvStatusCode load(ObjectSlot& slot);
    const TvRxClass* typeOf(ObjectSlot& slot) const;
    /// A new object under the next handle; takes it over.
    ObjectSlot& append(TvDbObject* object);
    /// The same with a handle of its own, for new drawings and copies.
    ObjectSlot& append(std::unique_ptr<TvDbObject> object, std::uint64_t handle);
    /// Calls @p visit for each slot that is not erased, by ascending handle.
    template <class Visit>
    void forEach(Visit visit) const;
    std::size_t slotCount() const { return m_stored.size() + m_added.size(); }
    std::uint64_t handseed() const { return m_handseed; }

    // Openings and changes

    TvStatusCode open(TvDbObject*& out, ObjectSlot& slot, TvDb::OpenMode mode, bool openErased);
    TvStatusCode close(TvDbObject& object);
    TvStatusCode upgrade(TvDbObject& object);
    /// Whether the object may be changed; raw ones, and those that we would write differently from
    /// how they were, may only be erased.
    bool isEditable(ObjectSlot& slot);
    /// Before each change of the object's record.
    void aboutToChange(TvDbObject& object);
    /// Erases, or brings back, the object and what it owns.
    TvStatusCode erase(TvDbObject& object, bool erasing);
    int writers() const { return m_writers; }

    Record& header() { return m_header; }
    const Record& header() const { return m_header; }
    void aboutToChangeHeader();

    // For the history

    void exchange(ObjectSlot* slot, Record& record, bool& isErased);
    const Record* currentRecord(ObjectSlot* slot) const;
    ChangeLog& log() { return m_log; }

    // Saving

    base::Result<std::vector<std::uint8_t>> toBytes(FileFormat format, Version version);
    TvStatusCode save(const TvString& path, bool backup, FileFormat format, Version version,
                      bool mustBeNew = false);
    TvStatusCode readFile(const TvString& path, int mode);
    TvStatusCode readBytes(std::vector<std::uint8_t> bytes);

    SummaryInfo summary() const;
    void setSummary(SummaryInfo summary);
    /// Null: as in the file.
    const Preview* newPreview() const { return m_preview ? &*m_preview : nullptr; }
    void setPreview(Preview preview);

    TvStatusCode fail(base::Status why, TvStatusCode code);
    const base::Status& lastFailure() const { return m_lastFailure; }

    std::vector<TvDbDatabaseReactor*> reactors() const { return m_reactors; }
    std::vector<TvDbDatabaseReactor*>& reactorList() { return m_reactors; }
    TvDbTransactionManager& transactions() { return m_transactions; }
    TvDbImpDatabase& face() { return m_face; }
    TvDbObjectContextManager& contexts() { return m_contexts; }
    TvDbDataLinkManager& dataLinks() { return m_dataLinks; }

    TvString path, originalPath;
    bool isModified = false;
    bool isDocument = false;
    bool holdsFile = false; ///< nobody else may write it
    /// What the file held when it was read or saved last; absent for a drawing without a file.
    std::optional<base::ContentHash> fileHash;

private:
    void touch(ObjectSlot& slot);
    void stampUpdate();
    std::unique_ptr<TvDbObject> makeRaw(bool isEntity) const;
    void tellErased(TvDbObject& object, bool erasing);
    std::vector<ObjectSlot*> ownedTree(ObjectSlot& root, bool erased);

    TvDbDatabase& m_owner;
    std::unique_ptr<DrawingFile> m_file;
    Version m_version = Version::Ac1032;
    std::vector<ObjectSlot> m_stored; // by handle, as the file has them; never resized
    mutable std::atomic<std::size_t> m_lastFound{0}; // in m_stored; only a guess
    std::deque<ObjectSlot> m_added;                  // at one address each
    std::unordered_map<std::uint64_t, ObjectSlot*> m_addedByHandle;
    std::vector<ObjectSlot*> m_touched;
    std::uint64_t m_handseed = 1;
    Record m_header;
    bool m_isHeaderChanged = false;
    std::uint64_t m_headerNotedIn = 0;
    std::optional<SummaryInfo> m_summary; // as set; absent: as in the file
    std::optional<Preview> m_preview;
    ChangeLog m_log;
    TvDbTransactionManager m_transactions;
    TvDbImpDatabase m_face;
    TvDbObjectContextManager m_contexts;
    TvDbDataLinkManager m_dataLinks;
    std::vector<TvDbDatabaseReactor*> m_reactors; // not owned
    base::Status m_lastFailure;
    int m_writers = 0;
};

template <class Visit>
void DatabaseImpl::forEach(Visit visit) const
{
    auto stored = m_stored.begin();
    auto added = m_added.begin();
    while (stored != m_stored.end() || added != m_added.end()) {
        const bool takeStored =
            stored != m_stored.end() && (added == m_added.end() || stored->handle < added->handle);
        const ObjectSlot& slot = takeStored ? *stored++ : *added++;
        if (!slot.isErased)
            visit(const_cast<ObjectSlot&>(slot));
    }
}

/// Takes all references to objects of @p erased out of @p record: entries of dictionaries, elements
/// of lists, single references. @return whether there were any.
bool removeReferences(Record& record, const std::function<bool(std::uint64_t)>& isGone);

} // namespace db
