#pragma once

class TvSmDatabase;
class TvSmPublishOptions;

namespace core {

/// Runs the dialog of the publish options; nothing is locked or committed by it.
/// @param parent  the window in front of which it stands; null: the program's.
/// @param database, options  not null. @return whether it ended with OK.
using PublishOptionsDialog = bool (*)(void* parent, TvSmDatabase& database,
                                      TvSmPublishOptions& options);

/// Whoever has windows puts it in when he is loaded; null: nobody.
void setPublishOptionsDialog(PublishOptionsDialog dialog);
PublishOptionsDialog publishOptionsDialog();

} // namespace core
