// What exports and start leave alone.

#include <core/publish_options_dialog.h>
#include <module/exports.h>
#include <module/resource_texts.h>
#include <rx/resource_module.h>
#include <sm/tv_sm_publish_options.h>

#include "panel_scene.h"

namespace {

int g_shown = 0;
TvString g_resources;

class ExportEdges : public PanelScene
{
protected:
    void SetUp() override
    {
        PanelScene::SetUp();
        g_shown = 0;
        m_former = core::publishOptionsDialog();
        core::setPublishOptionsDialog([](void*, TvSmDatabase&, TvSmPublishOptions&) {
            ++g_shown;
            g_resources = rx::currentResourceName();
            return true;
        });
    }
    void TearDown() override
    {
        core::setPublishOptionsDialog(m_former);
        PanelScene::TearDown();
    }

private:
    core::PublishOptionsDialog m_former = nullptr;
};

TEST_F(ExportEdges, PublishOptionsAreShownForASetAndItsOptionsOnly)
{
    TvSmDatabase* database = made("a.dst");
    TvSmPublishOptions* options = database->getSheetSet()->getPublishOptions();
    KvCmd_DWFPublishOption(nullptr, nullptr, options);
    KvCmd_DWFPublishOption(nullptr, database, nullptr);
    EXPECT_EQ(g_shown, 0);
    KvCmd_DWFPublishOption(nullptr, database, options);
    EXPECT_EQ(g_shown, 1);
    EXPECT_EQ(g_resources, u"KvSheetSetRes.dll");
    EXPECT_EQ(rx::currentResourceName(), TvString());
    EXPECT_EQ(database->getLockStatus(), 0) << "nothing is locked";
    manager.closeDatabase(database);
}

TEST_F(ExportEdges, TextsAreLoadedOnce)
{
    module::loadResourceModule();
    told();
    module::loadResourceModule();
    EXPECT_EQ(std::ranges::count(told(), "load KvSheetSetRes.dll"), 0);
}

TEST_F(ExportEdges, WhoeverTellsTheCurrentLayoutAlreadyGoesOnTellingIt)
{
    struct Layout : sm::CurrentLayoutProvider {
        bool currentLayout(TvDbDatabase*&, TvString&, TvDbHandle&) override { return false; }
    } theirs;
    app.entryPoint(2, nullptr);
    sm::environment().layout = &theirs;
    app.entryPoint(1, nullptr);
    EXPECT_EQ(sm::environment().layout, &theirs);
    app.entryPoint(2, nullptr);
    EXPECT_EQ(sm::environment().layout, &theirs);
    sm::environment().layout = nullptr;
    app.entryPoint(1, nullptr);
    EXPECT_NE(sm::environment().layout, nullptr);
}

} // namespace
