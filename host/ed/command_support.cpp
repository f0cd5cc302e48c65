#include "command_support.h"

#include <filesystem>

#include <base/path_rules.h>
#include <db/resbuf.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_status.h>

#include "ed/command_line.h"
#include "ed/prompts.h"
#include "ed/system_variables.h"
#include "ed/tv_ap_doc_manager.h"
#include "ed/user_prompts.h"
#include "save_changes.h"

namespace ed {

namespace {

constexpr int kDialogForSaving = 1, kDialogForSeveral = 4096;

/// What the user typed, as a file of this system.
TvString completedPath(const TvString& typed, const TvString& extensions)
{
    const base::PathRules& rules = base::PathRules::native();
    TvString path = typed;
    if (!path.isEmpty() && !rules.isAbsolute(path)) {
        std::error_code none;
        const std::filesystem::path here = std::filesystem::current_path(none);
        path = rules.normalise(rules.join(TvString(std::string_view(here.native())), path));
    }
    const TvString first = extensions.substr(0, extensions.find(u';'));
    if (!path.isEmpty() && !first.isEmpty() && rules.extensionOf(path).isEmpty())
        path = path + u"." + first;
    return path;
}

TvString withoutQuotes(const TvString& path)
{
    return path.length() >= 2 && path.startsWith(u"\"") && path.endsWith(u"\"")
               ? path.substr(1, path.length() - 2)
               : path;
}

std::vector<TvString> askInDialog(const FileAsking& asking)
{
    resbuf* chain = nullptr;
    const int flags =
        (asking.isForSaving ? kDialogForSaving : 0) | (asking.mayBeSeveral ? kDialogForSeveral : 0);
    if (tvedGetFileNavDialog(textOf(asking.title).kwszPtr(), asking.standard.kwszPtr(),
                             asking.extensions, asking.dialogName, flags,
                             chain) != static_cast<int>(TvStatus::Normal))
        return {};
    const TvResbufPtr items(chain);
    std::vector<TvString> paths;
    for (const resbuf* item = items.get(); item; item = item->rbnext)
        paths.push_back(completedPath(TvString(item->resval.rstring), asking.extensions));
    return paths;
}

} // namespace

TvDbDatabase* askedDrawing()
{
    TvDbDatabase* database = tvdbHostApplicationServices()->workingDatabase();
    if (!database)
        say(Wording::NoDrawing);
    return database;
}

TvApDocument* askedDocument()
{
    TvApDocument* document = tvDocManagerPtr() ? tvDocManagerPtr()->curDocument() : nullptr;
    if (!document)
        say(Wording::NoDrawing);
    return document;
}

std::optional<TvString> askLine(Wording prompt, const TvString& standard)
{
    TvString typed;
    if (tvedGetString(1, textOf(prompt, {standard}).kwszPtr(), typed) !=
        static_cast<int>(TvStatus::Normal))
        return std::nullopt;
    const TvString trimmed = typed.trimmed();
    return trimmed.isEmpty() ? standard : trimmed;
}

TvString keywordList(Wording keys, const TvChar* globals)
{
    return textOf(keys) + u" _ " + globals;
}

std::optional<TvString> askKeyword(Wording prompt, Wording keys, const TvChar* globals,
                                   const TvChar* standard)
{
    tvedInitGet(0, keywordList(keys, globals).kwszPtr());
    TvString chosen;
    const int status = tvedGetKword(textOf(prompt).kwszPtr(), chosen);
    if (status == kNoAnswer)
        return TvString(standard);
    return status == static_cast<int>(TvStatus::Normal) ? std::optional(chosen) : std::nullopt;
}

std::optional<bool> askYesNo(Wording prompt, bool standard)
{
    const std::optional<TvString> answer =
        askKeyword(prompt, Wording::KeysYesNo, u"Yes No", standard ? u"Yes" : u"No");
    return answer ? std::optional(*answer == u"Yes") : std::nullopt;
}

bool asksFilesInLine()
{
    const CommandLine* line = commandLine();
    return (line && line->isScripting()) || variable(u"FILEDIA") == VariableValue(std::int16_t(0));
}

std::vector<TvString> askFiles(const FileAsking& asking)
{
    if (!asksFilesInLine())
        return askInDialog(asking);
    const std::optional<TvString> typed = askLine(asking.prompt, asking.standard);
    if (typed && *typed == u"~") // the dialog all the same
        return askInDialog(asking);
    const TvString path =
        typed ? completedPath(withoutQuotes(*typed), asking.extensions) : TvString();
    return path.isEmpty() ? std::vector<TvString>() : std::vector{path};
}

TvString absoluteFile(const TvString& typed, const TvChar* extension)
{
    return completedPath(withoutQuotes(typed), TvString(extension));
}

TvString numberText(int number)
{
    return TvString().format(u"%d", number);
}

} // namespace ed
