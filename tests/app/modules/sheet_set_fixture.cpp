// Stands in for the sheet-set module: it writes what it is sent, and how many drawings are open
// then, to the file that KV_TRACE names.

#include <cstdlib>
#include <fstream>

#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dictionary.h>
#include <rx/tv_rx_module.h>

namespace {

TvEdCommandStack* commands()
{
    return tvrxCast<TvEdCommandStack>(tvrxSysRegistry()->at(kTvRegisteredCommands));
}

} // namespace

TVRX_EXPORT int tvrxGetApiVersion()
{
    return TvRx::kApiVersion;
}

TVRX_EXPORT int tvrxEntryPoint(int message, void* /*appId*/)
{
    if (message == TvRx::kInitAppMsg && commands())
        commands()->addCommand(u"FIXTURE", u"FIXTURE", u"FIXTURE", 0, [] {});
    const bool isKnown = commands() && commands()->removeCmd(u"FIXTURE", u"FIXTURE");
    if (isKnown && message != TvRx::kUnloadAppMsg)
        commands()->addCommand(u"FIXTURE", u"FIXTURE", u"FIXTURE", 0, [] {});
    if (const char* trace = std::getenv("KV_TRACE"))
        std::ofstream(trace, std::ios::app)
            << message << (isKnown ? "" : " without commands") << ' ';
    return TvRx::kRetOk;
}
