#pragma once

#include <string>

#include <cli/option_tree.h>

namespace cli {

/// Help about the tool as a whole. @p brief  the usage and the verbs only.
std::string toolHelp(bool brief);
/// Help about one verb, examples first. @p brief  usage and the verb's own options only.
std::string verbHelp(const Verb& verb, bool brief);
/// Help about the verbs of a group: what each is for, and its usage.
std::string groupHelp(const std::vector<std::string>& group, std::span<const Verb* const> verbs);
/// "kvsheetset tree [OPTION...] FILE".
std::string usageOf(const Verb& verb);

/// The man page's source, of all verbs.
std::string manualSource();
/// A script for bash that completes verbs, options and file names.
std::string bashCompletion();

} // namespace cli
