#include "ed/user_prompts.h"

#include <db/resbuf.h>
#include <db/tv_status.h>

#include "ed/command_line.h"

namespace ed {

namespace {

// Of the dialog's flags.
constexpr int kSeveral = 4096, kFolder = 2048, kForSaving = 1;

UserPrompts* g_prompts = nullptr;

TvString textOf(const TvChar* text)
{
    return text ? TvString(text) : TvString();
}

std::vector<TvString> splitExtensions(const TvString& list)
{
    std::vector<TvString> extensions;
    std::u16string_view rest = list;
    while (!rest.empty()) {
        const std::size_t end = rest.find(u';');
        if (const TvString one = TvString(rest.substr(0, end)).trimmed(); !one.isEmpty())
            extensions.push_back(one);
        rest = end == std::u16string_view::npos ? std::u16string_view() : rest.substr(end + 1);
    }
    return extensions;
}

/// A path in quotation marks is the one between them.
TvString withoutQuotes(const TvString& path)
{
    const int units = static_cast<int>(path.view().size());
    return units >= 2 && path.startsWith(u"\"") && path.endsWith(u"\"") ? path.substr(1, units - 2)
                                                                        : path;
}

CommandLine::Answer postedAnswer(bool withBlanks, TvString& out)
{
    CommandLine* line = commandLine();
    return line ? line->takeAnswer(withBlanks, out) : CommandLine::Answer::None;
}

int cancelled()
{
    if (CommandLine* line = commandLine())
        line->cancel();
    return kCancelled;
}

} // namespace

UserPrompts* userPrompts()
{
    return g_prompts;
}

void setUserPrompts(UserPrompts* prompts)
{
    g_prompts = prompts;
}

int UserPrompts::askPoint(const PointQuestion& question, TvString& typed,
                          std::optional<TvGePoint3d>&)
{
    return askText(question.prompt, false, typed);
}

int askForPoint(const UserPrompts::PointQuestion& question, TvString& typed,
                std::optional<TvGePoint3d>& picked)
{
    picked.reset();
    switch (postedAnswer(false, typed)) {
    case CommandLine::Answer::Escape: return cancelled();
    case CommandLine::Answer::Text: return TvStatus::Normal;
    case CommandLine::Answer::None: break;
    }
    if (!userPrompts() ||
        userPrompts()->askPoint(question, typed, picked) != static_cast<int>(TvStatus::Normal))
        return cancelled();
    return TvStatus::Normal;
}

} // namespace ed

int tvedGetString(int withBlanks, const TvChar* prompt, TvString& out)
{
    using namespace ed;
    TvString answer;
    switch (postedAnswer(withBlanks != 0, answer)) {
    case CommandLine::Answer::Escape: return cancelled();
    case CommandLine::Answer::Text: break;
    case CommandLine::Answer::None:
        if (!userPrompts() || userPrompts()->askText(textOf(prompt), withBlanks != 0, answer) !=
                                  static_cast<int>(TvStatus::Normal))
            return cancelled();
    }
    out = answer;
    return TvStatus::Normal;
}

int tvedGetFileNavDialog(const TvChar* title, const TvChar* start, const TvChar* extensions,
                         const TvChar* dialogName, int flags, resbuf*& out)
{
    using namespace ed;
    out = nullptr;
    TvString posted;
    std::vector<TvString> paths;
    switch (postedAnswer(true, posted)) {
    case CommandLine::Answer::Escape: return cancelled();
    case CommandLine::Answer::Text: paths.push_back(withoutQuotes(posted)); break;
    case CommandLine::Answer::None: {
        const UserPrompts::FileQuestion question{textOf(title),
                                                 textOf(start),
                                                 splitExtensions(textOf(extensions)),
                                                 textOf(dialogName),
                                                 (flags & kFolder) != 0,
                                                 (flags & kSeveral) != 0,
                                                 (flags & kForSaving) != 0};
        if (!userPrompts() ||
            userPrompts()->askFiles(question, paths) != static_cast<int>(TvStatus::Normal))
            return cancelled();
    }
    }
    resbuf** next = &out;
    for (const TvString& path : paths) {
        if (path.isEmpty())
            continue;
        *next = tvutBuildList(static_cast<int>(TvStatus::TextItem), path);
        next = &(*next)->rbnext;
    }
    return out ? static_cast<int>(TvStatus::Normal) : cancelled();
}
