#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/option_tree.h"

namespace cli {

/// Puts options on a CLI::App in our words: the one place that knows how a value gets into a
/// request.
///
/// Arguments come in shielded: CLI11 reads brackets and braces in values as lists of its own, so
/// parsing puts a mark before each, which is taken off here.
class OptionList
{
public:
    explicit OptionList(CLI::App& app) : m_app(app) {}

    /// An argument that names a file, in the system's own bytes.
    CLI::Option* file(const char* name, TvString& target, Word help);
    /// The same for one or more.
    CLI::Option* files(const char* name, std::vector<TvString>& target, Word help);
    CLI::Option* text(const char* name, const char* value, TvString& target, Word help);
    CLI::Option* text(const char* name, const char* value, std::optional<TvString>& target,
                      Word help);
    CLI::Option* texts(const char* name, std::vector<TvString>& target, Word help);
    /// An option that may be given several times, with one text each.
    CLI::Option* repeatedText(const char* name, const char* value, std::vector<TvString>& target,
                              Word help);
    CLI::Option* plain(const char* name, const char* value, std::string& target, Word help);
    CLI::Option* plains(const char* name, std::vector<std::string>& target, Word help);
    CLI::Option* number(const char* name, const char* value, std::optional<int>& target, Word help);
    CLI::Option* seconds(const char* name, std::chrono::milliseconds& target, Word help);
    CLI::Option* flag(const char* name, bool& target, Word help);
    CLI::Option* choice(const char* name, const char* value, PropertyScope& target, Word help);
    /// Options made from now on are those that every verb has.
    void beginCommon() { m_app.option_defaults()->group(kCommonGroup); }

    static constexpr char kCommonGroup[] = "common";
    static constexpr char kHiddenGroup[] = "";
    static constexpr char kShield = '\x02';

private:
    CLI::Option* argument(const char* name, const char* value, Word help,
                          std::function<void(const std::string&)> take);

    CLI::App& m_app; // not owned
};

} // namespace cli
