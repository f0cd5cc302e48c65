#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <sm/limits.h>

#include "cli/components.h"
#include "cli/session.h"
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

/// What only writing would find out, as far as it can be told without.
void requireFolder(const TvString& path)
{
    const TvString folder = base::PathRules::native().folderOf(path);
    if (!KvFileSystem::isDirectory(folder))
        refuse({base::Failure::Unreachable, base::Reason::FolderUnreachable, {path}},
               Doing::Writing);
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
    console.say(request.change.dryRun ? words(Word::DryRunDone) : words(Word::NextAfterNew, typed));
}

ExitCode create(const NewRequest& request, Console& console)
{
    const TvString path = newPath(request.file);
    const TvString name = request.name.value_or(base::PathRules::native().stemOf(path));
    requireFits(u"name", name, sm::kMaxNameLength);
    requireFolder(path);
    TvSmSheetSetMgr manager;
    TvSmDatabase& db = createOrRefuse(manager, path, request);
    db.getSheetSet()->setName(name);
    if (request.description)
        db.getSheetSet()->setDesc(*request.description);
    console.stopIfInterrupted();
    if (request.change.dryRun)
        warnIfLocked(path, console);
    else if (!db.save(0))
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
