#include "app/console_prompts.h"

#include <algorithm>

#include <ed/command_line.h>
#include <ed/host_commands.h>

#include "app/words.h"

namespace app {

namespace {

/// Numbers of texts that tell of failures: those of reasons, and what the command line refuses.
bool isFailure(int text)
{
    constexpr int kFirstReason = 21000, kLastReason = 21999;
    return (text >= kFirstReason && text <= kLastReason) || text == ed::kUnknownCommand ||
           text == ed::kNoValueFor || text == ed::kCommandCancelled || text == ed::kCommandFailed ||
           ed::isRefusal(text);
}

/// A name or word of any length and content, as far as it helps.
TvString harmless(const TvString& argument)
{
    constexpr int kMost = 500;
    return base::escapedForDisplay(argument.length() <= kMost ? argument
                                                              : argument.left(kMost) + u"\u2026");
}

/// A text of several paragraphs as one line.
TvString onOneLine(const TvString& text)
{
    std::u16string line;
    for (const TvChar unit : text.view()) {
        if (unit != u'\n')
            line += unit;
        else if (!line.empty() && line.back() != u' ')
            line += u' ';
    }
    return TvString(line);
}

/// With the line ends that a command meant, and nothing else that a terminal obeys.
std::string shown(const TvString& text)
{
    std::string out;
    std::u16string_view rest = text;
    while (true) {
        const std::size_t end = rest.find(u'\n');
        out += base::escapedForDisplay(TvString(rest.substr(0, end))).utf8();
        if (end == std::u16string_view::npos)
            return out;
        out += '\n';
        rest.remove_prefix(end + 1);
    }
}

} // namespace

int ConsolePrompts::askText(const TvString& prompt, bool, TvString&)
{
    m_err(textOf(Word::MessageLine, {textOf(Word::Question, {prompt.trimmed()})}).utf8() + "\n");
    return ed::kCancelled;
}

int ConsolePrompts::askFiles(const FileQuestion& question, std::vector<TvString>&)
{
    TvString ignored;
    return askText(question.title, true, ignored);
}

void ConsolePrompts::print(const TvString& text)
{
    if (text.isEmpty())
        return;
    m_out(shown(text));
    m_isInLine = !text.endsWith(u"\n");
}

void ConsolePrompts::endLine()
{
    if (m_isInLine)
        m_out("\n");
    m_isInLine = false;
}

void ConsolePrompts::say(int text, const std::vector<TvString>& arguments)
{
    tell(text, arguments, isFailure(text));
}

void ConsolePrompts::tell(int text, const std::vector<TvString>& arguments, bool isFailure)
{
    std::vector<TvString> shown;
    std::ranges::transform(arguments, std::back_inserter(shown), harmless);
    const TvString sentence = base::escapedForDisplay(onOneLine(textOf(text, shown)));
    if (isFailure) {
        ++m_failures;
        m_err(textOf(Word::ErrorLine, {TvString().format(u"%05d", text), sentence}).utf8() + "\n");
    } else {
        m_err(textOf(Word::MessageLine, {sentence}).utf8() + "\n");
    }
}

ConsolePrompts::Answer ConsolePrompts::show(const Message& message)
{
    tell(message.text, message.arguments,
         message.icon == Icon::Warning || message.icon == Icon::Stop);
    switch (message.buttons) {
    case Buttons::OkCancel: return Answer::Cancel;
    case Buttons::YesNo: return Answer::No;
    case Buttons::Ok: break;
    }
    return Answer::Ok;
}

} // namespace app
