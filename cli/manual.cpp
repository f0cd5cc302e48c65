#include <resources/texts.h>

#include "cli/help_text.h"
#include "wrapped_text.h"

// The man page in the language of man(7), made from the option tree and the table of texts.

namespace cli {

namespace {

/// The day on which the manual last said something new.
constexpr char kDate[] = "2026-11-21";

/// Plain text for troff: what would be a request or an escape is written as what it looks like.
std::string troff(const std::string& text)
{
    std::string out;
    for (const char letter : text) {
        const bool isLineStart = out.empty() || out.back() == '\n';
        if (isLineStart && (letter == '.' || letter == '\''))
            out += "\\&";
        if (letter == '\\')
            out += "\\e";
        else if (letter == '-')
            out += "\\-";
        else
            out += letter;
    }
    return out;
}

/// A paragraph, in lines, with its end of line.
std::string paragraph(const std::string& text)
{
    return troff(wrappedText(text, 0));
}

std::string section(Word title)
{
    return ".SH " + words(title).utf8() + "\n";
}

std::string optionEntry(const OptionInfo& option)
{
    std::string left = option.names.empty() ? "" : "\\fB" + troff(option.names) + "\\fR";
    if (!option.value.empty())
        left += (left.empty() ? "" : " ") + ("\\fI" + troff(option.value)) + "\\fR" +
                (option.isRepeated ? "..." : "");
    return ".TP\n" + left + "\n" + paragraph(option.help);
}

std::string exampleBlock(const std::string& examples)
{
    std::string out = ".PP\n.EX\n";
    for (std::size_t from = 0; from < examples.size();) {
        const std::size_t end = std::min(examples.find('\n', from), examples.size());
        out += troff(examples.substr(from, end - from)) + "\n";
        from = end + 1;
    }
    return out + ".EE\n";
}

std::string verbSection(const Verb& verb)
{
    std::string out = ".SS " + troff(usageOf(verb)) + "\n" + paragraph(words(verb.details).utf8());
    for (const OptionInfo& option : optionsOf(&verb))
        if (!option.isCommon)
            out += optionEntry(option);
    return out + exampleBlock(words(verb.examples).utf8());
}

std::string commonSection()
{
    std::string out = section(Word::ManOptions);
    for (const OptionInfo& option : optionsOf(nullptr))
        out += optionEntry(option);
    return out;
}

struct ExitRow {
    ExitCode code;
    Word meaning;
};
constexpr ExitRow kExits[] = {
    {ExitCode::Ok, Word::ExitOk},
    {ExitCode::PartlyFailed, Word::ExitPartlyFailed},
    {ExitCode::Usage, Word::ExitUsage},
    {ExitCode::NoInput, Word::ExitNoInput},
    {ExitCode::Locked, Word::ExitLocked},
    {ExitCode::Conflict, Word::ExitConflict},
    {ExitCode::CheckFailed, Word::ExitCheckFailed},
    {ExitCode::Damaged, Word::ExitDamaged},
    {ExitCode::CannotWrite, Word::ExitCannotWrite},
    {ExitCode::Internal, Word::ExitInternal},
    {ExitCode::Interrupted, Word::ExitInterrupted},
};

std::string exitSection()
{
    std::string out = section(Word::ManExitStatus);
    for (const ExitRow& row : kExits)
        out += ".TP\n.B " + std::to_string(static_cast<int>(row.code)) + "\n" +
               paragraph(words(row.meaning).utf8());
    return out;
}

/// A pattern as the manual shows it: what is put in stands as three dots.
std::string patternText(const char16_t* pattern)
{
    const TvString dots(u"...");
    return TvString(pattern).replaced(u"%ls", dots).replaced(u"%d", dots).utf8();
}

/// The messages from @p first to @p last, with their codes, so that a code can be searched for.
std::string messageList(int first, int last, const char* codeFormat, int base)
{
    std::string out;
    for (int at = 0; at < text::count(); ++at) {
        const int number = text::numberAt(at);
        if (number < first || number > last)
            continue;
        const TvString code = TvString().format(TvString(codeFormat), number - base);
        out += ".TP\n.B " + code.utf8() + "\n" + paragraph(patternText(text::find(number)));
    }
    return out;
}

std::string messageSection(Word title, int first, int last, const char* codeFormat, int base)
{
    return section(title) + messageList(first, last, codeFormat, base);
}

} // namespace

std::string manualSource()
{
    std::string out = ".\\\" Made by \"kvsheetset help --man\" from the option tree.\n";
    out += ".TH KVSHEETSET 1 " + std::string(kDate) + " \"TARVIK Sheet Sets\" \"User commands\"\n";
    out +=
        section(Word::ManName) + "kvsheetset \\- " + troff(words(Word::ToolSummary).utf8()) + "\n";
    out += section(Word::ManSynopsis) +
           ".B kvsheetset\n.I VERB\n[\\fIOPTION\\fR...] \\fIFILE\\fR [\\fIARGUMENT\\fR...]\n";
    out += section(Word::ManDescription) + paragraph(words(Word::ToolDetails).utf8()) + ".PP\n" +
           paragraph(words(Word::ManConventions).utf8());
    out += section(Word::ManVerbs);
    for (const Verb& verb : verbs())
        out += verbSection(verb);
    out += commonSection() + exitSection();
    out += messageSection(Word::ManMessages, 22400, 22499, "E%05d", 0);
    out += messageList(22920, 22959, "E%05d", 0);
    out += messageList(24020, 24049, "E%05d", 0);
    out += messageList(24130, 24149, "E%05d", 0);
    out += messageList(24300, 24349, "E%05d", 0);
    out += messageSection(Word::ManFindings, 22501, 22599, "K%03d", 22500);
    out += messageSection(Word::ManDrawingFindings, 22601, 22699, "D%02d", 22600);
    out += section(Word::ManEnvironment) + ".TP\n.B NO_COLOR\n" +
           paragraph(words(Word::ManNoColor).utf8());
    return out;
}

} // namespace cli
