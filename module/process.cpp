// What happens when the system loads and frees this module's file.

#include "module/resource_texts.h"

namespace {

// The texts are there before the first message.
[[gnu::constructor]] void onProcessLoad()
{
    module::loadResourceModule();
}

// A module that was loaded and never started has them still.
[[gnu::destructor]] void onProcessFree()
{
    module::freeResourceModule();
}

} // namespace
