#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <ed/property_source.h>
#include <rx/tv_user_messages.h>

class TvSmDatabase;
class TvSmPublishOptions;

namespace publish {

/// The publish options as rows of the property inspector. A row writes at once.
///
/// @param options  outlives the rows; its set is locked, or nothing can be changed.
std::vector<std::unique_ptr<ed::PropertyRow>> publishOptionRows(TvSmPublishOptions& options);

/// A set without a file name for what is published gets its own name, with ".dwf".
/// @pre the set is locked, or still its maker's.
void nameDefaultFile(const TvSmDatabase& database, TvSmPublishOptions& options);

/// What stands against the options as they are; nothing: they are right. Options of single sheets
/// are always right.
std::optional<TvUserMessages::Message> problemOf(const TvSmPublishOptions& options);

} // namespace publish
