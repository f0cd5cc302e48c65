// One change to a real drawing on disk: what is not concerned stays bit for bit, and what is undone
// leaves no trace.

#include <algorithm>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_transaction.h>
#include <db/tv_db_xrecord.h>

#include "real_drawing.h"
#include "temp_folder.h"

namespace {

using Handles = std::set<std::uint64_t>;

/// Real drawings of one version, copied into a folder where they may be changed.
class OneChange : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        dwg::install();
        for (const auto& [name, expected] : realDrawings("mixed-" + GetParam())) {
            const auto bytes = readFile(drawingsFolder() / name);
            folder.write("plan.dwg", std::string(bytes.begin(), bytes.end()));
            before = dwg::RawDrawing::open(bytes);
            ASSERT_TRUE(before);
            ASSERT_EQ(drawing.readDwgFile(folder.file("plan.dwg")), TvStatus::Ok);
            return;
        }
        GTEST_SKIP();
    }

    /// The objects whose bytes differ between the file as it was and as it is saved now, and those
    /// that only one of the two has.
    Handles changedOnDisk()
    {
        EXPECT_EQ(drawing.saveAs(folder.file("plan.dwg")), TvStatus::Ok)
            << static_cast<int>(drawing.lastFailure().reason());
        auto after = dwg::RawDrawing::open(readFile(folder.path() / "plan.dwg"));
        EXPECT_TRUE(after);
        Handles changed;
        for (const auto* one : {&*before, &*after})
            for (const dwg::ObjectLocation& object : one->objects()) {
                const auto old = before->objectBytes(object.handle);
                const auto now = after->objectBytes(object.handle);
                if (!old || !now || !std::ranges::equal(*old, *now))
                    changed.insert(object.handle);
            }
        return changed;
    }
    TvDbObjectId layoutNamed(const TvChar* name)
    {
        const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
        TvDbObjectId id;
        EXPECT_EQ(layouts->getAt(name, id), TvStatus::Ok);
        return id;
    }
    static std::uint64_t value(TvDbObjectId id) { return id.handle().value(); }

    TempFolder folder;
    base::Result<dwg::RawDrawing> before{
        base::Status(base::Failure::NotFound, base::Reason::DwgObjectMissing)};
    TvDbDatabase drawing{false, true};
};
INSTANTIATE_TEST_SUITE_P(Versions, OneChange, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

TEST_P(OneChange, NoneChangesNothing)
{
    EXPECT_EQ(changedOnDisk(), Handles());
}

TEST_P(OneChange, ANewRecordConcernsItsDictionaryOnly)
{
    TvDbObjectId id;
    {
        const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        auto* record = new TvDbXrecord;
        ASSERT_EQ(named->setAt(u"KV_TEST", record, id), TvStatus::Ok);
        const TvResbufPtr items(tvutBuildList(1, u"text", 40, 2.5, 90, 7));
        ASSERT_EQ(record->setFromRbChain(*items.get()), TvStatus::Ok);
        record->close();
    }
    EXPECT_EQ(changedOnDisk(), (Handles{value(drawing.namedObjectsDictionaryId()), value(id)}));
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_EQ(changedOnDisk(), Handles());
}

TEST_P(OneChange, ANewNameOfALayoutConcernsItAndTheirDictionary)
{
    const TvDbObjectId id = layoutNamed(u"MyLayout");
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        ASSERT_EQ(layout->setLayoutName(u"Renamed"), TvStatus::Ok);
    }
    EXPECT_EQ(changedOnDisk(), (Handles{value(drawing.layoutDictionaryId()), value(id)}));
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_EQ(changedOnDisk(), Handles());
}

TEST_P(OneChange, ALayoutThatIsErasedGoesWithWhatItOwns)
{
    const TvDbObjectId id = layoutNamed(u"Layout2");
    Handles gone{value(id)};
    const TvDbObjectId block =
        TvDbObjectPointer<TvDbLayout>(id, TvDb::kForNotify)->getBlockTableRecordId();
    ASSERT_NE(block, drawing.paperSpaceId());
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        ASSERT_EQ(layout->erase(), TvStatus::Ok);
    }
    EXPECT_TRUE(block.isErased());
    const Handles changed = changedOnDisk();
    const auto after = dwg::RawDrawing::open(readFile(folder.path() / "plan.dwg"));
    ASSERT_TRUE(after);
    std::map<std::string, int> kinds;
    int erased = 0;
    for (const std::uint64_t handle : changed) {
        const TvDbObjectId object = drawing.find(handle);
        ASSERT_FALSE(object.isNull());
        EXPECT_EQ(object.isErased(), !after->objectBytes(handle)) << textOf(object);
        if (object.isErased())
            ++erased;
        else
            ++kinds[TvDbObjectPointer<TvDbObject>(object, TvDb::kForNotify)
                        ->record()
                        .classDef()
                        ->name()
                        .data()];
    }
    EXPECT_GE(erased, 4) << "the layout, its block, and what that begins and ends with";
    // Its dictionary and its block's table; the tab that closes up; and few that named it.
    EXPECT_LE(changed.size() - static_cast<std::size_t>(erased), 6u)
        << testing::PrintToString(kinds);
    EXPECT_TRUE(changed.count(value(drawing.layoutDictionaryId())));
    EXPECT_TRUE(changed.count(value(drawing.symbolTableId(TvDb::SymbolTable::Block))));
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_EQ(changedOnDisk(), Handles());
}

TEST_P(OneChange, ANewViewConcernsItsTableOnly)
{
    TvDbObjectId id;
    {
        const TvDbObjectPointer<TvDbViewTable> views(drawing.symbolTableId(TvDb::SymbolTable::View),
                                                     TvDb::kForWrite);
        auto* view = new TvDbViewTableRecord;
        ASSERT_EQ(view->setName(u"KV view"), TvStatus::Ok);
        ASSERT_EQ(views->add(id, view), TvStatus::Ok);
        ASSERT_EQ(view->setHeight(20), TvStatus::Ok);
        ASSERT_EQ(view->setWidth(30), TvStatus::Ok);
        view->close();
    }
    EXPECT_EQ(changedOnDisk(),
              (Handles{value(drawing.symbolTableId(TvDb::SymbolTable::View)), value(id)}));
    ASSERT_EQ(drawing.undo(), TvStatus::Ok);
    EXPECT_EQ(changedOnDisk(), Handles());
}

TEST_P(OneChange, AnAbortedTransactionLeavesTheFileAsItWas)
{
    drawing.transactionManager()->startTransaction();
    drawing.transactionManager()->startTransaction();
    {
        const TvDbObjectPointer<TvDbLayout> layout(layoutNamed(u"MyLayout"), TvDb::kForWrite);
        ASSERT_EQ(layout->setLayoutName(u"Renamed"), TvStatus::Ok);
        ASSERT_EQ(layout->createExtensionDictionary(), TvStatus::Ok);
    }
    ASSERT_EQ(drawing.transactionManager()->endTransaction(), TvStatus::Ok);
    ASSERT_EQ(drawing.transactionManager()->abortTransaction(), TvStatus::Ok);
    EXPECT_EQ(changedOnDisk(), Handles());
    EXPECT_FALSE(drawing.hasUndo());
}
