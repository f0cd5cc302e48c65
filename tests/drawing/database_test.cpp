#include <db/tv_db_database.h>

#include <db/record_editor.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_transaction.h>
#include <db/tv_db_xrecord.h>
#include <dwg/dwg_codec.h>

#include "drawings.h"

namespace {

class DatabaseTest : public testing::Test
{
protected:
    DatabaseTest()
    {
        dwg::install();
        EXPECT_EQ(drawing.readDwgBytes(minimalDrawing("line-ac1032.dwg")), TvStatus::Ok);
    }
    TvDbObjectId put(const TvChar* key, const TvChar* text)
    {
        const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        auto* record = new TvDbXrecord;
        TvDbObjectId id;
        EXPECT_EQ(named->setAt(TvString(key), record, id), TvStatus::Ok);
        const TvResbufPtr items(tvutBuildList(1, text));
        record->setFromRbChain(*items.get());
        record->close();
        return id;
    }
    bool has(const TvChar* key)
    {
        const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId());
        return named->has(TvString(key));
    }

    TvDbDatabase drawing{false, true};
};

} // namespace

// --- opening

TEST_F(DatabaseTest, ManyReadOneWritesAndForNotificationAllMay)
{
    const TvDbObjectId id = drawing.clayer();
    TvDbObjectPointer<TvDbObject> first(id), second(id);
    EXPECT_TRUE(first && second);
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(id, TvDb::kForWrite).openStatus(),
              TvStatus::WasOpenForRead);
    EXPECT_EQ(first->upgradeOpen(), TvStatus::WasOpenForRead);
    second.close();
    EXPECT_EQ(first->upgradeOpen(), TvStatus::Ok);
    EXPECT_TRUE(first->isWriteEnabled());
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(id).openStatus(), TvStatus::WasOpenForWrite);
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(id, TvDb::kForWrite).openStatus(),
              TvStatus::WasOpenForWrite);
    {
        const TvDbObjectPointer<TvDbObject> notified(id, TvDb::kForNotify);
        EXPECT_TRUE(notified);
    }
    EXPECT_TRUE(first->isWriteEnabled()) << "the end of another opening is not ours";
    EXPECT_EQ(first->downgradeOpen(), TvStatus::Ok);
    EXPECT_FALSE(first->isWriteEnabled());
    EXPECT_TRUE(TvDbObjectPointer<TvDbObject>(id));
}

TEST_F(DatabaseTest, AnObjectOpensAsItsClassAndAsThoseAbove)
{
    const TvDbObjectId id = drawing.clayer();
    EXPECT_TRUE(TvDbObjectPointer<TvDbLayerTableRecord>(id));
    EXPECT_TRUE(TvDbObjectPointer<TvDbSymbolTableRecord>(id));
    EXPECT_EQ(TvDbObjectPointer<TvDbDictionary>(id).openStatus(), TvStatus::NotThatObject);
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(TvDbObjectId()).openStatus(), TvStatus::UnknownHandle);
}

TEST_F(DatabaseTest, AHandleLeadsToItsObjectOrToNone)
{
    TvDbObjectId id;
    EXPECT_EQ(drawing.getTvDbObjectId(id, false, drawing.clayer().handle(), 0), TvStatus::Ok);
    EXPECT_EQ(id, drawing.clayer());
    EXPECT_EQ(drawing.getTvDbObjectId(id, false, TvDbHandle(0xABCDE)), TvStatus::UnknownHandle);
    EXPECT_EQ(static_cast<int>(TvStatus::UnknownHandle), 16);
    EXPECT_TRUE(id.isNull());
}

TEST_F(DatabaseTest, NothingChangesThroughAnOpeningForReading)
{
    const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer());
    EXPECT_FALSE(layer.object()->edit());
    EXPECT_NE(layer->setIsFrozen(true), TvStatus::Ok);
    EXPECT_NE(layer->erase(true), TvStatus::Ok);
    EXPECT_FALSE(layer->isFrozen());
    EXPECT_FALSE(drawing.isModified());
}

TEST_F(DatabaseTest, ANewObjectHasTheNextHandleAndIsOpenForWriting)
{
    const std::uint64_t next = drawing.handseed().value();
    auto* record = new TvDbXrecord;
    TvDbObjectId id;
    ASSERT_EQ(drawing.addTvDbObject(id, record, drawing.namedObjectsDictionaryId()), TvStatus::Ok);
    EXPECT_EQ(id.handle().value(), next);
    EXPECT_EQ(drawing.handseed().value(), next + 1);
    EXPECT_TRUE(record->isWriteEnabled());
    EXPECT_EQ(record->ownerId(), drawing.namedObjectsDictionaryId());
    EXPECT_EQ(drawing.addTvDbObject(id, record), TvStatus::AlreadyInDatabase);
    record->close();
}

// --- dictionaries

TEST_F(DatabaseTest, ADictionaryFindsItsEntriesWithoutRegardToCase)
{
    const TvDbObjectId id = put(u"Bäume", u"x");
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId());
    TvDbObjectId found;
    EXPECT_EQ(named->getAt(u"BÄUME", found), TvStatus::Ok);
    EXPECT_EQ(found, id);
    TvString name;
    EXPECT_EQ(named->nameAt(id, name), TvStatus::Ok);
    EXPECT_EQ(name, u"Bäume");
    EXPECT_EQ(named->getAt(u"Baum", found), TvStatus::KeyNotFound);
}

TEST_F(DatabaseTest, ANewEntryStandsWhereItBelongsByName)
{
    put(u"ACAD_H", u"x");
    put(u"ZZ", u"x");
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId());
    std::vector<TvString> names;
    for (const auto& [name, id] : named->entries())
        names.push_back(name);
    EXPECT_EQ(names,
              (std::vector<TvString>{u"ACAD_GROUP", u"ACAD_H", u"ACAD_LAYOUT", u"ACAD_MLINESTYLE",
                                     u"ACAD_PLOTSETTINGS", u"ACAD_PLOTSTYLENAME", u"ZZ"}));
}

TEST_F(DatabaseTest, AnEntryThatIsReplacedOrRemovedIsErasedIfTheDictionaryOwnsIt)
{
    const TvDbObjectId first = put(u"MARK", u"first");
    const TvDbObjectId second = put(u"mark", u"second");
    EXPECT_TRUE(first.isErased());
    EXPECT_TRUE(second.isValid());
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    EXPECT_EQ(named->remove(TvString(u"MARK")), TvStatus::Ok);
    EXPECT_TRUE(second.isErased());
    EXPECT_EQ(named->remove(TvString(u"MARK")), TvStatus::KeyNotFound);
}

TEST_F(DatabaseTest, AnEntryGetsANameThatNoOtherHas)
{
    put(u"A", u"x");
    put(u"B", u"x");
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    EXPECT_EQ(named->setName(TvString(u"A"), TvString(u"b")), TvStatus::DuplicateName);
    EXPECT_EQ(named->setName(TvString(u"A"), TvString(u"a")), TvStatus::Ok);
    EXPECT_EQ(named->setName(TvString(u"C"), TvString(u"D")), TvStatus::KeyNotFound);
    EXPECT_EQ(named->setName(TvString(u"A"), TvString()), TvStatus::InvalidName);
    EXPECT_EQ(named->setName(TvString(u"a"), TvString(u"E")), TvStatus::Ok);
    EXPECT_TRUE(named->has(TvString(u"E")));
    EXPECT_FALSE(named->has(TvString(u"A")));
}

TEST_F(DatabaseTest, AnErasedEntryIsNoEntryUntilItComesBack)
{
    const TvDbObjectId id = put(u"MARK", u"x");
    {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
        ASSERT_EQ(object->erase(true), TvStatus::Ok);
    }
    EXPECT_FALSE(has(u"MARK"));
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(id).openStatus(), TvStatus::WasErased);
    {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite, true);
        ASSERT_EQ(object->erase(false), TvStatus::Ok);
    }
    EXPECT_TRUE(has(u"MARK"));
}

TEST_F(DatabaseTest, WhatAnErasedObjectOwnsGoesAndComesBackWithIt)
{
    TvDbObjectId dictionary, inner;
    {
        const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        auto* made = new TvDbDictionary;
        ASSERT_EQ(named->setAt(u"TREE", made, dictionary), TvStatus::Ok);
        auto* record = new TvDbXrecord;
        ASSERT_EQ(made->setAt(u"LEAF", record, inner), TvStatus::Ok);
        record->close();
        made->close();
    }
    const auto erase = [&](bool erasing) {
        const TvDbObjectPointer<TvDbObject> object(dictionary, TvDb::kForWrite, true);
        ASSERT_EQ(object->erase(erasing), TvStatus::Ok);
    };
    erase(true);
    EXPECT_TRUE(inner.isErased());
    erase(false);
    EXPECT_FALSE(inner.isErased());
}

// --- history

TEST_F(DatabaseTest, UndoTakesBackWhatWasMadeChangedAndErasedAndRedoDoesItAgain)
{
    put(u"KEPT", u"x");
    drawing.startUndoRecord();
    const TvDbObjectId made = put(u"MADE", u"x");
    {
        const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        named->remove(TvString(u"KEPT"));
        const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
        layer->setIsFrozen(true);
    }
    const auto isFrozen = [this] {
        return TvDbObjectPointer<TvDbLayerTableRecord>(drawing.clayer())->isFrozen();
    };
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_TRUE(made.isErased());
    EXPECT_FALSE(has(u"MADE"));
    EXPECT_TRUE(has(u"KEPT"));
    EXPECT_FALSE(isFrozen());
    ASSERT_EQ(drawing.redo(), TvStatus::Ok);
    EXPECT_TRUE(has(u"MADE"));
    EXPECT_FALSE(has(u"KEPT"));
    EXPECT_TRUE(isFrozen());
    EXPECT_EQ(drawing.redo(), TvStatus::NothingToUndo);
}

TEST_F(DatabaseTest, UndoGoesBackRecordByRecordAndANewChangeEndsTheWayForward)
{
    for (const TvChar* key : {u"ONE", u"TWO", u"THREE"}) {
        drawing.startUndoRecord();
        put(key, u"x");
    }
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_TRUE(has(u"TWO") && !has(u"THREE"));
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_TRUE(has(u"ONE") && !has(u"TWO"));
    put(u"OTHER", u"x");
    EXPECT_FALSE(drawing.hasRedo());
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_TRUE(has(u"ONE") && !has(u"OTHER"));
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_FALSE(has(u"ONE"));
    EXPECT_EQ(drawing.undo(), TvStatus::NothingToUndo);
}

TEST_F(DatabaseTest, UndoWaitsForWhatIsOpenForWriting)
{
    put(u"ONE", u"x");
    TvDbObjectPointer<TvDbObject> layer(drawing.clayer(), TvDb::kForWrite);
    EXPECT_EQ(drawing.undo(), TvStatus::WasOpenForWrite);
    EXPECT_EQ(drawing.redo(), TvStatus::WasOpenForWrite);
    layer.close();
    EXPECT_EQ(drawing.undo(), TvStatus::Ok);
}

TEST_F(DatabaseTest, UndoBringsHeaderVariablesBack)
{
    const bool before = drawing.tilemode();
    ASSERT_EQ(drawing.setTilemode(!before), TvStatus::Ok);
    EXPECT_EQ(drawing.tilemode(), !before);
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_EQ(drawing.tilemode(), before);
}

TEST_F(DatabaseTest, ChangesOutsideTheRecordingStayWhenOthersAreUndone)
{
    drawing.startUndoRecord();
    {
        const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
        layer->setIsFrozen(true);
    }
    drawing.disableUndoRecording(true);
    {
        const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
        layer->setColorIndex(3);
    }
    drawing.disableUndoRecording(false);
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer());
    EXPECT_FALSE(layer->isFrozen());
    EXPECT_EQ(layer->colorIndex(), 3);
}

TEST_F(DatabaseTest, AChangeOutsideTheRecordingDoesNotKeepALaterOneFromBeingUndone)
{
    drawing.disableUndoRecording(true);
    {
        const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
        layer->setIsOff(true);
    }
    drawing.disableUndoRecording(false);
    drawing.startUndoRecord();
    {
        const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
        layer->setIsFrozen(true);
    }
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer());
    EXPECT_TRUE(layer->isOff());
    EXPECT_FALSE(layer->isFrozen());
}

// --- transactions

TEST_F(DatabaseTest, AnAbortedTransactionLeavesNothing)
{
    TvDbTransactionManager& manager = *drawing.transactionManager();
    TvDbTransaction* outer = manager.startTransaction();
    TvDbLayerTableRecord* layer = nullptr;
    ASSERT_EQ(outer->getObject(layer, drawing.clayer(), TvDb::kForWrite), TvStatus::Ok);
    layer->setIsFrozen(true);
    put(u"INNER", u"x");
    EXPECT_EQ(manager.numActiveTransactions(), 1);
    ASSERT_EQ(manager.abortTransaction(), TvStatus::Ok);
    EXPECT_EQ(manager.numActiveTransactions(), 0);
    EXPECT_FALSE(has(u"INNER"));
    EXPECT_FALSE(TvDbObjectPointer<TvDbLayerTableRecord>(drawing.clayer())->isFrozen());
    EXPECT_FALSE(drawing.hasUndo());
    EXPECT_EQ(manager.abortTransaction(), TvStatus::InvalidInput);
    EXPECT_EQ(manager.endTransaction(), TvStatus::InvalidInput);
}

TEST_F(DatabaseTest, AnEndedTransactionBelongsToTheOneAroundItAndThenToTheHistory)
{
    TvDbTransactionManager& manager = *drawing.transactionManager();
    manager.startTransaction();
    put(u"OUTER", u"x");
    manager.startTransaction();
    put(u"INNER", u"x");
    ASSERT_EQ(manager.endTransaction(), TvStatus::Ok);
    EXPECT_TRUE(has(u"INNER"));
    manager.startTransaction();
    put(u"DROPPED", u"x");
    ASSERT_EQ(manager.abortTransaction(), TvStatus::Ok);
    EXPECT_TRUE(has(u"INNER") && has(u"OUTER") && !has(u"DROPPED"));
    ASSERT_EQ(manager.endTransaction(), TvStatus::Ok);
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_FALSE(has(u"INNER") || has(u"OUTER"));
}

TEST_F(DatabaseTest, AnObjectThatStaysOpenAcrossATransactionIsTakenBackToItsBegin)
{
    TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
    layer->setColorIndex(1);
    drawing.transactionManager()->startTransaction();
    layer->setColorIndex(2);
    drawing.transactionManager()->abortTransaction();
    EXPECT_EQ(layer->colorIndex(), 1);
}

// --- reactors

TEST_F(DatabaseTest, ReactorsAreToldOfTheFirstChangeTheCloseAndTheErasing)
{
    struct Recorder : TvDbDatabaseReactor {
        void objectAppended(const TvDbDatabase*, const TvDbObject*) override { log += "a"; }
        void objectOpenedForModify(const TvDbDatabase*, const TvDbObject*) override { log += "o"; }
        void objectModified(const TvDbDatabase*, const TvDbObject*) override { log += "m"; }
        void objectErased(const TvDbDatabase*, const TvDbObject*, bool on) override
        {
            log += on ? "e" : "u";
        }
        void headerSysVarChanged(const TvDbDatabase*, const TvString& name) override
        {
            log += name.utf8();
        }
        std::string log;
    } recorder;
    drawing.addReactor(&recorder);
    {
        const TvDbObjectPointer<TvDbLayerTableRecord> layer(drawing.clayer(), TvDb::kForWrite);
        EXPECT_EQ(recorder.log, "");
        layer->setIsFrozen(true);
        layer->setIsOff(true);
        EXPECT_EQ(recorder.log, "o");
    }
    EXPECT_EQ(recorder.log, "om");
    recorder.log.clear();
    drawing.setTilemode(!drawing.tilemode());
    EXPECT_EQ(recorder.log, "TILEMODE");
    recorder.log.clear();
    const TvDbObjectId id = put(u"MARK", u"x");
    EXPECT_NE(recorder.log.find('a'), std::string::npos);
    recorder.log.clear();
    {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
        object->erase(true);
        object->erase(false);
    }
    EXPECT_EQ(recorder.log, "oeum");
    drawing.removeReactor(&recorder);
    recorder.log.clear();
    put(u"MARK", u"y");
    EXPECT_EQ(recorder.log, "");
}
