#include "cli/help_text.h"

#include <algorithm>

#include "wrapped_text.h"

namespace cli {

namespace {

std::string padded(std::string text, std::size_t width)
{
    if (text.size() < width)
        text.append(width - text.size(), ' ');
    return text;
}

std::string heading(Word word)
{
    return words(word).utf8() + "\n";
}

/// Lines of a text from the table, each behind @p indent.
std::string indented(const std::string& text, const std::string& indent)
{
    std::string out;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t end = std::min(text.find('\n', from), text.size());
        out += indent + text.substr(from, end - from) + "\n";
        from = end + 1;
    }
    return out;
}

std::string leftOf(const OptionInfo& option)
{
    if (option.names.empty())
        return option.value + (option.isRepeated ? "..." : "");
    return option.names + (option.value.empty() ? "" : " " + option.value);
}

std::string table(const std::vector<OptionInfo>& options, bool brief)
{
    constexpr std::size_t kColumn = 24;
    std::string out;
    for (const OptionInfo& option : options) {
        if (brief && option.isCommon)
            continue;
        const std::string left = "  " + leftOf(option);
        const std::string text = wrappedText(option.help, kColumn);
        if (left.size() + 2 > kColumn)
            out += left + "\n" + text;
        else
            out += padded(left, kColumn) + text.substr(kColumn);
    }
    return out;
}

std::string verbTable(std::span<const Verb* const> verbs)
{
    constexpr std::size_t kGap = 2;
    std::size_t column = 0;
    for (const Verb* verb : verbs)
        column = std::max(column, std::string_view(verb->name).size() + kGap);
    std::string out;
    for (const Verb* verb : verbs)
        out += "  " + padded(verb->name, column) + words(verb->summary).utf8() + "\n";
    return out;
}

std::string verbTable()
{
    std::vector<const Verb*> all;
    for (const Verb& verb : verbs())
        all.push_back(&verb);
    return verbTable(all);
}

} // namespace

std::string usageOf(const Verb& verb)
{
    std::string out = words(Word::Tool).utf8() + " " + verb.name + " [" +
                      words(Word::OptionPlaceholder).utf8() + "...]";
    for (const OptionInfo& option : optionsOf(&verb)) {
        const std::string left = leftOf(option);
        if (option.names.empty())
            out += option.isRequired ? " " + left : " [" + left + "]";
        else if (option.isRequired)
            out += " " + left;
    }
    return out;
}

std::string toolHelp(bool brief)
{
    std::string out;
    if (!brief)
        out += wrappedText(words(Word::ToolDetails).utf8(), 0) + "\n" +
               heading(Word::HeadExamples) + indented(words(Word::ToolExamples).utf8(), "  ") +
               "\n";
    out += words(Word::ToolUsage).utf8() + "\n\n" + heading(Word::HeadVerbs) + verbTable();
    if (!brief)
        out += "\n" + heading(Word::HeadOptions) + table(optionsOf(nullptr), false);
    return out + "\n" + words(Word::ToolMore).utf8() + "\n";
}

std::string groupHelp(const std::vector<std::string>& group, std::span<const Verb* const> verbs)
{
    std::string out = heading(Word::HeadVerbs) + verbTable(verbs) + "\n";
    for (const Verb* verb : verbs)
        out += words(Word::HeadUsage).utf8() + " " + usageOf(*verb) + "\n";
    return out + "\n" + words(Word::GroupMore, TvString(joined(group).c_str())).utf8() + "\n";
}

std::string verbHelp(const Verb& verb, bool brief)
{
    std::string out;
    if (!brief)
        out += words(verb.summary).utf8() + ".\n\n" + heading(Word::HeadExamples) +
               indented(words(verb.examples).utf8(), "  ") + "\n" +
               wrappedText(words(verb.details).utf8(), 0) + "\n";
    out += words(Word::HeadUsage).utf8() + " " + usageOf(verb) + "\n\n" +
           table(optionsOf(&verb), brief);
    if (brief)
        out += "\n" + words(Word::VerbMore, TvString(verb.name)).utf8() + "\n";
    return out;
}

} // namespace cli
