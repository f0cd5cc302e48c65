#pragma once

#include <base/tv_string.h>

/// The program's name, as titles show it. Never empty.
TvString GetOemProductName();
/// What the file names of the program's own modules begin with, in the place of "Kv".
/// @return false, with @p out alone, when they have their usual names.
bool GetTarvProductPreName(TvString& out);

namespace rx {

/// Who sells the program under a name of his own tells both at the start.
/// @param name    empty: the usual name.
/// @param prefix  of module names; empty: none.
void setProduct(const TvString& name, const TvString& prefix);

/// The file name of one of the program's modules: the product's prefix and @p suffix
/// ("PlotCmds.dll"), or @p usual ("KvPlotCmds.dll") when the product has no prefix.
TvString moduleFileName(const TvString& suffix, const TvString& usual);

} // namespace rx
