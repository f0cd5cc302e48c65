#include <core/sheet_view_sync.h>

#include <sm/tv_sm_sheet_set.h>
#include <sm/tv_sm_sheet_view.h>

namespace {

TvSmViewCategory* categoryNamed(TvSmSheetSet& set, const TvString& name)
{
    for (TvSmViewCategory* category : sm::each(set.getViewCategories()->getEnumerator()))
        if (category->getName().compareNoCase(name) == 0)
            return category;
    return nullptr;
}

/// Null when the set takes no changes.
TvSmViewCategory* makeCategory(TvSmSheetSet& set, const TvString& name)
{
    TvSmViewCategories* categories = set.getViewCategories();
    auto made = std::make_unique<TvSmViewCategory>();
    if (!made->initNew(categories, u""))
        return nullptr;
    if (!categories->add(made.get(), 0))
        return nullptr;
    TvSmViewCategory* category = made.release(); // the set's now
    // Behind: the list of a category that stands in no set points at nothing.
    for (TvSmFileReference* block : sm::each(set.getCalloutBlocks()->getEnumerator()))
        category->getCalloutBlocks()->add(block);
    category->setName(name);
    return category;
}

} // namespace

bool AssignViewCategory(TvSmSheetSet* sheetSet, TvSmSheetView* view, const TvString& name)
{
    if (!sheetSet || !view)
        return false;
    const TvSmViewCategory* present = view->getCategory();
    if (present && present->getName().compareNoCase(name) == 0)
        return true;
    TvSmViewCategory* category = categoryNamed(*sheetSet, name);
    if (!category)
        category = makeCategory(*sheetSet, name);
    return category && view->setCategory(category);
}
