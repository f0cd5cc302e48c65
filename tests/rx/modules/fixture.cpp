// A module for tests: it notes what it is sent in what the test program lends it.

#include <string>
#include <vector>

#include <rx/tv_rx_module.h>

using Trace = std::vector<std::string>;

namespace {

Trace* g_trace = nullptr;

} // namespace

TVRX_EXPORT void lendTrace(Trace* trace)
{
    g_trace = trace;
}

#ifndef KV_FIXTURE_WITHOUT_VERSION
TVRX_EXPORT int tvrxGetApiVersion()
{
    return KV_FIXTURE_API_VERSION;
}
#endif

TVRX_EXPORT int tvrxEntryPoint(int message, void* /*appId*/)
{
    if (g_trace)
        g_trace->push_back(std::string(KV_FIXTURE_NAME) + " " + std::to_string(message));
    return message == TvRx::kInitAppMsg ? KV_FIXTURE_ANSWER : TvRx::kRetOk;
}
