// What a user is asked about a rename of many drawings that was broken off.

#include <core/leftover.h>
#include <core/open_sheet_set.h>
#include <core/watch_poller.h>
#include <operations/rename_apply.h>
#include <operations/rename_look_after.h>

#include "rename_scene.h"

namespace {

using operations::RenameJournal;
using operations::RenameStage;

constexpr int kTakeBack = 8121, kFinish = 8122, kLeft = 8123, kDamaged = 8120;

/// A drawing that left its name for another one, and then the machine stopped.
class LookAfterTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        sm::environment().files = nullptr; // asked in other threads as well
        m_cookie = manager().registerEventHandler(&m_events);
        DrawingMaker maker;
        maker.paper(u"A1").saveAs(folder.file("new.dwg"));
        database = made("house.dst");
        ASSERT_TRUE(database->lockDb(database));
        sheet = addSheet(database->getSheetSet(), u"1", u"Plan");
        setLayout(sheet, folder.file("old.dwg"), maker.handleOf(u"A1"), u"A1");
        ASSERT_TRUE(database->unlockDb(database, true));
        ActivateSheetSet(database);
    }
    void TearDown() override
    {
        tvrxSetUserMessages(nullptr);
        DocumentTest::TearDown();
        manager().unregisterEventHandler(m_cookie);
    }
    RenameJournal journal()
    {
        RenameJournal left;
        left.token = base::newToken();
        left.stage = RenameStage::Arriving;
        left.before = *sm::committedHash(database);
        left.drawings.push_back({folder.file("old.dwg"), folder.file("new.dwg"), false, {}});
        left.sheets.push_back(
            {handleOf(sheet), u"1", u"2", u"Plan", u"Plan", 0, u"", u"A1", u"A1"});
        return left;
    }
    void leave(const RenameJournal& left)
    {
        ASSERT_TRUE(operations::writeJournal(base::systemFileOps(), journalPath(), left));
    }
    TvString journalPath() const { return operations::renameJournalPath(folder.file("house.dst")); }
    bool isThere(const char* name) const { return std::filesystem::exists(folder.path() / name); }
    /// The set has the new names.
    void writeSet()
    {
        ASSERT_TRUE(database->lockDb(database));
        sheet->setNumber(u"2");
        sheet->getLayoutReference()->setFileName(folder.file("new.dwg"));
        ASSERT_TRUE(database->unlockDb(database, true));
    }

    TvSmDatabase* database = nullptr;
    TvSmSheet* sheet = nullptr;
    ScriptedMessages messages;

private:
    CTvSmSheetSetEventsHandler m_events{&g_watchTable};
    int m_cookie = -1;
};

TEST_F(LookAfterTest, WhatTheSetDoesNotHaveYetIsTakenBackWhenTheUserSaysSo)
{
    leave(journal());
    messages.answer = TvUserMessages::Answer::Yes;
    operations::lookAfterRename(*database);
    EXPECT_EQ(messages.numbers(), std::vector<int>{kTakeBack});
    EXPECT_EQ(messages.asked.front().arguments,
              (std::vector<TvString>{folder.file("house.dst"), u"1"}));
    EXPECT_EQ(messages.asked.front().standard, TvUserMessages::Answer::Yes);
    EXPECT_EQ(std::ranges::count(host.told, "list reload"), 1) << "drawings have other names";
    EXPECT_TRUE(isThere("old.dwg"));
    EXPECT_FALSE(isThere("new.dwg"));
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(LookAfterTest, WhatTheSetHasAlreadyIsFinished)
{
    const RenameJournal left = journal();
    writeSet();
    leave(left);
    messages.answer = TvUserMessages::Answer::Yes;
    operations::lookAfterRename(*database);
    EXPECT_EQ(messages.numbers(), std::vector<int>{kFinish});
    EXPECT_TRUE(isThere("new.dwg"));
    EXPECT_FALSE(isThere("old.dwg"));
    EXPECT_TRUE(isThere(".house.dst.renamed")) << "it can be undone";
}

TEST_F(LookAfterTest, WhoRefusesIsNotAskedAgainAboutTheSameOne)
{
    leave(journal());
    messages.answer = TvUserMessages::Answer::No;
    operations::lookAfterRename(*database);
    operations::lookAfterRename(*database);
    EXPECT_EQ(messages.asked.size(), 1u);
    EXPECT_TRUE(operations::hasRenameToRecover(database->getFileName())) << "for somebody else";
    EXPECT_TRUE(isThere("new.dwg"));
    leave(journal()); // another rename
    operations::lookAfterRename(*database);
    EXPECT_EQ(messages.asked.size(), 2u);
}

TEST_F(LookAfterTest, NothingHappensWhileSomebodyElseHoldsTheLock)
{
    leave(journal());
    messages.answer = TvUserMessages::Answer::Yes;
    base::EditLock other(base::systemFileOps(), base::systemClock(), folder.file("house.dst"));
    ASSERT_TRUE(other.take(u"rename"));
    operations::lookAfterRename(*database);
    EXPECT_TRUE(messages.asked.empty()) << "he may be in the middle of it";
    EXPECT_TRUE(isThere("new.dwg"));
    other.release();
    operations::lookAfterRename(*database);
    EXPECT_EQ(messages.asked.size(), 1u) << "and it is still to be done";
    EXPECT_TRUE(isThere("old.dwg"));
}

TEST_F(LookAfterTest, WithoutWindowsNothingIsDoneAndALineSaysSo)
{
    leave(journal());
    tvrxSetUserMessages(nullptr);
    operations::lookAfterRename(*database);
    operations::lookAfterRename(*database);
    EXPECT_TRUE(isThere("new.dwg"));
    EXPECT_TRUE(operations::hasRenameToRecover(database->getFileName()));
}

TEST_F(LookAfterTest, ADamagedJournalIsToldAboutAndStays)
{
    folder.write(".house.dst.rename", "rubbish");
    operations::lookAfterRename(*database);
    operations::lookAfterRename(*database);
    ASSERT_EQ(messages.asked.size(), 1u);
    EXPECT_EQ(messages.asked.front().caption, kDamaged);
    EXPECT_EQ(messages.asked.front().text, static_cast<int>(base::Reason::VerifyFailed));
    EXPECT_EQ(folder.read(".house.dst.rename"), "rubbish");
}

TEST_F(LookAfterTest, AWatchThatSeesTheJournalAsksOnceAndOnlyWhenItMay)
{
    leave(journal());
    messages.answer = TvUserMessages::Answer::No;
    core::WatchPoller poller(core::ApartWork::kForEver);
    poller.tick(false);
    EXPECT_TRUE(messages.asked.empty()) << "something else waits for the user";
    poller.tick();
    poller.tick();
    EXPECT_EQ(messages.numbers(), std::vector<int>{kTakeBack});
}

TEST_F(LookAfterTest, OpeningTheSetAsksWhereNobodyWatches)
{
    leave(journal());
    messages.answer = TvUserMessages::Answer::Yes;
    OpenSheetSetFile(folder.file("house.dst"));
    EXPECT_EQ(messages.numbers(), std::vector<int>{kTakeBack});
    EXPECT_TRUE(isThere("old.dwg"));
}

TEST_F(LookAfterTest, WhyItCouldNotBeTakenBackIsTold)
{
    leave(journal());
    folder.write("old.dwg", "somebody's");
    messages.answer = TvUserMessages::Answer::Yes;
    operations::lookAfterRename(*database);
    ASSERT_EQ(messages.asked.size(), 2u);
    EXPECT_EQ(messages.asked[1].caption, kDamaged);
    EXPECT_EQ(messages.asked[1].icon, TvUserMessages::Icon::Warning);
    EXPECT_EQ(folder.read("old.dwg"), "somebody's");
    EXPECT_TRUE(operations::hasRenameToRecover(database->getFileName()));
}

/// A question during which something else happens.
class SlowAnswer : public ScriptedMessages
{
public:
    SlowAnswer() { answer = Answer::Yes; }
    Answer show(const Message& message) override
    {
        const auto first = std::exchange(meanwhile, nullptr);
        if (first)
            first();
        return ScriptedMessages::show(message);
    }
    std::function<void()> meanwhile;
};

TEST_F(LookAfterTest, WhoTakesTheLockDuringTheQuestionIsToldOf)
{
    leave(journal());
    base::EditLock other(base::systemFileOps(), base::systemClock(), folder.file("house.dst"));
    SlowAnswer slow;
    slow.meanwhile = [&] { ASSERT_TRUE(other.take(u"rename")); };
    operations::lookAfterRename(*database);
    ASSERT_EQ(slow.asked.size(), 2u);
    EXPECT_EQ(slow.asked[1].caption, kDamaged);
    EXPECT_TRUE(isThere("new.dwg"));
}

TEST_F(LookAfterTest, NothingElseIsAskedDuringTheQuestion)
{
    leave(journal());
    SlowAnswer slow;
    slow.answer = TvUserMessages::Answer::No;
    slow.meanwhile = [&] {
        leave(journal()); // another one
        operations::lookAfterRename(*database);
        EXPECT_TRUE(slow.asked.empty());
    };
    operations::lookAfterRename(*database);
    EXPECT_EQ(slow.asked.size(), 1u);
    operations::lookAfterRename(*database);
    EXPECT_EQ(slow.asked.size(), 2u) << "its turn comes";
}

TEST_F(LookAfterTest, OfASetThatIsClosedDuringTheQuestionNothingIsTakenBack)
{
    leave(journal());
    SlowAnswer slow;
    slow.meanwhile = [] { CloseCurrentSheetSet(); };
    operations::lookAfterRename(*database);
    EXPECT_EQ(slow.asked.size(), 1u);
    EXPECT_TRUE(isThere("new.dwg"));
    EXPECT_TRUE(isThere(".house.dst.rename"));
}

TEST_F(LookAfterTest, AJournalThatSomebodyElseLookedAfterMeanwhileIsNotAskedAbout)
{
    leave(journal());
    sm::environment().files = &ops;
    ops.reset();
    ops.before = [this](int n, const base::FaultyFileOps::Call&) {
        if (n == 2) // it was seen
            std::filesystem::remove(folder.path() / ".house.dst.rename");
    };
    operations::lookAfterRename(*database);
    ops.before = nullptr;
    sm::environment().files = nullptr;
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(LookAfterTest, ASetWithoutAJournalAsksNothing)
{
    core::WatchPoller poller(core::ApartWork::kForEver);
    poller.tick();
    operations::lookAfterRename(*database);
    EXPECT_TRUE(messages.asked.empty());
}

} // namespace
