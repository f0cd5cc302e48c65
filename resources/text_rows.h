#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace text {

/// One text of a table. Tables ascend by number.
struct Row {
    int number;
    const char16_t* text;
};

/// Null when the table has no such number. @note looked up by halving.
inline const char16_t* findRow(const Row* rows, std::size_t count, int number)
{
    const Row* end = rows + count;
    const Row* row = std::lower_bound(rows, end, number,
                                      [](const Row& at, int wanted) { return at.number < wanted; });
    return row != end && row->number == number ? row->text : nullptr;
}

/// The rows of several files as one table. A number that stands twice does not compile.
template <std::size_t N>
consteval std::array<Row, N> sortedRows(std::array<Row, N> rows)
{
    std::ranges::sort(rows, {}, &Row::number);
    if (std::ranges::adjacent_find(rows, {}, &Row::number) != rows.end())
        throw "a number stands twice";
    return rows;
}

} // namespace text
