// A resource module for tests: one text.

#include <rx/tv_rx_module.h>

TVRX_EXPORT const char16_t* tarvResourceText(int number)
{
    return number == 7 ? u"seven" : nullptr;
}
