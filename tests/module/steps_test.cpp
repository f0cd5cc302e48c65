// The steps of start and end by their names, and the texts.

#include <db/tv_db_data_link.h>
#include <module/kv_sheet_set_app.h>
#include <module/resource_texts.h>

#include "host_scene.h"

namespace {

Trace g_steps;

class Steps : public HostScene
{
protected:
    void SetUp() override
    {
        HostScene::SetUp();
        module::loadResourceModule();
        g_steps.clear();
        module::setStepObserver([](std::string_view step) { g_steps.emplace_back(step); });
    }
    void TearDown() override
    {
        app.onUnloadApp(nullptr);
        module::setStepObserver(nullptr);
        HostScene::TearDown();
    }
    KvSheetSetApp app;
};

TEST_F(Steps, OfTheStart)
{
    EXPECT_EQ(app.entryPoint(1, nullptr), 0);
    EXPECT_EQ(g_steps, (Trace{"initialise base", "add commands", "make auto-open reactor",
                              "register manager events", "register service", "make cuix manager",
                              "set internal interface", "load plot commands", "load transmit",
                              "register adapter provider"}));
    EXPECT_NE(app.dynPropManager(), nullptr);
    EXPECT_TRUE(app.dynPropManager()->entries().empty());
    EXPECT_EQ(app.resourceModule(), module::resourceModule());
    EXPECT_NE(app.resourceModule(), nullptr);
}

TEST_F(Steps, OfTheEnd)
{
    app.entryPoint(1, nullptr);
    g_steps.clear();
    EXPECT_EQ(app.entryPoint(2, nullptr), 0);
    EXPECT_EQ(g_steps, (Trace{"unload base", "unregister adapter provider", "destroy palette",
                              "free drawing information", "remove command group",
                              "delete cuix manager", "unregister manager events", "delete service",
                              "delete auto-open reactor", "take internal interface back",
                              "free plot commands", "free transmit", "free resource module"}));
    EXPECT_EQ(app.dynPropManager(), nullptr);
    EXPECT_EQ(module::cuixManager(), nullptr);
}

TEST_F(Steps, AClassTreeIsToldOfTheNewClasses)
{
    const unsigned before = tvrxClassHierarchyVersion();
    app.entryPoint(1, nullptr);
    EXPECT_NE(tvrxClassHierarchyVersion(), before);
}

TEST_F(Steps, TheAdapterKnowsNoTableYet)
{
    EXPECT_EQ(adapters.getAdapter(u"AcSmTocDataAdapter2"), nullptr);
    app.entryPoint(1, nullptr);
    TvDbDataAdapter* adapter = adapters.getAdapter(u"acsmtocDATAadapter2");
    ASSERT_NE(adapter, nullptr);
    EXPECT_EQ(adapters.getAdapter(u"AcSmTocDataAdapter2"), adapter) << "one";
    EXPECT_EQ(adapters.getAdapter(u"AcSmTocDataAdapter"), nullptr);
    EXPECT_EQ(adapter->updateData(nullptr, nullptr, 1), 15);
    TvDbDataLink link;
    EXPECT_EQ(adapter->updateData(&link, nullptr, 1), 655);
    EXPECT_FALSE(adapter->canWriteSource());
    EXPECT_EQ(adapter->sourceFlags(), 0);
    EXPECT_EQ(adapter->updateKinds(), 2);
    app.entryPoint(2, nullptr);
    EXPECT_EQ(adapters.getAdapter(u"AcSmTocDataAdapter2"), nullptr);
}

// Texts

TEST_F(Steps, TextsComeFromTheResourceModule)
{
    EXPECT_EQ(LoadResourceText(600), u"SHEETSET");
    EXPECT_EQ(LoadResourceTextChecked(600), u"SHEETSET");
    EXPECT_TRUE(LoadResourceText(350).find(u"\n") > 0);
    EXPECT_EQ(LoadResourceText(21001), TvString()) << "another's number";
}

TEST_F(Steps, ATextThatIsMissingIsEmptyOrSaysSo)
{
    EXPECT_EQ(LoadResourceText(301), TvString());
    EXPECT_EQ(LoadResourceTextChecked(301), u"Missing string!");
}

TEST_F(Steps, WithoutTheResourceModuleAllTextsAreMissing)
{
    module::freeResourceModule();
    EXPECT_EQ(LoadResourceText(600), TvString());
    EXPECT_EQ(LoadResourceTextChecked(600), u"Missing string!");
    loader.missing = {"KvSheetSetRes.dll"};
    module::loadResourceModule();
    EXPECT_EQ(module::resourceModule(), nullptr);
    EXPECT_EQ(LoadResourceTextChecked(600), u"Missing string!");
}

} // namespace
