#include "cli/help_text.h"

#include <algorithm>

namespace cli {

namespace {

constexpr std::size_t kTextWidth = 78; // columns

/// @p text in lines of at most kTextWidth columns, each behind @p indent blanks.
std::string wrapped(const std::string& text, std::size_t indent)
{
    std::string out;
    std::size_t column = 0;
    std::size_t from = 0;
    while (from < text.size()) {
        const std::size_t end = std::min(text.find(' ', from), text.size());
        const std::size_t length = end - from;
        if (column > 0 && column + 1 + length > kTextWidth) {
            out += "\n";
            column = 0;
        }
        out += column == 0 ? std::string(indent, ' ') : " ";
        out.append(text, from, length);
        column = (column == 0 ? indent : column + 1) + length;
        from = end + 1;
    }
    return out + "\n";
}

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
        const std::string text = wrapped(option.help, kColumn);
        if (left.size() + 2 > kColumn)
            out += left + "\n" + text;
        else
            out += padded(left, kColumn) + text.substr(kColumn);
    }
    return out;
}

std::string verbTable()
{
    constexpr std::size_t kColumn = 15;
    std::string out;
    for (const Verb& verb : verbs())
        out += "  " + padded(verb.name, kColumn) + words(verb.summary).utf8() + "\n";
    return out;
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
        out += wrapped(words(Word::ToolDetails).utf8(), 0) + "\n" + heading(Word::HeadExamples) +
               indented(words(Word::ToolExamples).utf8(), "  ") + "\n";
    out += words(Word::ToolUsage).utf8() + "\n\n" + heading(Word::HeadVerbs) + verbTable();
    if (!brief)
        out += "\n" + heading(Word::HeadOptions) + table(optionsOf(nullptr), false);
    return out + "\n" + words(Word::ToolMore).utf8() + "\n";
}

std::string verbHelp(const Verb& verb, bool brief)
{
    std::string out;
    if (!brief)
        out += words(verb.summary).utf8() + ".\n\n" + heading(Word::HeadExamples) +
               indented(words(verb.examples).utf8(), "  ") + "\n" +
               wrapped(words(verb.details).utf8(), 0) + "\n";
    out += words(Word::HeadUsage).utf8() + " " + usageOf(verb) + "\n\n" +
           table(optionsOf(&verb), brief);
    if (brief)
        out += "\n" + words(Word::VerbMore, TvString(verb.name)).utf8() + "\n";
    return out;
}

} // namespace cli
