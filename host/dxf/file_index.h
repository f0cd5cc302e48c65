#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include <base/status.h>
#include <db/drawing_file.h>

#include "names.h"

namespace dxf {

enum class Section : std::uint8_t { Header, Classes, Tables, Blocks, Entities, Objects, Other };

/// What the first group of an object says: its kind, and what it is in the field tables.
struct TypeInfo {
    /// Kinds that stand for several classes, told apart by what follows.
    enum class Family : std::uint8_t { None, Polyline, Vertex, Dimension, Insert };

    std::string_view name = {};             ///< in the file's text
    const db::ClassDef* classDef = nullptr; ///< null: none, or one of a family
    Family family = Family::None;
};

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// One object of a file, not yet read: where it stands, and whose it is.
struct Entry {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0; ///< as told; 0 when it is not
    std::uint32_t begin = 0, end = 0;
    std::uint32_t parent = kNone; ///< the insert or polyline that it follows
    std::uint32_t seqend = kNone; ///< of an insert or polyline
    std::uint32_t children = 0;   ///< how many stand right behind it
    std::uint32_t position = 0;   ///< among what its block or sequence holds
    const TypeInfo* type = nullptr;
    const db::ClassDef* classDef = nullptr;
    std::string_view name; ///< group 2 of records, blocks and inserts
    Section section = Section::Other;
    std::int8_t mode = 0; ///< entity mode
    bool isEntity = false;
    bool isPaper = false;   ///< group 67
    bool isComplete = true; ///< may be written as it stands: it has its handle and its markers
};

/// A symbol table of a file.
struct TableEntry {
    std::uint64_t handle = 0;
    std::uint32_t begin = 0, end = 0; ///< of its head
    std::vector<std::uint32_t> records;
};

/// A block as a file tells it: in two places.
struct BlockEntry {
    std::uint64_t handle = 0;                 ///< of its record
    std::uint32_t record = kNone;             ///< in BLOCK_RECORD
    std::uint32_t begin = kNone, end = kNone; ///< BLOCK and ENDBLK
    std::string_view name;
    std::vector<std::uint32_t> owned; ///< in draw order, without attributes and vertices
    std::vector<std::uint64_t> inserts;
    std::uint64_t beginHandle = 0, endHandle = 0; ///< of BLOCK and ENDBLK
    std::uint64_t layout = 0;
};

/// A part of the file that is kept as it stands.
struct SectionText {
    std::string_view name = {};
    std::uint32_t begin = 0, end = 0;
};

/// What stands where in a file: made by one pass over its groups, before any object is read.
struct FileIndex {
    db::Version version = db::Version::Ac1015;
    bool isOld = false; ///< older than the formats written: no object may be copied as it stands
    int codePage = 30;
    std::string_view lineEnd = "\n";
    std::uint64_t handleSeed = 0;
    std::vector<Entry> entries;
    std::vector<TableEntry> tables = std::vector<TableEntry>(kTableCount);
    std::vector<BlockEntry> blocks;
    std::vector<std::uint32_t> entities; ///< of ENTITIES, without attributes and vertices
    std::vector<SectionText> sections;   ///< in the order of the file
    std::string_view headerText, classesText, thumbnailText;
    /// Names that objects use, as written, each once (by table).
    std::vector<std::string_view> usedNames[kTableCount];

    std::map<std::string_view, TypeInfo> types; ///< of this file

    /// Of a text that outlives it. Fails with Unsupported, TooLarge or Damaged.
    static base::Result<FileIndex> make(std::string_view text);
};

} // namespace dxf
