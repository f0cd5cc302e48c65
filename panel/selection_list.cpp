#include "panel/selection_list.h"

#include <algorithm>

#include <rx/tv_user_messages.h>
#include <sm/tv_sm_database.h>

#include "name_refusals.h"

namespace panel {

namespace {

constexpr int kDeleteTitle = 581, kDelete = 582, kChooseFirst = 583;

bool confirmDeletion(const TvString& name)
{
    TvUserMessages::Message message;
    message.text = kDelete;
    message.caption = kDeleteTitle;
    message.arguments = {name};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::No;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Yes;
}

} // namespace

SelectionList::SelectionList(TvSmDatabase* database, const std::vector<TvString>& handles)
    : m_database(database)
{
    std::ranges::copy_if(handles, std::back_inserter(m_handles), [&](const TvString& handle) {
        return tvrxCast<TvSmSheetSelection>(database->findObject(handle)) != nullptr;
    });
    if (!m_handles.empty())
        m_selected = 0;
}

TvSmSheetSelection* SelectionList::selectionAt(int row) const
{
    if (row < 0 || row >= count())
        return nullptr;
    return tvrxCast<TvSmSheetSelection>(
        m_database->findObject(m_handles[static_cast<std::size_t>(row)]));
}

TvString SelectionList::nameOf(int row) const
{
    const TvSmSheetSelection* selection = selectionAt(row);
    return selection ? selection->getName() : TvString();
}

void SelectionList::select(std::optional<int> row)
{
    m_selected = row && *row >= 0 && *row < count() ? row : std::nullopt;
}

bool SelectionList::beginRename() const
{
    if (!m_selected)
        warn(kChooseFirst, 0);
    return m_selected.has_value();
}

bool SelectionList::isTaken(int row, const TvString& name) const
{
    for (int other = 0; other < count(); ++other)
        if (other != row && nameOf(other).compareNoCase(name) == 0)
            return true;
    return false;
}

bool SelectionList::rename(int row, const TvString& name)
{
    TvSmSheetSelection* selection = selectionAt(row);
    if (!selection)
        return false;
    if (refusesEmptyName(name) || refusesCharacters(name) || refusesLength(name))
        return false;
    if (isTaken(row, name))
        return tellNameIsTaken(name), false;
    return selection->setName(name);
}

bool SelectionList::removeSelected()
{
    if (!beginRename())
        return false;
    const int row = *m_selected;
    TvSmSheetSelection* selection = selectionAt(row);
    if (!confirmDeletion(nameOf(row)))
        return false;
    auto* owner = selection ? tvrxCast<TvSmSheetSelections>(selection->getOwner()) : nullptr;
    if (owner && !owner->remove(selection))
        return false;
    m_handles.erase(m_handles.begin() + row);
    select(std::min(row, count() - 1));
    return true;
}

} // namespace panel
