#pragma once

#include <functional>

#include <base/tv_string.h>

class QWidget;

namespace panel {

/// Shows that a file's folder does not answer, with a button to wait no longer, until @p isThere is
/// true. Events go on meanwhile. @return false: the user gave up.
bool waitForDisk(QWidget* parent, const TvString& file, const std::function<bool()>& isThere);
/// The same for whether there is such a file, whatever the answer. Nothing is shown where it comes
/// at once.
bool waitForFile(QWidget* parent, const TvString& file);

} // namespace panel
