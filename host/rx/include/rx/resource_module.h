#pragma once

#include <rx/module_loader.h>

/// Loads a module of texts and dialogs; null when it cannot be had. The caller frees it.
rx::ModuleLoader::Handle LoadResourceDll(const TvString& name);

/// Copies a text of a resource module, cut to what fits, with its terminator.
/// @param size  of the buffer, in units; below 1 nothing is written.
/// @return units without the terminator; 0, and an empty buffer, when there is no such text or no
///         module.
int LoadStringW(rx::ModuleLoader::Handle module, int number, TvChar* buffer, int size);

/// Makes a module's resources the current ones: what dialogs are made from.
/// @return whether that changed anything; only then RestorePreviousResource() is due.
bool SetCurrentResourceName(const TvString& name);
/// Brings back those that were current before the last switch; nothing without one.
void RestorePreviousResource();

namespace rx {

/// What each resource module exports: the text of a number, or null.
constexpr const char* kResourceTextName = "tarvResourceText";
using ResourceText = const TvChar* (*)(int number);

/// A text of a resource module, where it lies there; null when there is none.
const TvChar* resourceText(ModuleLoader::Handle module, int number);

/// Name of the module whose resources are current; empty: the program's own.
TvString currentResourceName();

/// The file name of the sheet-set module's resources.
TvString sheetSetResourceName();

/// While it lives, the resources of that module are current.
class [[nodiscard]] ResourceContext
{
public:
    explicit ResourceContext(const TvString& name) : m_hasSwitched(SetCurrentResourceName(name)) {}
    ~ResourceContext()
    {
        if (m_hasSwitched)
            RestorePreviousResource();
    }
    ResourceContext(const ResourceContext&) = delete;
    ResourceContext& operator=(const ResourceContext&) = delete;

private:
    bool m_hasSwitched;
};

} // namespace rx
