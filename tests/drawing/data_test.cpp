// Values that are no geometry: lists of items, extended data, dates, header variables, records of
// symbol tables.

#include <ctime>
#include <limits>

#include <db/local_time.h>
#include <db/tv_db_date.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_transaction.h>
#include <db/tv_db_xrecord.h>

#include "real_drawing.h"

namespace {

int lengthOf(const resbuf* chain)
{
    int length = 0;
    for (; chain; chain = chain->rbnext)
        ++length;
    return length;
}

const resbuf& at(const TvResbufPtr& chain, int index)
{
    const resbuf* item = chain.get();
    while (index-- > 0)
        item = item->rbnext;
    return *item;
}

TvResbufPtr itemsOf(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbXrecord> record(id, TvDb::kForNotify);
    resbuf* chain = nullptr;
    EXPECT_EQ(record->rbChain(&chain), TvStatus::Ok);
    return TvResbufPtr(chain);
}

class DataTest : public testing::TestWithParam<std::string>
{
protected:
    DataTest() : drawing(openBytes(minimalDrawing("line-" + GetParam() + ".dwg"))) {}
    TvDbObjectId newRecord(const TvChar* key)
    {
        const TvDbObjectPointer<TvDbDictionary> named(drawing->namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        auto* record = new TvDbXrecord;
        TvDbObjectId id;
        EXPECT_EQ(named->setAt(key, record, id), TvStatus::Ok);
        record->close();
        return id;
    }
    TvStatusCode fill(TvDbObjectId id, const TvResbufPtr& items)
    {
        return TvDbObjectPointer<TvDbXrecord>(id, TvDb::kForWrite)->setFromRbChain(*items.get());
    }
    TvDbObjectId line()
    {
        return TvDbObjectPointer<TvDbBlockTableRecord>(drawing->modelSpaceId())->entityIds()[0];
    }
    std::unique_ptr<TvDbDatabase> drawing;
};
INSTANTIATE_TEST_SUITE_P(Versions, DataTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

// --- chains

TEST(Resbuf, ListIsBuiltOfCodesAndValuesUpToAZero)
{
    const TvResbufPtr chain(tvutBuildList(1, u"text", 40, 1.5, 10, db::Point{1, 2, 3}, 70, 7, 90,
                                          -8, 160, std::int64_t(1) << 40, 330, TvDbHandle(0x2F),
                                          0));
    ASSERT_EQ(lengthOf(chain.get()), 7);
    EXPECT_EQ(at(chain, 0).restype, 1);
    EXPECT_EQ(TvString(at(chain, 0).resval.rstring), u"text");
    EXPECT_EQ(at(chain, 1).resval.rreal, 1.5);
    EXPECT_EQ(at(chain, 2).resval.rpoint[2], 3);
    EXPECT_EQ(at(chain, 3).resval.rint, 7);
    EXPECT_EQ(at(chain, 4).resval.rlong, -8);
    EXPECT_EQ(at(chain, 5).resval.mnInt64, std::int64_t(1) << 40);
    EXPECT_EQ(at(chain, 6).resval.rhandle, 0x2Fu);
    EXPECT_EQ(tvutBuildList(), nullptr);
    tvutRelRb(nullptr); // nothing
}

TEST(Resbuf, ValueThatDoesNotSuitItsCodeIsEmpty)
{
    const TvResbufPtr chain(
        tvutBuildList(1, 5, 40, u"x", 70, 40000, 90, std::int64_t(1) << 33, 1, nullptr));
    EXPECT_EQ(TvString(at(chain, 0).resval.rstring), u"");
    EXPECT_EQ(at(chain, 1).resval.rreal, 0);
    EXPECT_EQ(at(chain, 2).resval.rint, 0) << "too large";
    EXPECT_EQ(at(chain, 3).resval.rlong, 0) << "too large";
}

TEST(Resbuf, KindFollowsFromTheCode)
{
    const std::pair<int, TvResbufKind> kKinds[] = {
        {0, TvResbufKind::Text},      {9, TvResbufKind::Text},     {10, TvResbufKind::Point},
        {40, TvResbufKind::Real},     {70, TvResbufKind::Short},   {90, TvResbufKind::Long},
        {100, TvResbufKind::Text},    {105, TvResbufKind::Handle}, {140, TvResbufKind::Real},
        {160, TvResbufKind::Wide},    {210, TvResbufKind::Point},  {290, TvResbufKind::Short},
        {300, TvResbufKind::Text},    {310, TvResbufKind::Binary}, {330, TvResbufKind::Handle},
        {360, TvResbufKind::Handle},  {1000, TvResbufKind::Text},  {1004, TvResbufKind::Binary},
        {1005, TvResbufKind::Handle}, {1010, TvResbufKind::Point}, {1040, TvResbufKind::Real},
        {1070, TvResbufKind::Short},  {1071, TvResbufKind::Long},  {5001, TvResbufKind::Real},
        {5003, TvResbufKind::Short},  {5005, TvResbufKind::Text},  {5006, TvResbufKind::ObjectId},
        {5009, TvResbufKind::Point},  {5010, TvResbufKind::Long},  {5000, TvResbufKind::None},
        {-1, TvResbufKind::None},     {32767, TvResbufKind::None}};
    for (const auto& [code, kind] : kKinds)
        EXPECT_EQ(tvutResbufKind(code), kind) << code;
}

TEST(Resbuf, TextsAndBytesAreCopiedWithTheirChain)
{
    const TvResbufPtr text(tvutNewRb(1)), bytes(tvutNewRb(310));
    tvutSetText(*text.get(), std::u16string(5000, u'x'));
    tvutSetText(*text.get(), std::u16string_view(u"ab\0cd", 5)); // ends at the zero
    const std::vector<std::uint8_t> data(300, 0xAB);
    tvutSetBytes(*bytes.get(), data);
    const TvResbufPtr copyOfText(tvutCopyRb(text.get())), copyOfBytes(tvutCopyRb(bytes.get()));
    EXPECT_EQ(TvString(copyOfText->resval.rstring), u"ab");
    EXPECT_NE(copyOfText->resval.rstring, text->resval.rstring);
    ASSERT_EQ(copyOfBytes->resval.rbinary.clen, 300);
    EXPECT_EQ(copyOfBytes->resval.rbinary.buf[299], 0xAB);
    EXPECT_NE(copyOfBytes->resval.rbinary.buf, bytes->resval.rbinary.buf);
    EXPECT_EQ(tvutCopyRb(nullptr), nullptr);
}

TEST(Resbuf, LongChainsAreReleasedWithoutRunningDeep)
{
    resbuf* first = tvutNewRb(70);
    resbuf* last = first;
    for (int i = 0; i < 1'000'000; ++i)
        last = last->rbnext = tvutNewRb(70);
    tvutRelRb(first);
}

// --- xrecords

TEST_P(DataTest, XrecordKeepsItemsOfAllKindsOverASave)
{
    const TvDbObjectId id = newRecord(u"ALL");
    resbuf* bytes = tvutNewRb(310);
    const std::uint8_t data[] = {1, 0, 255};
    tvutSetBytes(*bytes, data);
    TvResbufPtr items(tvutBuildList(1, u"Bäume", 300, u"", 40, -2.25, 10, db::Point{1, -2, 3}, 70,
                                    -7, 90, -100000, 290, 1, 330, drawing->clayer().handle(), 340,
                                    drawing->clayer().handle()));
    ASSERT_EQ(at(items, 8).rbnext, nullptr);
    const_cast<resbuf&>(at(items, 8)).rbnext = bytes;
    ASSERT_EQ(fill(id, items), TvStatus::Ok);
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    const TvResbufPtr back = itemsOf(read->find(id.handle().value()));
    ASSERT_EQ(lengthOf(back.get()), 10);
    EXPECT_EQ(TvString(at(back, 0).resval.rstring), u"Bäume");
    EXPECT_EQ(TvString(at(back, 1).resval.rstring), u"");
    EXPECT_EQ(at(back, 2).resval.rreal, -2.25);
    EXPECT_EQ(at(back, 3).resval.rpoint[1], -2);
    EXPECT_EQ(at(back, 4).resval.rint, -7);
    EXPECT_EQ(at(back, 5).resval.rlong, -100000);
    EXPECT_EQ(at(back, 6).resval.rint, 1);
    EXPECT_EQ(at(back, 7).resval.rhandle, drawing->clayer().handle().value());
    EXPECT_EQ(at(back, 8).resval.rhandle, drawing->clayer().handle().value());
    ASSERT_EQ(at(back, 9).resval.rbinary.clen, 3);
    EXPECT_EQ(at(back, 9).resval.rbinary.buf[2], 255);
}

TEST_P(DataTest, XrecordRefusesWhatMayNotStandThereAndKeepsWhatItHad)
{
    const TvDbObjectId id = newRecord(u"BAD");
    ASSERT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"kept"))), TvStatus::Ok);
    EXPECT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"x", 5003, 1))), TvStatus::InvalidInput);
    EXPECT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"x", 32000, 1))), TvStatus::InvalidInput);
    TvResbufPtr tooLong(tvutNewRb(1));
    tvutSetText(*tooLong.get(), std::u16string(70'000, u'x'));
    EXPECT_EQ(fill(id, tooLong), TvStatus::InvalidInput);
    TvResbufPtr hostile(tvutNewRb(310));
    hostile->resval.rbinary.clen = -5; // as a caller who made a mistake
    EXPECT_EQ(fill(id, hostile), TvStatus::InvalidInput);
    hostile->resval.rbinary.clen = 0;
    EXPECT_EQ(TvString(itemsOf(id)->resval.rstring), u"kept");
    EXPECT_EQ(TvDbObjectPointer<TvDbXrecord>(id)->setFromRbChain(*itemsOf(id).get()),
              TvStatus::NotOpenForWrite);
    EXPECT_EQ(TvDbObjectPointer<TvDbXrecord>(id, TvDb::kForWrite)->clear(), TvStatus::Ok);
    EXPECT_FALSE(itemsOf(id));
    EXPECT_EQ(TvDbObjectPointer<TvDbXrecord>(id)->rbChain(nullptr), TvStatus::InvalidInput);
}

TEST_P(DataTest, XrecordsItemsComeBackByUndoAndGoByRedo)
{
    const TvDbObjectId id = newRecord(u"UNDO");
    ASSERT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"one", 70, 1))), TvStatus::Ok);
    drawing->startUndoRecord();
    ASSERT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"two"))), TvStatus::Ok);
    ASSERT_EQ(drawing->undo(), TvStatus::Ok);
    EXPECT_EQ(lengthOf(itemsOf(id).get()), 2);
    EXPECT_EQ(TvString(itemsOf(id)->resval.rstring), u"one");
    ASSERT_EQ(drawing->redo(), TvStatus::Ok);
    EXPECT_EQ(TvString(itemsOf(id)->resval.rstring), u"two");
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    EXPECT_EQ(TvString(itemsOf(read->find(id.handle().value()))->resval.rstring), u"two");
}

// --- extended data

TEST_P(DataTest, ExtendedDataIsKeptByApplicationOverASave)
{
    const TvDbObjectId id = line();
    {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
        const TvResbufPtr data(tvutBuildList(1001, u"FIRST", 1000, u"text", 1002, u"{", 1040, 2.5,
                                             1010, db::Point{1, 2, 3}, 1002, u"}", 1070, -3, 1071,
                                             100000, 1005, id.handle(), 1003, u"0", 1001, u"SECOND",
                                             1000, u"other"));
        ASSERT_EQ(object->setXData(data.get()), TvStatus::Ok);
    }
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    const TvDbObjectPointer<TvDbObject> object(read->find(id.handle().value()), TvDb::kForWrite);
    const TvResbufPtr first(object->xData(u"first"));
    ASSERT_EQ(lengthOf(first.get()), 10);
    EXPECT_EQ(TvString(at(first, 0).resval.rstring), u"FIRST");
    EXPECT_EQ(TvString(at(first, 1).resval.rstring), u"text");
    EXPECT_EQ(TvString(at(first, 2).resval.rstring), u"{");
    EXPECT_EQ(at(first, 3).resval.rreal, 2.5);
    EXPECT_EQ(at(first, 4).resval.rpoint[2], 3);
    EXPECT_EQ(TvString(at(first, 5).resval.rstring), u"}");
    EXPECT_EQ(at(first, 6).resval.rint, -3);
    EXPECT_EQ(at(first, 7).resval.rlong, 100000);
    EXPECT_EQ(at(first, 8).resval.rhandle, id.handle().value());
    EXPECT_EQ(TvString(at(first, 9).resval.rstring), u"0");
    const TvResbufPtr all(object->xData());
    EXPECT_EQ(lengthOf(all.get()), 12);
    EXPECT_EQ(object->xData(u"THIRD"), nullptr);
    // One application is replaced, the other stays; without items it goes.
    EXPECT_EQ(object->setXData(TvResbufPtr(tvutBuildList(1001, u"SECOND", 1070, 1)).get()),
              TvStatus::Ok);
    EXPECT_EQ(lengthOf(TvResbufPtr(object->xData(u"FIRST")).get()), 10);
    EXPECT_EQ(lengthOf(TvResbufPtr(object->xData(u"SECOND")).get()), 2);
    EXPECT_EQ(object->setXData(TvResbufPtr(tvutBuildList(1001, u"FIRST")).get()), TvStatus::Ok);
    EXPECT_EQ(object->xData(u"FIRST"), nullptr);
    EXPECT_EQ(lengthOf(TvResbufPtr(object->xData()).get()), 2);
}

TEST_P(DataTest, ExtendedDataThatMakesNoSenseIsRefusedAndNothingChanges)
{
    const TvDbObjectPointer<TvDbObject> object(line(), TvDb::kForWrite);
    const auto set = [&](const TvResbufPtr& data) { return object->setXData(data.get()); };
    ASSERT_EQ(set(TvResbufPtr(tvutBuildList(1001, u"APP", 1000, u"kept"))), TvStatus::Ok);
    EXPECT_NE(set(TvResbufPtr(tvutBuildList(1000, u"without an application"))), TvStatus::Ok);
    EXPECT_NE(set(TvResbufPtr(tvutBuildList(1001, u"APP", 40, 1.0))), TvStatus::Ok);
    EXPECT_NE(set(TvResbufPtr(tvutBuildList(1001, u"APP", 1003, u"no such layer"))), TvStatus::Ok);
    EXPECT_NE(
        set(TvResbufPtr(tvutBuildList(1001, u"APP", 1000, TvString(std::u16string(300, u'x'))))),
        TvStatus::Ok);
    // Every text fits, all together do not.
    resbuf* first = tvutNewRb(1001);
    tvutSetText(*first, u"APP");
    resbuf* last = first;
    for (int i = 0; i < 400; ++i) {
        last = last->rbnext = tvutNewRb(1000);
        tvutSetText(*last, std::u16string(200, u'x'));
    }
    EXPECT_NE(set(TvResbufPtr(first)), TvStatus::Ok);
    const TvResbufPtr kept(object->xData(u"APP"));
    ASSERT_EQ(lengthOf(kept.get()), 2);
    EXPECT_EQ(TvString(at(kept, 1).resval.rstring), u"kept");
}

TEST(ExtendedData, OfRealDrawingsIsAsExpected)
{
    forEachDrawing("xdata", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        int seen = 0;
        for (const auto& entity : expected["entities_with_xdata"]) {
            const TvDbObjectPointer<TvDbObject> object(
                drawing.find(hexValue(entity["handle"].get<std::string>())));
            ASSERT_TRUE(object);
            std::vector<std::string> apps, texts;
            const TvResbufPtr data(object->xData());
            for (const resbuf* item = data.get(); item; item = item->rbnext)
                if (item->restype == 1001)
                    apps.push_back(TvString(item->resval.rstring).utf8());
                else if (item->restype == 1000)
                    texts.push_back(TvString(item->resval.rstring).utf8());
            EXPECT_EQ(apps, entity["apps"].get<std::vector<std::string>>());
            EXPECT_EQ(texts, entity["strings"].get<std::vector<std::string>>());
            ++seen;
        }
        EXPECT_EQ(seen, 13);
    });
}

// --- extension dictionaries

TEST_P(DataTest, ExtensionDictionaryIsMadeOnceFilledAndReleased)
{
    const TvDbObjectId id = line();
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(id)->createExtensionDictionary(),
              TvStatus::NotOpenForWrite);
    EXPECT_TRUE(TvDbObjectPointer<TvDbObject>(id)->extensionDictionary().isNull());
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(id, TvDb::kForWrite)->releaseExtensionDictionary(),
              TvStatus::KeyNotFound);
    {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
        ASSERT_EQ(object->createExtensionDictionary(), TvStatus::Ok);
        const TvDbObjectId made = object->extensionDictionary();
        EXPECT_EQ(object->createExtensionDictionary(), TvStatus::Ok);
        EXPECT_EQ(object->extensionDictionary(), made);
        const TvDbObjectPointer<TvDbDictionary> dictionary(made, TvDb::kForWrite);
        EXPECT_TRUE(dictionary->isTreatElementsAsHard());
        auto* record = new TvDbXrecord;
        TvDbObjectId recordId;
        ASSERT_EQ(dictionary->setAt(u"KEY", record, recordId), TvStatus::Ok);
        record->setFromRbChain(*TvResbufPtr(tvutBuildList(70, 5)).get());
        record->close();
    }
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    const TvDbObjectPointer<TvDbObject> object(read->find(id.handle().value()), TvDb::kForWrite);
    const TvDbObjectId dictionaryId = object->extensionDictionary();
    ASSERT_TRUE(dictionaryId);
    TvDbObjectId recordId;
    {
        const TvDbObjectPointer<TvDbDictionary> dictionary(dictionaryId);
        EXPECT_EQ(dictionary->ownerId(), object->objectId());
        ASSERT_EQ(dictionary->getAt(u"key", recordId), TvStatus::Ok);
        EXPECT_EQ(itemsOf(recordId)->resval.rint, 5);
    }
    ASSERT_EQ(object->releaseExtensionDictionary(), TvStatus::Ok);
    EXPECT_TRUE(object->extensionDictionary().isNull());
    EXPECT_TRUE(dictionaryId.isErased());
    EXPECT_TRUE(recordId.isErased());
}

// --- dates

TEST(Dates, AreDaysAndMilliseconds)
{
    const TvDbDate date = TvDbDate::fromUnixMilliseconds(0);
    EXPECT_EQ(date.julianDay(), 2440588);
    EXPECT_EQ(date.millisecondsOfDay(), 0);
    EXPECT_EQ(date.text(), u"1970-01-01 00:00:00");
    EXPECT_EQ(TvDbDate::fromUnixMilliseconds(-1).text(), u"1969-12-31 23:59:59");
    EXPECT_EQ(TvDbDate::fromUnixMilliseconds(-1).unixMilliseconds(), -1);
    EXPECT_EQ(TvDbDate::fromFileTime(116'444'736'000'000'000).text(), u"1970-01-01 00:00:00");
    EXPECT_EQ(TvDbDate::fromFileTime(0).text(), u"1601-01-01 00:00:00");
    const TvDbDate::Calendar leap = TvDbDate(2451604, 86'399'999).calendar(); // 2000-02-29
    EXPECT_EQ(leap.year, 2000);
    EXPECT_EQ(leap.month, 2);
    EXPECT_EQ(leap.day, 29);
    EXPECT_EQ(leap.hour, 23);
    EXPECT_EQ(leap.second, 59);
    EXPECT_EQ(leap.millisecond, 999);
    EXPECT_TRUE(TvDbDate().isNull());
    EXPECT_LT(TvDbDate(5, 9), TvDbDate(6, 0));
}

TEST(Dates, FractionsAreOfTheDayAndStayInIt)
{
    TvDbDate date(2451604, 43'200'000);
    EXPECT_DOUBLE_EQ(date.julianFraction(), 0.5);
    date.setJulianFraction(0.25);
    EXPECT_EQ(date.millisecondsOfDay(), 21'600'000);
    for (const double odd : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
        date.setJulianFraction(odd);
        EXPECT_EQ(date.millisecondsOfDay(), 0) << odd;
    }
    date.setJulianFraction(7);
    EXPECT_EQ(date.millisecondsOfDay(), 86'399'999);
}

TEST(Dates, OutOfAllCalendarsEnd)
{
    for (const std::int64_t day : {std::numeric_limits<std::int64_t>::min(), std::int64_t(-1),
                                   std::int64_t(1) << 40, std::numeric_limits<std::int64_t>::max()})
        for (const std::int64_t milliseconds :
             {std::int64_t(-1), std::numeric_limits<std::int64_t>::max()})
            EXPECT_FALSE(TvDbDate(day, milliseconds).text().isEmpty()) << day;
}

namespace {

/// The time zone of this process while it lives.
class TimeZone
{
public:
    explicit TimeZone(const char* zone)
    {
        if (const char* before = std::getenv("TZ"))
            m_before = before;
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~TimeZone()
    {
        m_before ? ::setenv("TZ", m_before->c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }

private:
    std::optional<std::string> m_before;
};

} // namespace

TEST(Dates, OfLocalClocksFollowSummerTime)
{
    // One hour before universal time, two from the end of March to the end of October.
    const TimeZone zone("MEZ-1MESZ,M3.5.0,M10.5.0/3");
    const TvDbDate winter = TvDbDate::fromUnixMilliseconds(1'700'000'000'123); // November 2023
    EXPECT_EQ(winter.text(), u"2023-11-14 22:13:20");
    EXPECT_EQ(db::localFromUtc(winter).text(), u"2023-11-14 23:13:20");
    EXPECT_EQ(db::localFromUtc(winter).millisecondsOfDay() % 1000, 123);
    const TvDbDate summer = TvDbDate::fromUnixMilliseconds(1'690'000'000'000); // July 2023
    EXPECT_EQ(summer.text(), u"2023-07-22 04:26:40");
    EXPECT_EQ(db::localFromUtc(summer).text(), u"2023-07-22 06:26:40");
    for (const TvDbDate& moment : {winter, summer, TvDbDate(2400000, 0)})
        EXPECT_EQ(db::utcFromLocal(db::localFromUtc(moment)), moment) << moment.text().utf8();
}

TEST(Dates, OutOfAllCalendarsHaveNoZone)
{
    const TimeZone zone("EST5");
    for (const TvDbDate& odd : {TvDbDate(), TvDbDate(-7, 5), TvDbDate(2400000, -1),
                                TvDbDate(std::numeric_limits<std::int64_t>::max(), 0)}) {
        EXPECT_EQ(db::localFromUtc(odd), odd);
        EXPECT_EQ(db::utcFromLocal(odd), odd);
    }
}

TEST(Dates, OfRealDrawingsAreTheirs)
{
    forEachDrawing(".dwg", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        const auto pair = [](const TvDbDate& date) {
            return nlohmann::json::array({date.julianDay(), date.millisecondsOfDay()});
        };
        EXPECT_EQ(pair(drawing.tdcreate()), expected["created"]);
        EXPECT_EQ(pair(drawing.tdupdate()), expected["updated"]);
        EXPECT_GE(drawing.tdindwg().millisecondsOfDay(), 0);
    });
}

// --- header variables

TEST_P(DataTest, HeaderVariablesAreReadBackAsTheyWereSet)
{
    struct Row {
        const char* name;
        std::int64_t value;
    };
    const Row kRows[] = {{"INSUNITS", 6}, {"LUNITS", 3}, {"ORTHOMODE", 1}, {"PSLTSCALE", 0}};
    db::RecordEditor header = drawing->editHeader();
    for (const Row& row : kRows)
        EXPECT_TRUE(header.setInteger(row.name, row.value)) << row.name;
    EXPECT_TRUE(header.setReal("LTSCALE", 2.5));
    EXPECT_TRUE(header.setPoint("EXTMIN", {-1, -2, -3}));
    EXPECT_TRUE(header.setDate("TDCREATE", 2451604, 1000));
    EXPECT_FALSE(header.setInteger("NOTHING", 1));
    EXPECT_EQ(drawing->setTilemode(!drawing->tilemode()), TvStatus::Ok);
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    for (const Row& row : kRows)
        EXPECT_EQ(read->headerRecord().integer(row.name), row.value) << row.name;
    EXPECT_EQ(read->headerRecord().real("LTSCALE"), 2.5);
    EXPECT_EQ(read->extmin(), (db::Point{-1, -2, -3}));
    EXPECT_EQ(read->tdcreate(), TvDbDate(2451604, 1000));
    EXPECT_EQ(read->tilemode(), drawing->tilemode());
    EXPECT_EQ(read->currentSpaceId().handle(), drawing->currentSpaceId().handle());
    EXPECT_TRUE(differences(*drawing, *read).empty());
}

TEST(HeaderVariables, OfRealDrawingsAreTheirs)
{
    forEachDrawing(".dwg", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        EXPECT_EQ(drawing.insunits(), expected["INSUNITS"]);
        EXPECT_EQ(drawing.tilemode() ? 1 : 0, expected["TILEMODE"]);
        EXPECT_EQ(drawing.headerRecord().integer("PSLTSCALE"), expected["PSLTSCALE"]);
        EXPECT_EQ(drawing.objectIds().size(), expected["objects"]);
        EXPECT_GE(drawing.handseed().value(), hexValue(expected["handseed"].get<std::string>()));
    });
}

// --- symbol tables

TEST_P(DataTest, SymbolTableFindsRecordsByNameAndRefusesOthers)
{
    TvDbLayerTable* layers = nullptr;
    ASSERT_EQ(drawing->getSymbolTable(layers, TvDb::kForWrite), TvStatus::Ok);
    auto layer = std::make_unique<TvDbLayerTableRecord>();
    TvDbObjectId id;
    EXPECT_EQ(layers->add(id, layer.get()), TvStatus::InvalidName) << "it has none";
    EXPECT_EQ(layer->setName(u""), TvStatus::InvalidName);
    EXPECT_EQ(layer->setName(TvString(std::u16string(256, u'x'))), TvStatus::InvalidName);
    ASSERT_EQ(layer->setName(u"Wände"), TvStatus::Ok);
    EXPECT_EQ(layers->add(id, nullptr), TvStatus::InvalidInput);
    ASSERT_EQ(layers->add(id, layer.get()), TvStatus::Ok);
    TvDbLayerTableRecord& added = *layer.release();
    added.edit().setHandle("ltype", drawing->headerRecord().handle("LTCONTINUOUS"));
    EXPECT_EQ(layers->add(id, &added), TvStatus::AlreadyInDatabase);
    TvDbObjectId found;
    EXPECT_EQ(layers->getIdAt(u"WÄNDE", found), TvStatus::Ok);
    EXPECT_EQ(found, added.objectId());
    auto second = std::make_unique<TvDbLayerTableRecord>();
    ASSERT_EQ(second->setName(u"wände"), TvStatus::Ok);
    EXPECT_EQ(layers->add(second.get()), TvStatus::DuplicateName);
    auto style = std::make_unique<TvDbTextStyleTableRecord>();
    style->setName(u"Style");
    EXPECT_EQ(layers->add(style.get()), TvStatus::NotApplicable);
    EXPECT_EQ(added.setName(u"0"), TvStatus::DuplicateName);
    EXPECT_EQ(added.setName(u"Walls"), TvStatus::Ok);
    EXPECT_FALSE(layers->has(u"Wände"));
    EXPECT_TRUE(layers->has(u"walls"));
    EXPECT_EQ(added.setIsFrozen(true), TvStatus::Ok);
    EXPECT_EQ(added.setIsLocked(true), TvStatus::Ok);
    EXPECT_EQ(added.setColorIndex(30), TvStatus::Ok);
    added.close();
    layers->close();
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    ASSERT_EQ(read->getSymbolTable(layers), TvStatus::Ok);
    TvDbLayerTableRecord* again = nullptr;
    ASSERT_EQ(layers->getAt(u"Walls", again), TvStatus::Ok);
    EXPECT_TRUE(again->isFrozen());
    EXPECT_TRUE(again->isLocked());
    EXPECT_FALSE(again->isOff());
    EXPECT_TRUE(again->isPlottable());
    EXPECT_EQ(again->colorIndex(), 30);
    again->close();
    layers->close();
}

TEST_P(DataTest, SymbolTableFindsWhatWasErasedOnceItComesBack)
{
    TvDbLayerTable* layers = nullptr;
    ASSERT_EQ(drawing->getSymbolTable(layers, TvDb::kForWrite), TvStatus::Ok);
    auto* layer = new TvDbLayerTableRecord;
    layer->setName(u"Walls");
    ASSERT_EQ(layers->add(layer), TvStatus::Ok);
    layers->close();
    EXPECT_EQ(layer->erase(), TvStatus::Ok);
    const TvDbObjectId id = layer->objectId();
    layer->close();
    ASSERT_EQ(drawing->getSymbolTable(layers), TvStatus::Ok);
    EXPECT_FALSE(layers->has(u"Walls"));
    TvDbSymbolTableIterator* made = nullptr;
    ASSERT_EQ(layers->newIterator(made), TvStatus::Ok);
    const std::unique_ptr<TvDbSymbolTableIterator> iterator(made);
    for (; !iterator->done(); iterator->step())
        EXPECT_NE(iterator->getRecordId(), id);
    EXPECT_TRUE(iterator->getRecordId().isNull());
    TvDbObjectPointer<TvDbObject>(id, TvDb::kForWrite, true)->erase(false);
    EXPECT_TRUE(layers->has(u"Walls"));
    layers->close();
}

// --- transactions and reactors

TEST_P(DataTest, AbortedTransactionInsideAnotherTakesOnlyItsOwnBack)
{
    const TvDbObjectId id = newRecord(u"NESTED");
    TvDbTransactionManager& transactions = *drawing->transactionManager();
    transactions.startTransaction();
    ASSERT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"outer"))), TvStatus::Ok);
    transactions.startTransaction();
    ASSERT_EQ(fill(id, TvResbufPtr(tvutBuildList(1, u"inner"))), TvStatus::Ok);
    const TvDbObjectId inner = newRecord(u"INNER");
    EXPECT_EQ(transactions.numActiveTransactions(), 2);
    EXPECT_EQ(drawing->undo(), TvStatus::NothingToUndo) << "not while one is open";
    ASSERT_EQ(transactions.abortTransaction(), TvStatus::Ok);
    EXPECT_EQ(TvString(itemsOf(id)->resval.rstring), u"outer");
    EXPECT_TRUE(inner.isErased());
    ASSERT_EQ(transactions.abortTransaction(), TvStatus::Ok);
    EXPECT_FALSE(itemsOf(id));
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->find(inner.handle().value()).isNull());
}

namespace {

/// Notes in one list what a drawing and an object tell.
class Listener : public TvDbDatabaseReactor, public TvDbObjectReactor
{
public:
    void objectAppended(const TvDbDatabase*, const TvDbObject*) override { say("appended"); }
    void objectOpenedForModify(const TvDbDatabase*, const TvDbObject*) override { say("opened"); }
    void objectModified(const TvDbDatabase*, const TvDbObject*) override { say("changed"); }
    void objectErased(const TvDbDatabase*, const TvDbObject*, bool erasing) override
    {
        say(erasing ? "erased" : "back");
    }
    void headerSysVarChanged(const TvDbDatabase*, const TvString& name) override
    {
        say(name.utf8());
    }
    void databaseToBeDestroyed(const TvDbDatabase*) override { say("end"); }
    void openedForModify(const TvDbObject*) override { say("own opened"); }
    void modified(const TvDbObject*) override { say("own changed"); }
    void erased(const TvDbObject*, bool erasing) override
    {
        say(erasing ? "own erased" : "own back");
    }

    std::vector<std::string> heard;

private:
    void say(const std::string& what) { heard.push_back(what); }
};

using Heard = std::vector<std::string>;

} // namespace

TEST_P(DataTest, ReactorsOfTheDrawingHearBeforeThoseOfTheObject)
{
    Listener listener;
    const TvDbObjectId id = newRecord(u"HEARD");
    drawing->startUndoRecord();
    drawing->addReactor(&listener);
    drawing->addReactor(&listener); // once
    {
        const TvDbObjectPointer<TvDbXrecord> record(id, TvDb::kForWrite);
        record.object()->addReactor(&listener);
        EXPECT_EQ(listener.heard, Heard()) << "opening alone changes nothing";
        record->setFromRbChain(*TvResbufPtr(tvutBuildList(70, 1)).get());
        record->setFromRbChain(*TvResbufPtr(tvutBuildList(70, 2)).get());
        EXPECT_EQ(listener.heard, (Heard{"opened", "own opened"}));
    }
    EXPECT_EQ(listener.heard, (Heard{"opened", "own opened", "changed", "own changed"}));
    listener.heard.clear();
    ASSERT_EQ(TvDbObjectPointer<TvDbXrecord>(id, TvDb::kForWrite)->erase(), TvStatus::Ok);
    ASSERT_GE(listener.heard.size(), 4u);
    EXPECT_EQ(listener.heard[2], "erased");
    EXPECT_EQ(listener.heard[3], "own erased");
    listener.heard.clear();
    drawing->setTilemode(!drawing->tilemode());
    EXPECT_EQ(listener.heard, (Heard{"TILEMODE"}));
    listener.heard.clear();
    drawing->removeReactor(&listener);
    TvDbObjectPointer<TvDbObject>(id, TvDb::kForWrite, true)->removeReactor(&listener);
    newRecord(u"UNHEARD");
    EXPECT_EQ(listener.heard, Heard());
    drawing->addReactor(&listener);
    drawing.reset();
    EXPECT_EQ(listener.heard, (Heard{"end"}));
}
