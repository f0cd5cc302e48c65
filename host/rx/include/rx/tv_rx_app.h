#pragma once

#include <memory>
#include <span>

#include <rx/module_loader.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dyn_prop_manager.h>

/// What every module of the host is: an object that answers the messages of its life.
///
/// One operation for each message, in the order of the messages 1 to 15 and then 0; each may be
/// overridden, and answers TvRx::kRetOk unless it does more.
class TvRxDbxApp
{
public:
    TvRxDbxApp();
    virtual ~TvRxDbxApp();
    TvRxDbxApp(const TvRxDbxApp&) = delete;
    TvRxDbxApp& operator=(const TvRxDbxApp&) = delete;

    virtual int onInitApp(void* appId);
    virtual int onUnloadApp(void* appId);
    virtual int onLoadDocument(void* appId);
    virtual int onUnloadDocument(void* appId);
    virtual int onInvokeFunction(void* appId);
    virtual int onMessage6(void* appId);
    virtual int onMessage7(void* appId);
    virtual int onMessage8(void* appId);
    virtual int onMessage9(void* appId);
    virtual int onMessage10(void* appId);
    virtual int onMessage11(void* appId);
    virtual int onMessage12(void* appId);
    virtual int onMessage13(void* appId);
    virtual int onMessage14(void* appId);
    virtual int onMessage15(void* appId);
    virtual int onMessage0(void* appId);

    /// Hands a message to its operation. 0 for a number that is no message.
    int entryPoint(int message, void* appId);

    rx::ModuleLoader::Handle resourceModule() const { return m_resourceModule; }
    /// Null before the start and after the end.
    TvRxDynPropManager* dynPropManager() const { return m_dynPropManager.get(); }

protected:
    /// Where the module's texts lie; asked for at the start.
    virtual rx::ModuleLoader::Handle ownResources() { return nullptr; }
    virtual std::unique_ptr<TvRxDynPropManager> makeDynPropManager();
    /// A class of objects that the module brings into drawings.
    struct ClassEntry {
        const TvRxClass* type = nullptr; // static
        bool isRegistered = false;       ///< taken back at the end
        void (*remove)() = nullptr;
    };
    virtual std::span<ClassEntry> classTable() { return {}; }

    /// When set, the linker is told of the module and its classes at the start.
    bool m_registersClasses = true;

private:
    rx::ModuleLoader::Handle m_resourceModule = nullptr; // not owned
    std::unique_ptr<TvRxDynPropManager> m_dynPropManager;
};

/// A module that works with the user: it has commands, besides.
class TvRxTrxApp : public TvRxDbxApp
{
public:
    int onInitApp(void* appId) override;
    int onUnloadApp(void* appId) override;

protected:
    /// A command that the module has from its start to its end.
    struct CommandEntry {
        const TvChar* group;
        const TvChar* globalName;
        const TvChar* localName;
        int flags;
        TvEdCommandFunction function;
    };
    virtual std::span<const CommandEntry> commandTable() const { return {}; }
};
