#include "module/palette_host.h"

#include <core/palette_state.h>
#include <ed/palette_set.h>
#include <ed/tarv_palette_prop_manager.h>

namespace module {

namespace {

void tellWindow(bool isShown)
{
    if (TarvikMainAppService* window = tarvikMainAppService())
        window->setSheetSetPaletteState(isShown);
}

} // namespace

PaletteHost& paletteHost()
{
    static PaletteHost host;
    return host;
}

core::SheetSetPalette* PaletteHost::palette(Palette which)
{
    return m_panel ? m_panel->palette(which) : nullptr;
}

ed::PaletteSet* PaletteHost::paletteSet()
{
    return m_panel ? &m_panel->paletteSet() : nullptr;
}

void PaletteHost::AddDstFileToRecentFileList(const TvString& path)
{
    if (TarvikMainAppService* window = tarvikMainAppService())
        window->AddDstFileToRecentFileList(path);
}

TvString PaletteHost::GetUserLocalApplicationDataTemplatePath()
{
    TarvikMainAppService* window = tarvikMainAppService();
    return window ? window->GetUserLocalApplicationDataTemplatePath() : TvString();
}

TvString PaletteHost::GetUserRoamingDataPath()
{
    TarvikMainAppService* window = tarvikMainAppService();
    return window ? window->GetUserRoamingDataPath() : TvString();
}

bool PaletteHost::showPanel()
{
    if (!m_panel && core::sheetSetPanelMaker()) {
        m_panel = core::sheetSetPanelMaker()();
        if (m_panel)
            LoadPaletteState();
    }
    if (!m_panel)
        return false;
    m_panel->paletteSet().setShown(true);
    tellWindow(true);
    return true;
}

bool PaletteHost::hidePanel()
{
    if (!m_panel)
        return false;
    m_panel->paletteSet().setShown(false);
    tellWindow(false);
    return true;
}

void PaletteHost::DestroyPalette()
{
    if (!m_panel)
        return;
    SavePaletteState();
    m_panel.reset();
}

} // namespace module
