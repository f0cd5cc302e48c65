#pragma once

namespace module {

/// The group of all commands of this module.
constexpr const char16_t* kCommandGroup = u"SheetSet_CMDGROUP";

/// Puts the ten commands into the host's stack, in the order of their table; nothing without a
/// stack. A local name that the resources do not have is the global one.
void addCommands();
void removeCommands();

// What the commands run. One that is not built yet says so at the command line.

/// Shows the palette set. @param which  0: as it was; kept for the host's menus.
void ShowSheetSetPalette(int which);
void HideSheetSetPalette();
/// Hands all sheets of the current set to the transmit module, under the set's lock. Without a
/// current set the user is told; a missing module, or a set that somebody holds, is silent.
void ArchiveSheetSet();
void PlaceViewCommand();
/// For both kinds of blocks: under the lock of the current set, which is never committed. Nothing
/// without a current set.
void InsertLabelOrCallout();
void InsertSheetListTableCommand();

} // namespace module
