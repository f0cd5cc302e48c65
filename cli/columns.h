#pragma once

#include <vector>

#include "cli/console.h"

namespace cli {

/// Lines whose pieces stand in columns, as wide as their widest text; the last one is as it comes.
/// Texts stand on the left of their column, numbers on the right.
class Columns
{
public:
    /// @param numbers  column that holds numbers; -1: none does.
    explicit Columns(int numbers = -1) : m_numbers(numbers) {}
    void add(std::vector<Piece> line) { m_lines.push_back(std::move(line)); }
    bool isEmpty() const { return m_lines.empty(); }
    /// @param indent  what stands in front of each line.
    void print(Console& console, const TvString& indent = {}) const;

private:
    int m_numbers;
    std::vector<std::vector<Piece>> m_lines;
};

} // namespace cli
