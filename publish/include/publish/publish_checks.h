#pragma once

#include <functional>
#include <set>

#include <base/tv_string.h>

namespace panel {
class SheetTree;
class TreeItem;
} // namespace panel

namespace publish {

/// Which items of a sheet list are marked for publishing, in the dialog that edits all of them.
///
/// A mark is no sum of those below it: a subset without one excludes its sheets, whose own marks
/// stay what they are.
class PublishChecks
{
public:
    /// Reads the marks of all items. @param tree  filled; outlives this.
    explicit PublishChecks(const panel::SheetTree& tree);

    bool isChecked(const panel::TreeItem& item) const;
    /// Turns the item's mark over. The root's goes to all sheets, and to no subset; a sheet's that
    /// is set sets the root's.
    void click(const panel::TreeItem& item);
    /// Writes the marks into the objects: the set, subsets and sheets; children first.
    /// @pre the database is locked by this program.
    void apply() const;

private:
    void read(const panel::TreeItem& item);
    void setChecked(const panel::TreeItem& item, bool checked);
    void checkSheetsBelow(const panel::TreeItem& item, bool checked);
    void write(const panel::TreeItem& item) const;

    const panel::SheetTree& m_tree;
    std::set<TvString> m_checked; // handles
};

} // namespace publish
