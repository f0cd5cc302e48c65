#pragma once

#include <memory>
#include <vector>

#include <base/status.h>
#include <base/tv_string.h>

namespace rx {

/// Finds and loads the program's modules by file name ("KvPlotCmds.dll"), letter for letter.
///
/// The one place where code comes into the process, so that a test can put its own in, and so that
/// the rules about where from stand once.
class ModuleLoader
{
public:
    using Handle = void*; ///< Null: none.

    virtual ~ModuleLoader() = default;
    /// The module of that name if it is loaded already, or null. Takes no hold of it.
    virtual Handle loaded(const TvString& name) = 0;
    /// Loads it, or takes one more hold of it; each wants its free().
    virtual base::Result<Handle> load(const TvString& name) = 0;
    virtual void free(Handle module) = 0;
    /// What the module exports under @p symbol, or null; null for a null module.
    virtual void* symbol(Handle module, const char* symbol) = 0;
};

/// Modules of the program's own module folders, the first folder that has one first.
///
/// Never from the current folder, from a document's folder or by a path: a name with a separator is
/// no name. A file that others than this user and the administrator could exchange is refused.
class FolderModuleLoader : public ModuleLoader
{
public:
    /// @param folders  absolute; others are left out.
    explicit FolderModuleLoader(const std::vector<TvString>& folders);

    Handle loaded(const TvString& name) override;
    base::Result<Handle> load(const TvString& name) override;
    void free(Handle module) override;
    void* symbol(Handle module, const char* symbol) override;

private:
    base::Result<TvString> find(const TvString& name) const;
    std::vector<TvString> m_folders;
};

/// The loader of this process, or null before the host set one: then there are no modules.
ModuleLoader* moduleLoader();
/// Not owned. Null takes it away.
void setModuleLoader(ModuleLoader* loader);

} // namespace rx
