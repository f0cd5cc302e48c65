#include "database_state.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "dst_names.h"
#include "dst_reader.h"
#include "dst_writer.h"
#include "sm/environment.h"

namespace sm {

using base::Failure;
using base::Reason;
using base::Status;
using Life = Internals::Life;

// --- sinks
// ----------------------------------------------------------------------------------------------------------

int Sinks::add(TvSmEvents* sink)
{
    if (!sink)
        return -1;
    m_entries.push_back({m_nextCookie, sink});
    return m_nextCookie++;
}

bool Sinks::remove(int cookie)
{
    return std::erase_if(m_entries,
                         [cookie](const Entry& entry) { return entry.cookie == cookie; }) > 0;
}

void Sinks::tell(int code, TvSmPersist* object)
{
    // A sink that is registered meanwhile hears of the next event; one that went hears nothing any
    // more.
    ++m_telling;
    const std::vector<Entry> now = m_entries;
    for (const Entry& entry : now) {
        const auto isThis = [&](const Entry& other) { return other.cookie == entry.cookie; };
        if (std::any_of(m_entries.begin(), m_entries.end(), isThis))
            entry.sink->onEvent(code, object);
    }
    --m_telling;
}

// --- life
// -----------------------------------------------------------------------------------------------------------

DatabaseState::DatabaseState(TvSmDatabase& db) : m_database(db), m_version(dst::kCurrentVersion)
{
    Internals::bind(db, &db, nullptr, Life::Attached);
    Internals::bind(m_set, &db, &db, Life::Attached);
    Internals::setDatabaseOwned(m_set, false);
    setPartHandle(m_set, newHandle());
    for (TvSmPersist* part : std::initializer_list<TvSmPersist*>{
             m_set.getSheetSelections(), m_set.getResourceLocations(), m_set.getCalloutBlocks(),
             m_set.getViewCategories(), m_set.getPublishOptions()})
        Internals::bindPart(*part, m_set);
    setPartHandle(*m_set.getPublishOptions(), newHandle());
    m_savedNextHandle = m_nextHandle;
}

DatabaseState::~DatabaseState()
{
    // What its maker still holds outlives us, without what we owned of it.
    for (TvSmPersist* held : m_held) {
        Internals::reset(*held);
        Internals::bind(*held, nullptr, nullptr, Life::New);
        Internals::setHandle(*held, 0);
        Internals::rebindParts(*held);
    }
    for (TvSmPersist* object : m_owned) {
        if (Internals::isInArena(*object))
            object->~TvSmPersist();
        else
            delete object;
    }
}

void DatabaseState::setPartHandle(TvSmPersist& part, std::uint64_t handle)
{
    m_index.forget(Internals::handle(part), &part);
    Internals::setHandle(part, handle);
    m_index.set(handle, &part);
    noteHandle(handle);
}

void DatabaseState::enter(TvSmPersist& object)
{
    m_index.set(Internals::handle(object), &object);
    m_held.insert(&object);
}

void DatabaseState::leave(TvSmPersist& object)
{
    m_index.forget(Internals::handle(object), &object);
    m_held.erase(&object);
}

void DatabaseState::adopt(TvSmPersist& object)
{
    m_held.erase(&object);
    Internals::setDatabaseOwned(object, false);
    m_owned.push_back(&object);
}

void DatabaseState::giveNewHandle(TvSmPersist& object)
{
    m_index.forget(Internals::handle(object), &object);
    Internals::setHandle(object, newHandle());
    m_index.set(Internals::handle(object), &object);
}

bool DatabaseState::canComeBack(TvSmPersist& known, const TvSmPersist* owner) const
{
    if (!Internals::isDatabaseOwned(known) || Internals::handle(known) >= m_savedNextHandle)
        return false;
    if (Internals::life(known) != Life::Attached || known.owner() == owner)
        return true;
    auto* former = tvrxCast<TvSmSubset>(known.owner());
    auto* child = tvrxCast<TvSmComponent>(&known);
    if (!former || !child)
        return false;
    Internals::unlinkChild(*former, *child);
    return true;
}

TvSmPersist* DatabaseState::findInSet(std::uint64_t handle) const
{
    TvSmPersist* object = find(handle);
    return object && Internals::isInSet(*object) ? object : nullptr;
}

bool DatabaseState::takesChanges() const
{
    if (m_readOnlyVersion || m_unlocking)
        return false;
    return m_inTransaction || m_kind != DatabaseKind::Shared;
}

// --- content
// --------------------------------------------------------------------------------------------------------

void DatabaseState::setVersion(const TvString& version, bool readOnly)
{
    m_version = version;
    m_readOnlyVersion = readOnly;
}

/// Every object that stood in the set is parked: the reader brings back those that the file still
/// has.
void DatabaseState::parkAll()
{
    std::vector<TvSmPersist*> inSet;
    inSet.reserve(m_owned.size());
    for (TvSmPersist* object : m_owned) {
        if (Internals::isInSet(*object))
            inSet.push_back(object);
        else
            Internals::ownTexts(*object); // what was taken out, or is its maker's, stays as it is
    }
    for (TvSmPersist* object : inSet) {
        Internals::bind(*object, &m_database, nullptr, Life::Parked);
        Internals::forgetOrder(*object);
    }
    Internals::reset(m_set);
    Internals::extras(m_database).reset();
    m_aroundRoot[0].clear();
    m_aroundRoot[1].clear();
    m_index.forget(Internals::handle(m_set), &m_set);
    m_index.forget(Internals::handle(*m_set.getPublishOptions()), m_set.getPublishOptions());
    forgetGroups();
}

/// The former text goes: what the file does not hold any more lives on with texts of its own.
void DatabaseState::replaceBuffer(std::vector<std::byte> text)
{
    if (!m_buffer.empty())
        for (TvSmPersist* object : m_owned)
            if (Internals::life(*object) == Life::Parked)
                Internals::ownTexts(*object);
    m_buffer = std::move(text);
}

bool DatabaseState::isUntouched() const
{
    return m_owned.empty() && m_held.empty();
}

Status DatabaseState::replaceContent(std::vector<std::byte> bytes, const TvString& path)
{
    const std::size_t size = bytes.size();
    if (!m_mayFailHalfRead) {
        // A file that makes no sense must not touch what memory holds: first into a state that is
        // thrown away.
        std::vector<std::byte> copy = bytes;
        TvSmDatabase trial;
        if (Status status = Internals::state(trial).readInto(copy, path); !status)
            return status;
    }
    if (Status status = readInto(bytes, path); !status)
        return status;
    replaceBuffer(std::move(bytes));
    m_expectedSize = size + size / 16;
    return {};
}

/// Fills the state from @p bytes, which is decoded in place and grows by the scanner's padding.
Status DatabaseState::readInto(std::vector<std::byte>& bytes, const TvString& path)
{
    const std::size_t size = bytes.size();
    bytes.resize(size + XmlScanner::kPadding);
    parkAll();
    // An object takes some eighty bytes of text, and rarely less than sixty.
    m_owned.reserve(m_owned.size() + size / 64);
    m_index.reserve(size / 64);
    const Status status = readObjects({reinterpret_cast<char*>(bytes.data()), size}, path, *this);
    if (status &&
        m_index.find(Internals::handle(*m_set.getPublishOptions())) != m_set.getPublishOptions())
        setPartHandle(*m_set.getPublishOptions(), newHandle()), m_savedNextHandle = m_nextHandle;
    return status;
}

bool DatabaseState::openFirst(const TvString& path)
{
    const BusyScope busy(*this);
    auto read = base::readVersion(files(), clock(), path, kLargestFile);
    if (!read) {
        m_status = read.status();
        return false;
    }
    m_mayFailHalfRead = isUntouched();
    m_status = replaceContent(std::move(read->bytes), path);
    m_mayFailHalfRead = false;
    if (!m_status)
        return false;
    m_kind = DatabaseKind::Shared;
    takeFileName(path);
    m_base = read->hash;
    m_stamp = read->stamp;
    return true;
}

bool DatabaseState::copyTemplate(const TvString& path)
{
    auto read = base::readVersion(files(), clock(), path, kLargestFile);
    m_status = read ? Status() : read.status();
    if (m_status)
        m_status = replaceContent(std::move(read->bytes), path);
    if (m_status && m_readOnlyVersion)
        m_status = Status(Failure::Unsupported, Reason::DstNewerVersion, {path, m_version});
    return static_cast<bool>(m_status);
}

bool DatabaseState::load(const TvString& path)
{
    const TvString from = path.isEmpty() ? m_fileName : path;
    if (m_inTransaction || m_unlocking || from.isEmpty())
        return false;
    const BusyScope busy(*this);
    auto read = base::readVersion(files(), clock(), from, kLargestFile);
    if (!read) {
        m_status = read.status();
        return false;
    }
    return takeOver(from, std::move(*read));
}

bool DatabaseState::loadVersion(base::VersionRead&& version)
{
    if (m_inTransaction || m_unlocking || m_fileName.isEmpty())
        return false;
    const BusyScope busy(*this);
    return takeOver(m_fileName, std::move(version));
}

bool DatabaseState::takeOver(const TvString& from, base::VersionRead&& read)
{
    const bool isOwnFile =
        !m_fileName.isEmpty() && base::PathRules::native().isSame(from, m_fileName);
    // Only a shared database that waits for nothing to be written is sure to be what the file is.
    if (isOwnFile && m_kind == DatabaseKind::Shared && !m_mustWrite && m_base == read.hash) {
        m_stamp = read.stamp;
        m_status = Status();
        return true;
    }
    m_status = replaceContent(std::move(read.bytes), from);
    if (!m_status)
        return false;
    if (isOwnFile) {
        m_base = read.hash;
        m_stamp = read.stamp;
        m_mustWrite = false;
    } else {
        m_mustWrite = true;
    }
    return true;
}

// --- views by category
// ----------------------------------------------------------------------------------------------

const std::vector<TvSmSheetView*>& DatabaseState::viewsIn(const TvSmViewCategory& category)
{
    if (!m_groupsValid) {
        m_groups.clear();
        const TvSmViewCategory* fallback = m_set.getViewCategories()->getDefaultCategory();
        groupViews(m_set, fallback ? Internals::handle(*fallback) : 0);
        m_groupsValid = true;
    }
    return m_groups[Internals::handle(category)];
}

void DatabaseState::groupViews(const TvSmSubset& subset, std::uint64_t fallback)
{
    for (TvSmComponent* child = Internals::firstChild(subset); child;
         child = Internals::nextSibling(*child)) {
        if (const auto* below = tvrxCast<TvSmSubset>(child)) {
            groupViews(*below, fallback);
        } else if (const auto& sheet = static_cast<const TvSmSheet&>(*child);
                   Internals::hasViews(sheet)) {
            for (TvSmSheetView* view : Internals::entries(Internals::viewsOf(sheet))) {
                const TvSmViewCategory* own = view->getCategory();
                m_groups[own ? Internals::handle(*own) : fallback].push_back(view);
            }
        }
    }
}

} // namespace sm
