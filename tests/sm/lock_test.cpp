#include <gtest/gtest.h>

#include <base/publish.h>

#include "event_recorder.h"
#include "sheet_set_builder.h"

namespace {

using Codes = std::vector<int>;

/// A saved set with two sheets, closed and opened again.
class Lock : public SheetSetTest
{
protected:
    Lock()
    {
        TvSmDatabase* made = create();
        addSheet(made->getSheetSet(), u"1", u"One");
        addSheet(made->getSheetSet(), u"2", u"Two");
        EXPECT_TRUE(made->save(0) && manager.closeDatabase(made));
        db = open();
        set = db->getSheetSet();
        cookie = db->registerEventHandler(&events);
        before = content();
    }
    ~Lock() override { db->unregisterEventHandler(cookie); }
    TvSmSheet* sheetAt(std::size_t index) const
    {
        return tvrxCast<TvSmSheet>(itemsOf(set->getSheetEnumerator()).at(index));
    }
    auto timeOfFile() const { return std::filesystem::last_write_time(folder.path() / kName); }

    EventRecorder events;
    TvSmDatabase* db;
    TvSmSheetSet* set;
    int cookie;
    std::string before;
};

} // namespace

TEST_F(Lock, IsFreeAfterOpeningAndHeldAfterLocking)
{
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_TRUE(db->lockDb(db));
    EXPECT_EQ(db->getLockStatus(), 1);
    EXPECT_EQ(sm::lockInfo(db).state, base::LockState::HeldByMe);
    EXPECT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(db->getLockStatus(), 0);
}

TEST_F(Lock, AQueryCreatesNothing)
{
    const auto names = neighbours();
    db->getLockStatus();
    sm::lockInfo(db);
    EXPECT_EQ(neighbours(), names);
    EXPECT_EQ(sm::lockInfo(nullptr).state, base::LockState::Free);
}

TEST_F(Lock, DoesNotNest)
{
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_FALSE(db->lockDb(db));
    EXPECT_EQ(db->getLockStatus(), 1);
    EXPECT_TRUE(db->unlockDb(db, false));
    EXPECT_FALSE(db->unlockDb(db, false));
    EXPECT_FALSE(db->unlockDb(db, true));
    EXPECT_EQ(events.codes, Codes{20});
}

TEST_F(Lock, TakesTheDatabaseItselfAsArgumentAndNothingElse)
{
    TvSmDatabase other;
    EXPECT_FALSE(db->lockDb(nullptr));
    EXPECT_FALSE(db->lockDb(&other));
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_EQ(other.getLockStatus(), 0);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_FALSE(db->unlockDb(nullptr, true));
    EXPECT_FALSE(db->unlockDb(&other, true));
    EXPECT_EQ(db->getLockStatus(), 1);
    EXPECT_TRUE(events.codes.empty());
    EXPECT_TRUE(db->unlockDb(db, false));
}

TEST_F(Lock, IsSeenByAnotherDatabaseObjectOfTheSameFile)
{
    TvSmSheetSetMgr second;
    TvSmDatabase* other = second.openDatabase(path(), true, 0);
    ASSERT_TRUE(other && other != db);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(other->getLockStatus(), 2);
    EXPECT_FALSE(other->lockDb(other));
    EXPECT_EQ(sm::lastStatus(other).failure(), base::Failure::Locked);
    EXPECT_FALSE(other->getSheetSet()->setName(u"x"));
    ASSERT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(other->getLockStatus(), 0);
    EXPECT_TRUE(other->lockDb(other));
    EXPECT_EQ(db->getLockStatus(), 2);
}

TEST_F(Lock, SettersOutsideItAreRefusedAndChangeNothing)
{
    TvSmSheet* sheet = sheetAt(0);
    const std::string outline = Outline::of(db, true);
    std::unique_ptr<TvSmSheetView> view(newFor<TvSmSheetView>(sheet->getSheetViews()));
    std::unique_ptr<TvSmViewCategory> category(newFor<TvSmViewCategory>(set->getViewCategories()));
    std::unique_ptr<TvSmTvDbLayoutReference> layout(newFor<TvSmTvDbLayoutReference>(sheet));
    std::unique_ptr<TvSmFileReference> reference(newFor<TvSmFileReference>(set));
    std::unique_ptr<TvSmTvDbBlockRecordReference> block(newFor<TvSmTvDbBlockRecordReference>(set));
    std::unique_ptr<TvSmCustomPropertyValue> value(newFor<TvSmCustomPropertyValue>(set));
    TvSmPublishOptions* options = set->getPublishOptions();
    const bool refused[] = {
        !sheet->setName(u"x"),
        !sheet->setDesc(u"x"),
        !sheet->setNumber(u"x"),
        !sheet->setTitle(u"x"),
        !sheet->setExcludeFromPublish(true),
        !sheet->setSheetText1(u"x"),
        !sheet->setSheetText2(u"x"),
        !sheet->setSheetText3(u"x"),
        !sheet->setSheetText4(u"x"),
        !sheet->setLayoutReference(layout.get()),
        !sheet->getSheetViews()->add(view.get()),
        !set->setName(u"x"),
        !set->setSheetSetText1(u"x"),
        !set->setSheetSetText2(u"x"),
        !set->setSheetSetText3(u"x"),
        !set->setSheetSetText4(u"x"),
        !set->setPromptForTemplate(true),
        !set->setExcludeFromPublish(true),
        !set->setNewSheetLocation(reference.get()),
        !set->setDefaultTemplateLayout(layout.get()),
        !set->setAltPageSetups(reference.get()),
        !set->setDefaultLabelBlock(block.get()),
        !set->getCalloutBlocks()->add(block.get()),
        !set->getResourceLocations()->add(reference.get()),
        !set->getViewCategories()->add(category.get(), 0),
        set->getSheetSelections()->add(u"x", u"") == nullptr,
        !set->getCustomProperties()->setProperty(u"x", value.get()),
        !sm::setTextProperty(set->getCustomProperties(), u"x", u"x", 0),
        set->createSheet(u"x", u"") == nullptr,
        set->createSubset(u"x", u"") == nullptr,
        !set->removeSheet(sheet),
        !set->insertComponent(sheet, nullptr),
        !set->insertComponentAfter(sheet, nullptr),
        !options->setDefaultOutputdir(reference.get()),
        !options->setDwfType(true),
        !options->setEplotFormat(3),
        !options->setPromptForName(true),
        !options->setDefaultFileName(u"x"),
        !options->setLayerInfo(true),
        !options->setLinesMerge(true),
        !options->setIncludeSheetData(true),
        !options->setIncludeSheetSetData(true),
    };
    for (std::size_t at = 0; at < std::size(refused); ++at)
        EXPECT_TRUE(refused[at]) << at;
    EXPECT_EQ(Outline::of(db, true), outline);
    EXPECT_EQ(content(), before);
    EXPECT_TRUE(events.codes.empty());
    // Nothing of it is written by what comes next.
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(content(), before);
}

TEST_F(Lock, ACommitWritesAndRaisesWrittenThenEnded)
{
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    EXPECT_EQ(content(), before);
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(events.codes, (Codes{21, 20}));
    EXPECT_EQ(events.objects, (std::vector<TvSmPersist*>{db, db}));
    EXPECT_NE(content().find("Changed"), std::string::npos);
}

TEST_F(Lock, InTheHandlerOfItsEndTheLockIsFreeAndTheNewBytesAreOnDisk)
{
    int looks = 0;
    events.reaction = [&](int code) {
        ++looks;
        EXPECT_EQ(db->getLockStatus(), 0) << code;
        EXPECT_NE(content().find("Changed"), std::string::npos) << code;
        EXPECT_FALSE(db->isBusy()) << code;
        EXPECT_EQ(sheetAt(0)->getTitle(), u"Changed") << code;
        if (code == 20) {
            EXPECT_EQ(std::count(events.codes.begin(), events.codes.end(), 21), 1);
        }
    };
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(looks, 2);
}

TEST_F(Lock, ARollbackRaisesEndedOnlyAndRestoresEverything)
{
    const std::string outline = Outline::of(db, true);
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    addSheet(set, u"3", u"Three");
    ASSERT_TRUE(set->removeSheet(sheetAt(1)));
    EXPECT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(events.codes, Codes{20});
    EXPECT_EQ(Outline::of(db, true), outline);
    EXPECT_EQ(content(), before);
}

TEST_F(Lock, ACommitThatChangedNothingLeavesBytesAndTimeAndRaisesBothEvents)
{
    const auto time = timeOfFile();
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"One")); // what it is already
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(timeOfFile(), time);
    EXPECT_EQ(content(), before);
    EXPECT_EQ(events.codes, (Codes{21, 20}));
}

TEST_F(Lock, SaveRaisesNothingAndAlwaysWrites)
{
    const auto stamp = base::lookAt(ops, clock, path());
    EXPECT_TRUE(db->save(0));
    EXPECT_TRUE(events.codes.empty());
    EXPECT_EQ(content(), before);
    EXPECT_NE(base::lookAt(ops, clock, path())->inode, stamp->inode);
}

TEST_F(Lock, SaveDuringItWritesTheCommittedStateAndKeepsTheChanges)
{
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    TvSmSheet* added = addSheet(set, u"3", u"Three");
    EXPECT_TRUE(db->save(0));
    EXPECT_EQ(content(), before);
    EXPECT_TRUE(events.codes.empty());
    EXPECT_EQ(sheetAt(0)->getTitle(), u"Changed");
    EXPECT_EQ(sheetAt(2), added);
    EXPECT_EQ(db->getLockStatus(), 1);
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_NE(content().find("Changed"), std::string::npos);
    EXPECT_NE(content().find("Three"), std::string::npos);
}

TEST_F(Lock, ACommitThatCannotBeWrittenRollsBackAndSaysWhy)
{
    const std::string outline = Outline::of(db, true);
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    ops.failKind(base::FaultyFileOps::Kind::Write, ENOSPC);
    EXPECT_FALSE(db->unlockDb(db, true));
    ops.reset();
    EXPECT_EQ(events.codes, Codes{20});
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_EQ(Outline::of(db, true), outline);
    EXPECT_EQ(content(), before);
    EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::DiskFull);
}

TEST_F(Lock, AfterAFailedCommitTheNextOneSucceeds)
{
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    const int first = ops.count() + 1;
    ops.failFrom(first, EIO);
    EXPECT_FALSE(db->unlockDb(db, true));
    ops.reset();
    ops.failFrom(0, 0);
    ASSERT_TRUE(db->lockDb(db)) << int(sm::lastStatus(db).reason());
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed again"));
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_NE(content().find("Changed again"), std::string::npos);
}

TEST_F(Lock, IsRefusedWhereNothingCanBeWritten)
{
    ops.failKind(base::FaultyFileOps::Kind::Open, EACCES);
    EXPECT_FALSE(db->lockDb(db));
    EXPECT_NE(sm::lastStatus(db).failure(), base::Failure::None);
    ops.reset();
    EXPECT_FALSE(set->setName(u"x"));
}

TEST_F(Lock, ACommitWritesAFileAnewThatVanished)
{
    ASSERT_TRUE(db->lockDb(db));
    std::filesystem::remove(folder.path() / kName);
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(content(), before);
    EXPECT_EQ(events.codes, (Codes{21, 20}));
}

TEST_F(Lock, ACommitUnderANewNameAlwaysWritesThere)
{
    const TvString other = folder.file("OTHER.dst");
    EXPECT_TRUE(db->setFileName(other));
    TvString out;
    EXPECT_EQ(db->getFileName(out), other);
    EXPECT_EQ(out, other);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(folder.read("OTHER.dst"), before);
    EXPECT_EQ(content(), before);
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(content(), before);
    EXPECT_NE(folder.read("OTHER.dst").find("Changed"), std::string::npos);
}

TEST_F(Lock, ANewNameNeverOverwritesAnotherSet)
{
    folder.write("OTHER.dst", "somebody's work");
    EXPECT_TRUE(db->setFileName(folder.file("OTHER.dst")));
    EXPECT_FALSE(db->save(0));
    EXPECT_EQ(folder.read("OTHER.dst"), "somebody's work");
}

TEST_F(Lock, UnderANewNameWhatStandsThereIsNeitherReadNorTakenForOurs)
{
    const TvString other = folder.file("OTHER.dst");
    TvSmDatabase* theirs = manager.createDatabase(other, TvString(), true);
    ASSERT_TRUE(theirs->getSheetSet()->setName(u"theirs") && theirs->save(0) &&
                manager.closeDatabase(theirs));
    const std::string work = folder.read("OTHER.dst");
    EXPECT_TRUE(db->setFileName(other));
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_NE(db->getSheetSet()->getName(), u"theirs");
    EXPECT_TRUE(sheetAt(0));
    // Nothing was changed, but nothing of ours is there either: no success.
    EXPECT_FALSE(db->unlockDb(db, true));
    EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::Conflict);
    EXPECT_EQ(folder.read("OTHER.dst"), work);
}

TEST_F(Lock, TheNameStaysWhileItIsHeld)
{
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_FALSE(db->setFileName(folder.file("OTHER.dst")));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed") && db->unlockDb(db, true));
    EXPECT_EQ(db->getFileName(), path());
    EXPECT_NE(content().find("Changed"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "OTHER.dst"));
}

TEST_F(Lock, TheLostLockIsShownAndACommitStillLosesNothing)
{
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(sheetAt(0)->setTitle(u"Changed"));
    // Somebody overwrites the record: the lock service forgot about us.
    for (const std::string& name : neighbours())
        if (name.ends_with(".lk"))
            folder.write(name, std::string(512, 'x'));
    clock.advance(std::chrono::seconds(60));
    EXPECT_EQ(db->getLockStatus(), 5);
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_NE(content().find("Changed"), std::string::npos);
}

TEST_F(Lock, TransmittingAndBusyNeedNoLock)
{
    EXPECT_FALSE(db->isBusy());
    db->setTransmitting(true);
    EXPECT_TRUE(db->isBusy());
    EXPECT_TRUE(manager.isBusy());
    db->setTransmitting(false);
    EXPECT_FALSE(db->isBusy());
    EXPECT_FALSE(manager.isBusy());
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_FALSE(db->isBusy());
    db->setTransmitting(true);
    EXPECT_TRUE(db->isBusy());
    db->setTransmitting(false);
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(content(), before);
}

TEST_F(Lock, AChangeScopeRollsBackUnlessCommitted)
{
    const std::string outline = Outline::of(db, true);
    {
        sm::ChangeScope scope(db);
        ASSERT_TRUE(scope);
        EXPECT_EQ(scope.database(), db);
        ASSERT_TRUE(set->setName(u"x"));
    }
    EXPECT_EQ(Outline::of(db, true), outline);
    EXPECT_EQ(db->getLockStatus(), 0);
    {
        sm::ChangeScope scope(db);
        ASSERT_TRUE(set->setName(u"x"));
        EXPECT_TRUE(scope.commit());
        EXPECT_FALSE(scope);
        EXPECT_FALSE(scope.commit());
    }
    EXPECT_EQ(set->getName(), u"x");
    EXPECT_EQ(events.codes, (Codes{20, 21, 20}));
}

TEST_F(Lock, ARefusedScopeEndsNobodyElsesLock)
{
    EXPECT_FALSE(sm::ChangeScope(nullptr));
    EXPECT_FALSE(sm::ChangeScope::withoutTest(nullptr));
    ASSERT_TRUE(db->lockDb(db));
    {
        sm::ChangeScope scope(db);
        EXPECT_FALSE(scope);
        EXPECT_FALSE(scope.commit());
        sm::ChangeScope other = sm::ChangeScope::withoutTest(db);
        EXPECT_FALSE(other);
    }
    EXPECT_EQ(db->getLockStatus(), 1);
    EXPECT_TRUE(events.codes.empty());
    EXPECT_TRUE(db->unlockDb(db, false));
}

TEST_F(Lock, AScopeMovesAndIsReleasedByName)
{
    sm::ChangeScope kept(nullptr);
    {
        sm::ChangeScope scope = sm::ChangeScope::withoutTest(db);
        ASSERT_TRUE(scope);
        kept = std::move(scope);
    }
    EXPECT_EQ(db->getLockStatus(), 1);
    {
        const sm::ChangeScope moved(std::move(kept));
        EXPECT_FALSE(kept);
    }
    EXPECT_EQ(db->getLockStatus(), 0);
    {
        sm::ChangeScope scope(db);
        scope.leaveLocked();
    }
    EXPECT_EQ(db->getLockStatus(), 1);
    EXPECT_TRUE(db->unlockDb(db, false));
}

TEST_F(Lock, WithoutTheEditLockTheFenceStillLetsOneOfTwoCommitsIn)
{
    sm::environment().useEditLock = false;
    TvSmSheetSetMgr second;
    TvSmDatabase* other = second.openDatabase(path(), true, 0);
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(other->lockDb(other));
    ASSERT_TRUE(set->setName(u"ours") && other->getSheetSet()->setName(u"theirs"));
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_FALSE(other->unlockDb(other, true));
    EXPECT_EQ(sm::lastStatus(other).failure(), base::Failure::Conflict);
    EXPECT_NE(content().find("ours"), std::string::npos);
    ASSERT_EQ(recoveryFiles().size(), 1u);
    EXPECT_NE(folder.read(recoveryFiles()[0]).find("theirs"), std::string::npos);
    // The next change stands on what is there now.
    ASSERT_TRUE(other->lockDb(other));
    EXPECT_EQ(other->getSheetSet()->getName(), u"ours");
    ASSERT_TRUE(other->getSheetSet()->setDesc(u"theirs too"));
    EXPECT_TRUE(other->unlockDb(other, true));
    EXPECT_NE(content().find("ours"), std::string::npos);
}

TEST(ScratchDatabase, HasAWorkingSetTakesChangesAndIsUnknownToTheManager)
{
    SheetSetScene scene;
    TvSmDatabase* shared = scene.createSaved();
    TvSmDatabase scratch;
    EXPECT_TRUE(scratch.setFileName(scene.path()));
    EXPECT_EQ(scene.manager.findOpenDatabase(scene.path()), shared);
    EXPECT_EQ(scratch.getLockStatus(), 0);
    EXPECT_TRUE(scratch.getSheetSet()->setName(u"copy"));
    EXPECT_EQ(shared->getSheetSet()->getName(), u"");
    EXPECT_FALSE(scene.manager.closeDatabase(&scratch));
}

TEST(ScratchDatabase, ItsLockGuardsNothingOnDisk)
{
    SheetSetScene scene;
    TvSmDatabase* shared = scene.createSaved();
    const std::string before = scene.content();
    TvSmDatabase scratch;
    scratch.setFileName(scene.path());
    ASSERT_TRUE(scratch.lockDb(&scratch));
    EXPECT_EQ(scratch.getLockStatus(), 1);
    EXPECT_EQ(shared->getLockStatus(), 0);
    ASSERT_TRUE(scratch.getSheetSet()->setName(u"copy"));
    EXPECT_TRUE(scratch.unlockDb(&scratch, false));
    EXPECT_EQ(scratch.getSheetSet()->getName(), u"");
    ASSERT_TRUE(scratch.lockDb(&scratch) && scratch.getSheetSet()->setName(u"copy"));
    EXPECT_TRUE(scratch.unlockDb(&scratch, true));
    EXPECT_EQ(scratch.getSheetSet()->getName(), u"copy");
    EXPECT_EQ(scene.content(), before);
}

TEST(BuildingDatabase, TakesChangesWithoutALockUntilItsFirstSave)
{
    SheetSetScene scene;
    TvSmDatabase* db = scene.create();
    ASSERT_TRUE(db);
    EXPECT_FALSE(scene.isThere());
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_TRUE(db->getSheetSet()->setName(u"x"));
    EXPECT_TRUE(db->save(0));
    EXPECT_TRUE(scene.isThere());
    EXPECT_FALSE(db->getSheetSet()->setName(u"y"));
    EXPECT_TRUE(db->lockDb(db));
    EXPECT_TRUE(db->getSheetSet()->setName(u"y"));
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_NE(scene.content().find("\"y\""), std::string::npos);
}

TEST(BuildingDatabase, IsBuiltAndCommittedUnderOneLock)
{
    SheetSetScene scene;
    TvSmDatabase* db = scene.create();
    ASSERT_TRUE(db->getSheetSet()->setName(u"x"));
    ASSERT_TRUE(db->lockDb(db));
    addSheet(db->getSheetSet(), u"1", u"One");
    EXPECT_FALSE(scene.isThere());
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_NE(scene.content().find("One"), std::string::npos);
}

TEST(BuildingDatabase, AHeldLockRolledBackKeepsWhatWasThereBefore)
{
    SheetSetScene scene;
    TvSmDatabase* db = scene.create();
    ASSERT_TRUE(db->getSheetSet()->setName(u"x"));
    ASSERT_TRUE(db->lockDb(db));
    addSheet(db->getSheetSet(), u"1", u"One");
    EXPECT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(db->getSheetSet()->getName(), u"x");
    EXPECT_TRUE(childrenOf(db->getSheetSet()).empty());
    EXPECT_FALSE(scene.isThere());
}

TEST(BuildingDatabase, AFirstSaveUnderTheLockKeepsHandlesFree)
{
    SheetSetScene scene;
    TvSmDatabase* db = scene.create();
    TvSmSheet* gone = addSheet(db->getSheetSet(), u"0", u"Gone");
    TvSmSheet* last = addSheet(db->getSheetSet(), u"1", u"One");
    TvSmSheet* later = addSheet(db->getSheetSet(), u"2", u"Two");
    ASSERT_TRUE(db->getSheetSet()->removeSheet(later));
    ASSERT_TRUE(db->getSheetSet()->removeSheet(gone));
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(db->unlockDb(db, false));
    ASSERT_TRUE(scene.manager.closeDatabase(db));
    db = scene.open();
    ASSERT_TRUE(db->lockDb(db));
    TvSmSheet* fresh = addSheet(db->getSheetSet(), u"3", u"Three");
    EXPECT_NE(handleOf(fresh), u"g5"); // that of "Two", which is gone
    EXPECT_EQ(sm::handleNumber(handleOf(fresh).view()), 6u);
    static_cast<void>(last);
}
