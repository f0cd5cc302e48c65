#include <QApplication>
#include <QPointer>

#include <core/session.h>
#include <panel/import_layouts.h>
#include <panel_windows/sheet_set_dlg.h>
#include <panel_windows/sheet_set_palette_set.h>
#include <ui/main_frame.h>

namespace panel {

namespace {

class Panel : public core::SheetSetPanel
{
public:
    Panel() : m_set(new CTarvSheetSetPaletteSet(ui::mainFrame()))
    {
        if (GetCurrentDatabase())
            page().SwitchDatabase(true);
    }
    ~Panel() override { delete m_set; } // null when the frame went first
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    ed::PaletteSet& paletteSet() override { return *m_set; }
    core::SheetSetPalette* palette(core::SessionHost::Palette which) override
    {
        return which == core::SessionHost::Palette::SheetList && m_set ? &page() : nullptr;
    }
    void setPollTime(short seconds) override { page().statusTimer().SetPollTime(seconds); }
    void setSheetStatusMode(short mode) override { page().statusTimer().SetSheetStatusMode(mode); }
    void importLayoutsAsSheets(const TvString& drawing,
                               const std::vector<TvString>& layouts) override
    {
        importLayouts(page(), m_set->sheetList().page().commands().GetInsertionPlace(), drawing,
                      layouts);
    }

private:
    SheetListPage& page() { return m_set->sheetList().page().page(); }
    QPointer<CTarvSheetSetPaletteSet> m_set;
};

/// The module gets its panel by linking this library.
[[gnu::constructor]] void onLoad()
{
    core::setSheetSetPanelMaker(&makeSheetSetPanel);
}

} // namespace

std::unique_ptr<core::SheetSetPanel> makeSheetSetPanel()
{
    if (!dynamic_cast<QApplication*>(QCoreApplication::instance()))
        return nullptr;
    return std::make_unique<Panel>();
}

} // namespace panel
