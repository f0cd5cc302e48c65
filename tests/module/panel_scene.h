#pragma once

#include <core/session.h>
#include <core/sheet_set_panel.h>
#include <ed/palette_set.h>
#include <ed/tarv_palette_prop_manager.h>
#include <module/kv_sheet_set_app.h>

#include "host_scene.h"

/// A panel without a window, that notes what it is told.
class NotingPanel : public core::SheetSetPanel, public ed::PaletteSet
{
public:
    explicit NotingPanel(Trace& trace) : m_trace(trace) { m_trace.push_back("made"); }
    ~NotingPanel() override { m_trace.push_back("deleted"); }
    NotingPanel(const NotingPanel&) = delete;
    NotingPanel& operator=(const NotingPanel&) = delete;

    ed::PaletteSet& paletteSet() override { return *this; }
    core::SheetSetPalette* palette(core::SessionHost::Palette) override { return nullptr; }
    void setPollTime(short seconds) override
    {
        m_trace.push_back("time " + std::to_string(seconds));
    }
    void setSheetStatusMode(short mode) override
    {
        m_trace.push_back("mode " + std::to_string(mode));
    }
    void importLayoutsAsSheets(const TvString& drawing,
                               const std::vector<TvString>& layouts) override
    {
        m_trace.push_back("import " + drawing.utf8() + " " + std::to_string(layouts.size()));
    }

    bool isShown() const override { return m_isShown; }
    void setShown(bool shown) override
    {
        m_isShown = shown;
        m_trace.push_back(shown ? "shown" : "hidden");
    }
    bool isRolledUp() const override { return false; }
    void EnableDocking(unsigned) override {}
    void RestoreControlBar(int bar, const ed::ScreenRect*) override
    {
        m_trace.push_back("bar " + std::to_string(bar));
    }
    ed::PalettePlacement placement() const override { return {}; }
    void setPlacement(const ed::PalettePlacement&) override { m_trace.push_back("placed"); }

private:
    Trace& m_trace;
    bool m_isShown = false;
};

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
    TvString GetUserLocalApplicationDataTemplatePath() override { return {}; }
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
