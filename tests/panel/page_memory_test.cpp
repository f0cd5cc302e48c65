// What the page forgets and what it stops.

#include <core/status_timer.h>
#include <ed/system_variables.h>
#include <panel/import_layouts.h>
#include <panel/panel_commands.h>

#include "panel_scene.h"

namespace {

class NotingWindow : public panel::PageWindow
{
public:
    void startTimer(int id, int periodMs) override
    {
        told.push_back("start " + std::to_string(id) + " " + std::to_string(periodMs));
    }
    void stopTimer(int id) override { told.push_back("stop " + std::to_string(id)); }
    std::vector<std::string> told;
};

class PageMemoryTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        status(0);
        ActivateSheetSet(database);
        page.SwitchDatabase(true);
    }
    void TearDown() override
    {
        status(2);
        page.tree().ClearTree();
        page.tree().setDatabase(nullptr);
        PanelTest::TearDown();
    }
    static void status(std::int16_t mode) { ASSERT_TRUE(ed::setVariable(u"SSMSHEETSTATUS", mode)); }
    panel::TreeItem* at(const TvSmPersist* object) { return page.tree().itemOf(handleOf(object)); }

    NotingWindow window;
    panel::SheetListPage page{window, base::systemClock()};
};

TEST_F(PageMemoryTest, AViewThatWasRememberedBeforeIsForgottenWithoutKeeping)
{
    page.tree().setExpanded(at(details), true);
    page.SwitchDatabase(true); // remembers
    ASSERT_TRUE(at(details)->isExpanded());
    page.SwitchDatabase(false);
    EXPECT_FALSE(at(details)->isExpanded()) << "as at its first display";
    EXPECT_TRUE(at(ground)->isExpanded());
}

TEST_F(PageMemoryTest, AReloadStopsTheTimerAndStartsItAnewWhereTheVariableStillSaysSo)
{
    status(2);
    page.ReloadDatabase();
    window.told.clear();
    page.ReloadDatabase();
    ASSERT_EQ(window.told.size(), 2u);
    EXPECT_EQ(window.told[0], "stop 258");
    EXPECT_TRUE(window.told[1].starts_with("start 258 "));
    status(1);
    window.told.clear();
    page.ReloadDatabase();
    EXPECT_EQ(window.told, std::vector<std::string>{"stop 258"});
}

TEST_F(PageMemoryTest, LayoutsWithoutAPlaceAreNotImported)
{
    int imports = 0;
    panel::setImportLayouts([&](auto&&...) { ++imports; });
    panel::importLayouts(page, {}, u"a.dwg", {u"A1"});
    EXPECT_EQ(imports, 0);
    panel::importLayouts(page, {page.tree().root(), nullptr, nullptr}, u"a.dwg", {u"A1"});
    EXPECT_EQ(imports, 1);
    panel::setImportLayouts({});
}

} // namespace
