#pragma once

#include <functional>
#include <vector>

#include <base/tv_string.h>

class TvSmDatabase;

namespace panel {

/// Opens the drawings of sheets, one after the other, and shows their layouts. One that is open
/// already is only shown. A drawing that is not there, or an open one without the layout, leads to
/// RecoverMissingDrawing().
/// @param database  null is nothing; one that closes meanwhile ends it.
/// @param handles   of sheets; what is gone, is none or has no layout is left out.
/// @param refresh   the status of sheets may have changed; called behind each that was shown, and
///                  where a command keeps documents from being opened.
/// @return whether @p refresh was called.
bool openSheets(TvSmDatabase* database, const std::vector<TvString>& handles,
                const std::function<void()>& refresh);
/// The same for looking only; nothing is refreshed.
void openSheetsReadOnly(TvSmDatabase* database, const std::vector<TvString>& handles);

} // namespace panel
