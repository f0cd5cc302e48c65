#include <core/sheet_data.h>

#include <base/clock.h>
#include <core/tv_sm_db_reactor.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_xrecord.h>
#include <sm/kv_db_util.h>
#include <sm/tv_sm_file_reference.h>

#include "temp_folder.h"

namespace {

const SheetDataRecord kPlan{u"1E", u"Plan", u"/plans/a.dwg", u"/plans/house.dst"};

class SheetDataTest : public testing::Test
{
protected:
    void SetUp() override { core::setSheetDataClock(&m_clock); }
    void TearDown() override { core::setSheetDataClock(nullptr); }

    core::SheetData data() { return core::readSheetData(m_drawing); }
    TvDbObjectId dictionaryId()
    {
        const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId());
        TvDbObjectId id;
        named->getAt(u"AcSheetSetData", id);
        return id;
    }
    /// Changes the record as nobody should.
    template <class Change>
    void tamper(Change change)
    {
        const TvDbObjectPointer<TvDbDictionary> dictionary(dictionaryId(), TvDb::kForWrite);
        ASSERT_TRUE(dictionary);
        change(*dictionary);
    }
    TvDbObjectId layoutId(const TvChar* name)
    {
        const TvDbObjectPointer<TvDbDictionary> layouts(m_drawing.layoutDictionaryId());
        TvDbObjectId id;
        layouts->getAt(name, id);
        return id;
    }

    base::ManualClock m_clock{1'763'733'909'125'000'000}; // 2025-11-21 14:05:09.125
    TvDbDatabase m_drawing{true, true};
};

TEST_F(SheetDataTest, OfANewRecordHasTheSevenEntriesWithTheirCodes)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    const TvDbObjectPointer<TvDbDictionary> dictionary(dictionaryId());
    std::map<std::u16string, std::pair<int, std::u16string>> entries;
    for (const auto& [name, id] : dictionary->entries()) {
        const TvDbObjectPointer<TvDbXrecord> record(id);
        resbuf* chain = nullptr;
        ASSERT_EQ(record->rbChain(&chain), TvStatus::Ok);
        const TvResbufPtr items(chain);
        ASSERT_TRUE(items);
        EXPECT_EQ(items->rbnext, nullptr);
        entries[std::u16string(name.view())] = {
            items->restype, items->restype == 1
                                ? std::u16string(items->resval.rstring)
                                : std::u16string(TvString().format(u"%d", items->resval.rlong))};
    }
    const std::map<std::u16string, std::pair<int, std::u16string>> wanted{
        {u"LayoutHandle", {1, u"1E"}},
        {u"LayoutName", {1, u"Plan"}},
        {u"SheetDwgName", {1, u"/plans/a.dwg"}},
        {u"ShSetFileName", {1, u"/plans/house.dst"}},
        {u"ShSetVersion", {90, u"2"}},
        {u"UpdateCount", {90, u"1"}},
        {u"UpdateTime", {1, u"2025/11/21 14:05:09.125"}}};
    EXPECT_EQ(entries, wanted);
}

TEST_F(SheetDataTest, WrittenTwiceKeepsCountAndTimeOfTheFirst)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    m_clock.advance(std::chrono::hours(1));
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    EXPECT_EQ(data().updateCount, 1);
    EXPECT_EQ(data().updateTime, u"2025/11/21 14:05:09.125");
}

TEST_F(SheetDataTest, ATextThatDiffersInTheCaseOfLettersOnlyStaysAsItWas)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    SheetDataRecord record = kPlan;
    record.drawingName = u"/PLANS/A.DWG";
    ASSERT_TRUE(WriteSheetData(&m_drawing, record));
    EXPECT_EQ(data().texts.drawingName, u"/plans/a.dwg");
    EXPECT_EQ(data().updateCount, 1);
}

TEST_F(SheetDataTest, AChangedTextCountsAndDatesTheChange)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    m_clock.advance(std::chrono::milliseconds(1876));
    SheetDataRecord record = kPlan;
    record.layoutName = u"Elevation";
    record.sheetSetFile = u"/plans/other.dst";
    ASSERT_TRUE(WriteSheetData(&m_drawing, record));
    EXPECT_EQ(data().texts.layoutName, u"Elevation");
    EXPECT_EQ(data().texts.sheetSetFile, u"/plans/other.dst");
    EXPECT_EQ(data().texts.handle, u"1E");
    EXPECT_EQ(data().updateCount, 2);
    EXPECT_EQ(data().updateTime, u"2025/11/21 14:05:11.001");
}

TEST_F(SheetDataTest, AnOlderVersionNumberBecomesTwoAndCountsAsAChange)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    tamper([](TvDbDictionary& d) { ASSERT_TRUE(WriteXrecordInt(&d, u"ShSetVersion", 1)); });
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    EXPECT_EQ(data().version, 2);
    EXPECT_EQ(data().updateCount, 2);
}

TEST_F(SheetDataTest, AMissingEntryFailsAndNothingBehindItIsChanged)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    tamper([](TvDbDictionary& d) { ASSERT_EQ(d.remove(TvString(u"LayoutName")), TvStatus::Ok); });
    const SheetDataRecord other{u"2B", u"Elevation", u"/plans/b.dwg", u"/plans/other.dst"};
    EXPECT_FALSE(WriteSheetData(&m_drawing, other));
    EXPECT_EQ(data().texts.handle, u"2B") << "what was patched before stays";
    EXPECT_EQ(data().texts.layoutName, u"") << "nothing is repaired";
    EXPECT_EQ(data().texts.drawingName, u"/plans/a.dwg");
    EXPECT_EQ(data().texts.sheetSetFile, u"/plans/house.dst");
    EXPECT_EQ(data().updateCount, 1);
}

TEST_F(SheetDataTest, AMissingVersionOrCountFails)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    SheetDataRecord other = kPlan;
    other.handle = u"2B";
    tamper([](TvDbDictionary& d) { d.remove(TvString(u"UpdateCount")); });
    EXPECT_FALSE(WriteSheetData(&m_drawing, other));
    EXPECT_EQ(data().texts.handle, u"2B");
    tamper([](TvDbDictionary& d) { d.remove(TvString(u"ShSetVersion")); });
    EXPECT_FALSE(WriteSheetData(&m_drawing, other));
}

TEST_F(SheetDataTest, AnEntryThatIsNoDictionaryIsReplacedByANewRecord)
{
    {
        const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        ASSERT_TRUE(WriteXrecordText(named.object(), u"AcSheetSetData", u"not a dictionary"));
    }
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    EXPECT_EQ(data().texts.layoutName, u"Plan");
    EXPECT_EQ(data().updateCount, 1);
}

TEST_F(SheetDataTest, NoDrawingIsAFailure)
{
    EXPECT_FALSE(WriteSheetData(nullptr, kPlan));
    RemoveSheetData(nullptr);
    TvString text = u"left alone";
    EXPECT_FALSE(KvDbUtil::GetShSetFileName(nullptr, text));
    EXPECT_EQ(text, u"left alone");
}

TEST_F(SheetDataTest, FailsWhileSomebodyChangesTheNamedObjects)
{
    const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    EXPECT_FALSE(WriteSheetData(&m_drawing, kPlan));
}

TEST_F(SheetDataTest, OfTheSecondSheetOfADrawingTakesThePlaceOfTheFirst)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    const SheetDataRecord second{u"2B", u"Section", u"/plans/a.dwg", u"/plans/house.dst"};
    ASSERT_TRUE(WriteSheetData(&m_drawing, second));
    EXPECT_EQ(data().texts.handle, u"2B");
    EXPECT_EQ(data().texts.layoutName, u"Section");
}

TEST_F(SheetDataTest, RemovedLeavesNothingBehind)
{
    const std::size_t before = m_drawing.objectIds().size();
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    EXPECT_EQ(m_drawing.objectIds().size(), before + 8);
    RemoveSheetData(&m_drawing);
    EXPECT_FALSE(data().isThere);
    EXPECT_EQ(m_drawing.objectIds().size(), before);
    RemoveSheetData(&m_drawing);
}

TEST_F(SheetDataTest, PatchedLeavesNoOldRecordsBehind)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    const std::size_t before = m_drawing.objectIds().size();
    for (int i = 0; i < 5; ++i) {
        SheetDataRecord record = kPlan;
        record.layoutName.format(u"Plan %d", i);
        ASSERT_TRUE(WriteSheetData(&m_drawing, record));
    }
    EXPECT_EQ(data().updateCount, 6);
    EXPECT_EQ(m_drawing.objectIds().size(), before);
}

TEST_F(SheetDataTest, TheNameOfTheSheetSetIsReadAndEmptyCountsAsNone)
{
    TvString path;
    EXPECT_FALSE(KvDbUtil::GetShSetFileName(&m_drawing, path));
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    EXPECT_TRUE(KvDbUtil::GetShSetFileName(&m_drawing, path));
    EXPECT_EQ(path, u"/plans/house.dst");
    tamper([](TvDbDictionary& d) { ASSERT_TRUE(WriteXrecordText(&d, u"ShSetFileName", u"")); });
    EXPECT_FALSE(KvDbUtil::GetShSetFileName(&m_drawing, path));
}

// --- undo

TEST_F(SheetDataTest, WrittenInAPauseIsNoPartOfTheHistory)
{
    m_drawing.startUndoRecord();
    {
        const UndoRecordingPause pause(&m_drawing);
        EXPECT_FALSE(m_drawing.undoRecording());
        ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    }
    EXPECT_TRUE(m_drawing.undoRecording());
    EXPECT_FALSE(m_drawing.hasUndo());
}

TEST_F(SheetDataTest, WrittenInAPauseSurvivesTheUndoOfWhatWasEditedBeforeAndAfter)
{
    const auto edit = [this](const TvChar* key) {
        m_drawing.startUndoRecord();
        const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        ASSERT_TRUE(WriteXrecordText(named.object(), key, u"of the user"));
    };
    const auto hasNamed = [this](const TvChar* key) {
        const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId());
        return named->has(TvString(key));
    };
    edit(u"BEFORE");
    {
        const UndoRecordingPause pause(&m_drawing);
        ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    }
    edit(u"AFTER");
    ASSERT_EQ(m_drawing.undo(), TvStatus::Ok);
    EXPECT_FALSE(hasNamed(u"AFTER"));
    EXPECT_TRUE(hasNamed(u"BEFORE"));
    EXPECT_EQ(data().texts.layoutName, u"Plan");
    ASSERT_EQ(m_drawing.undo(), TvStatus::Ok);
    EXPECT_FALSE(hasNamed(u"BEFORE"));
    EXPECT_EQ(data().texts.layoutName, u"Plan");
    ASSERT_EQ(m_drawing.redo(), TvStatus::Ok);
    ASSERT_EQ(m_drawing.redo(), TvStatus::Ok);
    EXPECT_TRUE(hasNamed(u"AFTER"));
    EXPECT_TRUE(hasNamed(u"BEFORE"));
    EXPECT_EQ(data().texts.layoutName, u"Plan");
}

TEST_F(SheetDataTest, RemovedIsNotBroughtBackByUndo)
{
    ASSERT_TRUE(WriteSheetData(&m_drawing, kPlan));
    m_drawing.startUndoRecord();
    RemoveSheetData(&m_drawing);
    EXPECT_TRUE(m_drawing.undoRecording());
    m_drawing.undo(); // of the writing above, which was recorded
    EXPECT_FALSE(data().isThere);
}

TEST_F(SheetDataTest, APauseWithinAPauseChangesNothing)
{
    const UndoRecordingPause outer(&m_drawing);
    {
        const UndoRecordingPause inner(&m_drawing);
    }
    EXPECT_FALSE(m_drawing.undoRecording());
}

// --- single entries

TEST_F(SheetDataTest, AnItemIsReadByItsCodeBehindOthers)
{
    const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    auto* record = new TvDbXrecord;
    TvDbObjectId id;
    ASSERT_EQ(named->setAt(u"MIXED", record, id), TvStatus::Ok);
    const TvResbufPtr items(tvutBuildList(40, 1.5, 90, 7, 1, u"first", 1, u"second", 90, 8, 0));
    ASSERT_EQ(record->setFromRbChain(*items.get()), TvStatus::Ok);
    record->close();
    TvString text;
    int number = 0;
    EXPECT_TRUE(ReadXrecordText(named.object(), u"MIXED", text));
    EXPECT_EQ(text, u"first");
    EXPECT_TRUE(ReadXrecordInt(named.object(), u"MIXED", number));
    EXPECT_EQ(number, 7);
}

TEST_F(SheetDataTest, AnEntryOfAnotherKindOrWithoutSuchAnItemIsNotRead)
{
    const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    ASSERT_TRUE(WriteXrecordInt(named.object(), u"NUMBER", 5));
    ASSERT_TRUE(WriteXrecordText(named.object(), u"TEXT", u"five"));
    TvString text = u"kept";
    int number = 99;
    EXPECT_FALSE(ReadXrecordText(named.object(), u"NUMBER", text));
    EXPECT_FALSE(ReadXrecordInt(named.object(), u"TEXT", number));
    EXPECT_FALSE(ReadXrecordText(named.object(), u"ACAD_LAYOUT", text)) << "a dictionary";
    EXPECT_FALSE(ReadXrecordText(named.object(), u"ABSENT", text));
    EXPECT_FALSE(ReadXrecordText(nullptr, u"TEXT", text));
    EXPECT_FALSE(ReadXrecordInt(nullptr, u"NUMBER", number));
    EXPECT_EQ(text, u"kept");
    EXPECT_EQ(number, 99);
}

TEST_F(SheetDataTest, ADictionaryThatIsNotOpenForWritingIsNotWritten)
{
    const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId());
    EXPECT_FALSE(WriteXrecordText(named.object(), u"TEXT", u"x"));
    EXPECT_FALSE(WriteXrecordInt(named.object(), u"NUMBER", 1));
    EXPECT_FALSE(WriteXrecordText(nullptr, u"TEXT", u"x"));
    EXPECT_FALSE(named->has(TvString(u"TEXT")));
}

TEST_F(SheetDataTest, ANegativeNumberComesBack)
{
    const TvDbObjectPointer<TvDbDictionary> named(m_drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    ASSERT_TRUE(WriteXrecordInt(named.object(), u"NUMBER", -3));
    int number = 0;
    ASSERT_TRUE(ReadXrecordInt(named.object(), u"NUMBER", number));
    EXPECT_EQ(number, -3);
}

// --- layouts

TEST_F(SheetDataTest, ALayoutIsFoundByItsNameAndElseByItsHandle)
{
    const TvDbObjectId id = layoutId(u"Layout1");
    ASSERT_TRUE(id.isValid());
    TvSmTvDbLayoutReference reference;
    reference.setName(u"layout1");
    reference.setHandle(u"FFFF");
    TvDbObjectId found;
    EXPECT_TRUE(FindLayoutOfReference(&reference, &m_drawing, found));
    EXPECT_EQ(found, id);

    reference.setHandle(id.handle().text());
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        ASSERT_EQ(layout->setLayoutName(u"Renamed"), TvStatus::Ok);
    }
    found.setNull();
    EXPECT_TRUE(FindLayoutOfReference(&reference, &m_drawing, found));
    EXPECT_EQ(found, id);
}

TEST_F(SheetDataTest, AHandleOfAnotherObjectIsNoLayout)
{
    TvSmTvDbLayoutReference reference;
    reference.setName(u"Nowhere");
    reference.setHandle(m_drawing.namedObjectsDictionaryId().handle().text());
    TvDbObjectId found;
    EXPECT_FALSE(FindLayoutOfReference(&reference, &m_drawing, found));
    reference.setHandle(u"");
    EXPECT_FALSE(FindLayoutOfReference(&reference, &m_drawing, found));
    EXPECT_FALSE(FindLayoutOfReference(nullptr, &m_drawing, found));
    EXPECT_FALSE(FindLayoutOfReference(&reference, nullptr, found));
    EXPECT_TRUE(found.isNull());
}

// --- the set that a drawing belongs to

TEST_F(SheetDataTest, OfTheWorkingDrawingLeadsToAnOpenSetAndOpensNone)
{
    const TempFolder folder;
    const TvString path = folder.file("house.dst");
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    SheetDataRecord record = kPlan;
    record.sheetSetFile = path;
    ASSERT_TRUE(WriteSheetData(&m_drawing, record));
    EXPECT_EQ(GetDatabaseOfActiveDrawing(), nullptr) << "no working drawing";
    tvdbHostApplicationServices()->setWorkingDatabase(&m_drawing);
    EXPECT_EQ(GetDatabaseOfActiveDrawing(), nullptr) << "not open";
    TvSmDatabase* set = manager->createDatabase(path, u"", true);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(GetDatabaseOfActiveDrawing(), set);
    manager->closeDatabase(set);
    EXPECT_EQ(GetDatabaseOfActiveDrawing(), nullptr);
    tvdbHostApplicationServices()->setWorkingDatabase(nullptr);
}

} // namespace
