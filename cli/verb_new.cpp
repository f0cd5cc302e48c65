#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <sm/environment.h>
#include <sm/limits.h>

#include "cli/components.h"
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
    const TvString path = newPath(request.file);
    const TvString name = request.name.value_or(base::PathRules::native().stemOf(path));
    requireFits(u"name", name, sm::kMaxNameLength);
    requireWritable(path);
    TvSmSheetSetMgr manager;
    TvSmDatabase& db = createOrRefuse(manager, path, request);
    db.getSheetSet()->setName(name);
    if (request.description)
        db.getSheetSet()->setDesc(*request.description);
    console.stopIfInterrupted();
    if (!request.change.dryRun && !db.save(0))
        refuse(sm::lastStatus(&db), Doing::Writing);
    report(db, request, console);
    return ExitCode::Ok;
}

} // namespace

Outcome run(const NewRequest& request, Console& console)
{
    return attempt(console, [&] { return create(request, console); });
}

} // namespace cli
