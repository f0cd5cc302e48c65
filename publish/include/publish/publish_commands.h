#pragma once

#include <functional>
#include <vector>

#include <base/tv_string.h>

class TvSmComponent;
class TvSmDatabase;

namespace panel {
class PanelCommands;
}

namespace publish {

/// What a command of the panel works on.
struct PublishSelection {
    TvSmDatabase* database = nullptr;       ///< the current one; null: every command ends quietly
    std::vector<TvSmComponent*> components; ///< what is selected, in the order of the tree
    bool isReversed = false;                ///< the last sheet is published first
};

// Each ends quietly where the plot module is missing, or does not have what is asked of it.

/// Hands the sheets of the selection over in the output kind of a command, 4 to 7.
///
/// Nothing is locked, and nothing is waited for. Excluded sheets are left out, and so is what
/// stands in an excluded subset; a list that is empty then is handed over as it is.
void publishAs(const PublishSelection& selection, int command);
/// The same with a page setup in the place of the sheets' own.
void publishWithPageSetup(const PublishSelection& selection, const TvString& name);
/// Opens the plot module's dialog with the sheets in the order of the tree, reversed or not.
void openPublishDialog(const PublishSelection& selection);
/// Under the lock, and always committed: the plot module's dialog tells nobody how it ended.
/// Nothing with an empty selection or a locked set.
void editPdfOptions(const PublishSelection& selection);
void editStampSettings();

/// Lets the user enter the drawing of a set's page setups: its properties, say. False when nobody
/// can be asked; whether a drawing was entered, the set tells.
using AskForPageSetups = std::function<bool(TvSmDatabase& database)>;
/// Asks for the drawing by its file, and keeps it in the set, which is locked meanwhile for that
/// alone. Another drawing that the set names already is replaced.
bool choosePageSetups(TvSmDatabase& database);
/// Opens the plot module's dialog on the page setups of the set's drawing; a drawing that is not
/// open is read for that, and is not saved here.
///
/// While the set has no such drawing the user is asked for one.
/// @param database  null: nothing. @param ask  empty: nobody can be asked, which ends it.
void managePageSetups(TvSmDatabase* database, const AskForPageSetups& ask);

/// Puts the commands that need no window of their own into a page: 4 to 7, 13, 15, 16 and 58, the
/// page setups, and where their names come from.
/// @param patienceMs  how long a menu waits for these names. What answers at all answers within it;
///                    together with the menu's own question about a sheet it stays below 100 ms.
void addHandlers(panel::PanelCommands& commands, int patienceMs = 15);

/// How command 58 asks, in this process; empty: nobody can be asked. Until there is the dialog of a
/// set's properties the windows of this room put choosePageSetups() in.
void setAskForPageSetups(AskForPageSetups ask);

} // namespace publish
