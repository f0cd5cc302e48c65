#include "rx/tv_rx_dynamic_linker.h"

#include <algorithm>
#include <bit>

#include "rx/tv_rx_dynamic_linker_output_guard.h"

TVRX_DEFINE_MEMBERS(TvRxDynamicLinker, TvRxObject)
TVRX_DEFINE_MEMBERS(TvRxDynamicLinkerImp, TvRxDynamicLinker)

namespace {

using base::Failure;
using base::Reason;
using base::Status;

TvString numberText(int number)
{
    return TvString().format(u"%d", number);
}

template <class Function>
Function functionOf(rx::ModuleLoader& loader, rx::ModuleLoader::Handle module, const char* name)
{
    return std::bit_cast<Function>(loader.symbol(module, name));
}

/// Whether the module may be called at all.
Status checkInterface(rx::ModuleLoader& loader, rx::ModuleLoader::Handle module,
                      const TvString& name)
{
    const auto version = functionOf<TvRx::ApiVersion>(loader, module, TvRx::kApiVersionName);
    if (!version || !loader.symbol(module, TvRx::kEntryPointName))
        return {Failure::Unsupported, Reason::ModuleWithoutEntry, {name}};
    if (const int theirs = version(); theirs != TvRx::kApiVersion) {
        return {Failure::Unsupported,
                Reason::ModuleOfOtherVersion,
                {name, numberText(theirs), numberText(TvRx::kApiVersion)}};
    }
    return {};
}

} // namespace

TvRxDynamicLinkerImp::TvRxDynamicLinkerImp(rx::ModuleLoader& loader, Report report)
    : m_loader(loader), m_report(report)
{
}

TvRxDynamicLinkerImp::~TvRxDynamicLinkerImp()
{
    unloadAll();
}

base::Result<TvRxDynamicLinkerImp::Module> TvRxDynamicLinkerImp::start(const TvString& name)
{
    const base::Result<rx::ModuleLoader::Handle> handle = m_loader.load(name);
    if (!handle)
        return handle.status();
    if (Status status = checkInterface(m_loader, *handle, name); !status) {
        m_loader.free(*handle);
        return status;
    }
    const Module module{name, *handle,
                        functionOf<TvRx::EntryPoint>(m_loader, *handle, TvRx::kEntryPointName),
                        false};
    m_modules.push_back(module); // so that its start finds itself loaded
    if (const int answer = module.entry(TvRx::kInitAppMsg, module.handle)) {
        std::erase_if(m_modules, [&](const Module& other) { return other.name == name; });
        m_loader.free(module.handle);
        return Status(Failure::Unsupported, Reason::ModuleNotStarted, {name, numberText(answer)});
    }
    return module;
}

bool TvRxDynamicLinkerImp::loadModule(const TvString& name, int printit, int /*asCommand*/)
{
    m_lastFailure = {};
    if (isModuleLoaded(name))
        return true;
    const base::Result<Module> started = start(name);
    if (started)
        return true;
    m_lastFailure = started.status();
    if (printit && m_report && !TvRxDynamicLinkerOutputGuard::isQuiet())
        m_report(m_lastFailure);
    return false;
}

void TvRxDynamicLinkerImp::stop(const Module& module)
{
    module.entry(TvRx::kUnloadAppMsg, module.handle);
    m_loader.free(module.handle);
}

bool TvRxDynamicLinkerImp::unloadModule(const TvString& name, int /*asCommand*/)
{
    const Module* found = find(name);
    if (!found)
        return false;
    const Module module = *found;
    std::erase_if(m_modules, [&](const Module& other) { return other.name == name; });
    stop(module);
    return true;
}

bool TvRxDynamicLinkerImp::isModuleLoaded(const TvString& name) const
{
    return find(name) != nullptr;
}

std::vector<TvString> TvRxDynamicLinkerImp::loadedModules() const
{
    std::vector<TvString> names;
    for (const Module& module : m_modules)
        names.push_back(module.name);
    return names;
}

void TvRxDynamicLinkerImp::registerModule(void* appId)
{
    for (Module& module : m_modules)
        module.isRegistered = module.isRegistered || module.handle == appId;
}

bool TvRxDynamicLinkerImp::isModuleRegistered(const TvString& name) const
{
    const Module* module = find(name);
    return module && module->isRegistered;
}

void TvRxDynamicLinkerImp::sendMessage(int message)
{
    std::vector<Module> told = m_modules;
    if (message == TvRx::kUnloadDwgMsg)
        std::ranges::reverse(told);
    for (const Module& module : told)
        if (isModuleLoaded(module.name))
            module.entry(message, module.handle);
}

void TvRxDynamicLinkerImp::unloadAll()
{
    while (!m_modules.empty())
        unloadModule(TvString(m_modules.back().name), 0);
}

const TvRxDynamicLinkerImp::Module* TvRxDynamicLinkerImp::find(const TvString& name) const
{
    const auto found = std::ranges::find(m_modules, name, &Module::name);
    return found == m_modules.end() ? nullptr : &*found;
}
