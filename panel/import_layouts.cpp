#include "panel/import_layouts.h"

#include <core/not_available_yet.h>
#include <resources/texts.h>

namespace panel {

namespace {

constexpr int kImportText = 451;

ImportLayouts g_importLayouts;

} // namespace

void setImportLayouts(ImportLayouts import)
{
    g_importLayouts = std::move(import);
}

void importLayouts(SheetListPage& page, const InsertionPlace& place, const TvString& drawing,
                   const std::vector<TvString>& layouts)
{
    if (!place.parent)
        return;
    if (g_importLayouts)
        g_importLayouts(page, place, drawing, layouts);
    else
        core::sayNotAvailableYet(text::find(kImportText));
}

} // namespace panel
