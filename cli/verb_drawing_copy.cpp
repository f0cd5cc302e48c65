#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/drawing_inventory.h>

#include "cli/drawing_session.h"
#include "cli/session.h"
#include "cli/shell_word.h"
#include "cli/verbs.h"

namespace cli {

namespace {

constexpr char16_t kExtension[] = u".dwg";

/// Refuses a file that is there, with what can be done about it.
void requireFree(const TvString& path, const TvString& advice)
{
    if (!KvFileSystem::pathFileExists(path))
        return;
    Message message = messageOf({base::Failure::Exists, base::Reason::FileExists, {path}});
    message.advice = advice;
    throw Refusal(ExitCode::CannotWrite, std::move(message));
}

/// A folder that is not there would only be noticed after all the work, and never in a dry run.
void requireFolder(const TvString& path)
{
    if (!KvFileSystem::isDirectory(base::PathRules::native().folderOf(path)))
        refuse({base::Failure::Unreachable, base::Reason::FolderUnreachable, {path}},
               Doing::Writing);
}

/// The path of a new drawing, absolute and with its extension; refuses a name that not every system
/// takes.
TvString newPath(const TvString& file)
{
    const base::PathRules& rules = base::PathRules::native();
    TvString path = fullPath(file);
    if (rules.extensionOf(path).isEmpty())
        path += kExtension;
    const TvString name = rules.fileNameOf(path);
    if (!name.endsWithNoCase(kExtension) && !name.endsWithNoCase(u".dxf"))
        refuseUsage(Word::NotADrawingName, name);
    if (!KvFileSystem::pathFileExists(path) && !base::PathRules::isValidNewName(name))
        refuseUsage(Word::BadFileName, name);
    return path;
}

void tellForm(DrawingForm form, bool dryRun, Console& console)
{
    console.document()["format"] = form.format == db::FileFormat::Dxf ? "dxf" : "dwg";
    console.document()["version"] = jsonText(versionName(form.version));
    console.document()["dryRun"] = dryRun;
}

/// Whether a sentence names what the drawing holds and its new form has no place for.
bool isAboutForm(int number)
{
    return number == static_cast<int>(base::Reason::DwgNotConverted) ||
           number == static_cast<int>(base::Reason::DwgClassNotNamed) ||
           number == static_cast<int>(base::Reason::DxfClassesNotWritten);
}

/// The new drawing's name for the next command: as it was typed, where that leads to the file.
TvString nextWord(const TvString& typed, const TvString& path)
{
    for (const TvString& name : {typed, typed + kExtension})
        if (fullPath(name) == path)
            return shellWord(name);
    return shellWord(path);
}

/// Into another form a drawing may not go, where in its own it goes.
void writeCopy(TvDbDatabase& database, const TvString& path, DrawingForm form,
               const ChangeOptions& options, Console& console)
{
    const bool isConverted = form.format != formatOf(database) ||
                             (form.version != 0 && form.version != database.originalFileVersion());
    try {
        writeDrawing(database, path, form, options, console);
    } catch (const Refusal& refusal) {
        if (!isConverted || !isAboutForm(refusal.message().number))
            throw;
        Message message = refusal.message();
        message.advice = words(Word::AdviceKeepVersion);
        throw Refusal(refusal.exitCode(), std::move(message));
    }
}

ExitCode copy(const DrawingCopyRequest& request, Console& console)
{
    // Wrong usage comes before anything is read.
    const TvString path = newPath(request.to);
    DrawingForm to = formFor(request.as, path);
    requireFolder(path);
    if (!request.overwrite)
        requireFree(path, words(Word::AdviceOverwrite));
    OpenedDrawing opened(request.file, console);
    TvDbDatabase& database = opened.database();
    const DrawingForm from{formatOf(database), database.originalFileVersion()};
    to.mustBeNew = !request.overwrite;
    const auto leftOut = static_cast<int>(db::picturesLeftOut(database, to.format, to.version));
    writeCopy(database, path, to, request.change, console);
    if (leftOut > 0)
        console.warn(messageOf(Word::WarnPicturesLeftOut, leftOut));
    if (to.version == 0)
        to.version = from.version;
    const bool isSame = to.format == from.format && to.version == from.version;
    console.line({{isSame ? words(Word::CopiedSame, path, formWords(to))
                          : words(Word::CopiedAs, path, formWords(to), formWords(from))}});
    console.document()["file"] = jsonText(opened.path());
    console.document()["to"] = jsonText(path);
    console.document()["converted"] = !isSame;
    console.document()["picturesLeftOut"] = leftOut;
    tellForm(to, request.change.dryRun, console);
    return ExitCode::Ok;
}

ExitCode create(const DrawingNewRequest& request, Console& console)
{
    const TvString path = newPath(request.file);
    DrawingForm form = formFor(request.as, path);
    requireFolder(path);
    requireFree(path, messageOf({base::Failure::Exists, base::Reason::FileExists, {path}}).advice);
    if (form.version == 0)
        form.version = TvDb::kCurrentVersion;
    form.mustBeNew = true;
    TvDbDatabase database(true, true);
    writeDrawing(database, path, form, request.change, console);
    console.line({{path}});
    if (!request.change.dryRun)
        console.say(words(Word::NextAfterNewDrawing, nextWord(request.file, path)));
    console.document()["file"] = jsonText(path);
    tellForm(form, request.change.dryRun, console);
    return ExitCode::Ok;
}

} // namespace

Outcome run(const DrawingCopyRequest& request, Console& console)
{
    return attempt(console, [&] { return copy(request, console); });
}

Outcome run(const DrawingNewRequest& request, Console& console)
{
    return attempt(console, [&] { return create(request, console); });
}

} // namespace cli
