#include "module/kv_sheet_set_app.h"

#include <core/current_sheet.h>
#include <rx/tv_rx_module.h>
#include <sm/environment.h>

#include "module/palette_host.h"
#include "module/resource_texts.h"
#include "module/tv_sm_toc_data_adapter.h"
#include "registration.h"

using module::noteStep;

namespace {

/// What the rooms below ask for while the module lives.
core::DocumentLayout& documentLayout()
{
    static core::DocumentLayout layout;
    return layout;
}

void supplyRoomsBelow()
{
    core::setSessionHost(&module::paletteHost());
    if (!sm::environment().layout)
        sm::environment().layout = &documentLayout();
}

void leaveRoomsBelow()
{
    if (core::sessionHost() == &module::paletteHost())
        core::setSessionHost(nullptr);
    if (sm::environment().layout == &documentLayout())
        sm::environment().layout = nullptr;
}

} // namespace

KvSheetSetApp::KvSheetSetApp() = default;
KvSheetSetApp::~KvSheetSetApp() = default;

rx::ModuleLoader::Handle KvSheetSetApp::ownResources()
{
    return module::resourceModule();
}

int KvSheetSetApp::onInitApp(void* appId)
{
    if (m_isStarted)
        return TvRx::kRetOk;
    m_isStarted = true;
    noteStep("initialise base");
    const int answer = TvRxTrxApp::onInitApp(appId);
    supplyRoomsBelow();
    module::RegisterSheetSetModule();
    noteStep("register adapter provider");
    registerAdapterProvider();
    return answer;
}

int KvSheetSetApp::onUnloadApp(void* appId)
{
    int answer = TvRx::kRetOk;
    if (std::exchange(m_isStarted, false)) {
        noteStep("unload base");
        answer = TvRxTrxApp::onUnloadApp(appId);
        noteStep("unregister adapter provider");
        unregisterAdapterProvider();
        module::UnregisterSheetSetModule();
        leaveRoomsBelow();
    }
    noteStep("free resource module");
    module::freeResourceModule();
    return answer;
}

void KvSheetSetApp::registerAdapterProvider()
{
    TvDbDataAdapterManager* manager = tvdbGetDataAdapterManager();
    if (!manager)
        return;
    m_adapterProvider = std::make_unique<TvSmTocDataAdapterProvider>();
    manager->registerAdapterProvider(m_adapterProvider.get());
}

void KvSheetSetApp::unregisterAdapterProvider()
{
    if (!m_adapterProvider)
        return;
    if (TvDbDataAdapterManager* manager = tvdbGetDataAdapterManager())
        manager->unregisterAdapterProvider(m_adapterProvider.get());
    m_adapterProvider.reset();
}

KvSheetSetApp& module::application()
{
    static KvSheetSetApp app;
    return app;
}
