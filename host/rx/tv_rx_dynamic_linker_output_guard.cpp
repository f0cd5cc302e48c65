#include "rx/tv_rx_dynamic_linker_output_guard.h"

namespace {

int g_guards = 0;

} // namespace

bool TvRxDynamicLinkerOutputGuard::isQuiet()
{
    return g_guards > 0;
}

void TvRxDynamicLinkerOutputGuard::count(int change)
{
    g_guards += change;
}
