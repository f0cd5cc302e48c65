#include <db/tv_db_host_application_services.h>

TvDbHostApplicationServices::~TvDbHostApplicationServices() = default;

namespace {

TvDbHostApplicationServices* g_services = nullptr;

} // namespace

TvDbHostApplicationServices* tvdbHostApplicationServices()
{
    static TvDbHostApplicationServices standard;
    return g_services ? g_services : &standard;
}

void tvdbSetHostApplicationServices(TvDbHostApplicationServices* services)
{
    g_services = services;
}
