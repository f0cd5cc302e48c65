#pragma once

#include <base/tv_string.h>

class TvDbLayout;

/// Whether a layout can become a sheet: it is not the model, and something stands on it. False for
/// null, and when its block cannot be read.
bool IsLayoutPopulated(const TvDbLayout* layout);

/// A set that was made on another machine can name a template in that machine's program folder: of
/// such a template the user's own copy is meant.
bool IsInstalledTemplatePath(const TvString& path);
/// The template of that name among the user's own.
/// @return false, with @p out alone, when there is none.
bool FindUserTemplateCopy(const TvString& fileName, TvString& out);
/// The template and layout that a new sheet set begins with: the first template in the user's
/// folder, and in it the first layout that can become a sheet. No other template is tried.
/// @return false, with both alone, when there is none.
bool FindDefaultSheetTemplate(TvString& path, TvString& layout);

namespace core {

/// Where a template is that is named @p path: there, or in the user's folder when it was an
/// installed one; empty when neither is there.
TvString resolvedTemplate(const TvString& path);

} // namespace core
