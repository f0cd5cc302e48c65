// The resource module of the sheet-set module: its texts and dialogs, from the one table of each.

#include <array>

#include <resources/resource_dialogs.h>
#include <rx/tv_rx_module.h>

#include "dialog_rows.h"
#include "text_rows.h"

namespace {

// clang-format off
constexpr auto kTexts = text::sortedRows(std::to_array<text::Row>({
#include "en/module.inc"
#include "en/panel_windows.inc"
#include "en/new_sheet.inc"
#include "en/import.inc"
#include "en/rename.inc"
#include "en/publish.inc"
}));
// clang-format on

// Names of controls in the rows are those of the table's own room.
using namespace text;

// clang-format off
constexpr ControlTemplate kDialogRows[] = {
#include "dialogs/sheet_panel.inc"
#include "dialogs/new_sheet.inc"
#include "dialogs/import.inc"
#include "dialogs/rename.inc"
#include "dialogs/publish.inc"
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
    return text::findRow(kTexts.data(), kTexts.size(), number);
}
