#include "resolve_links.h"

#include <cerrno>

namespace base {

std::string nativeFolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nativeNameOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string nativeJoin(const std::string& folder, const std::string& name)
{
    if (folder.empty() || (!name.empty() && name.front() == '/'))
        return name;
    return folder.back() == '/' ? folder + name : folder + '/' + name;
}

int resolveLinks(FileOps& ops, const std::string& path, ResolvedName& out)
{
    ResolvedName name{path, std::nullopt, false};
    for (int links = 0; links <= kMaxLinks; ++links) {
        FileInfo info;
        const int error = ops.describeName(name.path, info);
        if (error && error != ENOENT)
            return error;
        if (!error && info.kind == FileInfo::Kind::Link) {
            std::string target;
            if (const int linkError = ops.readLink(name.path, target))
                return linkError;
            name.path = nativeJoin(nativeFolderOf(name.path), target);
            name.wasLink = true;
            continue;
        }
        if (!error)
            name.info = info;
        out = std::move(name);
        return 0;
    }
    return ELOOP;
}

} // namespace base
