#include "app/options.h"

#include <filesystem>

#include <CLI/CLI.hpp>

#include <base/path_rules.h>

#include "app/words.h"

namespace app {

namespace {

// CLI11 reads brackets and braces in values as lists of its own: each value travels behind a mark.
constexpr char kShield = '\x02';

struct Row {
    const char* names;
    const char* value; // null: a flag
    Word help;
    bool Options::*flag;
    TvString Options::*text;
};

// clang-format off
constexpr Row kRows[] = {
    {"--headless",     nullptr, Word::HelpHeadless,    &Options::isHeadless,       nullptr},
    {"--script",       "FILE",  Word::HelpScript,      nullptr,                    &Options::script},
    {"--new-instance", nullptr, Word::HelpNewInstance, &Options::wantsNewInstance, nullptr},
    {"--version",      nullptr, Word::HelpVersion,     &Options::wantsVersion,     nullptr},
    {"-h,--help",      nullptr, Word::HelpHelp,        &Options::wantsHelp,        nullptr},
};
// clang-format on

bool isOption(const std::string& argument)
{
    return argument.size() > 1 && argument[0] == '-';
}

/// Values shielded, options left as they are; behind "--" everything is a value.
std::vector<std::string> shielded(std::span<const std::string> arguments)
{
    std::vector<std::string> out;
    bool onlyValues = false;
    for (const std::string& argument : arguments) {
        if (!onlyValues && isOption(argument)) {
            onlyValues = argument == "--";
            const std::size_t equals = argument.find('=');
            out.push_back(equals == std::string::npos || onlyValues
                              ? argument
                              : std::string(argument).insert(equals + 1, 1, kShield));
        } else {
            out.push_back(kShield + argument);
        }
    }
    return out;
}

TvString bare(const std::string& value)
{
    return base::pathFromNative(!value.empty() && value[0] == kShield
                                    ? std::string_view(value).substr(1)
                                    : std::string_view(value));
}

void addRow(CLI::App& parser, const Row& row, Options& into)
{
    if (row.flag)
        parser.add_flag(row.names, into.*row.flag);
    else
        parser.add_option_function<std::string>(row.names, [&into, &row](const std::string& value) {
            into.*row.text = bare(value);
            if ((into.*row.text).isEmpty()) // of a variable in a shell that was never set
                into.error = textOf(Word::OptionNeedsValue, {TvString(row.names)});
        });
}

TvString unshielded(std::string text)
{
    std::erase(text, kShield);
    return TvString(text);
}

TvString wordsFor(const CLI::ParseError& error, const CLI::App& parser)
{
    const std::string what = error.what();
    const TvString subject(std::string_view(what).substr(0, what.find(':')));
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::ExtrasError: {
        const std::vector<std::string> extras = parser.remaining();
        return textOf(Word::UnknownOption, {bare(extras.empty() ? std::string() : extras.front())});
    }
    case CLI::ExitCodes::ArgumentMismatch: return textOf(Word::OptionNeedsValue, {subject});
    default: return textOf(Word::CannotParse, {unshielded(what)});
    }
}

TvString optionLine(const Row& row)
{
    std::string names = row.names;
    if (const std::size_t comma = names.find(','); comma != std::string::npos)
        names.insert(comma + 1, " ");
    if (row.value)
        names += std::string(" ") + row.value;
    constexpr std::size_t kColumn = 18;
    names.resize(std::max(names.size() + 2, kColumn), ' ');
    return TvString(std::string_view("  " + names)) + textOf(row.help) + u"\n";
}

} // namespace

Options parseOptions(std::span<const std::string> arguments)
{
    Options options;
    CLI::App parser;
    parser.set_help_flag();
    parser.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    for (const Row& row : kRows)
        addRow(parser, row, options);
    parser.add_option("--hidden", options.hidden);
    parser.add_option_function<std::vector<std::string>>(
        "files", [&](const std::vector<std::string>& values) {
            for (const std::string& value : values)
                options.files.push_back(bare(value));
        });
    std::vector<std::string> reversed = shielded(arguments);
    std::ranges::reverse(reversed);
    try {
        parser.parse(reversed);
    } catch (const CLI::ParseError& error) {
        options.error = wordsFor(error, parser);
    }
    if (!options.hidden.empty())
        options.hidden = bare(options.hidden).utf8();
    return options;
}

TvString helpText()
{
    TvString text = textOf(Word::Usage) + u"\n" + textOf(Word::Summary) + u"\n\n" +
                    textOf(Word::HeadExamples) + u"\n" + textOf(Word::Examples) + u"\n" +
                    textOf(Word::HeadOptions) + u"\n";
    for (const Row& row : kRows)
        text += optionLine(row);
    return text;
}

TvString programVersion()
{
    return TvString(KV_VERSION);
}

TvString versionText()
{
    return textOf(Word::VersionLine, {textOf(Word::ProgramName), programVersion()}) + u"\n" +
           textOf(Word::VersionFormats) + u"\n";
}

TvString absolutePath(const TvString& path)
{
    const base::PathRules& rules = base::PathRules::native();
    if (path.isEmpty() || rules.isAbsolute(path) || base::PathRules::isUrl(path))
        return path;
    std::error_code failure;
    const std::filesystem::path here = std::filesystem::current_path(failure);
    return failure ? path : rules.normalise(rules.join(base::pathFromNative(here.string()), path));
}

} // namespace app
