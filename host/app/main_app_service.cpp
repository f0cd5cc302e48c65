#include "app/main_app_service.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <ed/recent_files.h>

#include "app/program_folders.h"

namespace app {

MainAppService::MainAppService(const TvString& config, const TvString& data,
                               const TvString& program)
    : m_config(config), m_data(data), m_program(program)
{
    tarvSetMainAppService(this);
}

MainAppService::~MainAppService()
{
    tarvSetMainAppService(nullptr);
}

void MainAppService::AddDstFileToRecentFileList(const TvString& path)
{
    ::AddDstFileToRecentFileList(path);
}

TvString MainAppService::GetUserLocalApplicationDataTemplatePath()
{
    const base::PathRules& rules = base::PathRules::native();
    const auto hasSome = [&rules](const TvString& folder) {
        return !folder.isEmpty() && KvFileSystem::isDirectory(rules.join(folder, u"SheetSets"));
    };
    const TvString own = m_data.isEmpty() ? m_data : rules.join(m_data, u"templates");
    const TvString shipped = templateFolderFor(m_program);
    return !hasSome(own) && hasSome(shipped) ? shipped : own;
}

} // namespace app
