#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <base/tv_string.h>
#include <core/drawing_look.h>

class TvSmDatabase;

namespace panel {

/// Lets the user wait for a file whose folder does not answer at once, until @p isThere is true.
/// Events go on meanwhile. @return false: he does not want to wait any longer.
using WaitForDisk = std::function<bool(const TvString& file, const std::function<bool()>& isThere)>;

/// Where a sheet's drawing is, as soon as the disk tells; nothing when the user does not wait.
/// @param reference  may be gone behind it.
std::optional<core::DrawingFacts> placeOfDrawing(const TvSmTvDbLayoutReference& reference,
                                                 const WaitForDisk& wait = {});

/// The same for a question that was made before.
std::optional<core::DrawingFacts> lookInTime(core::DrawingLook::Question question,
                                             const WaitForDisk& wait = {});

/// Opens the drawings of sheets, one after the other, and shows their layouts. One that is open
/// already is only shown. A drawing that is not there, or an open one without the layout, leads to
/// RecoverMissingDrawing().
/// @param database  null is nothing; one that closes meanwhile ends it.
/// @param handles   of sheets; what is gone, is none or has no layout is left out.
/// @param refresh   the status of sheets may have changed; called behind each that was shown, and
///                  where a command keeps documents from being opened.
/// @param wait      empty: it is waited for, however long.
/// @return whether @p refresh was called.
bool openSheets(TvSmDatabase* database, const std::vector<TvString>& handles,
                const std::function<void()>& refresh, const WaitForDisk& wait = {});
/// The same for looking only; nothing is refreshed.
void openSheetsReadOnly(TvSmDatabase* database, const std::vector<TvString>& handles,
                        const WaitForDisk& wait = {});

} // namespace panel
