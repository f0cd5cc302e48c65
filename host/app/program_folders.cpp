#include "app/program_folders.h"

#include <cstdlib>

#include <base/file_ops.h>
#include <base/path_rules.h>
#include <base/user_folders.h>

namespace app {

namespace {

TvString programFile()
{
    std::string path;
    return base::systemFileOps().readLink("/proc/self/exe", path) == 0 ? base::pathFromNative(path)
                                                                       : TvString();
}

} // namespace

std::vector<TvString> moduleFoldersFor(const TvString& programFolder)
{
    const base::PathRules& rules = base::PathRules::native();
    if (programFolder.isEmpty())
        return {};
    return {rules.normalise(rules.join(programFolder, u"../modules")),
            rules.normalise(rules.join(programFolder, u"../lib/tarvik/modules"))};
}

TvString templateFolderFor(const TvString& programFolder)
{
    const base::PathRules& rules = base::PathRules::native();
    return programFolder.isEmpty()
               ? programFolder
               : rules.normalise(rules.join(programFolder, u"../share/tarvik/templates"));
}

ProgramFolders ProgramFolders::ofUser()
{
    ProgramFolders folders{base::configFolder(),
                           base::dataFolder(),
                           base::stateFolder(),
                           base::cacheFolder(),
                           base::runtimeFolder(),
                           {},
                           {}};
    folders.program = base::PathRules::native().folderOf(programFile());
    folders.modules = moduleFoldersFor(folders.program);
    if (const char* forTests = std::getenv("TARVIK_TEST_MODULES"))
        folders.modules.insert(folders.modules.begin(), base::pathFromNative(forTests));
    return folders;
}

} // namespace app
