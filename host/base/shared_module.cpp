#include "base/shared_module.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <dlfcn.h>
#include <unistd.h>

#include "base/file_ops.h"
#include "base/path_rules.h"
#include "resolve_links.h"

namespace base {

namespace {

constexpr unsigned kGroupWrites = 020, kOthersWrite = 02, kSticky = 01000;
constexpr unsigned kAdministrator = 0;

Status refused(const TvString& path, const std::string& writable)
{
    return {Failure::Denied, Reason::ModuleNotSafe, {path, pathFromNative(writable)}};
}

bool isOurs(const FileInfo& info)
{
    return info.owner == kAdministrator || info.owner == ::geteuid();
}

bool othersMayWrite(const FileInfo& info)
{
    // A group of one's own, as many systems give each user one, has the user's number.
    const bool isOwnGroup = info.group == info.owner;
    return (info.mode & kOthersWrite) || ((info.mode & kGroupWrites) && !isOwnGroup);
}

bool isSafeFolder(const FileInfo& info)
{
    return isOurs(info) && (!othersMayWrite(info) || (info.mode & kSticky));
}

} // namespace

Result<SharedModule::Handle> SharedModule::load(const TvString& path)
{
    if (Handle module = ::dlopen(nativePath(path).c_str(), RTLD_NOW | RTLD_LOCAL))
        return module;
    const char* why = ::dlerror();
    return Status(Failure::Unsupported, Reason::ModuleNotLoaded,
                  {path, pathFromNative(why ? why : "")});
}

SharedModule::Handle SharedModule::loaded(const TvString& path)
{
    const Handle module = ::dlopen(nativePath(path).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (module)
        ::dlclose(module); // asking took a hold
    return module;
}

void SharedModule::free(Handle module)
{
    if (module)
        ::dlclose(module);
}

void* SharedModule::symbol(Handle module, const char* name)
{
    return module ? ::dlsym(module, name) : nullptr;
}

Result<TvString> fileOnlyWritableByUs(const TvString& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(nativePath(path).c_str(), nullptr), &std::free);
    if (!real)
        return Status::fromSystem(errno, path);
    FileInfo info;
    if (const int error = systemFileOps().describeName(real.get(), info))
        return Status::fromSystem(error, path);
    if (info.kind != FileInfo::Kind::Regular)
        return Status(Failure::Unsupported, Reason::NotRegularFile, {path});
    if (!isOurs(info) || othersMayWrite(info))
        return refused(path, real.get());
    const std::string nearest = nativeFolderOf(real.get());
    for (std::string folder = nearest;; folder = nativeFolderOf(folder)) {
        if (const int error = systemFileOps().describeName(folder, info))
            return Status::fromSystem(error, path);
        if (!isSafeFolder(info) || (folder == nearest && othersMayWrite(info)))
            return refused(path, folder);
        if (folder == "/")
            return pathFromNative(real.get());
    }
}

} // namespace base
