#include "resources/dialogs.h"

#include "dialog_rows.h"

namespace text {

namespace {

// clang-format off
constexpr ControlTemplate kRows[] = {
#include "dialogs/sheet_panel.inc"
#include "dialogs/new_sheet.inc"
#include "dialogs/import.inc"
#include "dialogs/rename.inc"
#include "dialogs/publish.inc"
#include "dialogs/host.inc"
#include "dialogs/plot.inc"
};
// clang-format on

const std::vector<DialogTemplate>& dialogs()
{
    static const std::vector<DialogTemplate> all = dialogsOf(kRows);
    return all;
}

} // namespace

const DialogTemplate* findDialog(int number)
{
    return findDialogIn(dialogs(), number);
}

std::span<const DialogTemplate> allDialogs()
{
    return dialogs();
}

} // namespace text
