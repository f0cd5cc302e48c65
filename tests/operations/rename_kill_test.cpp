// A rename of many drawings that is killed at any moment leaves all old or all new, once somebody
// looked after it.

#include <random>

#include <operations/rename_apply.h>

#include "drawing_maker.h"
#include "kill_at_syscall.h"
#include "sheet_set_builder.h"
#include <dwg/dwg_codec.h>
#include <ed/tv_editor.h>
#include <rx/tv_rx_dictionary.h>
#include <sm/kv_db_util.h>

namespace {

/// Sheets in drawings of four layouts each; the first two drawings exchange their names.
class RenameKillTest : public testing::Test
{
protected:
    void makeSet(int drawings)
    {
        dwg::install();
        DrawingMaker maker;
        std::vector<TvString> handles;
        for (const TvChar* name : {u"A1", u"A2", u"A3", u"A4"})
            handles.push_back(maker.paper(name).handleOf(name));
        std::filesystem::create_directory(origin());
        maker.saveAs(folder.file("origin/1.dwg"));
        for (int i = 2; i <= drawings; ++i)
            std::filesystem::copy_file(origin() / "1.dwg", origin() / (std::to_string(i) + ".dwg"));
        copyScene();
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.createDatabase(folder.file("work/set.dst"), u"", true);
        for (int i = 1; i <= drawings; ++i)
            for (std::size_t j = 0; j < handles.size(); ++j) {
                TvSmSheet* sheet =
                    addSheet(db->getSheetSet(), TvString().format(u"%d", ++m_sheets), u"Sheet");
                setLayout(sheet, folder.file("work/" + std::to_string(i) + ".dwg"), handles[j],
                          TvString().format(u"A%d", static_cast<int>(j) + 1));
            }
        ASSERT_TRUE(db->save(0));
        std::filesystem::copy_file(work() / "set.dst", origin() / "set.dst");
    }
    std::filesystem::path origin() const { return folder.path() / "origin"; }
    std::filesystem::path work() const { return folder.path() / "work"; }
    void copyScene() const
    {
        std::filesystem::remove_all(work());
        std::filesystem::copy(origin(), work());
    }
    /// What a process does that renumbers the set; 0 when it worked.
    int renumber() const
    {
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.openDatabase(folder.file("work/set.dst"), true, 0);
        if (!db || !db->lockDb(db))
            return 1;
        std::vector<operations::SheetTarget> targets = operations::renumberTargets(
            *db->getSheetSet(), *operations::SheetNumbers::make(u"A-101", 1), {true, true});
        // Two drawings exchange their names.
        for (std::size_t i = 0; i < 8; ++i)
            targets[i].file = i < 4 ? u"2.dwg" : u"1.dwg";
        const auto plan = operations::planRename(targets);
        if (plan.hasClash())
            return 2;
        return operations::applyRename(*db, plan, [db] { return db->unlockDb(db, true); }) ? 0 : 3;
    }
    /// The next one who opens the set.
    void recover() const
    {
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.openDatabase(folder.file("work/set.dst"), true, 0);
        ASSERT_TRUE(db && db->lockDb(db));
        ASSERT_TRUE(operations::recoverRename(*db));
        ASSERT_TRUE(db->unlockDb(db, false));
    }
    /// Names and contents of set and drawings, and what else lies beside them but the note that
    /// takes it back.
    std::map<std::string, std::string> content() const
    {
        std::map<std::string, std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(work())) {
            const std::string name = entry.path().filename().string();
            const bool isOurs = name.ends_with(".lk") || name.ends_with(".renamed") ||
                                name.find(".done.") != std::string::npos ||
                                name.find(".pend.") != std::string::npos ||
                                name.find(".new.") != std::string::npos;
            if (!isOurs)
                all[name] = folder.read("work/" + name);
        }
        return all;
    }
    /// Drawings are the new ones when each has the layouts of its new sheets; the bytes of a time
    /// of saving may differ.
    bool isAllNew(const std::map<std::string, std::string>& expected) const
    {
        const auto now = content();
        return std::ranges::equal(now, expected,
                                  [](const auto& left, const auto& right) {
                                      return left.first == right.first &&
                                             (left.first == "set.dst" ||
                                              left.second == right.second);
                                  }) &&
               now.at("set.dst").find("A-101") != std::string::npos;
    }
    /// @return how many ended old, and how many new.
    std::pair<int, int> killAt(const std::vector<int>& moments)
    {
        copyScene();
        const auto oldState = content();
        EXPECT_EQ(renumber(), 0);
        const auto newState = content();
        std::pair<int, int> ended;
        for (const int moment : moments) {
            copyScene();
            const KillOutcome outcome = runKilledAt(moment, [this] { return renumber(); });
            if (outcome.end == KillOutcome::End::NotPermitted)
                return {-1, -1};
            recover();
            if (content() == oldState)
                ++ended.first;
            else if (isAllNew(newState))
                ++ended.second;
            else
                ADD_FAILURE() << textOf(outcome) << ": neither old nor new";
        }
        return ended;
    }
    int callsOfAll()
    {
        copyScene();
        return runKilledAt(0, [this] { return renumber(); }).calls;
    }
    /// Evenly spread with a fixed seed, and some close to the end, where the set is written.
    static std::vector<int> momentsUpTo(int calls, int count)
    {
        std::mt19937 random(20261121);
        std::vector<int> moments;
        for (int i = 0; i < count; ++i) {
            const int from = i % 4 == 3 ? calls * 9 / 10 : 1;
            moments.push_back(std::uniform_int_distribution<int>(from, calls)(random));
        }
        return moments;
    }

    TempFolder folder;

private:
    int m_sheets = 0;
};

TEST_F(RenameKillTest, KilledAnywhereItIsAllOldOrAllNewOnceRecovered)
{
    makeSet(3);
    const int calls = callsOfAll();
    const auto [oldOnes, newOnes] = killAt(momentsUpTo(calls, 24));
    if (oldOnes < 0)
        GTEST_SKIP() << "nobody may trace here";
    EXPECT_GT(oldOnes, 0);
    EXPECT_GT(newOnes, 0);
}

TEST_F(RenameKillTest, ARecoveryThatIsKilledTooIsFinishedByTheNextOne)
{
    makeSet(2);
    const auto oldState = content();
    const int calls = callsOfAll();
    for (const int share : {60, 75, 85, 90, 93}) {
        for (const int second : {30, 55, 80, 120}) {
            copyScene();
            const KillOutcome first =
                runKilledAt(calls * share / 100, [this] { return renumber(); });
            if (first.end == KillOutcome::End::NotPermitted)
                GTEST_SKIP() << "nobody may trace here";
            runKilledAt(second, [this] {
                recover();
                return 0;
            });
            recover();
            const std::string set = folder.read("work/set.dst");
            if (set.find("A-101") == std::string::npos) {
                EXPECT_EQ(content(), oldState) << share << "% " << second;
            } else {
                EXPECT_EQ(content().size(), oldState.size()) << share << "% " << second;
            }
        }
    }
}

/// The whole: 200 sheets in 50 drawings.
TEST_F(RenameKillTest, TortureOfTwoHundredSheetsInFiftyDrawings)
{
    const char* seconds = std::getenv("KV_TORTURE_SECONDS");
    makeSet(50);
    const int calls = callsOfAll();
    const int points = seconds && std::atoi(seconds) > 1 ? 100 : 4;
    const auto [oldOnes, newOnes] = killAt(momentsUpTo(calls, points));
    if (oldOnes < 0)
        GTEST_SKIP() << "nobody may trace here";
    EXPECT_EQ(oldOnes + newOnes, points);
    RecordProperty("calls", calls);
    std::printf("%d calls; %d kills ended old, %d new\n", calls, oldOnes, newOnes);
}

} // namespace
