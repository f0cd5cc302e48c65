#include "sm/tv_sm_sheet_selection.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmSheetSelection, TvSmComponent)
TVRX_DEFINE_MEMBERS(TvSmSheetSelections, TvSmComponent)

TvSmSheetSelection::~TvSmSheetSelection() = default;

bool TvSmSheetSelection::add(TvSmComponent* component)
{
    const bool fits = Internals::canAdopt(*this, component) && Internals::handle(*component) != 0;
    if (!fits || !Internals::mayChange(*this))
        return false;
    const std::uint64_t handle = Internals::handle(*component);
    if (std::find(m_members.begin(), m_members.end(), handle) == m_members.end())
        Internals::insertAt(*this, m_members, m_members.size(), handle);
    return true;
}

TvSmEnumerator<TvSmComponent>* TvSmSheetSelection::getEnumerator() const
{
    std::vector<TvSmComponent*> present;
    if (const sm::DatabaseState* state = Internals::state(*this))
        for (std::uint64_t handle : m_members)
            if (auto* component = tvrxCast<TvSmComponent>(state->findInSet(handle)))
                present.push_back(component);
    return new sm::GatheredEnumerator<TvSmComponent>(std::move(present));
}

bool TvSmSheetSelection::remove(TvSmComponent* component)
{
    if (!component || Internals::handle(*component) == 0)
        return false;
    const auto at = std::find(m_members.begin(), m_members.end(), Internals::handle(*component));
    if (at == m_members.end() || !Internals::mayChange(*this))
        return false;
    Internals::eraseAt(*this, m_members, static_cast<std::size_t>(at - m_members.begin()));
    return true;
}

TvSmSheetSelections::~TvSmSheetSelections() = default;

TvSmSheetSelection* TvSmSheetSelections::add(const TvString& name, const TvString& description)
{
    if (!database() || !Internals::mayChange(*this))
        return nullptr;
    auto selection = std::make_unique<TvSmSheetSelection>();
    if (!selection->initNew(this, TvString()) ||
        !Internals::addEntry(*this, m_selections, selection.get()))
        return nullptr;
    TvSmSheetSelection* added = selection.release();
    added->setName(name);
    added->setDesc(description);
    return added;
}

TvSmEnumerator<TvSmSheetSelection>* TvSmSheetSelections::getEnumerator() const
{
    return new sm::ListEnumerator<TvSmSheetSelection>(m_selections);
}

bool TvSmSheetSelections::remove(TvSmSheetSelection* selection)
{
    return Internals::removeEntry(*this, m_selections, selection);
}
