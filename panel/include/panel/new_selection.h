#pragma once

#include <set>
#include <vector>

#include <base/tv_string.h>

class TvSmDatabase;

namespace panel {

/// A selection of a sheet set that is being made from what is selected in the tree. The caller
/// holds the set's lock, and keeps or takes back what was changed.
class NewSelection
{
public:
    /// @param database  not null; outlives this. @param handles  of subsets and sheets, in the
    /// order in which they go into the selection; what is neither is left out.
    NewSelection(TvSmDatabase* database, std::vector<TvString> handles);

    /// "Selection 1", or the first number behind it whose name no selection has in any case.
    TvString proposedName() const;
    /// The sheets that are selected, those below selected subsets among them.
    int sheetCount() const;
    /// Makes the selection; the user is told why a name is refused: one that is there in any case,
    /// empty or blank, longer than 64, with characters that no name may have.
    /// @return whether the question is over; true as well when the set took no selection.
    bool accept(const TvString& name);

private:
    void make(const TvString& name);

    TvSmDatabase* m_database; // not owned
    std::vector<TvString> m_handles;
    std::set<TvString> m_taken; // lower-case names
};

} // namespace panel
