#include "event_recorder.h"

#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using Codes = std::vector<int>;

class Events : public SheetSetTest
{
};

} // namespace

TEST_F(Events, HaveTheirNumbers)
{
    EXPECT_EQ(SmEventDatabaseOpened, 16);
    EXPECT_EQ(SmEventDatabaseClosing, 17);
    EXPECT_EQ(SmEventLockEnded, 20);
    EXPECT_EQ(SmEventDatabaseWritten, 21);
}

TEST_F(Events, TheManagersSinkHearsOfOpeningAndClosing)
{
    EventRecorder events;
    const int cookie = manager.registerEventHandler(&events);
    EXPECT_NE(cookie, -1);
    TvSmDatabase* db = create();
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(manager.closeDatabase(db));
    TvSmDatabase* again = open();
    EXPECT_EQ(open(), again); // open already: no event
    EXPECT_EQ(events.codes, (Codes{16, 17, 16}));
    EXPECT_EQ(events.objects[0], db);
    EXPECT_EQ(events.objects[2], again);
    EXPECT_TRUE(manager.unregisterEventHandler(cookie));
    EXPECT_FALSE(manager.unregisterEventHandler(cookie));
    ASSERT_TRUE(manager.closeDatabase(again));
    EXPECT_EQ(events.codes.size(), 3u);
}

TEST_F(Events, AFailedOpenRaisesNothing)
{
    EventRecorder events;
    manager.registerEventHandler(&events);
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(manager.createDatabase(TvString(), TvString(), true), nullptr);
    EXPECT_TRUE(events.codes.empty());
}

TEST_F(Events, ALevelHearsOnlyItsOwn)
{
    EventRecorder ofManager;
    EventRecorder ofDatabase;
    manager.registerEventHandler(&ofManager);
    TvSmDatabase* db = createSaved();
    db->registerEventHandler(&ofDatabase);
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(ofManager.codes, Codes{16});
    EXPECT_EQ(ofDatabase.codes, (Codes{21, 20}));
    ASSERT_TRUE(manager.closeDatabase(db));
    EXPECT_EQ(ofDatabase.codes.size(), 2u);
}

TEST_F(Events, InTheHandlerOfClosingTheDatabaseStillWorks)
{
    EventRecorder events;
    manager.registerEventHandler(&events);
    TvSmDatabase* db = createSaved();
    events.reaction = [&](int code) {
        if (code != SmEventDatabaseClosing)
            return;
        EXPECT_EQ(db->getFileName(), path());
        EXPECT_EQ(db->getLockStatus(), 0);
        EXPECT_TRUE(manager.isBusy());
        EXPECT_FALSE(manager.closeDatabase(db)); // is on its way already
    };
    EXPECT_TRUE(manager.closeDatabase(db));
    EXPECT_EQ(events.codes, (Codes{16, 17}));
}

TEST_F(Events, AHeldLockIsRolledBackBeforeClosingIsSaid)
{
    EventRecorder events;
    TvSmDatabase* db = createSaved();
    const std::string before = content();
    db->registerEventHandler(&events);
    manager.registerEventHandler(&events);
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(db->getSheetSet()->setName(u"x"));
    events.reaction = [&](int code) {
        if (code == SmEventDatabaseClosing) {
            EXPECT_EQ(db->getSheetSet()->getName(), u"");
        }
    };
    EXPECT_TRUE(manager.closeDatabase(db));
    EXPECT_EQ(events.codes, (Codes{20, 17}));
    EXPECT_EQ(content(), before);
    TvSmDatabase* again = open();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->getLockStatus(), 0);
    EXPECT_TRUE(again->lockDb(again));
}

TEST_F(Events, NullAndUnknownCookiesAreHarmless)
{
    TvSmDatabase* db = createSaved();
    EXPECT_EQ(db->registerEventHandler(nullptr), -1);
    EXPECT_EQ(manager.registerEventHandler(nullptr), -1);
    for (const int none : {-1, 0, 99}) {
        EXPECT_FALSE(db->unregisterEventHandler(none));
        EXPECT_FALSE(manager.unregisterEventHandler(none));
    }
    EXPECT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
}

TEST_F(Events, SinksAreToldInTheOrderOfRegistrationEachOnce)
{
    TvSmDatabase* db = createSaved();
    std::string order;
    EventRecorder first;
    EventRecorder second;
    first.reaction = [&](int) { order += 'a'; };
    second.reaction = [&](int) { order += 'b'; };
    const int cookie = db->registerEventHandler(&first);
    EXPECT_NE(db->registerEventHandler(&second), cookie);
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(order, "abab");
}

TEST_F(Events, SinksMayComeAndGoWhileTheyAreTold)
{
    TvSmDatabase* db = createSaved();
    EventRecorder first;
    EventRecorder second;
    EventRecorder late;
    int secondCookie = 0;
    first.reaction = [&](int) {
        if (late.reaction)
            return;
        late.reaction = [](int) {};
        db->registerEventHandler(&late);
        EXPECT_TRUE(db->unregisterEventHandler(secondCookie));
    };
    db->registerEventHandler(&first);
    secondCookie = db->registerEventHandler(&second);
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(first.codes, (Codes{21, 20}));
    EXPECT_TRUE(second.codes.empty());
    EXPECT_EQ(late.codes, Codes{20});
}

TEST_F(Events, ASinkMayTakeTheLockAnewInTheHandlerOfItsEnd)
{
    TvSmDatabase* db = createSaved();
    EventRecorder events;
    events.reaction = [&](int code) {
        if (code != SmEventLockEnded || events.codes.size() > 2)
            return;
        ASSERT_TRUE(db->lockDb(db));
        EXPECT_TRUE(db->getSheetSet()->setDesc(u"by the sink"));
        EXPECT_TRUE(db->unlockDb(db, true));
    };
    db->registerEventHandler(&events);
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(events.codes, (Codes{21, 20, 21, 20}));
    EXPECT_NE(content().find("by the sink"), std::string::npos);
}

TEST_F(Events, ASinkCannotTakeItsOwnDatabaseAwayUnderItself)
{
    TvSmDatabase* db = createSaved();
    EventRecorder events;
    int closed = 0;
    events.reaction = [&](int) { closed += manager.closeDatabase(db); };
    db->registerEventHandler(&events);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(events.codes, (Codes{21, 20}));
    EXPECT_TRUE(manager.closeDatabase(db));
}

TEST_F(Events, ASinkMayCloseAnotherDatabase)
{
    TvSmDatabase* db = createSaved();
    TvSmDatabase* other = manager.createDatabase(folder.file("OTHER.dst"), TvString(), true);
    EventRecorder events;
    events.reaction = [&](int code) {
        if (code == SmEventLockEnded) {
            EXPECT_TRUE(manager.closeDatabase(other));
        }
    };
    db->registerEventHandler(&events);
    EXPECT_TRUE(db->lockDb(db) && db->unlockDb(db, false));
}
