#include <gtest/gtest.h>

#include "event_recorder.h"
#include "sheet_set_builder.h"

namespace {

using base::FaultyFileOps;

/// A way for an operation to go wrong.
struct Fault {
    const char* name;
    std::function<void(FaultyFileOps&, int n)> set;
};
const Fault kFaults[] = {
    {"an error once", [](FaultyFileOps& ops, int n) { ops.failAt(n, EIO); }},
    {"a full disk once", [](FaultyFileOps& ops, int n) { ops.failAt(n, ENOSPC); }},
    {"an error for ever", [](FaultyFileOps& ops, int n) { ops.failFrom(n, EIO); }},
    {"denied for ever", [](FaultyFileOps& ops, int n) { ops.failFrom(n, EACCES); }},
    {"the answer is lost", [](FaultyFileOps& ops, int n) { ops.failAfter(n, EIO); }},
    {"few bytes at a time", [](FaultyFileOps& ops, int n) { ops.shortenFrom(n, 7); }},
    {"the end of the process", [](FaultyFileOps& ops, int n) { ops.dieAt(n); }},
};

/// A saved set with the title One, and what its file is when the title is Changed.
struct CommitScene : SheetSetScene {
    CommitScene()
    {
        addSheet(db->getSheetSet(), u"1", u"One");
        EXPECT_TRUE(db->save(0));
        db->registerEventHandler(&events);
        oldText = newText = content();
        newText.replace(newText.find("title=\"One\""), 11, "title=\"Changed\"");
    }
    TvSmSheet* sheet() const
    {
        return tvrxCast<TvSmSheet>(itemsOf(db->getSheetSet()->getSheetEnumerator()).at(0));
    }
    EventRecorder events;
    TvSmDatabase* db = create();
    std::string oldText;
    std::string newText;
};

/// What must hold after a commit that went wrong somewhere.
void expectWhole(CommitScene& scene, bool isCommitted)
{
    const std::string text = scene.content();
    EXPECT_TRUE(text == scene.oldText || text == scene.newText) << text;
    EXPECT_EQ(scene.db->getLockStatus() == 1, false);
    EXPECT_EQ(scene.sheet()->getTitle(), isCommitted ? u"Changed" : u"One");
    EXPECT_EQ(scene.events.codes, isCommitted ? (std::vector<int>{21, 20}) : std::vector<int>{20});
    EXPECT_EQ(bool(sm::lastStatus(scene.db)), isCommitted);
    if (isCommitted) {
        EXPECT_EQ(text, scene.newText);
    } else {
        EXPECT_NE(sm::lastStatus(scene.db).reason(), base::Reason::None);
    }
}

/// The next change works, on top of what is on disk.
void expectGoesOn(CommitScene& scene)
{
    scene.ops.reset();
    const std::string text = scene.content();
    ASSERT_TRUE(scene.db->lockDb(scene.db)) << int(sm::lastStatus(scene.db).reason());
    EXPECT_EQ(scene.sheet()->getTitle(), text == scene.newText ? u"Changed" : u"One");
    ASSERT_TRUE(scene.sheet()->setTitle(u"Next"));
    ASSERT_TRUE(scene.db->unlockDb(scene.db, true)) << int(sm::lastStatus(scene.db).reason());
    EXPECT_NE(scene.content().find("\"Next\""), std::string::npos);
}

} // namespace

TEST(CommitFaults, AtEveryOperationTheFileIsWholeAndMemoryIsWhatTheAnswerSays)
{
    for (const Fault& fault : kFaults) {
        bool isReached = true;
        int refused = 0;
        for (int n = 1; isReached; ++n) {
            ASSERT_LT(n, 400);
            CommitScene scene;
            SCOPED_TRACE(std::string(fault.name) + " at operation " + std::to_string(n));
            ASSERT_TRUE(scene.db->lockDb(scene.db));
            ASSERT_TRUE(scene.sheet()->setTitle(u"Changed"));
            scene.ops.reset();
            fault.set(scene.ops, n);
            const bool isCommitted = scene.db->unlockDb(scene.db, true);
            isReached = scene.ops.count() >= n;
            const std::string trace = scene.ops.traceText();
            expectWhole(scene, isCommitted);
            expectGoesOn(scene);
            EXPECT_EQ(scene.ops.openFiles(), 0);
            refused += !isCommitted;
            ASSERT_FALSE(testing::Test::HasFailure()) << trace;
        }
        EXPECT_TRUE(refused > 0 || std::string(fault.name) == "few bytes at a time") << fault.name;
    }
}

TEST(CommitFaults, AtEveryOperationOfSaveTheFileIsWhole)
{
    for (const Fault& fault : kFaults) {
        bool isReached = true;
        for (int n = 1; isReached; ++n) {
            ASSERT_LT(n, 400);
            CommitScene scene;
            SCOPED_TRACE(std::string(fault.name) + " at operation " + std::to_string(n));
            scene.ops.reset();
            fault.set(scene.ops, n);
            const bool isSaved = scene.db->save(0);
            isReached = scene.ops.count() >= n;
            EXPECT_EQ(scene.content(), scene.oldText);
            EXPECT_EQ(bool(sm::lastStatus(scene.db)), isSaved);
            EXPECT_TRUE(scene.events.codes.empty());
            expectGoesOn(scene);
            ASSERT_FALSE(testing::Test::HasFailure()) << scene.ops.traceText();
        }
    }
}

TEST(CommitFaults, AtEveryOperationOfTakingTheLockNothingIsChangedOrLeftLocked)
{
    for (const Fault& fault : kFaults) {
        bool isReached = true;
        for (int n = 1; isReached; ++n) {
            ASSERT_LT(n, 400);
            CommitScene scene;
            SCOPED_TRACE(std::string(fault.name) + " at operation " + std::to_string(n));
            scene.editOutside("\"One\"", "\"Theirs\""); // so that it has to be read
            scene.ops.reset();
            fault.set(scene.ops, n);
            const bool isLocked = scene.db->lockDb(scene.db);
            isReached = scene.ops.count() >= n;
            const bool isTold = isLocked || !sm::lastStatus(scene.db);
            EXPECT_TRUE(isTold);
            const TvString title = scene.sheet()->getTitle();
            EXPECT_TRUE(title == u"One" || title == u"Theirs");
            scene.ops.reset();
            if (isLocked) {
                EXPECT_EQ(title, u"Theirs");
                EXPECT_TRUE(scene.db->unlockDb(scene.db, false));
            } else {
                EXPECT_FALSE(scene.sheet()->setTitle(u"x"));
                EXPECT_TRUE(scene.events.codes.empty());
            }
            ASSERT_TRUE(scene.db->lockDb(scene.db)) << int(sm::lastStatus(scene.db).reason());
            EXPECT_EQ(scene.sheet()->getTitle(), u"Theirs");
            ASSERT_FALSE(testing::Test::HasFailure()) << scene.ops.traceText();
        }
    }
}

TEST(CommitFaults, AtEveryOperationOfLoadMemoryIsOldOrNew)
{
    for (const Fault& fault : kFaults) {
        bool isReached = true;
        for (int n = 1; isReached; ++n) {
            ASSERT_LT(n, 400);
            CommitScene scene;
            SCOPED_TRACE(std::string(fault.name) + " at operation " + std::to_string(n));
            scene.editOutside("\"One\"", "\"Theirs\"");
            const std::string outline = Outline::of(scene.db, true);
            scene.ops.reset();
            fault.set(scene.ops, n);
            const bool isLoaded = scene.db->load(scene.path());
            isReached = scene.ops.count() >= n;
            EXPECT_EQ(scene.sheet()->getTitle(), isLoaded ? u"Theirs" : u"One");
            if (!isLoaded) {
                EXPECT_EQ(Outline::of(scene.db, true), outline);
            }
            EXPECT_EQ(bool(sm::lastStatus(scene.db)), isLoaded);
            EXPECT_FALSE(scene.db->isBusy());
            EXPECT_EQ(scene.ops.openFiles(), 0);
        }
    }
}

TEST(CommitFaults, AProcessThatEndedAtAnyOperationLeavesAFileThatOpens)
{
    bool isReached = true;
    for (int n = 1; isReached; ++n) {
        ASSERT_LT(n, 400);
        CommitScene scene;
        ASSERT_TRUE(scene.db->lockDb(scene.db));
        ASSERT_TRUE(scene.sheet()->setTitle(u"Changed"));
        scene.ops.reset();
        scene.ops.dieAt(n);
        scene.db->unlockDb(scene.db, true);
        isReached = scene.ops.isDead();
        ASSERT_TRUE(scene.manager.closeDatabase(scene.db));
        const std::string text = scene.content();
        EXPECT_TRUE(text == scene.oldText || text == scene.newText) << n;
        QuickFileOps next(base::systemFileOps());
        sm::environment().files = &next;
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.openDatabase(scene.path(), true, 0);
        ASSERT_TRUE(db) << n;
        EXPECT_TRUE(db->lockDb(db)) << n;
        EXPECT_TRUE(db->getSheetSet()->setName(u"Next") && db->unlockDb(db, true)) << n;
        for (const std::string& name : scene.neighbours())
            EXPECT_TRUE(name.starts_with(".PLAN.dst.")) << name;
        ASSERT_TRUE(manager.closeDatabase(db));
        sm::environment().files = &scene.ops;
    }
}
