#pragma once

#include <cstddef>
#include <span>

#include <base/status.h>
#include <base/tv_string.h>

namespace ed {

/// What a script types: its text with line feeds at the ends of lines, without the lines that begin
/// with a semicolon.
/// @param bytes  UTF-8 or UTF-16 with a mark at the beginning, or UTF-8; what is none is read by
///               the system's character set, where an unknown byte becomes U+FFFD.
TvString scriptText(std::span<const std::byte> bytes);

/// Runs a script: its words are typed in front of all that was posted. At most 16 megabytes. A
/// blank ends a word and an empty line is an empty answer, as typed. A command that is cancelled
/// ends the script. Within a command it begins when that is done.
/// @return Usage while another script runs, or without a command line; why it cannot be read.
base::Status runScript(const TvString& path);

} // namespace ed
