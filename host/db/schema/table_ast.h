#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "db/version.h"

namespace db {

/// The versions that a line of a table holds for, by the last two digits of their number.
struct VersionRange {
    int first = 0;
    int last = 99;

    bool contains(Version version) const
    {
        const int number = static_cast<int>(version) - 1000;
        return number >= first && number <= last;
    }
    bool isAll() const { return first == 0 && last == 99; }
};

struct Branch;

/// One line of a table, with the lines below it where it opens a block. Texts point into the
/// tables.
struct Node {
    enum class Kind { Field, Point, Include, If, For, Versions, Let };

    Kind kind = Kind::Field;
    std::string_view type; ///< of a field: without argument and count; of an include: the struct
    std::string_view argument; ///< what stands in parentheses behind the type
    std::string_view count;    ///< what stands in brackets, or behind "for"
    std::string_view name;
    std::string_view value; ///< of a let: its expression; of a field: its default
    std::int16_t dxf = -1;
    VersionRange versions;
    std::vector<Branch> branches; ///< if, elif, else; one for the other blocks
};

using Body = std::vector<Node>;

struct Branch {
    std::string_view condition; ///< empty for else and for blocks without one
    Body body;
};

/// The lines of @p text (without the heading) as nodes. Throws std::logic_error with the line where
/// the text is no table: tables are part of the program, and its tests read all of them.
Body parseTable(std::string_view text);

/// Ends the reading of a table that has a mistake.
[[noreturn]] void tableError(std::string_view what, std::string_view where);

} // namespace db
