#pragma once

#include <vector>

#include <ed/user_prompts.h>

class QWidget;

namespace ui {

/// Asks for files or a folder, for whoever supplies ed::UserPrompts with windows.
///
/// Begins at the question's start, else at the folder in which this dialog (by its name) was
/// answered last, else in the user's documents or his home. A folder that does not answer soon, or
/// lies on a host that nobody agreed to, is passed over: a share that is gone holds up nobody.
/// @return 5100; ed::kCancelled, and @p out alone.
int askFiles(const ed::UserPrompts::FileQuestion& question, std::vector<TvString>& out,
             QWidget* parent = nullptr);

/// Whether there is such a folder, and it answered within that time.
bool folderAnswers(const TvString& folder, int withinMs);

/// The dialogs of the toolkit in the place of the desktop's: tests can press their buttons.
void useOwnFileDialogs(bool isOn);

} // namespace ui
