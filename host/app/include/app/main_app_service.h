#pragma once

#include <ed/tarv_palette_prop_manager.h>

namespace app {

/// What modules ask of the program and tell it, as long as it lives.
class MainAppService : public TarvikMainAppService
{
public:
    /// @param config  folder of the preferences. @param data  of the user's own templates.
    MainAppService(const TvString& config, const TvString& data);
    ~MainAppService();
    MainAppService(const MainAppService&) = delete;
    MainAppService& operator=(const MainAppService&) = delete;

    bool isSheetSetPaletteShown() const { return m_isPaletteShown; }

    // TarvikMainAppService
    void setSheetSetPaletteState(bool isShown) override { m_isPaletteShown = isShown; }
    void AddDstFileToRecentFileList(const TvString& path) override;
    TvString GetUserLocalApplicationDataTemplatePath() override;
    TvString GetUserRoamingDataPath() override { return m_config; }

private:
    TvString m_config, m_data;
    bool m_isPaletteShown = false;
};

} // namespace app
