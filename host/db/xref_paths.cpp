#include "xref_paths.h"

#include <vector>

#include <base/kv_file_system.h>
#include <base/path_rules.h>

namespace db {

XrefPlace findXref(const TvString& saved, const TvString& namer, const TvString& host)
{
    const base::PathRules& rules = base::PathRules::native();
    const bool isWhole = rules.isAbsolute(saved.view()) || rules.isNetwork(saved.view()) ||
                         base::PathRules::isUrl(saved.view());
    std::vector<TvString> places;
    if (isWhole)
        places.push_back(rules.normalise(saved.view()));
    else
        for (const TvString& drawing : {namer, host})
            if (!drawing.isEmpty())
                places.push_back(rules.normalise(
                    rules.join(rules.folderOf(drawing.view()).view(), saved.view()).view()));
    if (!host.isEmpty())
        places.push_back(
            rules.join(rules.folderOf(host.view()).view(), rules.fileNameOf(saved.view()).view()));
    XrefPlace found;
    if (places.empty()) {
        found.path = saved;
        found.isKnown = false;
        return found;
    }
    found.path = places.front();
    found.isForbidden = !KvFileSystem::isTouchAllowed(found.path);
    for (const TvString& place : places)
        if (KvFileSystem::isTouchAllowed(place) && KvFileSystem::isFileExisting(place)) {
            found.path = place;
            found.isThere = true;
            found.isForbidden = false;
            break;
        }
    return found;
}

TvDb::XrefStatus statusOf(const XrefPlace& place)
{
    if (place.isThere)
        return TvDb::kXrfResolved;
    return place.isForbidden || !place.isKnown ? TvDb::kXrfUnresolved : TvDb::kXrfFileNotFound;
}

} // namespace db
