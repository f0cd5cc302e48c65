#pragma once

#include <vector>

#include <base/status.h>
#include <rx/module_loader.h>
#include <rx/tv_rx_module.h>
#include <rx/tv_rx_object.h>

/// The key of the linker in the system registry.
constexpr const TvChar* kTvRxDynamicLinker = u"DynamicLinker";

/// Loads and unloads modules and sends them the messages of their life. Stands in the system
/// registry under "DynamicLinker".
class TvRxDynamicLinker : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvRxDynamicLinker)

    /// Loads the module and starts it with kInitAppMsg.
    ///
    /// @param name      file name of the module, letter for letter.
    /// @param printit   nonzero: a failure is told to the user.
    /// @param asCommand nonzero: the user asked for it, as by a command.
    /// @return true when it is loaded and started, also when it was so before.
    virtual bool loadModule(const TvString& name, int printit, int asCommand) = 0;
    /// Sends kUnloadAppMsg and unloads. False when it was not loaded by this linker.
    virtual bool unloadModule(const TvString& name, int asCommand) = 0;
    virtual bool isModuleLoaded(const TvString& name) const = 0;
    /// Names of the modules, in the order they were started.
    virtual std::vector<TvString> loadedModules() const = 0;
    /// A module that starts says that its classes are in the process from now on.
    /// @param appId  what the linker gave it with its messages.
    virtual void registerModule(void* appId) = 0;
};

/// The host's linker.
class TvRxDynamicLinkerImp : public TvRxDynamicLinker
{
    TVRX_DECLARE_MEMBERS(TvRxDynamicLinkerImp)

    /// Told of each failure that the user shall hear of.
    using Report = void (*)(const base::Status& status);

    /// @param loader  not owned; outlives the linker.
    /// @param report  may be null.
    explicit TvRxDynamicLinkerImp(rx::ModuleLoader& loader, Report report = nullptr);
    /// Unloads what is still loaded, last first.
    ~TvRxDynamicLinkerImp() override;
    TvRxDynamicLinkerImp(const TvRxDynamicLinkerImp&) = delete;
    TvRxDynamicLinkerImp& operator=(const TvRxDynamicLinkerImp&) = delete;

    bool loadModule(const TvString& name, int printit, int asCommand) override;
    bool unloadModule(const TvString& name, int asCommand) override;
    bool isModuleLoaded(const TvString& name) const override;
    std::vector<TvString> loadedModules() const override;
    void registerModule(void* appId) override;
    /// Whether that module has said so.
    bool isModuleRegistered(const TvString& name) const;

    /// Sends a message to each started module in the order of their start; kUnloadDwgMsg in the
    /// reverse. Modules that a handler loads or unloads meanwhile are not sent it.
    void sendMessage(int message);
    /// Unloads all, last started first.
    void unloadAll();
    /// Why the last loadModule() gave false.
    const base::Status& lastFailure() const { return m_lastFailure; }

private:
    struct Module {
        TvString name;
        rx::ModuleLoader::Handle handle = nullptr;
        TvRx::EntryPoint entry = nullptr;
        bool isRegistered = false;
    };
    base::Result<Module> start(const TvString& name);
    void stop(const Module& module);
    const Module* find(const TvString& name) const;

    rx::ModuleLoader& m_loader;
    Report m_report;
    std::vector<Module> m_modules; // in the order of their start
    base::Status m_lastFailure;
};
