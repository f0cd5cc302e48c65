#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>

#include <db/record_editor.h>

#include "file_context.h"
#include "file_index.h"

namespace dxf {

/// The objects of a file and how they hang together: who owns what, who lists whom.
///
/// A file tells this by the order of its objects and by names, and may leave out much of it: what a
/// drawing needs besides is made (controls of tables, layer 0, the named dictionaries, layouts,
/// whatever entities name that no table has). Every object has a handle here, also where the file
/// gives none or one twice.
class Structure
{
public:
    /// Where an object comes from.
    struct Source {
        enum class Kind : std::uint8_t {
            Entry,   ///< of the index
            Control, ///< of a table
            Block,   ///< a block's record
            Made,    ///< not in the file, or not as it should be
        };
        Kind kind = Kind::Entry;
        std::uint32_t index = 0;
    };

    /// @p text outlives it.
    static base::Result<std::unique_ptr<Structure>> make(std::string_view text);

    std::string_view text() const { return m_text; }
    const FileIndex& index() const { return m_index; }
    const FileContext& context() const { return *m_context; }
    std::span<const std::uint64_t> handles() const { return m_handles; }
    std::optional<Source> find(std::uint64_t handle) const;

    std::string_view textOf(const Entry& entry) const
    {
        return m_text.substr(entry.begin, entry.end - entry.begin);
    }
    ObjectPlace placeOf(const Entry& entry) const;
    const Entry& entry(std::uint32_t at) const { return m_index.entries[at]; }
    const BlockEntry& block(std::uint32_t at) const { return m_index.blocks[at]; }
    const db::Record& made(std::uint32_t at) const { return m_made[at]; }
    /// A record of a control.
    db::Record control(Table table) const;
    std::uint64_t controlHandle(Table table) const
    {
        return m_index.tables[static_cast<std::size_t>(table)].handle;
    }
    /// The neighbours of an entity in its block or sequence; 0 at the ends.
    std::pair<std::uint64_t, std::uint64_t> neighbours(std::uint32_t at) const;
    std::uint64_t seqendOf(std::uint32_t at) const;

    std::uint64_t modelSpace() const { return m_modelSpace; }
    std::uint64_t paperSpace() const { return m_paperSpace; }
    std::uint64_t namedObjects() const { return m_namedObjects; }
    /// Objects that the named dictionary has under these names; 0 when it has none.
    std::uint64_t namedObject(std::u16string_view key) const;
    std::uint64_t handleSeed() const { return m_nextHandle; }
    /// Handles that the file has twice.
    const std::vector<std::uint64_t>& doubleHandles() const { return m_doubles; }

private:
    friend class Completion;

    explicit Structure(std::string_view text) : m_text(text) {}

    base::Status build();
    void giveHandles();
    std::uint64_t newHandle() { return m_nextHandle++; }
    void nameRecords();
    void nameObjects();
    void joinBlocks();
    void findOwners();
    void placeEntities();
    void listInserts();
    void findNamedObjects();
    db::Record readHead(Table table) const;
    void sortHandles();
    void addSource(std::uint64_t handle, Source source);
    std::uint32_t blockWithHandle(std::uint64_t handle) const;
    std::int8_t modeOf(std::uint64_t block) const;
    void putInto(std::uint32_t block, std::uint32_t at);
    std::u16string decoded(std::string_view bytes) const
    {
        return m_context->coding().decoded(bytes);
    }

    std::string_view m_text;
    FileIndex m_index;
    std::unique_ptr<FileContext> m_context;
    std::deque<db::Record> m_made;
    std::unordered_map<std::uint64_t, std::uint32_t> m_blockOfHandle;
    std::map<std::u16string, std::uint64_t> m_named;         // in the named dictionary
    std::vector<std::uint32_t> m_blockOf;                    // by entry: its block, for AC1015
    std::vector<std::pair<std::uint64_t, Source>> m_sources; // sorted by handle at the end
    std::vector<std::uint64_t> m_handles;
    std::vector<std::uint64_t> m_doubles;
    std::map<std::uint32_t, std::uint64_t> m_madeSeqends; // by entry
    std::uint64_t m_nextHandle = 1;
    std::uint64_t m_modelSpace = 0, m_paperSpace = 0, m_namedObjects = 0;
    mutable std::size_t m_lastFound = 0;
};

} // namespace dxf
