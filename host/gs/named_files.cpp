#include "named_files.h"

#include <base/path_rules.h>

namespace gs {

std::vector<TvString> placesOf(TvDbDatabase& database, const TvString& name)
{
    const base::PathRules& rules = base::PathRules::native();
    std::vector<TvString> places;
    if (name.isEmpty() || rules.isNetwork(name) || base::PathRules::isUrl(name))
        return places;
    const TvString folder = rules.folderOf(database.getFilename());
    if (rules.isAbsolute(name))
        places.push_back(name);
    if (!folder.isEmpty() && !rules.isNetwork(folder)) {
        if (!rules.isAbsolute(name))
            places.push_back(rules.normalise(rules.join(folder, name)));
        places.push_back(rules.join(folder, rules.fileNameOf(name)));
    }
    return places;
}

} // namespace gs
