#include "rx/tv_rx_dyn_prop_manager.h"

namespace {

unsigned g_version = 0;

} // namespace

TvRxDynPropManager::~TvRxDynPropManager() = default;

void tvrxBuildClassHierarchy()
{
    ++g_version;
}

unsigned tvrxClassHierarchyVersion()
{
    return g_version;
}
