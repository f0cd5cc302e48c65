#include "sample_maker/lake_house.h"

#include <stdexcept>

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "lake_house.h"

namespace samples {

void makeLakeHouse(const TvString& folder)
{
    struct Drawing {
        const TvChar* name;
        void (*draw)(const TvString& path);
    };
    constexpr Drawing kDrawings[] = {
        {u"site.dwg", lake_house::drawSite},
        {u"surroundings.dwg", lake_house::drawSurroundings},
        {u"plans.dwg", lake_house::drawPlans},
        {u"elevations.dwg", lake_house::drawElevations},
        {u"sections.dwg", lake_house::drawSections},
        {u"details.dwg", lake_house::drawDetails},
    };
    const TvString drawings = base::PathRules::native().join(folder, lake_house::kDrawingFolder);
    if (!KvFileSystem::createDirectory(drawings))
        throw std::runtime_error("the folder of the drawings cannot be made");
    for (const Drawing& each : kDrawings)
        each.draw(base::PathRules::native().join(drawings, each.name));
    lake_house::makeSheetSet(folder);
}

} // namespace samples
