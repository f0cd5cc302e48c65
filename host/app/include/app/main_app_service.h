#pragma once

#include <functional>

#include <ed/tarv_palette_prop_manager.h>

namespace app {

/// What modules ask of the program and tell it, as long as it lives.
class MainAppService : public TarvikMainAppService
{
public:
    /// @param config   folder of the preferences.
    /// @param data     below which the user's own templates lie.
    /// @param program  of the program's file, behind which its templates lie; may be empty.
    MainAppService(const TvString& config, const TvString& data, const TvString& program = {});
    ~MainAppService();
    MainAppService(const MainAppService&) = delete;
    MainAppService& operator=(const MainAppService&) = delete;

    bool isSheetSetPaletteShown() const { return m_isPaletteShown; }
    /// Who shows that state, in the place of whoever did; told of each change.
    void setSheetSetPaletteListener(std::function<void(bool isShown)> listener)
    {
        m_paletteListener = std::move(listener);
    }

    // TarvikMainAppService
    void setSheetSetPaletteState(bool isShown) override
    {
        m_isPaletteShown = isShown;
        if (m_paletteListener)
            m_paletteListener(isShown);
    }
    void AddDstFileToRecentFileList(const TvString& path) override;
    /// The user's own; until he has some for sheet sets, those that came with the program.
    TvString GetUserLocalApplicationDataTemplatePath() override;
    TvString GetUserRoamingDataPath() override { return m_config; }

private:
    TvString m_config, m_data, m_program;
    bool m_isPaletteShown = false;
    std::function<void(bool isShown)> m_paletteListener;
};

} // namespace app
