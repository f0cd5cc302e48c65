#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <operations/import_folder.h>
#include <sm/environment.h>
#include <sm/limits.h>

#include "cli/components.h"
#include "cli/imported_layouts.h"
#include "cli/session.h"
#include "cli/shell_word.h"
#include "cli/verbs.h"

namespace cli {

namespace {

constexpr char16_t kExtension[] = u".dst";

/// The path of the new file, absolute and with its extension; refuses a name that not every system
/// takes.
TvString newPath(const TvString& file)
{
    const base::PathRules& rules = base::PathRules::native();
    TvString path = fullPath(file);
    if (rules.extensionOf(path).isEmpty())
        path += kExtension;
    const TvString name = rules.fileNameOf(path);
    if (!name.endsWithNoCase(kExtension))
        refuseUsage(Word::NotADstName, name);
    if (!base::PathRules::isValidNewName(name))
        refuseUsage(Word::BadFileName, name);
    return path;
}

TvSmDatabase& createOrRefuse(TvSmSheetSetMgr& manager, const TvString& path,
                             const NewRequest& request)
{
    const TvString from =
        request.templateFile.isEmpty() ? TvString() : fullPath(request.templateFile);
    TvSmDatabase* db = manager.createDatabase(path, from, false);
    if (!db)
        refuse(sm::lastStatus(&manager), Doing::Reading);
    return *db;
}

/// Where a save would fail, that is told before anything is done, in a dry run as well.
void requireWritable(const TvString& path)
{
    const TvString folder = base::PathRules::native().folderOf(path);
    if (!KvFileSystem::isDirectory(folder))
        refuse({base::Failure::Unreachable, base::Reason::FolderUnreachable, {path}},
               Doing::Writing);
    const base::LockInfo info = base::EditLock(sm::files(), sm::clock(), path).query();
    if (info.state == base::LockState::Denied && !KvFileSystem::pathFileExists(path))
        refuse({base::Failure::Denied, base::Reason::AccessDenied, {folder}}, Doing::Writing);
}

/// Options about the drawings of a folder, without a folder.
void requireSense(const NewRequest& request)
{
    if (request.prefix && request.noPrefix)
        refuseUsage(Word::OptionsExclude, TvString(u"--prefix"), TvString(u"--no-prefix"));
    if (!request.from.isEmpty())
        return;
    const TvString from = u"--from";
    if (request.subsets)
        refuseUsage(Word::OptionNeedsOther, TvString(u"--subsets"), from);
    if (request.prefix)
        refuseUsage(Word::OptionNeedsOther, TvString(u"--prefix"), from);
    if (request.noPrefix)
        refuseUsage(Word::OptionNeedsOther, TvString(u"--no-prefix"), from);
}

/// Sheets of the drawings in a folder, and what is told of them; refuses when there are none.
ExitCode fillFrom(const TvString& folder, TvSmDatabase& db, const NewRequest& request,
                  Console& console)
{
    if (!KvFileSystem::isDirectory(folder))
        refuse(ExitCode::NoInput, Word::FromNotAFolder, folder);
    const operations::DrawingFolder found = operations::findDrawings(folder);
    const operations::LoadedLayouts loaded = layoutsFor(db, operations::drawingsOf(found), console);
    if (loaded.rows.empty())
        refuseIfUnreadable(loaded);
    const bool isOneUnreadable = warnOfUnreadable(loaded, console);
    for (const operations::LayoutRow& row : loaded.rows)
        if (!row.isImportable())
            warnOfUse(row, console);
    const operations::FolderSheets made = operations::makeSheetsOfFolder(
        *db.getSheetSet(), found, loaded.rows, {!request.noPrefix, request.subsets});
    if (made.sheets.empty())
        refuse(ExitCode::NoInput, Word::FromNothing, folder);
    console.document()["from"] = jsonText(folder);
    console.document()["sheets"] = made.sheets.size();
    console.document()["subsets"] = made.subsets;
    console.document()["inUse"] = jsonOfUsed(loaded.rows);
    const int count = static_cast<int>(made.sheets.size());
    console.say(made.subsets == 0 ? words(Word::MadeSheets, count)
                                  : words(Word::MadeSheetsAndSubsets, count, made.subsets));
    return isOneUnreadable ? ExitCode::PartlyFailed : ExitCode::Ok;
}

void report(const TvSmDatabase& db, const NewRequest& request, Console& console)
{
    const TvString path = db.getFileName();
    const TvString typed =
        request.file.endsWithNoCase(kExtension) ? request.file : request.file + kExtension;
    console.line({{path}});
    console.document()["file"] = jsonText(path);
    console.document()["handle"] = jsonText(handleOf(*db.getSheetSet()));
    console.document()["name"] = jsonText(db.getSheetSet()->getName());
    console.document()["dryRun"] = request.change.dryRun;
    console.say(request.change.dryRun ? words(Word::DryRunDone)
                                      : words(Word::NextAfterNew, shellWord(typed)));
}

ExitCode create(const NewRequest& request, Console& console)
{
    requireSense(request);
    const TvString path = newPath(request.file);
    const TvString name = request.name.value_or(base::PathRules::native().stemOf(path));
    requireFits(u"name", name, sm::kMaxNameLength);
    requireWritable(path);
    TvSmSheetSetMgr manager;
    TvSmDatabase& db = createOrRefuse(manager, path, request);
    db.getSheetSet()->setName(name);
    if (request.description)
        db.getSheetSet()->setDesc(*request.description);
    const ExitCode code = request.from.isEmpty()
                              ? ExitCode::Ok
                              : fillFrom(fullPath(request.from), db, request, console);
    console.stopIfInterrupted();
    if (!request.change.dryRun && !db.save(0))
        refuse(sm::lastStatus(&db), Doing::Writing);
    report(db, request, console);
    return code;
}

} // namespace

Outcome run(const NewRequest& request, Console& console)
{
    return attempt(console, [&] { return create(request, console); });
}

} // namespace cli
