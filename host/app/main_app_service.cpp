#include "app/main_app_service.h"

#include <base/path_rules.h>
#include <ed/recent_files.h>

namespace app {

MainAppService::MainAppService(const TvString& config, const TvString& data)
    : m_config(config), m_data(data)
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
    return m_data.isEmpty() ? m_data : base::PathRules::native().join(m_data, u"templates");
}

} // namespace app
