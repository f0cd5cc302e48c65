#pragma once

#include <span>
#include <vector>

#include <operations/import_layouts.h>

class TvSmSheet;
class TvSmSubset;

namespace operations {

/// Which way each column of the list was sorted last. Outlives the lists: the next one goes on with
/// the turns.
class SortDirections
{
public:
    /// Turns the column's direction, which begins as descending.
    /// @return whether it is ascending now. False for what is no column.
    bool turn(int column);
    /// As it was turned last; false for what is no column.
    bool isAscending(int column) const;

private:
    bool m_isAscending[3] = {};
};

/// What the user has set, kept between two dialogs.
struct ImportSettings {
    int widths[3] = {150, 150, 300}; ///< of the columns, in pixels; above 0
    bool withPrefix = true;          ///< sheets are named after their drawing, too

    static ImportSettings read();
    void write() const;
};

/// The list of layouts that may become sheets, without its window: what stands in it, what is
/// ticked, what OK does.
///
/// With a subset, each layout that is ticked becomes a sheet of it; with a sheet, the one that is
/// ticked becomes what that sheet leads to.
class ImportLayoutList
{
public:
    static constexpr int kColumns = 3;

    explicit ImportLayoutList(TvSmSubset* subset) : m_subset(subset) {}
    explicit ImportLayoutList(TvSmSheet* sheet) : m_sheet(sheet) {}

    bool isMultiple() const { return m_sheet == nullptr; }
    const std::vector<LayoutRow>& rows() const { return m_rows; }
    /// File name of the drawing, name of the layout, and what is to be said of it; empty for what
    /// is no cell.
    TvString textAt(std::size_t row, int column) const;

    /// The layouts of @p drawings take the place of all rows. What may be imported is ticked, if
    /// several may be. Says which drawings cannot be read, and then which have nothing on paper.
    void load(std::span<const TvString> drawings);
    /// Ticks the rows of these layouts alone, by their exact names. Says once that one is not
    /// there. Nothing for no names.
    void tickOnly(std::span<const TvString> layouts);
    /// Where one row alone may be ticked, the others lose their ticks. Rows that cannot be
    /// imported may be ticked.
    void setTicked(std::size_t row, bool isTicked);
    /// Puts the rows in the order of a column's texts, unit by unit; equal ones stay as they are.
    /// @return where each row stood before; empty for what is no column.
    std::vector<std::size_t> sort(int column, SortDirections& directions);

    /// Makes a sheet of each row that is ticked and may be imported, in the order of the rows, or
    /// lets the sheet lead there. Then the list is empty.
    /// @param made  gets the sheets, which have no place yet.
    /// @return false, after saying so, when no row is ticked; all that may be imported are ticked
    /// then, if several may be.
    /// @pre the target's database is locked.
    bool accept(bool withPrefix, std::vector<TvSmSheet*>& made);

private:
    void tickImportable();
    void apply(const LayoutRow& row, bool withPrefix, std::vector<TvSmSheet*>& made);

    TvSmSubset* m_subset = nullptr; // not owned; one of both is there
    TvSmSheet* m_sheet = nullptr;   // not owned
    std::vector<LayoutRow> m_rows;
};

} // namespace operations
