// The program's folders, as the session gets them through the module.

#include <core/session_host.h>

#include "panel_scene.h"

namespace {

class HostFolders : public PanelScene
{
};

TEST_F(HostFolders, AreThoseOfTheMainWindow)
{
    core::SessionHost* host = core::sessionHost();
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(host->GetUserLocalApplicationDataTemplatePath(), folder.file("templates"));
    EXPECT_EQ(host->GetUserRoamingDataPath(), folder.file("roaming"));
    EXPECT_EQ(host->paletteSet(), nullptr) << "not made yet";
    EXPECT_EQ(host->palette(core::SessionHost::Palette::SheetList), nullptr);
}

TEST_F(HostFolders, AreMissingWithoutAMainWindowAndTheSessionsHostGoesWithTheModule)
{
    core::SessionHost* host = core::sessionHost();
    tarvSetMainAppService(nullptr);
    EXPECT_EQ(host->GetUserLocalApplicationDataTemplatePath(), u"");
    EXPECT_EQ(host->GetUserRoamingDataPath(), u"");
    host->AddDstFileToRecentFileList(u"a.dst");
    type(u"SHEETSET");
    type(u"SHEETSETHIDE");
    EXPECT_EQ(panel.back(), "hidden") << "there is a panel all the same";
    app.entryPoint(2, nullptr);
    EXPECT_EQ(core::sessionHost(), nullptr);
    EXPECT_EQ(sm::environment().layout, nullptr);
    app.entryPoint(1, nullptr);
}

} // namespace
