#include <gtest/gtest.h>

#include "kill_at_syscall.h"
#include "sheet_set_builder.h"

namespace {

class CommitKilled : public SheetSetTest
{
protected:
    CommitKilled()
    {
        TvSmDatabase* db = create();
        addSheet(db->getSheetSet(), u"1", u"One");
        EXPECT_TRUE(db->save(0) && manager.closeDatabase(db));
        m_before = content();
        prepare();
        EXPECT_EQ(work(), 0);
        m_after = content();
        EXPECT_NE(m_after, m_before);
    }
    /// The file alone, as it was.
    void prepare() const
    {
        for (const std::string& name : neighbours())
            std::filesystem::remove(folder.path() / name);
        folder.write(kName, m_before);
    }
    /// What the process does that is going to be killed: with the system's own operations.
    int work() const
    {
        sm::environment().files = nullptr;
        TvSmSheetSetMgr theirs;
        TvSmDatabase* db = theirs.openDatabase(path(), true, 0);
        if (!db || !db->lockDb(db))
            return 1;
        TvSmComponent* sheet = itemsOf(db->getSheetSet()->getSheetEnumerator()).at(0);
        return tvrxCast<TvSmSheet>(sheet)->setTitle(u"Changed") && db->unlockDb(db, true) ? 0 : 2;
    }
    void check(const KillOutcome& outcome)
    {
        SCOPED_TRACE(textOf(outcome));
        sm::environment().files = &ops;
        const std::string text = content();
        EXPECT_TRUE(text == m_before || text == m_after) << text;
        if (outcome.end == KillOutcome::End::Finished) {
            EXPECT_EQ(text, m_after);
        }
        for (const std::string& name : neighbours())
            EXPECT_TRUE(name.starts_with(".PLAN.dst.")) << name;
        // The next one opens, locks and commits as if nothing had been.
        TvSmDatabase* db = open();
        ASSERT_TRUE(db);
        EXPECT_EQ(db->getLockStatus(), 0);
        EXPECT_TRUE(db->lockDb(db) && db->getSheetSet()->setName(u"Next") &&
                    db->unlockDb(db, true));
        EXPECT_NE(content().find("\"Next\""), std::string::npos);
        m_changedSeen += content().find("\"Changed\"") != std::string::npos;
        ASSERT_TRUE(manager.closeDatabase(db));
        ops.reset();
    }

    int m_changedSeen = 0;

private:
    std::string m_before;
    std::string m_after;
};

} // namespace

TEST_F(CommitKilled, AtEverySystemCallLeavesTheOldOrTheNewFile)
{
    const KillSeries series =
        killAtEverySyscall([this] { prepare(); }, [this] { return work(); },
                           [this](const KillOutcome& outcome) { check(outcome); });
    if (!series.isPermitted)
        GTEST_SKIP() << "tracing is not permitted";
    EXPECT_TRUE(series.hasEnded);
    EXPECT_EQ(series.exitCode, 0);
    EXPECT_GT(series.kills, 20);
    // Both were met: kills before and behind the moment of the change.
    EXPECT_GT(m_changedSeen, 1);
    EXPECT_LT(m_changedSeen, series.kills);
}
