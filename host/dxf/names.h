#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace dxf {

/// The symbol tables: what files refer to by name.
enum class Table : std::uint8_t {
    Viewport,
    Linetype,
    Layer,
    TextStyle,
    View,
    Ucs,
    Application,
    DimensionStyle,
    Block,
    Color,          ///< of colour books: not a table of files
    MultilineStyle, ///< likewise: a dictionary
    None,
};
inline constexpr std::size_t kTableCount = 9;

struct TableFacts {
    Table table;
    std::string_view name;        ///< of the table in a file
    std::string_view recordClass; ///< of the records, in the field tables
    std::string_view controlClass;
    std::string_view controlVariable; ///< of the header, that refers to the control
};

/// All of them, in the order of a file.
const std::array<TableFacts, kTableCount>& tables();
/// None for names that no table has.
Table tableNamed(std::string_view name);
const TableFacts& factsOf(Table table);

/// The records of the symbol tables by name, regardless of case.
class NameTables
{
public:
    /// The first one of a name counts. @p asWritten: the bytes in the file, for the quick way.
    void add(Table table, std::string_view asWritten, std::u16string_view name,
             std::uint64_t handle);
    /// 0 when there is none.
    std::uint64_t find(Table table, std::u16string_view name) const;
    /// The same by the bytes in the file; nullptr when they were never seen as a name of a record.
    const std::uint64_t* findWritten(Table table, std::string_view asWritten) const;
    void remember(Table table, std::string_view asWritten, std::uint64_t handle);

private:
    struct Names {
        std::unordered_map<std::string_view, std::uint64_t> written; // in the file's bytes
        std::unordered_map<std::u16string, std::uint64_t> folded;
    };
    std::array<Names, kTableCount + 3> m_names;
};

/// In the form that is equal for names that differ in case only.
std::u16string foldedName(std::u16string_view name);

} // namespace dxf
