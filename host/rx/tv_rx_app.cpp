#include "rx/tv_rx_app.h"

#include <iterator>

#include "rx/tv_rx_dictionary.h"
#include "rx/tv_rx_dynamic_linker.h"
#include "rx/tv_rx_module.h"

using TvRx::kRetOk;

TvRxDbxApp::TvRxDbxApp() = default;
TvRxDbxApp::~TvRxDbxApp() = default;

int TvRxDbxApp::onInitApp(void* appId)
{
    m_resourceModule = ownResources();
    if (m_registersClasses) {
        if (auto* linker = tvrxCast<TvRxDynamicLinker>(tvrxSysRegistry()->at(kTvRxDynamicLinker)))
            linker->registerModule(appId);
        tvrxBuildClassHierarchy();
    }
    m_dynPropManager = makeDynPropManager();
    return kRetOk;
}

int TvRxDbxApp::onUnloadApp(void*)
{
    for (ClassEntry& entry : classTable())
        if (std::exchange(entry.isRegistered, false) && entry.remove)
            entry.remove();
    m_dynPropManager.reset();
    m_resourceModule = nullptr;
    return kRetOk;
}

int TvRxDbxApp::onLoadDocument(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onUnloadDocument(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onInvokeFunction(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage6(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage7(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage8(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage9(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage10(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage11(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage12(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage13(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage14(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage15(void*)
{
    return kRetOk;
}
int TvRxDbxApp::onMessage0(void*)
{
    return kRetOk;
}

int TvRxDbxApp::entryPoint(int message, void* appId)
{
    using Handler = int (TvRxDbxApp::*)(void*);
    // By number.
    static constexpr Handler kHandlers[] = {
        &TvRxDbxApp::onMessage0,     &TvRxDbxApp::onInitApp,        &TvRxDbxApp::onUnloadApp,
        &TvRxDbxApp::onLoadDocument, &TvRxDbxApp::onUnloadDocument, &TvRxDbxApp::onInvokeFunction,
        &TvRxDbxApp::onMessage6,     &TvRxDbxApp::onMessage7,       &TvRxDbxApp::onMessage8,
        &TvRxDbxApp::onMessage9,     &TvRxDbxApp::onMessage10,      &TvRxDbxApp::onMessage11,
        &TvRxDbxApp::onMessage12,    &TvRxDbxApp::onMessage13,      &TvRxDbxApp::onMessage14,
        &TvRxDbxApp::onMessage15};
    static_assert(std::size(kHandlers) == TvRx::kLastMsg + 1);
    return message >= 0 && message <= TvRx::kLastMsg ? (this->*kHandlers[message])(appId) : 0;
}

std::unique_ptr<TvRxDynPropManager> TvRxDbxApp::makeDynPropManager()
{
    return std::make_unique<TvRxDynPropManager>();
}

// TvRxTrxApp

namespace {

TvEdCommandStack* commandStack()
{
    return tvrxCast<TvEdCommandStack>(tvrxSysRegistry()->at(kTvRegisteredCommands));
}

} // namespace

int TvRxTrxApp::onInitApp(void* appId)
{
    const int answer = TvRxDbxApp::onInitApp(appId);
    TvEdCommandStack* stack = commandStack();
    for (const CommandEntry& entry : commandTable())
        if (stack)
            stack->addCommand(entry.group, entry.globalName, entry.localName, entry.flags,
                              entry.function);
    return answer;
}

int TvRxTrxApp::onUnloadApp(void* appId)
{
    const int answer = TvRxDbxApp::onUnloadApp(appId);
    TvEdCommandStack* stack = commandStack();
    for (const CommandEntry& entry : commandTable())
        if (stack)
            stack->removeCmd(entry.group, entry.globalName);
    return answer;
}
