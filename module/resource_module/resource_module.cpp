// The resource module of the sheet-set module: its texts and dialogs, from the one table of each.

#include <iterator>

#include <resources/resource_dialogs.h>
#include <rx/tv_rx_module.h>

#include "dialog_rows.h"
#include "text_rows.h"

namespace {

constexpr text::Row kTexts[] = {
#include "en/module.inc"
};

// Names of controls in the rows are those of the table's own room.
using namespace text;

// clang-format off
constexpr ControlTemplate kDialogRows[] = {
#include "dialogs/sheet_panel.inc"
};
// clang-format on

} // namespace

TVRX_EXPORT const text::DialogTemplate* tarvResourceDialog(int number)
{
    static const std::vector<DialogTemplate> all = dialogsOf(kDialogRows);
    return findDialogIn(all, number);
}

static_assert(std::is_same_v<decltype(&tarvResourceDialog), text::ResourceDialog>);

TVRX_EXPORT const char16_t* tarvResourceText(int number)
{
    return text::findRow(kTexts, std::size(kTexts), number);
}
