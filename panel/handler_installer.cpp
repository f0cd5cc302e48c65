#include "panel/handler_installer.h"

#include <vector>

namespace panel {

namespace {

/// Made by the first who asks: installers come while libraries are being loaded.
std::vector<const HandlerInstaller*>& installers()
{
    static std::vector<const HandlerInstaller*> all; // not owned; each takes itself out
    return all;
}

} // namespace

HandlerInstaller::HandlerInstaller(std::function<void(PanelCommands&)> install)
    : m_install(std::move(install))
{
    installers().push_back(this);
}

HandlerInstaller::~HandlerInstaller()
{
    std::erase(installers(), this);
}

void HandlerInstaller::installAll(PanelCommands& commands)
{
    for (const HandlerInstaller* each : installers())
        if (each->m_install)
            each->m_install(commands);
}

} // namespace panel
