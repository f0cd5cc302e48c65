#pragma once

#include <optional>
#include <vector>

#include <base/tv_string.h>

namespace plotcmds {

/// A printer, and how often.
struct PrintChoice {
    TvString printer;
    int copies = 1;
};

/// The printers that the machine's print service knows; none without a service.
/// @note asks it; waits two seconds at most.
std::vector<TvString> printersOfMachine();
/// nullopt when the user gave up.
std::optional<PrintChoice> askPrinter(const std::vector<TvString>& printers);
/// A name for a file that is printed and removed then, in the folder for what may be deleted.
TvString temporaryPdf();
/// Hands a file to the print service, and removes it.
/// @param title  that the service shows; empty: the file's name.
/// @return what to tell the user.
TvString printFile(const TvString& path, const PrintChoice& choice, const TvString& title);

} // namespace plotcmds
