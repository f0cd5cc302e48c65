#include "core/optional_module.h"

#include <rx/tv_product.h>
#include <rx/tv_rx_dictionary.h>
#include <rx/tv_rx_dynamic_linker.h>

namespace core {

namespace {

rx::ModuleLoader::Handle loadedOrNull(rx::ModuleLoader& loader, const TvString& name)
{
    const base::Result<rx::ModuleLoader::Handle> module = loader.load(name);
    return module ? *module : nullptr;
}

} // namespace

void OptionalModule::load()
{
    rx::ModuleLoader* loader = rx::moduleLoader();
    if (m_handle || !loader)
        return;
    const TvString name = rx::moduleFileName(m_suffix, m_usual);
    m_handle = loader->loaded(name);
    if (m_handle)
        return;
    m_handle = loadedOrNull(*loader, name);
    m_loadedByUs = m_handle != nullptr;
}

void OptionalModule::free()
{
    const rx::ModuleLoader::Handle handle = std::exchange(m_handle, nullptr);
    const bool isOurs = std::exchange(m_loadedByUs, false);
    if (isOurs && rx::moduleLoader())
        rx::moduleLoader()->free(handle);
}

void* OptionalModule::symbol(const char* name) const
{
    rx::ModuleLoader* loader = rx::moduleLoader();
    return m_handle && loader ? loader->symbol(m_handle, name) : nullptr;
}

OptionalModule& plotCommandsModule()
{
    static OptionalModule module(u"PlotCmds.dll", u"KvPlotCmds.dll");
    return module;
}

OptionalModule& transmitModule()
{
    static OptionalModule module(u"ETransmit.trx", u"KvETransmit.trx");
    return module;
}

rx::ModuleLoader::Handle dataLinkModule()
{
    auto* linker = tvrxCast<TvRxDynamicLinkerImp>(tvrxSysRegistry()->at(kTvRxDynamicLinker));
    rx::ModuleLoader* loader = rx::moduleLoader();
    if (!linker || !loader)
        return nullptr;
    const TvString name = rx::moduleFileName(u"Datalink.trx", u"KvDatalink.trx");
    if (!linker->isModuleLoaded(name))
        linker->loadModule(name, 1, 1);
    if (const rx::ModuleLoader::Handle module = loader->loaded(name))
        return module;
    loadedOrNull(*loader, name);
    return loader->loaded(name);
}

} // namespace core
