#include "base/user_folders.h"

#include <cstdlib>

#include <base/path_rules.h>

namespace base {

namespace {

TvString folderFromVariable(const char* variable, std::u16string_view below)
{
    const char* value = std::getenv(variable);
    if (!value || *value != '/')
        return {};
    return PathRules::native().join(pathFromNative(value), below);
}

TvString folder(const char* variable, std::u16string_view belowHome)
{
    const TvString given = folderFromVariable(variable, u"tarvik");
    return given.isEmpty() ? folderFromVariable("HOME", belowHome) : given;
}

} // namespace

TvString configFolder()
{
    return folder("XDG_CONFIG_HOME", u".config/tarvik");
}

TvString dataFolder()
{
    return folder("XDG_DATA_HOME", u".local/share/tarvik");
}

TvString stateFolder()
{
    return folder("XDG_STATE_HOME", u".local/state/tarvik");
}

TvString cacheFolder()
{
    return folder("XDG_CACHE_HOME", u".cache/tarvik");
}

TvString runtimeFolder()
{
    return folderFromVariable("XDG_RUNTIME_DIR", u"tarvik");
}

} // namespace base
