#pragma once

#include <vector>

#include <plot/publish_request.h>
#include <plot/sheet_list.h>

namespace plotcmds {

/// Publishes: asks where to, where nobody said so, and starts the job in a window of its own (with
/// windows), or does it at once and tells the command line. Everything is copied before it returns.
///
/// A drawing that is open and was changed is published as it is in the editor.
/// @param target  empty: as the set's options say, else the user is asked.
void publish(const std::vector<TvSmSheet*>& sheets, const TvSmSheetSet& set,
             const PublishRequest& request, const TvString& target = {});

/// The same for a job that is ready but for its target; @p suggested is where the question begins.
void publishJob(plot::JobRequest job, plot::OutputKind kind, const TvString& suggested);

/// Asks for the file, or the folder; what a script says next answers. Empty when the user gave up.
TvString askTarget(plot::OutputKind kind, const TvString& suggested);

/// Takes the content of open drawings that were changed into the job.
void takeOpenDrawings(plot::JobRequest& job);

} // namespace plotcmds
