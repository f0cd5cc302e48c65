#pragma once

#include <bit>

#include <rx/module_loader.h>

namespace core {

/// One of the host's modules that may be missing. Its file name is the product's prefix and a
/// suffix, or its usual name.
class OptionalModule
{
public:
    /// @param suffix, usual  literal: "PlotCmds.dll", "KvPlotCmds.dll".
    constexpr OptionalModule(const TvChar* suffix, const TvChar* usual)
        : m_suffix(suffix), m_usual(usual)
    {
    }
    OptionalModule(const OptionalModule&) = delete;
    OptionalModule& operator=(const OptionalModule&) = delete;

    /// Takes the one that is loaded already, or loads it. A missing one is silent.
    void load();
    /// Frees it if it was loaded by load().
    void free();
    bool isThere() const { return m_handle != nullptr; }
    bool loadedByUs() const { return m_loadedByUs; }

    /// What it exports under that name; null when there is no such export, or no module. Looked up
    /// at each use.
    template <class Function>
    Function entry(const char* name) const
    {
        return std::bit_cast<Function>(symbol(name));
    }

private:
    void* symbol(const char* name) const;
    const TvChar* m_suffix;
    const TvChar* m_usual;
    rx::ModuleLoader::Handle m_handle = nullptr;
    bool m_loadedByUs = false;
};

OptionalModule& plotCommandsModule();
OptionalModule& transmitModule();

/// The data link module, started by the host's linker if it was not yet; null when it cannot be
/// had, and when the linker is not the host's own. Nothing of it is ours to free.
rx::ModuleLoader::Handle dataLinkModule();

} // namespace core
