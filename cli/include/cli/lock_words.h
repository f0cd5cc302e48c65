#pragma once

#include <string_view>

#include <base/edit_lock.h>

namespace cli {

/// The state's name in JSON documents.
std::string_view lockStateName(base::LockState state);
/// The state in words.
TvString lockStateWords(base::LockState state);
/// One sentence with the state and, if somebody is known, who.
TvString lockSentence(const base::LockInfo& info);
/// "2026-11-21T07:49:26Z", as machines read it; empty for 0 and for times out of range.
TvString utcText(std::int64_t unixNs);

} // namespace cli
