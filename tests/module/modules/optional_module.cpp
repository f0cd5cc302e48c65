// One of the host's optional modules, for tests: with and without what is looked up in it.

#include <rx/tv_rx_module.h>

#ifdef KV_WITH_ARCHIVE
#include <vector>

#include <sm/tv_sm_database.h>

namespace {

void (*g_told)(std::size_t sheets, TvSmDatabase* database) = nullptr;

} // namespace

TVRX_EXPORT void tellOfArchive(void (*told)(std::size_t sheets, TvSmDatabase* database))
{
    g_told = told;
}

TVRX_EXPORT void KvCmd_Archive(std::vector<TvSmSheet*> sheets, TvSmDatabase* database)
{
    if (g_told)
        g_told(sheets.size(), database);
}
#endif

#ifdef KV_WITH_ENTRY
TVRX_EXPORT int tvrxGetApiVersion()
{
    return TvRx::kApiVersion;
}

TVRX_EXPORT int tvrxEntryPoint(int, void*)
{
    return TvRx::kRetOk;
}
#endif

// So that there is something in it.
TVRX_EXPORT int optionalModule()
{
    return 1;
}
