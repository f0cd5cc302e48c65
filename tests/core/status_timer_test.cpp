// When images are refreshed.

#include <core/status_timer.h>

#include <ed/system_variables.h>

#include "session_scene.h"

namespace {

class NotingPage : public core::StatusTimer::Page
{
public:
    void UpdateStatusImages() override { told.push_back("update"); }
    void ResetStatusImages() override { told.push_back("reset"); }
    void startTimer(int id, int periodMs) override
    {
        told.push_back("start " + std::to_string(id) + " " + std::to_string(periodMs));
    }
    void stopTimer(int id) override { told.push_back("stop " + std::to_string(id)); }
    bool isVisible() const override { return isShown; }

    std::vector<std::string> told;
    bool isShown = true;
};

using Names = std::vector<std::string>;

class StatusTimerTest : public SessionTest
{
protected:
    static void set(const TvChar* variable, std::int16_t value)
    {
        EXPECT_TRUE(ed::setVariable(variable, value));
    }
    Names takeTold() { return std::exchange(page.told, {}); }

    NotingPage page;
    core::StatusTimer timer{page};
};

TEST_F(StatusTimerTest, AFilledTreeIsRefreshedAndTimedAsTheVariablesSay)
{
    set(u"SSMPOLLTIME", 30);
    set(u"SSMSHEETSTATUS", 0);
    timer.treeFilled();
    EXPECT_EQ(takeTold(), Names{});
    set(u"SSMSHEETSTATUS", 1);
    timer.treeFilled();
    EXPECT_EQ(takeTold(), Names{"update"});
    EXPECT_FALSE(timer.isRunning());
    set(u"SSMSHEETSTATUS", 2);
    timer.treeFilled();
    EXPECT_EQ(takeTold(), (Names{"update", "start 258 30000"}));
    EXPECT_TRUE(timer.isRunning());
    timer.treeCleared();
    EXPECT_EQ(takeTold(), Names{"stop 258"});
    timer.treeCleared();
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(StatusTimerTest, Mode1ShowsImagesAndStartsNoTimer)
{
    timer.SetSheetStatusMode(1);
    EXPECT_EQ(takeTold(), Names{"update"});
}

TEST_F(StatusTimerTest, Mode2StartsTheTimerAndMode0StopsItAndResetsTheImages)
{
    set(u"SSMPOLLTIME", 60);
    timer.SetSheetStatusMode(2);
    EXPECT_EQ(takeTold(), (Names{"update", "start 258 60000"}));
    timer.SetSheetStatusMode(0);
    EXPECT_EQ(takeTold(), (Names{"reset", "stop 258"}));
    EXPECT_FALSE(timer.isRunning());
}

TEST_F(StatusTimerTest, Mode1StopsATimerThatRuns)
{
    timer.SetSheetStatusMode(2);
    takeTold();
    timer.SetSheetStatusMode(1);
    EXPECT_EQ(takeTold(), (Names{"update", "stop 258"}));
}

TEST_F(StatusTimerTest, ANewPeriodRestartsATimerThatRunsAndStartsNone)
{
    timer.SetPollTime(45);
    EXPECT_EQ(takeTold(), Names{});
    timer.SetSheetStatusMode(2);
    takeTold();
    timer.SetPollTime(45);
    EXPECT_EQ(takeTold(), (Names{"stop 258", "start 258 45000"}));
}

TEST_F(StatusTimerTest, ChangesOfSheetsRefreshUnlessImagesAreOff)
{
    set(u"SSMSHEETSTATUS", 1);
    timer.UpdateSheetStatusIfEnabled();
    EXPECT_EQ(takeTold(), Names{"update"});
    set(u"SSMSHEETSTATUS", 0);
    timer.UpdateSheetStatusIfEnabled();
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(StatusTimerTest, FiresForAPanelThatCanBeSeenAndASetThatIsNotBusy)
{
    TvSmDatabase* database = made("a.dst");
    timer.fired(database);
    EXPECT_EQ(takeTold(), Names{"update"});
    database->setTransmitting(true);
    timer.fired(database);
    timer.fired(nullptr); // the manager is busy with it
    EXPECT_EQ(takeTold(), Names{});
    database->setTransmitting(false);
    page.isShown = false;
    timer.fired(database);
    EXPECT_EQ(takeTold(), Names{});
    manager().closeDatabase(database);
}

} // namespace
