#pragma once

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "database_impl.h"

#include <db/tv_db_id_mapping.h>

class TvDbSymbolTable;

namespace db {

/// A copy of objects into a block, with all that they need, in the same drawing or another.
///
/// What an object owns, and what it points to as indispensable, comes along; any other reference is
/// kept if its target was copied, and taken out otherwise. Records of symbol tables and entries of
/// the named dictionaries (and theirs) are known by their names: one that is there already stays,
/// and stands for the original. Within one drawing, everything that is not owned stays what it was.
///
/// Two steps: prepare() finds and makes everything and may refuse; commit() puts it into the
/// drawing and does not. An object that is kept as bytes cannot be copied, as nobody knows which of
/// its bytes are references: prepare() then refuses the whole.
///
/// Invariants:
///  1. Until commit() nothing of the target is changed.
///  2. New handles are given out in the order of m_items, from m_firstHandle on without a gap.
class Clone
{
public:
    /// @param space        block of @p to that takes the entities that stand for themselves.
    /// @param firstHandle  for the first new object; nothing else is added until commit().
    Clone(TvDbDatabase& from, TvDbDatabase& to, std::uint64_t space, std::uint64_t firstHandle);

    /// What a new drawing held from the start gives way to records of the same name.
    void replaceDefaults() { m_replacesDefaults = true; }
    /// Otherwise they are refused, as they show a sheet. @pre the space is a layout's.
    void allowViewports() { m_hasSheet = true; }
    /// Copies that need a block of that name cannot be made: the block would hold itself.
    void forbidBlock(const TvString& name) { m_forbidden = name; }
    /// @p original is stood for by an object that is there, or will be.
    void standsFor(std::uint64_t original, std::uint64_t target) { m_map[original] = target; }

    /// Asks for an entity. @pre one that may stand in a block by itself.
    void add(TvDbObjectId entity);
    /// Asks for the extension dictionary of @p block, to be one of the space's.
    void addExtensionOf(TvDbObjectId block);

    /// @return NotUnderstood for what is kept as bytes; VersionNotWritable for what has no form in
    ///         the target's version; NotApplicable for viewports; InvalidInput for a block that
    ///         would hold itself. failure() says more.
    TvStatusCode prepare();
    const base::Status& failure() const { return m_failure; }
    void commit(TvDbIdMapping* mapping);

private:
    struct Item {
        ObjectSlot* source;
        std::uint64_t target;
        std::uint64_t owner; // in the target; 0: none
        bool isPrimary = false;
        bool isShell = false;    // a dictionary without its entries
        bool takesPlace = false; // of what is there
        Record record;           // made by build()
    };
    struct NewEntry {
        std::u16string key;
        std::uint64_t value;
    };

    // Finding (clone_gather.cpp)
    TvStatusCode gather();
    void visit(Item& item);
    void own(const Item& parent, std::uint64_t handle);
    void follow(std::uint64_t handle);
    void followLayers(const Record& record);
    Item& addItem(ObjectSlot& source, std::uint64_t owner);
    Record* load(ObjectSlot& slot);
    bool isReal(const ObjectSlot* slot) const { return slot && !slot->isErased; }
    bool isLoose(const ObjectSlot& slot) const;
    bool isInNamedTree(const ObjectSlot& slot);
    ObjectSlot* ownerOf(ObjectSlot& slot);
    void refuse(TvStatusCode code, const ObjectSlot& slot);
    bool isCopyable(ObjectSlot& slot, const Record& record);

    // By name (clone_names.cpp)
    void placeRecord(ObjectSlot& slot);
    void placeBlock(ObjectSlot& slot, const TvDbSymbolTable& table);
    void placeNamed(ObjectSlot& slot, TvDbObjectId table, const TvString& name, TvDbObjectId found);
    TvDbObjectId shapeStyle(const Record& record);
    void placeEntry(ObjectSlot& slot);
    void placeInDictionary(ObjectSlot& slot, std::uint64_t dictionary);
    std::uint64_t dictionaryFor(ObjectSlot& slot);
    const std::u16string* keyOf(ObjectSlot& dictionary, std::uint64_t value);
    TvDbObjectId entryLike(ObjectSlot& slot, std::uint64_t dictionary, const std::u16string& key);
    std::u16string freeKey(std::uint64_t dictionary, const std::u16string& key);
    bool isDefault(TvDbObjectId id) const;

    // Making (clone_build.cpp)
    TvStatusCode build();
    void buildRecord(Item& item);
    void putOwner(Record& record, std::uint64_t owner) const;
    void adapt(Item& item);
    TvStatusCode convertAll();
    void fillShells();
    bool holdsItself() const;
    std::uint64_t targetOf(std::uint64_t original) const;

    // Putting in (clone_commit.cpp)
    bool isWritable() const;
    void appendItems();
    void takePlace(Item& item);
    void fillTables();
    void fillDictionaries();
    void fillSpace();
    void fillMapping(TvDbIdMapping& mapping) const;

    TvDbDatabase& m_from;
    TvDbDatabase& m_to;
    const std::uint64_t m_space;
    const std::uint64_t m_firstHandle;
    std::uint64_t m_nextHandle;
    const bool m_isSame;
    bool m_replacesDefaults = false;
    bool m_hasSheet = false;
    TvString m_forbidden;
    TvStatusCode m_status = TvStatus::Ok;
    base::Status m_failure;

    std::deque<Item> m_items; // at one address each
    std::unordered_map<std::uint64_t, std::uint64_t> m_map;
    std::vector<std::uint64_t> m_standing; // what goes into the space
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> m_newRecords; // by their table
    std::unordered_map<std::uint64_t, std::vector<NewEntry>> m_newEntries; // by their dictionary
    std::unordered_map<std::uint64_t, std::unordered_map<std::u16string, std::uint64_t>> m_newNames;
    std::unordered_map<std::uint64_t, std::u16string> m_blockNames; // of new anonymous blocks
    std::unordered_map<std::u16string, std::uint64_t> m_numbers;    // last number by its prefix
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> m_inserts; // by their block
    // Keys of dictionaries of the origin, by what they lead to.
    std::unordered_map<const ObjectSlot*, std::unordered_map<std::uint64_t, std::u16string>> m_keys;
};

} // namespace db
