// Classes of the host that others expect this module to export, too: their constructors and
// assignments are made here.

#include <db/tv_db_data_adapter.h>
#include <rx/tv_rx_dynamic_linker_output_guard.h>

namespace {

template <class Exported>
void makeAndCopy()
{
    Exported one;
    Exported copy(one);
    copy = one;
}

} // namespace

// Never called; it makes the compiler emit what it would only need when called.
[[gnu::used]] __attribute__((visibility("hidden"))) void emitExportedHostClasses()
{
    makeAndCopy<TvDbDataAdapterManager>();
    makeAndCopy<TvRxDynamicLinkerOutputGuard>();
}
