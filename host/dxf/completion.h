#pragma once

#include <map>
#include <set>

#include <db/default_drawing.h>

#include "structure.h"

namespace dxf {

/// Makes what a file leaves out and a drawing needs, after the model of a new drawing.
class Completion
{
public:
    explicit Completion(Structure& structure);
    void run();

private:
    using Handle = std::uint64_t;

    void mapTables();
    void findSpaces();
    Handle findSpace(std::u16string_view name, std::u16string_view oldName);
    void completeBlocks();
    void completeDictionaries();
    void completeLayouts();
    void completeNames();
    void completeSequences();
    void addCopies();

    const db::Record* model(Handle handle) const;
    const db::Record* modelNamed(std::string_view className, std::u16string_view name) const;
    Handle copyLater(const db::Record& record);
    void copyDictionary(const db::Record& dictionary);
    Handle entryOf(Handle dictionary, std::u16string_view key) const;
    db::Record& add(db::Record record);
    db::Record* dictionary(Handle handle);
    void addEntry(Handle dictionary, std::u16string_view key, Handle value);
    void addEntity(std::string_view className, Handle handle, const BlockEntry& block);
    void addLayout(BlockEntry& block, std::u16string name, std::int64_t order);

    Structure& m_structure;
    FileIndex& m_index;
    db::DrawingContent m_model;
    std::map<Handle, Handle> m_map;                             // from the model's handles to ours
    std::vector<std::pair<Handle, const db::Record*>> m_copies; // under which handle
    std::set<std::u16string> m_layoutNames;
    std::map<Handle, std::size_t> m_dictionaries; // of the file: those that were changed
};

} // namespace dxf
