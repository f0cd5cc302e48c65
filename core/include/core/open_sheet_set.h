#pragma once

#include <base/tv_string.h>

class TvSmSheetSet;
class TvSmSheetSetMgr;

/// The ways by which a sheet set is opened in the panel. Each shows the palettes before it opens
/// the file, copies the file beside itself when it was not open yet, and puts it at the front of
/// the recent list. What goes wrong is told to the user.

/// Opens the file. A path that does not end in ".dst" is nothing. One that is missing or cannot be
/// opened leaves the recent list, and the user may choose another.
void OpenSheetSetFile(const TvString& path);
/// Asks for a file until it is a sheet set that is there, or the user gives up.
void OpenSheetSetByDialog();
/// The same by a path at the command line, to which ".dst" may be missing. A set that cannot be
/// opened leads to the dialog.
void OpenSheetSetByPrompt();

/// The sheet set, among those that are open, that the current layout of the working drawing is a
/// sheet of; the one that the drawing names is opened for that, if it can be.
/// @param out  the last of several; alone when there is none.
bool GetSheetSetOfActiveDrawing(TvSmSheetSetMgr* manager, TvSmSheetSet*& out);
