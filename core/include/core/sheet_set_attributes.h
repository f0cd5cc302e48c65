#pragma once

class TvSmSheetSet;

/// Gives @p destination what describes @p source: name, description, the four free texts, where new
/// sheets go, the template for them and whether to ask for it, and the custom properties, of which
/// those that the source lacks are removed.
///
/// A place for new sheets or a template that the source lacks is taken away. Page setups, label and
/// callout blocks, resource locations and view categories are not copied.
/// @return false for null.
/// @pre @p destination takes changes.
bool CopySheetSetAttributes(const TvSmSheetSet* source, TvSmSheetSet* destination);
