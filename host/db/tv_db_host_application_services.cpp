#include <db/tv_db_host_application_services.h>

TvDbHostApplicationServices::~TvDbHostApplicationServices() = default;

namespace {

TvDbHostApplicationServices* g_services = nullptr;
TvDbLayoutManager* g_layoutManager = nullptr;

} // namespace

TvDbLayoutManager* TvDbHostApplicationServices::layoutManager() const
{
    return g_layoutManager;
}

void db::setLayoutManager(TvDbLayoutManager* manager)
{
    g_layoutManager = manager;
}

TvDbHostApplicationServices* tvdbHostApplicationServices()
{
    static TvDbHostApplicationServices standard;
    return g_services ? g_services : &standard;
}

void tvdbSetHostApplicationServices(TvDbHostApplicationServices* services)
{
    g_services = services;
}
