#include <core/open_menu.h>

#include <algorithm>

#include <core/new_sheet_set_wizard.h>
#include <core/open_sheet_set.h>
#include <core/session.h>
#include <resources/texts.h>
#include <sm/tv_sm_database.h>

namespace core {

namespace {

constexpr int kOpenText = 420, kNewText = 421, kRecentText = 422;

TvString nameOf(const TvSmDatabase& database)
{
    TvString name;
    return database.getSheetSet()->getName(name);
}

/// The entries of @p list under their ids, counting from @p id.
ed::Menu namesFrom(const std::vector<TvString>& list, int id)
{
    ed::Menu menu;
    for (const TvString& each : list)
        menu.addName(id++, each);
    return menu;
}

} // namespace

OpenMenu::OpenMenu() : m_sets(GetSessionDatabases()), m_recent(recentSheetSets())
{
    int id = kFirstSet;
    for (const TvSmDatabase* set : m_sets) {
        ed::MenuEntry& entry = m_menu.addName(id++, nameOf(*set));
        entry.mark = set == GetCurrentDatabase() ? ed::MenuMark::Check : ed::MenuMark::None;
    }
    if (!m_sets.empty())
        m_menu.addSeparator();
    m_menu.add(kOpen, text::find(kOpenText));
    m_menu.add(kNew, text::find(kNewText));
    m_menu.addSeparator();
    m_menu.addSubmenu(text::find(kRecentText), namesFrom(m_recent, id)); // empty: a plain entry
}

TvString OpenMenu::recentOf(int id) const
{
    const int at = id - kFirstSet - static_cast<int>(m_sets.size());
    return at >= 0 && at < static_cast<int>(m_recent.size())
               ? m_recent[static_cast<std::size_t>(at)]
               : TvString();
}

void OpenMenu::choose(int id) const
{
    if (id == kOpen)
        return OpenSheetSetByDialog();
    if (id == kNew)
        return RunNewSheetSetWizard();
    const int at = id - kFirstSet, sets = static_cast<int>(m_sets.size());
    if (at < 0 || at >= sets + static_cast<int>(m_recent.size()))
        return;
    if (at >= sets)
        return OpenSheetSetFile(m_recent[at - sets]);
    const std::vector<TvSmDatabase*>& session = GetSessionDatabases();
    if (std::ranges::find(session, m_sets[at]) != session.end())
        ActivateSheetSet(m_sets[at]);
}

} // namespace core
