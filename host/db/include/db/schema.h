#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include <db/field_id.h>
#include <db/program.h>
#include <db/version.h>

namespace db {

/// How a value lies in a record.
enum class Storage : std::uint8_t {
    Integer, ///< one word
    Real,    ///< one to three words, a point or vector
    Handle,  ///< one word
    Text,    ///< one word that points to UTF-16
    Bytes,   ///< one word that points to bytes
    Bits,    ///< one word that points to bits
    Struct,  ///< the words of the struct, in place
    Array,   ///< one word that points to elements
};

/// What another field must hold so that this one is stored at all: the bit that says "present".
struct Guard {
    enum class Rule : std::uint8_t { SetBits, ClearBits, Equal };
    Rule rule;
    std::uint32_t slot;
    std::int64_t value;
};

/// One field of a struct or class.
struct FieldDef {
    FieldId id = FieldId::None;
    Storage storage = Storage::Integer;
    std::uint8_t width = 1;             ///< words
    Storage element = Storage::Integer; ///< of an array
    std::uint8_t handleCode = 0;        ///< 2 to 5: the kind of reference; else 0
    bool angle = false;                 ///< radians here, degrees in DXF
    bool wide = false;                  ///< an integer of more than 32 bits
    std::int16_t dxf = -1;              ///< first group code; -1: not in DXF
    std::uint32_t slot = 0;
    std::uint32_t fixedCount = 0;         ///< elements or bytes that are always there
    const StructDef* structure = nullptr; ///< of a struct, or of an array's elements
    FieldId count = FieldId::None;        ///< the field beside it that tells the number of elements
    std::vector<Guard> guards;

    /// Words that one element of an array takes.
    std::uint32_t stride() const;
};

/// The fields of a class, of a struct or of the elements of an array, for all versions together: a
/// field that a version does not know keeps its default.
struct StructDef {
    std::string_view name;
    std::vector<FieldDef> fields;
    std::vector<std::uint64_t> defaults; ///< one word each slot

    std::uint32_t size() const { return static_cast<std::uint32_t>(defaults.size()); }
    /// The field with this name; null when there is none.
    const FieldDef* find(FieldId id) const;
    /// Called once, when all fields are there.
    void index();

private:
    std::vector<std::uint16_t> m_buckets; // pairs: id, position in fields; open addressing
};

inline std::uint32_t FieldDef::stride() const
{
    return structure ? structure->size() : width;
}

enum class ClassKind : std::uint8_t {
    Entity,
    Object,
    Table,   ///< record of a symbol table
    Control, ///< list of the records
    Header,  ///< the header variables
};

/// A class of objects: its name in DXF, its table, and the programs made from it.
///
/// The tables are texts in the library; a class is read at its first use, a program made at its
/// first use in a version. All of it is thread-safe and lives as long as the program.
class ClassDef
{
public:
    ClassDef(std::string_view name, int typeNumber, ClassKind kind, std::string_view marker);
    ~ClassDef();

    std::string_view name() const { return m_name; }
    /// The fixed type number, or 0: then each drawing gives it one by its class list.
    int typeNumber() const { return m_typeNumber; }
    ClassKind kind() const { return m_kind; }
    bool isEntity() const { return m_kind == ClassKind::Entity; }
    /// The last class marker (group code 100) of its objects in DXF; empty when it has none.
    std::string_view marker() const { return m_marker; }

    const StructDef& layout() const
    {
        const StructDef* made = m_layout.load(std::memory_order_acquire);
        return made ? *made : readTable();
    }
    const Program& program(Version version) const
    {
        const Program* made = m_programs[indexOf(version)].load(std::memory_order_acquire);
        return made ? *made : compile(version);
    }

private:
    struct Parts;

    const StructDef& readTable() const;
    const Program& compile(Version version) const;

    std::string_view m_name;
    int m_typeNumber;
    ClassKind m_kind;
    std::string_view m_marker;
    mutable std::unique_ptr<Parts> m_parts; // made under a lock that all classes share
    mutable std::atomic<const StructDef*> m_layout{};
    mutable std::array<std::atomic<const Program*>, kVersionCount> m_programs{};
};

/// The class with this DXF name (exact case); null when there is no table for it.
///
/// Beside the DXF classes: HEADER_VARIABLES, and RAW_OBJECT and RAW_ENTITY for records of unknown
/// classes, of which the part that all have in common is known.
const ClassDef* classNamed(std::string_view name);
/// The class with this fixed type number; null for those that a drawing numbers itself.
const ClassDef* classNumbered(int typeNumber);
/// All classes, in the order of the tables; two names of one table are two classes.
std::span<const ClassDef* const> allClasses();

} // namespace db
