#include "panel/new_selection.h"

#include <resources/texts.h>
#include <sm/kv_db_util.h>
#include <sm/tv_sm_database.h>

#include "name_refusals.h"

namespace panel {

namespace {

constexpr int kNamePattern = 330;

} // namespace

NewSelection::NewSelection(TvSmDatabase* database, std::vector<TvString> handles)
    : m_database(database), m_handles(std::move(handles))
{
    for (const TvSmSheetSelection* each :
         sm::each(database->getSheetSet()->getSheetSelections()->getEnumerator()))
        m_taken.insert(each->getName().toLower());
}

TvString NewSelection::proposedName() const
{
    for (int number = 1;; ++number) {
        const TvString name = TvString().format(text::find(kNamePattern), number);
        if (!m_taken.contains(name.toLower()))
            return name;
    }
}

int NewSelection::sheetCount() const
{
    int count = 0;
    for (const TvString& handle : m_handles) {
        const TvSmPersist* object = m_database->findObject(handle);
        if (const auto* subset = tvrxCast<TvSmSubset>(object))
            count += KvDbUtil::GetSheetNumsInSubSet(subset);
        else if (tvrxCast<TvSmSheet>(object))
            ++count;
    }
    return count;
}

bool NewSelection::accept(const TvString& name)
{
    if (m_taken.contains(name.toLower()))
        return tellNameIsTaken(name), false;
    if (refusesEmptyName(name) || refusesLength(name) || refusesCharacters(name))
        return false;
    make(name);
    return true;
}

void NewSelection::make(const TvString& name)
{
    TvSmSheetSelection* made = m_database->getSheetSet()->getSheetSelections()->add(name, u"");
    if (!made)
        return;
    for (const TvString& handle : m_handles) {
        TvSmPersist* object = m_database->findObject(handle);
        if (auto* subset = tvrxCast<TvSmSubset>(object))
            made->add(subset);
        else if (auto* sheet = tvrxCast<TvSmSheet>(object))
            made->add(sheet);
    }
}

} // namespace panel
