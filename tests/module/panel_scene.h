#pragma once

#include <core/session.h>
#include <ed/tarv_palette_prop_manager.h>
#include <module/kv_sheet_set_app.h>

#include "noting_panel.h"

/// The module started, in a host with a main window, and a panel that can be made.
class PanelScene : public HostScene, private TarvikMainAppService, private TarvWSManager
{
protected:
    void SetUp() override
    {
        HostScene::SetUp();
        tarvSetMainAppService(this);
        tarvSetWSManager(this);
        core::setSheetSetPanelMaker([this] { return std::make_unique<NotingPanel>(panel); });
        app.entryPoint(1, nullptr);
        told();
    }
    void TearDown() override
    {
        app.entryPoint(2, nullptr);
        core::setSheetSetPanelMaker({});
        tarvSetWSManager(nullptr);
        tarvSetMainAppService(nullptr);
        while (GetCurrentDatabase())
            CloseCurrentSheetSet();
        HostScene::TearDown();
    }
    KvSheetSetApp app;
    Trace panel; ///< what panel, window and workspaces are told

private:
    void setSheetSetPaletteState(bool isShown) override
    {
        panel.push_back(isShown ? "window: shown" : "window: hidden");
    }
    void AddDstFileToRecentFileList(const TvString&) override { panel.push_back("recent"); }
    TvString GetUserLocalApplicationDataTemplatePath() override { return folder.file("templates"); }
    TvString GetUserRoamingDataPath() override { return folder.file("roaming"); }
    void updateWsESWNodInfo(ed::PaletteSet* palettes, ITarvWsNodInfo&) override
    {
        panel.push_back(palettes ? "update" : "update without");
    }
    void applyWsESWNodInfo(ed::PaletteSet* palettes, ITarvWsNodInfo&, int edges, int width,
                           int reserved, const ed::ScreenRect* rect) override
    {
        panel.push_back("apply " + std::to_string(palettes != nullptr) + " " +
                        std::to_string(edges) + " " + std::to_string(width) + " " +
                        std::to_string(reserved) + (rect ? " rect" : ""));
    }
};
