#pragma once

#include <ed/menu.h>

class TvSmDatabase;

namespace core {

/// What the panel's open button (COpenComboBox) offers: the sets of the session with a check mark
/// at the current one; to open another one or make one; those that were opened last.
///
/// Made at a click. A choice means what the menu showed, whatever happened since.
class OpenMenu
{
public:
    static constexpr int kOpen = 1, kNew = 2;
    static constexpr int kFirstSet = 3; ///< the recent ones count on behind the sets

    OpenMenu();
    const ed::Menu& menu() const { return m_menu; }
    /// The recent file of that id; empty for another number.
    TvString recentOf(int id) const;
    /// Does what the entry of that id says; nothing for another number, and for a set that has left
    /// the session.
    void choose(int id) const;

private:
    std::vector<TvSmDatabase*> m_sets; // the manager's; looked for in the session before use
    std::vector<TvString> m_recent;
    ed::Menu m_menu;
};

} // namespace core
