#pragma once

#include <panel/panel_commands.h>

/// Asks for a new sheet and puts it at that place. The set is locked meanwhile, and written when
/// there is a sheet; then its drawing is opened, if the user wants that.
/// @param place  nowhere, or where no subset is: nothing.
void CreateNewSheetInto(panel::SheetListPage& page, const panel::InsertionPlace& place);
