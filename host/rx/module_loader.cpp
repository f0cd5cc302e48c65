#include "rx/module_loader.h"

#include <algorithm>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <base/shared_module.h>

namespace rx {

namespace {

ModuleLoader* g_loader = nullptr;

bool isPlainName(const TvString& name)
{
    const std::u16string_view text = name;
    return !text.empty() && text != u"." && text != u".." &&
           std::ranges::none_of(text, [](TvChar unit) {
               return base::PathRules::isSeparator(unit) || unit == u'\0';
           });
}

} // namespace

FolderModuleLoader::FolderModuleLoader(const std::vector<TvString>& folders)
{
    const base::PathRules& rules = base::PathRules::native();
    std::ranges::copy_if(folders, std::back_inserter(m_folders),
                         [&](const TvString& folder) { return rules.isAbsolute(folder); });
}

base::Result<TvString> FolderModuleLoader::find(const TvString& name) const
{
    if (!isPlainName(name))
        return base::Status(base::Failure::Usage, base::Reason::ModuleNameWrong, {name});
    for (const TvString& folder : m_folders) {
        const TvString path = base::PathRules::native().join(folder, name);
        if (KvFileSystem::isFileExisting(path, 1, 0))
            return base::fileOnlyWritableByUs(path);
    }
    return base::Status(base::Failure::NotFound, base::Reason::ModuleNotFound, {name});
}

ModuleLoader::Handle FolderModuleLoader::loaded(const TvString& name)
{
    const base::Result<TvString> path = find(name);
    return path ? base::SharedModule::loaded(*path) : nullptr;
}

base::Result<ModuleLoader::Handle> FolderModuleLoader::load(const TvString& name)
{
    const base::Result<TvString> path = find(name);
    if (!path)
        return path.status();
    return base::SharedModule::load(*path);
}

void FolderModuleLoader::free(Handle module)
{
    base::SharedModule::free(module);
}

void* FolderModuleLoader::symbol(Handle module, const char* symbol)
{
    return base::SharedModule::symbol(module, symbol);
}

ModuleLoader* moduleLoader()
{
    return g_loader;
}

void setModuleLoader(ModuleLoader* loader)
{
    g_loader = loader;
}

} // namespace rx
