#include "publish/page_setup_names.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>

namespace publish {

namespace {

bool isOverride(const TvDbPlotSettings& setup)
{
    return setup.plotType() == TvDbPlotSettings::kExtents ||
           setup.plotType() == TvDbPlotSettings::kLayout;
}

} // namespace

std::vector<TvString> pageSetupNames(TvDbDatabase& drawing)
{
    std::vector<TvString> names;
    const TvDbObjectPointer<TvDbDictionary> setups(drawing.plotSettingsDictionaryId());
    if (setups.openStatus() != TvStatus::Ok)
        return names;
    for (const auto& [key, id] : setups->entries()) {
        const TvDbObjectPointer<TvDbPlotSettings> setup(id);
        if (setup.openStatus() == TvStatus::Ok && isOverride(*setup))
            names.push_back(setup->getPlotSettingsName());
    }
    return names;
}

} // namespace publish
