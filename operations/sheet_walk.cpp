#include "operations/sheet_walk.h"

#include <sm/tv_sm_enumerator.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_subset.h>

namespace {

struct Neighbours {
    TvSmComponent* before = nullptr;
    TvSmComponent* behind = nullptr;
};

Neighbours neighboursOf(const TvSmSheet* sheet)
{
    Neighbours found;
    const auto* owner = sheet ? tvrxCast<TvSmSubset>(sheet->getOwner()) : nullptr;
    if (!owner)
        return found;
    bool isPassed = false;
    TvSmComponent* former = nullptr;
    for (TvSmComponent* child : sm::each(owner->getSheetEnumerator())) {
        if (isPassed) {
            found.behind = child;
            break;
        }
        if (child == sheet) {
            isPassed = true;
            found.before = former;
        }
        former = child;
    }
    return found;
}

} // namespace

TvSmSheet* GetPreviousSheet(const TvSmSheet* sheet)
{
    return tvrxCast<TvSmSheet>(neighboursOf(sheet).before);
}

TvSmSheet* GetNextSheet(const TvSmSheet* sheet)
{
    return tvrxCast<TvSmSheet>(neighboursOf(sheet).behind);
}
