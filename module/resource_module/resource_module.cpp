// The resource module of the sheet-set module: its texts, from the one table of texts.

#include <iterator>

#include <rx/tv_rx_module.h>

#include "text_rows.h"

namespace {

constexpr text::Row kTexts[] = {
#include "en/module.inc"
};

} // namespace

TVRX_EXPORT const char16_t* tarvResourceText(int number)
{
    return text::findRow(kTexts, std::size(kTexts), number);
}
