#include "operations/sheet_template.h"

#include <core/read_drawing_file.h>
#include <core/templates.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <sm/tv_sm_subset.h>

namespace operations {

namespace {

const TvSmSubset* above(const TvSmSubset& subset)
{
    return tvrxCast<TvSmSubset>(subset.owner()); // null for the set, whose owner is its database
}

/// Where it is; where it was said to be, when it is not there.
TvString pathOf(const TvSmFileReference& reference)
{
    const TvString resolved = reference.resolveFileName();
    return resolved.isEmpty() ? reference.getFileName() : resolved;
}

SheetTemplate templateOf(const TvSmSubset& subset)
{
    const TvSmTvDbLayoutReference* reference = subset.getDefaultTemplateLayout();
    SheetTemplate found;
    if (reference)
        found.layout = reference->getName();
    if (!found.layout.isEmpty())
        found.drawing = pathOf(*reference);
    return found;
}

} // namespace

SheetTemplate inheritedTemplate(const TvSmSubset& subset)
{
    for (const TvSmSubset* at = &subset; at; at = above(*at)) {
        SheetTemplate found = templateOf(*at);
        if (!found.isComplete())
            continue;
        if (const TvString place = core::resolvedTemplate(found.drawing); !place.isEmpty())
            found.drawing = place;
        return found;
    }
    return {};
}

bool isThere(const SheetTemplate& which)
{
    TvDbDatabase drawing(false, true);
    if (!which.isComplete() || ReadDrawingFile(&drawing, which.drawing) != TvStatus::Ok)
        return false;
    const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
    TvDbObjectId id;
    return layouts && layouts->getAt(which.layout, id) == TvStatus::Ok &&
           TvDbObjectPointer<TvDbLayout>(id);
}

TvString newSheetFolder(const TvSmSubset& subset)
{
    for (const TvSmSubset* at = &subset; at; at = above(*at))
        if (const TvSmFileReference* reference = at->getNewSheetLocation())
            if (TvString path = pathOf(*reference); !path.isEmpty())
                return path;
    return {};
}

} // namespace operations
