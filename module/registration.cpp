#include "registration.h"

#include <core/auto_open_reactor.h>
#include <core/drawing_info_cache.h>
#include <core/optional_module.h>
#include <core/watch_table.h>
#include <rx/tv_rx_service.h>
#include <sm/kv_db_util.h>

#include "module/commands.h"
#include "module/kv_sheet_set_app.h"
#include "module/palette_host.h"
#include "module/tarv_sheet_set_cuix_manager.h"
#include "module/tarv_sheet_set_internal_imp.h"

namespace module {

namespace {

constexpr TvChar kService[] = u"KVSHEETSETPANEL_SERVICE";
constexpr int kNoCookie = -1;

/// What the host holds of us.
struct Registered {
    std::unique_ptr<TvEdAutoOpenSheetSetReactor> reactor;
    std::unique_ptr<CTvSmSheetSetEventsHandler> events;
    int eventsCookie = kNoCookie;
    std::unique_ptr<TarvSheetSetCuixManager> cuix;
    std::unique_ptr<TarvSheetSetInternalImp> internal;
};

Registered& ours()
{
    static Registered registered;
    return registered;
}

StepObserver g_observer = nullptr;

/// Sets that are open already are watched from now on, as those that will be opened.
void watchOpenSets(TvSmSheetSetMgr& manager, CTvSmSheetSetEventsHandler& events)
{
    const std::unique_ptr<TvSmEnumerator<TvSmDatabase>> each(manager.getDatabaseEnumerator());
    while (TvSmDatabase* database = each->next())
        events.onEvent(SmEventDatabaseOpened, database);
}

void makeReactor()
{
    if (!ours().reactor)
        ours().reactor = std::make_unique<TvEdAutoOpenSheetSetReactor>();
}

void registerEvents()
{
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    if (!manager)
        return;
    ours().events = std::make_unique<CTvSmSheetSetEventsHandler>(&g_watchTable);
    ours().eventsCookie = manager->registerEventHandler(ours().events.get());
    watchOpenSets(*manager, *ours().events);
}

void registerService()
{
    if (!tvrxServiceIsRegistered(kService))
        tvrxRegisterService(kService);
}

void makeCuixManager()
{
    if (!ours().cuix)
        ours().cuix = std::make_unique<TarvSheetSetCuixManager>();
}

void publishInternal()
{
    ours().internal = std::make_unique<TarvSheetSetInternalImp>();
    tarvSetSheetSetInternal(ours().internal.get());
}

void unregisterEvents()
{
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    if (manager && ours().eventsCookie != kNoCookie)
        manager->unregisterEventHandler(ours().eventsCookie);
    ours().eventsCookie = kNoCookie;
    ours().events.reset();
    // Nobody hears any more that a set is closed: none may be watched.
    for (auto& [database, entry] : g_watchTable)
        database->unregisterEventHandler(entry.cookie);
    g_watchTable.clear();
}

void unregisterService()
{
    if (tvrxServiceIsRegistered(kService))
        tvrxUnregisterService(kService);
}

void takeInternalBack()
{
    ours().internal.reset();
    tarvSetSheetSetInternal(nullptr);
}

struct Step {
    std::string_view name;
    void (*run)();
};

constexpr Step kStart[] = {
    {"add commands", &addCommands},
    {"make auto-open reactor", &makeReactor},
    {"register manager events", &registerEvents},
    {"register service", &registerService},
    {"make cuix manager", &makeCuixManager},
    {"set internal interface", &publishInternal},
    {"load plot commands", [] { core::plotCommandsModule().load(); }},
    {"load transmit", [] { core::transmitModule().load(); }},
};

constexpr Step kEnd[] = {
    {"destroy palette", [] { paletteHost().DestroyPalette(); }},
    {"free drawing information", &core::freeDrawingInfoCache},
    {"remove command group", &removeCommands},
    {"delete cuix manager", [] { ours().cuix.reset(); }},
    {"unregister manager events", &unregisterEvents},
    {"delete service", &unregisterService},
    {"delete auto-open reactor", [] { ours().reactor.reset(); }},
    {"take internal interface back", &takeInternalBack},
    {"free plot commands", [] { core::plotCommandsModule().free(); }},
    {"free transmit", [] { core::transmitModule().free(); }},
};

template <std::size_t Count>
void runAll(const Step (&steps)[Count])
{
    for (const Step& step : steps) {
        noteStep(step.name);
        step.run();
    }
}

} // namespace

void RegisterSheetSetModule()
{
    runAll(kStart);
}

void UnregisterSheetSetModule()
{
    runAll(kEnd);
}

TarvSheetSetCuixManager* cuixManager()
{
    return ours().cuix.get();
}

void setStepObserver(StepObserver observer)
{
    g_observer = observer;
}

void noteStep(std::string_view step)
{
    if (g_observer)
        g_observer(step);
}

} // namespace module
