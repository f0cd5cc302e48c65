#include "sm/publishing.h"

#include "internals.h"

using sm::Internals;

bool IsSubsetPublishable(const TvSmSubset* subset)
{
    const TvSmPersist* level = subset;
    while (level) {
        const auto* at = tvrxCast<TvSmSubset>(level);
        if (!at || at->getExcludeFromPublish())
            return false;
        const TvSmPersist* above = at->owner();
        if (!above)
            return false;
        if (above->isKindOf(TvSmSheetSet::desc()))
            return true;
        level = above;
    }
    return false;
}

namespace {

/// The children without the exclude flag, all the way down. Above them nothing is excluded.
void collect(const TvSmSubset& subset, std::vector<TvSmSheet*>& out)
{
    for (TvSmComponent* child = Internals::firstChild(subset); child;
         child = Internals::nextSibling(*child)) {
        if (child->isA() == TvSmSheet::desc()) {
            auto* sheet = static_cast<TvSmSheet*>(child);
            if (!sheet->getExcludeFromPublish())
                out.push_back(sheet);
        } else if (const auto* below = tvrxCast<TvSmSubset>(child);
                   below && !below->getExcludeFromPublish()) {
            collect(*below, out);
        }
    }
}

/// With the test skipped at the top, each subset below is still asked up to the set: an excluded
/// top excludes them.
void collectSkippingTop(const TvSmSubset& top, std::vector<TvSmSheet*>& out)
{
    for (TvSmComponent* child = Internals::firstChild(top); child;
         child = Internals::nextSibling(*child)) {
        if (child->isA() == TvSmSheet::desc()) {
            auto* sheet = static_cast<TvSmSheet*>(child);
            if (!sheet->getExcludeFromPublish())
                out.push_back(sheet);
        } else if (const auto* below = tvrxCast<TvSmSubset>(child)) {
            CollectPublishableSheets(below, out, false);
        }
    }
}

bool hasPublishableSheet(const TvSmSubset& subset)
{
    std::vector<TvSmSheet*> sheets;
    CollectPublishableSheets(&subset, sheets, true);
    return !sheets.empty();
}

} // namespace

void CollectPublishableSheets(const TvSmSubset* subset, std::vector<TvSmSheet*>& out,
                              bool skipOwnTest)
{
    if (!subset)
        return;
    if (skipOwnTest)
        collectSkippingTop(*subset, out);
    else if (IsSubsetPublishable(subset))
        collect(*subset, out);
}

bool IsComponentPublishable(const TvSmComponent* component)
{
    if (!component)
        return false;
    if (const auto* set = tvrxCast<TvSmSheetSet>(component))
        return hasPublishableSheet(*set);
    if (const auto* subset = tvrxCast<TvSmSubset>(component))
        return IsSubsetPublishable(subset) && hasPublishableSheet(*subset);
    const auto* sheet = tvrxCast<TvSmSheet>(component);
    if (!sheet || sheet->getExcludeFromPublish())
        return false;
    const auto* subset = tvrxCast<TvSmSubset>(sheet->owner());
    return !subset || subset->isKindOf(TvSmSheetSet::desc()) || IsSubsetPublishable(subset);
}

bool CollectSelectedPublishableSheets(const std::vector<TvSmComponent*>& selection,
                                      std::vector<TvSmSheet*>& out)
{
    if (selection.empty())
        return false;
    for (TvSmComponent* component : selection) {
        if (!component)
            continue;
        if (const auto* set = tvrxCast<TvSmSheetSet>(component)) {
            out.clear();
            CollectPublishableSheets(set, out, true);
            return true;
        }
        if (const auto* subset = tvrxCast<TvSmSubset>(component))
            CollectPublishableSheets(subset, out, false);
        else if (auto* sheet = tvrxCast<TvSmSheet>(component);
                 sheet && IsComponentPublishable(sheet))
            out.push_back(sheet);
    }
    return true;
}

bool SubsetHasSheets(const TvSmSubset* subset)
{
    if (!subset)
        return false;
    for (TvSmComponent* child = Internals::firstChild(*subset); child;
         child = Internals::nextSibling(*child)) {
        if (child->isA() == TvSmSheet::desc() || SubsetHasSheets(tvrxCast<TvSmSubset>(child)))
            return true;
    }
    return false;
}
