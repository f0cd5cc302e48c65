#pragma once

#include <string_view>

#include <rx/tv_rx_app.h>

class TarvSheetSetCuixManager;
class TvDbDataAdapterProvider;

/// The module as the host sees it: it registers everything at its start, and takes everything back
/// at its end, in orders that stand as tables in the source. The host asks in between.
class KvSheetSetApp : public TvRxTrxApp
{
public:
    KvSheetSetApp();
    ~KvSheetSetApp() override;

    /// A second start is nothing.
    int onInitApp(void* appId) override;
    /// Takes back what is there; without a start, the resource module.
    int onUnloadApp(void* appId) override;

protected:
    rx::ModuleLoader::Handle ownResources() override;

private:
    void registerAdapterProvider();
    void unregisterAdapterProvider();

    std::unique_ptr<TvDbDataAdapterProvider> m_adapterProvider;
    bool m_isStarted = false;
};

namespace module {

/// The one of this module.
KvSheetSetApp& application();

/// Null before the start and after the end.
TarvSheetSetCuixManager* cuixManager();

/// Is told each step of start and end by its name, before it is done; null: nobody.
using StepObserver = void (*)(std::string_view step);
void setStepObserver(StepObserver observer);

} // namespace module
