// Paths of any kind: no rule about their text reads beyond it, and the rules agree with each other.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <base/path_rules.h>

namespace {

using base::PathFlavour;
using base::PathRules;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void checkOnePath(const PathRules& rules, const TvString& path)
{
    const TvString normal = rules.normalise(path);
    require(rules.normalise(normal) == normal);
    require(rules.isAbsolute(normal) == rules.isAbsolute(path));
    require(rules.isNetwork(normal) == rules.isNetwork(path));
    require(PathRules::isUrl(normal) == PathRules::isUrl(path));
    require(rules.hostOf(normal) == rules.hostOf(path));
    require(rules.isSame(normal, path));
    require(rules.folderOf(path).length() <= path.length());
    require(rules.stemOf(path) + rules.extensionOf(path) == rules.fileNameOf(path));
    const TvString name = rules.fileNameOf(path);
    if (PathRules::isValidNewName(name))
        require(rules.normalise(name) == name && !rules.isNetwork(name));
}

void checkTwoPaths(const PathRules& rules, const TvString& path, const TvString& folder)
{
    const TvString relative = rules.relativeTo(path, folder);
    if (relative.isEmpty() || rules.isNetwork(path))
        return;
    require(!rules.isAbsolute(relative));
    require(rules.isSame(rules.join(folder, relative), path));
}

void check(const PathRules& rules, const TvString& path, const TvString& folder)
{
    checkOnePath(rules, path);
    checkOnePath(rules, rules.join(folder, path));
    checkTwoPaths(rules, path, folder);
}

} // namespace

/// Two paths, divided by a line end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    const std::size_t end = std::min(bytes.find('\n'), size);
    const TvString path = base::pathFromNative(bytes.substr(0, end));
    const TvString folder = base::pathFromNative(bytes.substr(std::min(end + 1, size)));
    require(base::nativePath(path) == bytes.substr(0, end));
    for (const PathFlavour flavour : {PathFlavour::Posix, PathFlavour::Windows})
        check(PathRules(flavour), path, folder);
    return 0;
}
