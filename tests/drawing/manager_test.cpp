// The lists that a drawing keeps of scales, data links and table styles.

#include <db/tv_db_data_link.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_object_context.h>
#include <db/tv_db_transaction.h>

#include "real_drawing.h"

namespace {

class ManagerTest : public testing::TestWithParam<std::string>
{
protected:
    std::unique_ptr<TvDbDatabase> open() const
    {
        return openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
    }
    static TvDbObjectContextCollection& scalesOf(const TvDbDatabase& drawing)
    {
        return *drawing.objectContextManager()->contextCollection(
            TvString(tvdbAnnotationScaleCollectionName));
    }
};
INSTANTIATE_TEST_SUITE_P(Versions, ManagerTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

double ratioOf(const TvDbAnnotationScale& scale)
{
    double ratio = -1;
    EXPECT_EQ(scale.getScale(ratio), TvStatus::Ok);
    return ratio;
}

} // namespace

// --- annotation scales

TEST_P(ManagerTest, ScalesAreAddedListedAndMadeCurrent)
{
    const auto drawing = open();
    TvDbObjectContextCollection& scales = scalesOf(*drawing);
    EXPECT_EQ(drawing->objectContextManager()->contextCollection(u"OTHER"), nullptr);
    TvDbAnnotationScale scale;
    const std::size_t before = scales.contexts().size();
    EXPECT_EQ(scales.getContext(u"1:37", scale), TvStatus::KeyNotFound);
    ASSERT_EQ(scales.addContext({u"1:37", 1, 37}), TvStatus::Ok);
    ASSERT_EQ(scales.addContext({u"3:1", 3, 1}), TvStatus::Ok);
    EXPECT_EQ(scales.addContext({u"1:37", 1, 2}), TvStatus::DuplicateName);
    EXPECT_EQ(scales.addContext({u"", 1, 2}), TvStatus::InvalidName);
    EXPECT_EQ(scales.addContext({u"bad", 0, 2}), TvStatus::InvalidInput);
    EXPECT_EQ(scales.addContext({u"bad", 1, -2}), TvStatus::InvalidInput);
    EXPECT_EQ(scales.setCurrentContext(u"none"), TvStatus::KeyNotFound);
    ASSERT_EQ(scales.setCurrentContext(u"1:37"), TvStatus::Ok);

    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    const auto all = scalesOf(*read).contexts();
    ASSERT_EQ(all.size(), before + 2);
    EXPECT_EQ(all[before].getName(), u"1:37");
    EXPECT_DOUBLE_EQ(ratioOf(all[before]), 1.0 / 37);
    EXPECT_DOUBLE_EQ(ratioOf(all[before + 1]), 3);
    const TvDbObjectPointer<TvDbScale> object(all[before].objectId());
    ASSERT_TRUE(object);
    EXPECT_FALSE(object->isUnitScale());
    EXPECT_EQ(object->drawingUnits(), 37);
    ASSERT_EQ(tvdbGetCurAnnoScale(read.get(), scale), TvStatus::Ok);
    EXPECT_EQ(scale.getName(), u"1:37");
    EXPECT_EQ(tvdbGetCurAnnoScale(nullptr, scale), TvStatus::NoDatabase);
}

TEST_P(ManagerTest, ANewScaleTakesNoOthersPlace)
{
    const auto drawing = open();
    TvDbObjectContextCollection& scales = scalesOf(*drawing);
    ASSERT_EQ(scales.addContext({u"1:31", 1, 31}), TvStatus::Ok);
    ASSERT_EQ(scales.addContext({u"1:32", 1, 32}), TvStatus::Ok);
    TvDbAnnotationScale first;
    ASSERT_EQ(scales.getContext(u"1:31", first), TvStatus::Ok);
    ASSERT_EQ(TvDbObjectPointer<TvDbDictionary>(drawing->scaleListDictionaryId(), TvDb::kForWrite)
                  ->remove(first.objectId()),
              TvStatus::Ok);
    TvDbObjectId added;
    ASSERT_EQ(scales.addContext({u"1:33", 1, 33}, &added), TvStatus::Ok);
    EXPECT_TRUE(added.isValid());
    EXPECT_TRUE(scales.hasContext(u"1:32"));
    EXPECT_TRUE(scales.hasContext(u"1:33"));
    EXPECT_FALSE(scales.hasContext(u"1:31"));
}

TEST_P(ManagerTest, TheCurrentScaleIsOneToOneWhereNothingIsSaid)
{
    const auto drawing = open();
    TvDbAnnotationScale scale;
    EXPECT_EQ(tvdbGetCurAnnoScale(drawing.get(), scale), TvStatus::KeyNotFound) << "no such scale";
    ASSERT_EQ(scalesOf(*drawing).addContext({u"1:1", 1, 1}), TvStatus::Ok);
    ASSERT_EQ(tvdbGetCurAnnoScale(drawing.get(), scale), TvStatus::Ok);
    EXPECT_EQ(scale.getName(), u"1:1");
    EXPECT_TRUE(TvDbObjectPointer<TvDbScale>(scale.objectId())->isUnitScale());
}

TEST(AnnotationScales, OfRealDrawingsAreTheirs)
{
    forEachDrawing("ac10", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        const auto scales = drawing.objectContextManager()
                                ->contextCollection(TvString(tvdbAnnotationScaleCollectionName))
                                ->contexts();
        const int known = expected["counts"].value("SCALE", 0);
        EXPECT_LE(static_cast<int>(scales.size()), known);
        EXPECT_EQ(scales.empty(), known == 0);
        TvDbAnnotationScale current;
        EXPECT_EQ(tvdbGetCurAnnoScale(&drawing, current) == TvStatus::Ok, known > 0);
        std::set<TvString> names;
        for (const TvDbAnnotationScale& scale : scales) {
            EXPECT_GT(ratioOf(scale), 0);
            EXPECT_TRUE(names.insert(scale.getName()).second) << scale.getName().utf8();
            // The names of plain scales say what they are.
            if (scale.getName() == u"1:50") {
                EXPECT_DOUBLE_EQ(ratioOf(scale), 0.02);
            }
        }
        EXPECT_EQ(names.count(u"1:1") == 1, known > 0);
    });
}

TEST(AnnotationScales, OfExternalReferencesAreToldByTheirNames)
{
    EXPECT_TRUE(TvDbAnnotationScale(u"1:50_XREF", 1, 50).isXref());
    EXPECT_FALSE(TvDbAnnotationScale(u"1:50", 1, 50).isXref());
    double ratio = 0;
    EXPECT_EQ(TvDbAnnotationScale(u"x", 1, 0).getScale(ratio), TvStatus::InvalidInput);
}

// --- data links

TEST_P(ManagerTest, DataLinksAreListedByName)
{
    const auto drawing = open();
    TvDbDataLinkManager& links = *drawing->getDataLinkManager();
    EXPECT_TRUE(links.dictionaryId().isNull());
    EXPECT_EQ(links.dataLinkCount(), 0);
    TvDbObjectId id;
    EXPECT_EQ(links.getDataLink(u"Sheets", id), TvStatus::KeyNotFound);
    EXPECT_EQ(links.removeDataLink(u"Sheets"), TvStatus::KeyNotFound);
    EXPECT_FALSE(drawing->isModified()) << "looking makes nothing";
    ASSERT_EQ(links.createDataLink(u"Sheets", u"Adapter", u"a?b?c", id), TvStatus::Ok);
    TvDbObjectId second;
    EXPECT_EQ(links.createDataLink(u"SHEETS", u"Adapter", u"x", second), TvStatus::DuplicateName);
    EXPECT_EQ(links.createDataLink(u"", u"Adapter", u"x", second), TvStatus::InvalidName);
    EXPECT_EQ(links.addDataLink(u"x", nullptr, second), TvStatus::InvalidInput);
    {
        const TvDbObjectPointer<TvDbDataLink> link(id, TvDb::kForWrite);
        ASSERT_TRUE(link);
        EXPECT_EQ(link->setDescription(u"rows"), TvStatus::Ok);
        EXPECT_EQ(link->setToolTip(u"tip"), TvStatus::Ok);
        EXPECT_EQ(link->setOption(2), TvStatus::Ok);
        EXPECT_EQ(link->setUpdateOption(0x20000), TvStatus::Ok);
    }
    ASSERT_EQ(links.createDataLink(u"Another", u"B", u"", second), TvStatus::Ok);

    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    TvDbDataLinkManager& again = *read->getDataLinkManager();
    EXPECT_EQ(again.dataLinkCount(), 2);
    TvDbDataLink* opened = nullptr;
    ASSERT_EQ(again.getDataLink(u"sheets", opened), TvStatus::Ok);
    EXPECT_EQ(opened->name(), u"Sheets");
    EXPECT_EQ(opened->dataAdapterId(), u"Adapter");
    EXPECT_EQ(opened->connectionString(), u"a?b?c");
    EXPECT_EQ(opened->description(), u"rows");
    EXPECT_EQ(opened->getToolTip(), u"tip");
    EXPECT_EQ(opened->option(), 2);
    EXPECT_EQ(opened->updateOption(), 0x20000);
    EXPECT_NE(opened->setOption(1), TvStatus::Ok) << "open for reading";
    opened->close();
    EXPECT_EQ(again.removeDataLink(u"Sheets"), TvStatus::Ok);
    EXPECT_EQ(again.dataLinkCount(), 1);
    EXPECT_EQ(again.getDataLink(u"Sheets", opened), TvStatus::KeyNotFound);
    EXPECT_EQ(opened, nullptr);
}

TEST(DataLinks, OfRealDrawingsThatHaveNoneAreNone)
{
    forEachDrawing("ac10", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        EXPECT_EQ(drawing.getDataLinkManager()->dataLinkCount(),
                  expected["counts"].value("DATALINK", 0));
    });
}

// --- table styles, transactions

TEST(TableStyles, AreInTheDictionaryOfTheDrawing)
{
    forEachDrawing("ac10", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        TvDbDictionary* styles = nullptr;
        const bool has = expected["counts"].contains("TABLESTYLE");
        ASSERT_EQ(drawing.getTableStyleDictionary(styles) == TvStatus::Ok, has);
        if (!has)
            return;
        EXPECT_EQ(static_cast<int>(styles->numEntries()), expected["counts"]["TABLESTYLE"]);
        EXPECT_TRUE(styles->has(u"Standard"));
        styles->close();
    });
}

TEST_P(ManagerTest, ATransactionHoldsWhatItOpenedUntilItEnds)
{
    const auto drawing = open();
    TvDbTransactionManager& transactions = *drawing->transactionManager();
    EXPECT_EQ(transactions.numActiveTransactions(), 0);
    EXPECT_EQ(transactions.topTransaction(), nullptr);
    EXPECT_EQ(transactions.endTransaction(), TvStatus::InvalidInput);
    EXPECT_EQ(transactions.abortTransaction(), TvStatus::InvalidInput);
    TvDbTransaction* transaction = transactions.startTransaction();
    ASSERT_TRUE(transaction);
    EXPECT_EQ(transactions.topTransaction(), transaction);
    TvDbDictionary* named = nullptr;
    ASSERT_EQ(transaction->getObject(named, drawing->namedObjectsDictionaryId(), TvDb::kForWrite),
              TvStatus::Ok);
    EXPECT_EQ(TvDbObjectPointer<TvDbDictionary>(drawing->namedObjectsDictionaryId()).openStatus(),
              TvStatus::WasOpenForWrite);
    EXPECT_EQ(transactions.endTransaction(), TvStatus::Ok);
    EXPECT_TRUE(TvDbObjectPointer<TvDbDictionary>(drawing->namedObjectsDictionaryId()));
}
