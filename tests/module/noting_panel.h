#pragma once

#include <core/sheet_set_panel.h>
#include <ed/palette_set.h>

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
