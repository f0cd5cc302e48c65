#include "module/resource_texts.h"

#include <array>

#include <rx/resource_module.h>

namespace {

rx::ModuleLoader::Handle g_resources = nullptr;

} // namespace

TvString LoadResourceText(int number)
{
    return TvString(rx::resourceText(g_resources, number));
}

TvString LoadResourceTextChecked(int number)
{
    // What developers see where a text is missing; nobody else should.
    static constexpr TvChar kMissing[] = u"Missing string!";
    std::array<TvChar, 1024> buffer{};
    const int units = LoadStringW(g_resources, number, buffer.data(), buffer.size());
    return units > 0 ? TvString(buffer.data(), units) : TvString(kMissing);
}

namespace module {

rx::ModuleLoader::Handle resourceModule()
{
    return g_resources;
}

void loadResourceModule()
{
    if (!g_resources)
        g_resources = LoadResourceDll(rx::sheetSetResourceName());
}

void freeResourceModule()
{
    if (rx::ModuleLoader::Handle resources = std::exchange(g_resources, nullptr);
        resources && rx::moduleLoader())
        rx::moduleLoader()->free(resources);
}

} // namespace module
