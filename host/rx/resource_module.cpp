#include "rx/resource_module.h"

#include <algorithm>
#include <bit>

#include "rx/tv_product.h"

namespace {

/// Those that were current before each switch, the last one at the end.
std::vector<TvString>& switches()
{
    static std::vector<TvString> former;
    return former;
}

TvString& current()
{
    static TvString name;
    return name;
}

} // namespace

rx::ModuleLoader::Handle LoadResourceDll(const TvString& name)
{
    rx::ModuleLoader* loader = rx::moduleLoader();
    if (!loader)
        return nullptr;
    const base::Result<rx::ModuleLoader::Handle> module = loader->load(name);
    return module ? *module : nullptr;
}

int LoadStringW(rx::ModuleLoader::Handle module, int number, TvChar* buffer, int size)
{
    if (!buffer || size < 1)
        return 0;
    const TvChar* text = rx::resourceText(module, number);
    const std::u16string_view units = text ? std::u16string_view(text) : std::u16string_view();
    const std::size_t copied = std::min(units.size(), static_cast<std::size_t>(size - 1));
    std::copy_n(units.begin(), copied, buffer);
    buffer[copied] = u'\0';
    return static_cast<int>(copied);
}

bool SetCurrentResourceName(const TvString& name)
{
    if (name == current())
        return false;
    switches().push_back(std::exchange(current(), name));
    return true;
}

void RestorePreviousResource()
{
    if (switches().empty())
        return;
    current() = switches().back();
    switches().pop_back();
}

namespace rx {

const TvChar* resourceText(ModuleLoader::Handle module, int number)
{
    ModuleLoader* loader = moduleLoader();
    if (!module || !loader)
        return nullptr;
    const auto text = std::bit_cast<ResourceText>(loader->symbol(module, kResourceTextName));
    return text ? text(number) : nullptr;
}

TvString currentResourceName()
{
    return current();
}

TvString sheetSetResourceName()
{
    return moduleFileName(u"SheetSetRes.dll", u"KvSheetSetRes.dll");
}

} // namespace rx
