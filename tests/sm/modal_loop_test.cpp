#include <gtest/gtest.h>

#include "event_recorder.h"
#include "sheet_set_builder.h"

// A dialog that holds the lock while others may do anything to the file, and while the panel looks
// at the database from its timers.

namespace {

class ModalLoop : public SheetSetTest
{
protected:
    ModalLoop()
    {
        TvSmDatabase* made = create();
        addSheet(made->getSheetSet(), u"1", u"One");
        EXPECT_TRUE(made->save(0) && manager.closeDatabase(made));
        db = open();
        set = db->getSheetSet();
        db->registerEventHandler(&events);
        before = content();
        outline = Outline::of(db, true);
    }
    /// The dialog opens and the user edits; @p outside happens between two timer events.
    void edit(const std::function<void()>& outside)
    {
        ASSERT_TRUE(db->lockDb(db));
        ASSERT_TRUE(set->setName(u"Uncommitted"));
        addSheet(set, u"2", u"Uncommitted");
        timer();
        outside();
        timer();
        ASSERT_TRUE(set->setDesc(u"Uncommitted"));
        timer();
    }
    void timer()
    {
        EXPECT_EQ(db->getLockStatus(), 1);
        EXPECT_FALSE(db->isBusy());
        EXPECT_FALSE(db->load(path())); // an outside change waits
        EXPECT_EQ(set->getName(), u"Uncommitted");
        expectNothingUncommittedOnDisk();
        clock.advance(std::chrono::seconds(3));
    }
    void expectNothingUncommittedOnDisk() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            EXPECT_EQ(folder.read(entry.path().filename()).find("Uncommitted"), std::string::npos)
                << entry.path();
    }
    void cancel()
    {
        EXPECT_TRUE(db->unlockDb(db, false));
        EXPECT_EQ(Outline::of(db, true), outline);
        EXPECT_EQ(events.codes, std::vector<int>{20});
        expectNothingUncommittedOnDisk();
    }
    void accept()
    {
        EXPECT_TRUE(db->unlockDb(db, true)) << int(sm::lastStatus(db).reason());
        EXPECT_EQ(events.codes, (std::vector<int>{21, 20}));
        EXPECT_EQ(childrenOf(set).size(), 2u);
        TvSmDatabase read;
        ASSERT_TRUE(read.load(path()));
        EXPECT_EQ(Outline::of(&read), Outline::of(db));
        EXPECT_EQ(read.getSheetSet()->getDesc(), u"Uncommitted");
        EXPECT_TRUE(recoveryFiles().empty());
    }
    void touch() const
    {
        std::filesystem::last_write_time(folder.path() / kName,
                                         std::filesystem::file_time_type::clock::now() +
                                             std::chrono::hours(1));
    }
    void remove() const { std::filesystem::remove(folder.path() / kName); }

    EventRecorder events;
    TvSmDatabase* db;
    TvSmSheetSet* set;
    std::string before;
    std::string outline;
};

} // namespace

TEST_F(ModalLoop, CancelAfterNothingHappened)
{
    edit([] {});
    cancel();
    EXPECT_EQ(content(), before);
}

TEST_F(ModalLoop, CancelAfterATouch)
{
    edit([this] { touch(); });
    cancel();
    EXPECT_EQ(content(), before);
}

TEST_F(ModalLoop, CancelAfterTheSameContentWasWritten)
{
    edit([this] { replaceOutside(before); });
    cancel();
    EXPECT_EQ(content(), before);
}

TEST_F(ModalLoop, CancelAfterAChangeOfTheFileReadsItWithTheNextLock)
{
    edit([this] { editOutside("One", "Theirs"); });
    const std::string theirs = content();
    cancel();
    EXPECT_EQ(content(), theirs);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(tvrxCast<TvSmSheet>(itemsOf(set->getSheetEnumerator()).at(0))->getTitle(), u"Theirs");
}

TEST_F(ModalLoop, CancelAfterTheFileWasDeletedLeavesItDeleted)
{
    edit([this] { remove(); });
    cancel();
    EXPECT_FALSE(isThere());
}

TEST_F(ModalLoop, OkAfterATouchKeepsEverything)
{
    edit([this] { touch(); });
    accept();
}

TEST_F(ModalLoop, OkAfterTheSameContentWasWrittenKeepsEverything)
{
    edit([this] { replaceOutside(before); });
    accept();
}

TEST_F(ModalLoop, OkAfterTheFileWasDeletedWritesEverything)
{
    edit([this] { remove(); });
    accept();
}

TEST_F(ModalLoop, OkAfterAChangeOfTheFileOverwritesNothingAndKeepsOursBesideIt)
{
    edit([this] { editOutside("One", "Theirs"); });
    const std::string theirs = content();
    EXPECT_FALSE(db->unlockDb(db, true));
    EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::Conflict);
    EXPECT_EQ(events.codes, std::vector<int>{20});
    EXPECT_EQ(content(), theirs);
    EXPECT_EQ(Outline::of(db, true), outline);
    EXPECT_EQ(db->getLockStatus(), 0);
    ASSERT_EQ(recoveryFiles().size(), 1u);
    TvSmDatabase kept;
    ASSERT_TRUE(kept.load(folder.file(recoveryFiles()[0])));
    EXPECT_EQ(kept.getSheetSet()->getName(), u"Uncommitted");
    EXPECT_EQ(childrenOf(kept.getSheetSet()).size(), 2u);
}

TEST_F(ModalLoop, SavingMeanwhileWritesNothingUncommitted)
{
    edit([this] {
        EXPECT_TRUE(db->save(0));
        expectNothingUncommittedOnDisk();
        EXPECT_EQ(content(), before);
    });
    accept();
}

TEST_F(ModalLoop, SavingAfterTheFileWasDeletedWritesTheCommittedState)
{
    edit([this] {
        remove();
        EXPECT_TRUE(db->save(0));
        EXPECT_EQ(content(), before);
    });
    cancel();
    EXPECT_EQ(content(), before);
}

TEST_F(ModalLoop, ClosingRollsBack)
{
    edit([] {});
    EXPECT_TRUE(manager.closeDatabase(db));
    EXPECT_EQ(content(), before);
    expectNothingUncommittedOnDisk();
    EXPECT_EQ(events.codes, std::vector<int>{20});
}
