#include <algorithm>
#include <array>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/tv_db_database.h>
#include <rx/tv_user_messages.h>

#include "command_support.h"
#include "ed/program_control.h"
#include "ed/prompts.h"
#include "ed/recent_files.h"
#include "ed/tv_ap_doc_manager.h"
#include "host_command_list.h"
#include "save_changes.h"

namespace ed {

namespace {

constexpr TvChar kDrawings[] = u"dwg;dxf;dwt";

struct Version {
    const TvChar* name;
    int code;
};
constexpr Version kVersions[] = {
    {u"2000", TvDb::kAc1015}, {u"2004", TvDb::kAc1018}, {u"2007", TvDb::kAc1021},
    {u"2010", TvDb::kAc1024}, {u"2013", TvDb::kAc1027}, {u"2018", TvDb::kAc1032},
};

TvString versionName(int code)
{
    const auto* at = std::ranges::find(kVersions, code, &Version::code);
    return at == std::end(kVersions) ? kVersions[std::size(kVersions) - 1].name : at->name;
}

bool isYes(Wording question, const TvString& path)
{
    TvUserMessages::Message message;
    message.text = static_cast<int>(question);
    message.arguments = {path};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::No;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Yes;
}

void open(TvApDocManager& manager, const TvString& path)
{
    TvApDocument* document = nullptr;
    TvStatusCode status = manager.openDocument(path, false, document);
    const bool isRefusal = status == TvStatus::FileInUse || status == TvStatus::FileReadOnly;
    if (isRefusal) {
        say(manager.lastFailure());
        if (!isYes(Wording::QuestionReadOnly, path))
            return;
        status = manager.openDocument(path, true, document);
    }
    if (status == TvStatus::Ok) {
        addRecentFile(document->fileName());
        return;
    }
    say(Wording::CannotOpen, {path});
    say(manager.lastFailure());
}

/// nullopt when the user gave up.
std::optional<int> askVersion(const TvApDocument& document)
{
    const TvString standard = versionName(document.fileVersion());
    const TvString keys = textOf(Wording::KeysVersion);
    tvedInitGet(0, keys.kwszPtr());
    TvString chosen;
    const int status = tvedGetKword(textOf(Wording::AskVersion, {standard}).kwszPtr(), chosen);
    if (status == kNoAnswer)
        chosen = standard;
    else if (status != static_cast<int>(TvStatus::Normal))
        return std::nullopt;
    for (const Version& version : kVersions)
        if (chosen == version.name)
            return version.code;
    return std::nullopt;
}

/// What a drawing can be saved as tells its name.
bool isDrawingName(const TvString& path)
{
    const TvString extension = base::PathRules::native().extensionOf(path);
    return std::ranges::any_of(std::array{u".dwg", u".dxf", u".dwt"}, [&](const TvChar* each) {
        return extension.compareNoCase(each) == 0;
    });
}

/// Whether a file that is there may go.
bool mayReplace(const TvApDocument& document, const TvString& path)
{
    const bool isOwn = document.isNamedDrawing() && !document.isReadOnly() &&
                       base::PathRules::native().isSame(document.fileName(), path);
    if (isOwn || !KvFileSystem::pathFileExists(path))
        return true;
    return asksFilesInLine() ? askYesNo(Wording::AskReplace, false).value_or(false)
                             : isYes(Wording::QuestionReplace, path);
}

} // namespace

bool saveNamed(TvApDocument& document, const TvString& path, int version)
{
    TvApDocManager& manager = *tvDocManagerPtr();
    if (manager.saveDocument(&document, path, version) == TvStatus::Ok) {
        say(Wording::Saved, {document.fileName()});
        addRecentFile(document.fileName());
        return true;
    }
    say(Wording::CannotSave, {path.isEmpty() ? document.fileName() : path});
    say(manager.lastFailure());
    return false;
}

bool saveUnderAskedName(TvApDocument& document)
{
    int version = 0;
    if (asksFilesInLine()) {
        const std::optional<int> chosen = askVersion(document);
        if (!chosen)
            return false;
        version = *chosen;
    }
    const TvString standard = document.isNamedDrawing() ? document.fileName() : TvString();
    const std::vector<TvString> paths = askFiles(
        {Wording::TitleSaveAs, Wording::AskSaveAs, standard, u"dwg", u"SaveDrawing", true});
    if (!paths.empty() && !isDrawingName(paths.front())) {
        say(Wording::NoDrawingName, {paths.front()});
        return false;
    }
    return !paths.empty() && mayReplace(document, paths.front()) &&
           saveNamed(document, paths.front(), version);
}

void runNew()
{
    TvApDocManager* manager = tvDocManagerPtr();
    if (!manager)
        return;
    TvString path;
    if (asksFilesInLine()) {
        const std::optional<TvString> typed = askLine(Wording::AskTemplate, u".");
        if (!typed)
            return;
        if (*typed != u".")
            path = absoluteFile(*typed, u"dwt");
    }
    if (path.isEmpty()) {
        manager->newDocument();
        return;
    }
    TvApDocument* document = nullptr;
    if (manager->newDocument(path, document) == TvStatus::Ok)
        return;
    say(Wording::CannotOpen, {path});
    say(manager->lastFailure());
}

void runOpen()
{
    TvApDocManager* manager = tvDocManagerPtr();
    if (!manager)
        return;
    const std::vector<TvString> paths = askFiles(
        {Wording::TitleOpen, Wording::AskOpen, {}, kDrawings, u"OpenDrawing", false, true});
    for (const TvString& path : paths)
        open(*manager, path);
}

void runSave()
{
    TvApDocument* document = askedDocument();
    if (!document)
        return;
    if (document->isNamedDrawing())
        saveNamed(*document, {}, 0);
    else
        saveUnderAskedName(*document);
}

void runSaveAs()
{
    if (TvApDocument* document = askedDocument())
        saveUnderAskedName(*document);
}

void runClose()
{
    TvApDocument* document = askedDocument();
    if (!document || !mayClose(*document))
        return;
    const TvString name = document->fileName();
    if (tvDocManagerPtr()->closeDocument(document) == TvStatus::StillInUse)
        say(Wording::StillLocked, {name});
}

void runQuit()
{
    if (!closeAllDocuments())
        return;
    if (ProgramControl* program = programControl())
        program->quit();
    else
        say(Wording::CannotQuit);
}

} // namespace ed
