#pragma once

#include <optional>
#include <vector>

#include <base/tv_string.h>

class TvSmDatabase;
class TvSmSheetSelection;

namespace panel {

/// The rows of the dialog that manages the selections of a sheet set: each can be renamed and
/// deleted. The caller holds the set's lock, and keeps or takes back what was changed.
class SelectionList
{
public:
    /// @param database  not null; outlives this. @param handles  of selections, in the order of
    /// the rows; what is gone has none.
    SelectionList(TvSmDatabase* database, const std::vector<TvString>& handles);

    int count() const { return static_cast<int>(m_handles.size()); }
    /// Empty for a row that is none.
    TvString nameOf(int row) const;
    /// The row that is selected; the first at the beginning, none in an empty list.
    std::optional<int> selected() const { return m_selected; }
    void select(std::optional<int> row);
    /// The buttons for renaming and deleting are enabled.
    bool canChange() const { return !m_handles.empty(); }

    /// Whether the selected row may be edited now; without one the user is told.
    bool beginRename() const;
    /// Takes a new name for a row; the user is told why one is refused: empty or blank, with
    /// characters that no name may have, longer than 64, or another row's in any case.
    bool rename(int row, const TvString& name);
    /// Deletes the selected row after a question; the next one is selected.
    /// @return whether it is gone.
    bool removeSelected();

private:
    TvSmSheetSelection* selectionAt(int row) const;
    bool isTaken(int row, const TvString& name) const;

    TvSmDatabase* m_database; // not owned
    std::vector<TvString> m_handles;
    std::optional<int> m_selected;
};

} // namespace panel
