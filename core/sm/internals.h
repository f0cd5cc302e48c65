#pragma once

#include "extras.h"
#include "journal.h"
#include "sm/tv_sm_database.h"
#include "sm/tv_sm_sheet.h"
#include "sm/tv_sm_sheet_set.h"
#include "sm/tv_sm_sheet_set_mgr.h"
#include "xml_scanner.h"

namespace sm {

/// What an attribute holds, and so how it is read, written and reset.
enum class AttributeKind : unsigned char {
    Text,   ///< StoredText; left out while never set.
    Flag,   ///< bool; "1", left out when false.
    Word,   ///< std::uint16_t; left out when 0.
    Long,   ///< long; left out when 0.
    Handle, ///< std::uint64_t: an object of the set; left out when it is in the set no more.
};

/// One row of a class's table: reader, writer, reset and the parking of texts share it.
struct Attribute {
    constexpr Attribute(std::string_view itsName, AttributeKind itsKind,
                        void* (*itsField)(TvSmPersist&))
        : name(itsName), key(nameKeyOf(itsName)), opening(itsName), kind(itsKind), field(itsField)
    {
    }
    std::string_view name;
    std::uint64_t key; ///< nameKey() of the name.
    XmlScanner::Opening opening;
    AttributeKind kind;
    void* (*field)(TvSmPersist& object);
};

/// The one way into the private parts of the model, for the room's own sources only.
struct Internals {
    using Life = TvSmPersist::Life;

    // --- any object
    static Life life(const TvSmPersist& object) { return object.m_life; }
    static std::uint64_t handle(const TvSmPersist& object) { return object.m_handle; }
    static void setHandle(TvSmPersist& object, std::uint64_t handle) { object.m_handle = handle; }
    static ExtrasOwner& extras(TvSmPersist& object) { return object.m_extras; }
    /// False when the container was marked already since it was made or reset.
    static bool markRead(TvSmPersist& container)
    {
        return !std::exchange(container.m_wasRead, true);
    }
    static Extras& makeExtras(TvSmPersist& object);
    static DatabaseState* state(const TvSmPersist& object);
    static DatabaseState& state(const TvSmDatabase& db) { return *db.m_state; }
    static const base::Status& status(const TvSmSheetSetMgr& manager);
    /// Binds a part that its owner holds by value or made itself: no handle, stands in its owner
    /// for ever.
    static void bindPart(TvSmPersist& part, TvSmPersist& owner);
    /// Binds a fresh object to a database, without a handle and without owner's permission.
    static void bind(TvSmPersist& object, TvSmDatabase* db, TvSmPersist* owner, Life life)
    {
        object.m_database = db;
        object.m_owner = owner;
        object.m_life = life;
    }
    static void setDatabase(TvSmPersist& object, TvSmDatabase* db) { object.m_database = db; }
    static void setOwner(TvSmPersist& object, TvSmPersist* owner) { object.m_owner = owner; }
    static void setLife(TvSmPersist& object, Life life) { object.m_life = life; }
    static bool isDatabaseOwned(const TvSmPersist& object) { return object.m_ownedByDatabase; }
    static void setDatabaseOwned(TvSmPersist& object, bool inArena)
    {
        object.m_ownedByDatabase = true;
        object.m_inArena = inArena;
    }
    static bool isInArena(const TvSmPersist& object) { return object.m_inArena; }
    /// Whether the object stands in the set now: attached, and all above it too.
    static bool isInSet(const TvSmPersist& object);

    // --- changes
    /// Whether the object may be changed now; traces a refusal in debug builds.
    static bool mayChange(const TvSmPersist& object);
    /// The journal that a change of this object goes into; null when none is kept.
    static Journal* journal(const TvSmPersist& object);
    static bool changeText(TvSmPersist& object, StoredText& field, const TvString& value,
                           bool keepEmpty = false);
    template <class T>
    static bool change(TvSmPersist& object, T& field, T value)
    {
        if (!mayChange(object))
            return false;
        if (field == value)
            return true;
        if (Journal* journalOf = journal(object))
            journalOf->keep(field);
        field = value;
        return true;
    }
    /// Makes @p child stand in @p owner. @pre mayChange(owner)
    static void attach(TvSmPersist& child, TvSmPersist& owner);
    /// Takes @p child out of its owner. @pre mayChange(child)
    static void detach(TvSmPersist& child);
    /// Whether @p child can become part of @p owner: same database, not parked.
    static bool canAdopt(const TvSmPersist& owner, const TvSmPersist* child);
    template <class T>
    static bool changeReference(TvSmPersist& owner, T*& slot, T* reference);
    template <class T>
    static bool addEntry(TvSmPersist& owner, std::vector<T*>& entries, T* entry);
    template <class T>
    static bool removeEntry(TvSmPersist& owner, std::vector<T*>& entries, T* entry);
    template <class T>
    static void insertAt(TvSmPersist& owner, std::vector<T>& entries, std::size_t index, T entry);
    template <class T>
    static void eraseAt(TvSmPersist& owner, std::vector<T>& entries, std::size_t index);
    /// Puts a child into, or takes it out of, a subset's order, with its journal step.
    static void putIn(TvSmSubset& parent, TvSmComponent& child, TvSmComponent* before);
    static void takeOut(TvSmSubset& parent, TvSmComponent& child);
    /// Tells the parts of an object that was bound later than they were made.
    static void rebindParts(TvSmPersist& object);
    /// Whether the object's destructor runs in its maker's hands, its children being the
    /// database's.
    static bool isHeldByMaker(const TvSmPersist& object);
    static void abandon(TvSmPersist* child);
    static void linkChild(TvSmSubset& parent, TvSmComponent& child, TvSmComponent* before);
    static void unlinkChild(TvSmSubset& parent, TvSmComponent& child);

    // --- parts
    static TvSmSheetViews& viewsOf(const TvSmSheet& sheet);
    static TvSmCustomPropertyBag& bagOf(const TvSmComponent& component);
    static TvSmReferenceCollection& calloutsOf(const TvSmViewCategory& category);
    static bool hasBag(const TvSmComponent& component) { return component.m_properties != nullptr; }
    static bool hasViews(const TvSmSheet& sheet) { return sheet.m_views != nullptr; }
    static bool hasCallouts(const TvSmViewCategory& category)
    {
        return category.m_callouts != nullptr;
    }

    // --- fields, for reader and writer
    static auto& entries(const TvSmCustomPropertyBag& bag) { return bag.m_entries; }
    static auto& entries(TvSmCustomPropertyBag& bag) { return bag.m_entries; }
    static auto& entries(const TvSmReferenceCollection& list) { return list.m_references; }
    static auto& entries(TvSmReferenceCollection& list) { return list.m_references; }
    static auto& entries(const TvSmSheetViews& list) { return list.m_views; }
    static auto& entries(TvSmSheetViews& list) { return list.m_views; }
    static auto& entries(const TvSmViewCategories& list) { return list.m_categories; }
    static auto& entries(TvSmViewCategories& list) { return list.m_categories; }
    static auto& entries(const TvSmSheetSelections& list) { return list.m_selections; }
    static auto& entries(TvSmSheetSelections& list) { return list.m_selections; }
    static auto& entries(const TvSmSheetSelection& list) { return list.m_members; }
    static auto& entries(TvSmSheetSelection& list) { return list.m_members; }
    static TvSmComponent* firstChild(const TvSmSubset& subset) { return subset.m_firstChild; }
    static TvSmComponent* nextSibling(const TvSmComponent& child) { return child.m_nextSibling; }
    static TvSmComponent* previousSibling(const TvSmComponent& child)
    {
        return child.m_previousSibling;
    }
    /// For the reader: no permission, no journal.
    static void appendChildUnchecked(TvSmSubset& parent, TvSmComponent& child);
    static void appendEntryUnchecked(TvSmCustomPropertyBag& bag, TvSmCustomPropertyValue& value);
    static void forgetChildren(TvSmSubset& subset);
    static void forgetSiblings(TvSmComponent& component);
    /// Out of the order it stood in, and without children of its own; the others are not told.
    static void forgetOrder(TvSmPersist& object);
    static std::uint64_t& categoryOf(TvSmSheetView& view) { return view.m_category; }
    static std::uint64_t categoryOf(const TvSmSheetView& view) { return view.m_category; }
    static bool& isDefault(TvSmViewCategory& category) { return category.m_isDefault; }
    static StoredText& pathOf(TvSmFileReference& reference) { return reference.m_path; }
    static StoredText& relativeOf(TvSmFileReference& reference) { return reference.m_relative; }
    static std::uint16_t& typeOf(TvSmCustomPropertyValue& value) { return value.m_type; }
    static double& numberOf(TvSmCustomPropertyValue& value) { return value.m_number; }
    static StoredText& textOf(TvSmCustomPropertyValue& value) { return value.m_text; }
    static StoredText& nameOf(TvSmCustomPropertyValue& value) { return value.m_name; }
    static TvSmTvDbLayoutReference*& layoutOf(TvSmSheet& sheet) { return sheet.m_layout; }
    static TvSmTvDbViewReference*& referenceOf(TvSmSheetView& view) { return view.m_reference; }
    static TvSmFileReference*& locationOf(TvSmSubset& subset) { return subset.m_location; }
    static TvSmTvDbLayoutReference*& templateOf(TvSmSubset& subset) { return subset.m_template; }
    static TvSmFileReference*& pageSetupsOf(TvSmSheetSet& set) { return set.m_altPageSetups; }
    static TvSmTvDbBlockRecordReference*& labelBlockOf(TvSmSheetSet& set)
    {
        return set.m_labelBlock;
    }
    static TvSmFileReference*& outputFolderOf(TvSmPublishOptions& options)
    {
        return options.m_outputFolder;
    }
    static void dropResolved(TvSmFileReference& reference) { reference.m_cache.reset(); }

    /// The table of the object's class (attributes of its base classes first).
    static std::span<const Attribute> attributesOf(const TvSmPersist& object);
    static std::span<const Attribute> attributesOf(const TvRxClass* type);
    /// All fields back to what a new object has; lists empty, extras gone. The parts stay.
    static void reset(TvSmPersist& object);
    /// Makes every text of the object its own, so that the file's buffer may go.
    static void ownTexts(TvSmPersist& object);

private:
    struct Tables;
    template <class T>
    static void makePart(Part<T>& slot, const TvSmPersist& owner);
    template <class Container>
    static void resetPart(Container& container);
};

// ------------------------------------------------------------------------------------------------

template <class T>
void Internals::insertAt(TvSmPersist& owner, std::vector<T>& entries, std::size_t index, T entry)
{
    if (Journal* journalOf = journal(owner))
        journalOf->add(std::make_unique<EntryStep<T>>(entries, index, T(), true));
    entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(index), std::move(entry));
}

template <class T>
void Internals::eraseAt(TvSmPersist& owner, std::vector<T>& entries, std::size_t index)
{
    const auto at = entries.begin() + static_cast<std::ptrdiff_t>(index);
    if (Journal* journalOf = journal(owner))
        journalOf->add(std::make_unique<EntryStep<T>>(entries, index, std::move(*at), false));
    entries.erase(at);
}

template <class T>
bool Internals::changeReference(TvSmPersist& owner, T*& slot, T* reference)
{
    if (slot == reference)
        return mayChange(owner);
    if (!mayChange(owner) || (reference && !canAdopt(owner, reference)))
        return false;
    // One that stands elsewhere would have two owners.
    if (reference && life(*reference) == Life::Attached)
        return false;
    T* former = slot;
    if (Journal* journalOf = journal(owner))
        journalOf->keep(slot);
    slot = reference;
    if (former)
        detach(*former);
    if (reference)
        attach(*reference, owner);
    return true;
}

template <class T>
bool Internals::addEntry(TvSmPersist& owner, std::vector<T*>& entries, T* entry)
{
    if (!entry || !mayChange(owner) || !canAdopt(owner, entry))
        return false;
    insertAt(owner, entries, entries.size(), entry);
    attach(*entry, owner);
    return true;
}

template <class T>
bool Internals::removeEntry(TvSmPersist& owner, std::vector<T*>& entries, T* entry)
{
    const auto at = std::find(entries.begin(), entries.end(), entry);
    if (!entry || at == entries.end() || !mayChange(owner))
        return false;
    eraseAt(owner, entries, static_cast<std::size_t>(at - entries.begin()));
    if (entry->owner() == &owner)
        detach(*entry);
    return true;
}

/// An enumerator over a vector of pointers that its owner keeps.
template <class Item>
class ListEnumerator : public TvSmEnumerator<Item>
{
public:
    explicit ListEnumerator(const std::vector<Item*>& items) : m_items(items) {}
    Item* next() override { return m_index < m_items.size() ? m_items[m_index++] : nullptr; }
    void reset() override { m_index = 0; }

private:
    const std::vector<Item*>& m_items; // of an object that lives as long as its database
    std::size_t m_index = 0;
};

/// An enumerator over pointers that were gathered for it.
template <class Item>
class GatheredEnumerator : public TvSmEnumerator<Item>
{
public:
    explicit GatheredEnumerator(std::vector<Item*> items) : m_items(std::move(items)) {}
    Item* next() override { return m_index < m_items.size() ? m_items[m_index++] : nullptr; }
    void reset() override { m_index = 0; }

private:
    std::vector<Item*> m_items;
    std::size_t m_index = 0;
};

} // namespace sm
