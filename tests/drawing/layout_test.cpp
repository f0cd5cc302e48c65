#include <db/tv_db_curves.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "real_drawing.h"

namespace {

TvDbObjectId layoutNamed(TvDbDatabase& drawing, const TvChar* name)
{
    const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
    TvDbObjectId id;
    if (layouts)
        layouts->getAt(TvString(name), id);
    return id;
}

std::vector<std::string> names(TvDbDatabase& drawing)
{
    std::vector<std::string> all;
    for (const TvDbObjectId id : db::layoutsInTabOrder(drawing))
        all.push_back(TvDbObjectPointer<TvDbLayout>(id, TvDb::kForNotify)->getLayoutName().utf8());
    return all;
}

using Names = std::vector<std::string>;

/// A minimal drawing of each version, with the layouts Model and Layout1.
class LayoutTest : public testing::TestWithParam<std::string>
{
protected:
    LayoutTest() : drawing(openBytes(minimalDrawing("line-" + GetParam() + ".dwg"))) {}

    TvDbObjectId add(const TvChar* name)
    {
        TvDbObjectId id;
        EXPECT_EQ(db::addLayout(*drawing, TvString(name), id), TvStatus::Ok);
        return id;
    }
    TvStatusCode erase(TvDbObjectId id)
    {
        TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        return layout ? layout->erase() : layout.openStatus();
    }
    std::string blockName(TvDbObjectId layout) const
    {
        const TvDbObjectPointer<TvDbLayout> object(layout);
        return TvDbObjectPointer<TvDbBlockTableRecord>(object->getBlockTableRecordId())
            ->getName()
            .utf8();
    }

    std::unique_ptr<TvDbDatabase> drawing;
};

INSTANTIATE_TEST_SUITE_P(Versions, LayoutTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

// --- as files have them

TEST(Layouts, OfRealDrawingsAreAsExpected)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        const std::vector<TvDbObjectId> ids = db::layoutsInTabOrder(drawing);
        ASSERT_EQ(ids.size(), expected["layouts"].size());
        for (const nlohmann::json& facts : expected["layouts"]) {
            const TvString name(facts["name"].get<std::string>());
            const TvDbObjectPointer<TvDbLayout> layout(layoutNamed(drawing, name.kwszPtr()));
            ASSERT_TRUE(layout) << name.utf8();
            EXPECT_EQ(textOf(layout->objectId()), facts["handle"]);
            EXPECT_EQ(layout->getLayoutName(), name);
            EXPECT_EQ(layout->getTabOrder(), facts["tab_order"]);
            EXPECT_EQ(textOf(layout->getBlockTableRecordId()), facts["block_record"]);
            EXPECT_EQ(layout->getCanonicalMediaName().utf8(), facts["paper_size"]);
            EXPECT_EQ(layout->getPlotCfgName().utf8(), facts["plotter"]);
            EXPECT_EQ(layout->getPlotSettingsName().utf8(), facts["page_setup"]);
            double width = 0, height = 0;
            EXPECT_EQ(layout->getPlotPaperSize(width, height) == TvStatus::Ok,
                      facts["paper_mm"][0] > 0);
            EXPECT_EQ(width, facts["paper_mm"][0]);
            EXPECT_EQ(height, facts["paper_mm"][1]);
            std::vector<std::string> viewports;
            for (const TvDbObjectId id : layout->getViewportArray())
                viewports.push_back(textOf(id));
            EXPECT_EQ(viewports, facts["viewports"].get<std::vector<std::string>>());
            EXPECT_EQ(layout->isModelLayout(), name == u"Model");
            const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId());
            ASSERT_TRUE(block);
            EXPECT_EQ(block->getLayoutId(), layout->objectId());
            EXPECT_EQ(block->entityIds().size(), facts["entities"]);
        }
    });
}

// Where the paper of a layout was never chosen the limits are what is shown; else the two agree as
// long as the layout is plotted at its own origin.
TEST(Layouts, PaperOfRealDrawingsLiesAsTheirLimitsSay)
{
    int compared = 0;
    forEachDrawing("", [&](TvDbDatabase& drawing, const nlohmann::json&) {
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
            const TvDbObjectPointer<TvDbLayout> layout(id);
            double x = 0, y = 0;
            layout->getPlotOrigin(x, y);
            db::Point low, high, limitLow, limitHigh;
            if (layout->isModelLayout() || x != 0 || y != 0 ||
                layout->getPaperArea(low, high) != TvStatus::Ok)
                continue;
            layout->getLimits(limitLow, limitHigh);
            EXPECT_NEAR(low.x, limitLow.x, 1e-5) << layout->getLayoutName().utf8();
            EXPECT_NEAR(low.y, limitLow.y, 1e-5);
            EXPECT_NEAR(high.x, limitHigh.x, 1e-4);
            EXPECT_NEAR(high.y, limitHigh.y, 1e-4);
            ++compared;
        }
    });
    if (!realDrawings("").empty()) {
        EXPECT_GT(compared, 30);
    }
}

TEST(Layouts, KeepPicturesInTheirRecordOrBesideIt)
{
    int pictures = 0;
    forEachDrawing("mixed", [&](TvDbDatabase& drawing, const nlohmann::json& expected) {
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
            const db::Preview picture = TvDbObjectPointer<TvDbLayout>(id)->getThumbnail();
            if (picture.kind == db::Preview::Kind::None)
                continue;
            EXPECT_GT(picture.bytes.size(), 40u);
            ++pictures;
            const bool isOld = expected["version"] < "AC1027";
            EXPECT_EQ(picture.kind == db::Preview::Kind::Bmp, isOld);
        }
    });
    if (!realDrawings("mixed").empty()) {
        EXPECT_GE(pictures, 10);
    }
}

// --- names

TEST_P(LayoutTest, IsRenamedInItsDictionaryAndNothingElseChanges)
{
    const TvDbObjectId id = layoutNamed(*drawing, u"Layout1");
    EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(id, TvDb::kForWrite)->setLayoutName(u"Pläne 1"),
              TvStatus::Ok);
    EXPECT_EQ(names(*drawing), (Names{"Model", "Pläne 1"}));

    const auto read = savedAndRead(*drawing);
    EXPECT_EQ(layoutNamed(*read, u"PLÄNE 1").handle(), id.handle());
    EXPECT_FALSE(layoutNamed(*read, u"Layout1"));
    const auto before = openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
    EXPECT_EQ(differences(*before, *read),
              (std::set<std::uint64_t>{id.handle().value(),
                                       before->layoutDictionaryId().handle().value()}));
}

TEST_P(LayoutTest, NameMayBeTakenReservedOrWrong)
{
    add(u"Other");
    TvDbObjectPointer<TvDbLayout> layout(layoutNamed(*drawing, u"Layout1"), TvDb::kForWrite);
    EXPECT_EQ(layout->setLayoutName(u"OTHER"), TvStatus::DuplicateName);
    EXPECT_EQ(layout->setLayoutName(u"model"), TvStatus::NameReserved);
    EXPECT_EQ(layout->setLayoutName(u""), TvStatus::InvalidName);
    EXPECT_EQ(layout->setLayoutName(u"a/b"), TvStatus::InvalidName);
    EXPECT_EQ(layout->setLayoutName(TvString(std::u16string(256, u'x'))), TvStatus::InvalidName);
    EXPECT_EQ(layout->setLayoutName(u"LAYOUT1"), TvStatus::Ok) << "its own, in other letters";
    TvDbObjectPointer<TvDbLayout> model(layoutNamed(*drawing, u"Model"), TvDb::kForWrite);
    EXPECT_EQ(model->setLayoutName(u"Space"), TvStatus::NameReserved);
    layout.close();
    TvDbObjectPointer<TvDbLayout> reader(layoutNamed(*drawing, u"Layout1"));
    EXPECT_EQ(reader->setLayoutName(u"New"), TvStatus::NotOpenForWrite);
    EXPECT_EQ(names(*drawing), (Names{"Model", "LAYOUT1", "Other"}));
}

// --- new ones

TEST_P(LayoutTest, NewOneHasBlockViewportAndPaperAlsoAfterASave)
{
    const TvDbObjectId id = add(u"Second");
    for (TvDbDatabase* one : {drawing.get(), savedAndRead(*drawing).release()}) {
        const std::unique_ptr<TvDbDatabase> read(one == drawing.get() ? nullptr : one);
        EXPECT_EQ(names(*one), (Names{"Model", "Layout1", "Second"}));
        const TvDbObjectPointer<TvDbLayout> layout(one->find(id.handle().value()));
        ASSERT_TRUE(layout);
        EXPECT_EQ(layout->getTabOrder(), 2);
        EXPECT_EQ(layout->ownerId(), one->layoutDictionaryId());
        const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId());
        ASSERT_TRUE(block);
        EXPECT_EQ(block->getName().utf8(), "*Paper_Space0");
        EXPECT_EQ(std::u16string(block->fields().text("name")), u"*Paper_Space");
        EXPECT_EQ(block->getLayoutId(), layout->objectId());
        EXPECT_EQ(layout->getViewportArray(), block->entityIds());
        ASSERT_EQ(block->entityIds().size(), 1u);
        const TvDbObjectPointer<TvDbViewport> viewport(block->entityIds()[0]);
        EXPECT_EQ(viewport->number(), 1);
        EXPECT_EQ(viewport->ownerId(), block->objectId());
        EXPECT_EQ(viewport->layer().utf8(), "0");
        EXPECT_GT(viewport->viewHeight(), 0);
        db::Point low, high;
        EXPECT_EQ(layout->getPaperArea(low, high), TvStatus::Ok);
        EXPECT_NEAR(high.x - low.x, 11, 1e-9) << "the drawing measures in inches";
        EXPECT_NEAR(high.y - low.y, 8.5, 1e-9);
        const TvDbObjectPointer<TvDbBlockTable> blocks(
            one->symbolTableId(TvDb::SymbolTable::Block));
        TvDbObjectId found;
        EXPECT_EQ(blocks->getIdAt(u"*paper_space0", found), TvStatus::Ok);
        EXPECT_EQ(found, block->objectId());
    }
}

TEST_P(LayoutTest, NewOneNeedsANameOfItsOwn)
{
    TvDbObjectId id;
    const std::size_t before = drawing->objectIds().size();
    EXPECT_EQ(db::addLayout(*drawing, u"layout1", id), TvStatus::DuplicateName);
    EXPECT_EQ(db::addLayout(*drawing, u"MODEL", id), TvStatus::NameReserved);
    EXPECT_EQ(db::addLayout(*drawing, u"a<b", id), TvStatus::InvalidName);
    EXPECT_TRUE(id.isNull());
    EXPECT_EQ(drawing->objectIds().size(), before);
}

TEST_P(LayoutTest, NameMayHaveCharactersThatTheCodePageLacks)
{
    const TvChar* const name = u"\u03A9mega \u4E2D";
    add(name);
    const auto again = savedAndRead(*drawing);
    ASSERT_TRUE(again);
    const TvDbObjectId id = layoutNamed(*again, name);
    ASSERT_FALSE(id.isNull());
    const TvDbObjectPointer<TvDbLayout> layout(id);
    EXPECT_EQ(layout->getLayoutName(), TvString(name));
    TvDbObjectId second;
    EXPECT_EQ(db::addLayout(*again, TvString(name), second), TvStatus::DuplicateName);
}

TEST_P(LayoutTest, BlocksOfManyAreNumberedAndNoneHasTheNameOfAnother)
{
    std::set<std::string> blocks;
    for (int i = 0; i < 12; ++i)
        blocks.insert(blockName(add(TvString(std::to_string(i)).kwszPtr())));
    EXPECT_EQ(blocks.size(), 12u);
    const auto read = savedAndRead(*drawing);
    EXPECT_EQ(names(*read).size(), 14u);
}

// --- erasing

TEST_P(LayoutTest, ErasedOneGoesWithItsBlockAndTheTabsCloseUp)
{
    const TvDbObjectId second = add(u"Second"), third = add(u"Third");
    const TvDbObjectId block = TvDbObjectPointer<TvDbLayout>(second)->getBlockTableRecordId();
    const TvDbObjectId viewport = TvDbObjectPointer<TvDbBlockTableRecord>(block)->entityIds().at(0);
    EXPECT_EQ(erase(second), TvStatus::Ok);
    EXPECT_TRUE(block.isErased());
    EXPECT_TRUE(viewport.isErased());
    EXPECT_EQ(names(*drawing), (Names{"Model", "Layout1", "Third"}));
    EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(third)->getTabOrder(), 2);

    const auto read = savedAndRead(*drawing);
    EXPECT_EQ(names(*read), (Names{"Model", "Layout1", "Third"}));
    for (const TvDbObjectId gone : {second, block, viewport})
        EXPECT_FALSE(read->find(gone.handle().value())) << textOf(gone);
    EXPECT_EQ(read->objectIds().size(), drawing->objectIds().size());
}

TEST_P(LayoutTest, MayTakeTheNameOfAnErasedOne)
{
    const TvDbObjectId second = add(u"Second"), third = add(u"Third");
    ASSERT_EQ(erase(third), TvStatus::Ok);
    EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(second, TvDb::kForWrite)->setLayoutName(u"Third"),
              TvStatus::Ok);
    EXPECT_EQ(layoutNamed(*drawing, u"Third"), second);
    EXPECT_TRUE(layoutNamed(*drawing, u"Second").isNull());
    const auto again = savedAndRead(*drawing);
    EXPECT_EQ(names(*again), (Names{"Model", "Layout1", "Third"}));
}

TEST(NewDrawing, AnyOfItsLayoutsMayBeTheLastAndItsBlockIsThePaperSpaceThen)
{
    for (const TvChar* kept : {u"Layout1", u"Layout2"}) {
        TvDbDatabase drawing(true, true);
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
            TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
            if (!layout->isModelLayout() && layout->getLayoutName() != kept) {
                EXPECT_EQ(layout->erase(), TvStatus::Ok);
            }
        }
        const TvDbObjectPointer<TvDbBlockTableRecord> block(drawing.paperSpaceId());
        EXPECT_EQ(block->getName().utf8(), "*Paper_Space");
        EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(block->getLayoutId())->getLayoutName(), kept);
    }
}

TEST_P(LayoutTest, ErasedOneComesBackWithItsTab)
{
    const TvDbObjectId second = add(u"Second");
    add(u"Third");
    EXPECT_EQ(erase(second), TvStatus::Ok);
    TvDbObjectPointer<TvDbLayout> layout(second, TvDb::kForWrite, true);
    EXPECT_EQ(layout->erase(false), TvStatus::Ok);
    layout.close();
    EXPECT_EQ(names(*drawing), (Names{"Model", "Layout1", "Second", "Third"}));
    EXPECT_EQ(blockName(second), "*Paper_Space0");
}

TEST_P(LayoutTest, TheShownOneMayBeErasedAndAnotherIsShownThen)
{
    const TvDbObjectId first = layoutNamed(*drawing, u"Layout1"), second = add(u"Second");
    const TvDbObjectId block = TvDbObjectPointer<TvDbLayout>(second)->getBlockTableRecordId();
    EXPECT_EQ(erase(first), TvStatus::Ok);
    EXPECT_EQ(drawing->paperSpaceId(), block);
    EXPECT_EQ(blockName(second), "*Paper_Space");

    const auto read = savedAndRead(*drawing);
    EXPECT_EQ(names(*read), (Names{"Model", "Second"}));
    EXPECT_EQ(read->paperSpaceId().handle(), block.handle());
    const TvDbObjectPointer<TvDbBlockTableRecord> shown(read->paperSpaceId());
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown->entityIds().size(), 1u);
    EXPECT_EQ(TvDbObjectPointer<TvDbObject>(shown->entityIds()[0])->fields().integer("entmode"), 1);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTable>(read->symbolTableId(TvDb::SymbolTable::Block))
                  ->paperSpaceId(),
              shown->objectId());
}

TEST_P(LayoutTest, ModelAndTheLastPaperLayoutStay)
{
    EXPECT_EQ(erase(layoutNamed(*drawing, u"Model")), TvStatus::StillInUse);
    EXPECT_EQ(erase(layoutNamed(*drawing, u"Layout1")), TvStatus::StillInUse);
    EXPECT_EQ(names(*drawing), (Names{"Model", "Layout1"}));
}

TEST(Layouts, OfRealDrawingsCanBeErasedAndTheOthersStay)
{
    forEachDrawing("mixed", [](TvDbDatabase& drawing, const nlohmann::json&) {
        const std::size_t before = drawing.objectIds().size();
        const std::vector<TvDbObjectId> all = db::layoutsInTabOrder(drawing);
        for (const TvDbObjectId id : {all[1], all[3]})
            EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(id, TvDb::kForWrite)->erase(), TvStatus::Ok);
        EXPECT_LT(drawing.objectIds().size(), before - 4);
        const auto read = savedAndRead(drawing);
        ASSERT_TRUE(read);
        EXPECT_EQ(names(*read), (Names{"Model", "Layout2"}));
        EXPECT_EQ(read->objectIds().size(), drawing.objectIds().size());
        EXPECT_EQ(
            TvDbObjectPointer<TvDbBlockTableRecord>(read->modelSpaceId())->entityIds().size(),
            TvDbObjectPointer<TvDbBlockTableRecord>(drawing.modelSpaceId())->entityIds().size());
    });
}

// --- the layout that is shown

TEST_P(LayoutTest, ShownOneChangesPlacesWithAnotherAndBackAgain)
{
    const TvDbObjectId other =
        TvDbObjectPointer<TvDbLayout>(add(u"Second"))->getBlockTableRecordId();
    const TvDbObjectId first = drawing->paperSpaceId();
    const auto show = [](TvDbDatabase& in, TvDbObjectId block) {
        TvDbObjectPointer<TvDbBlockTable> blocks(in.symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        return blocks->setPaperSpaceId(in.find(block.handle().value()));
    };
    EXPECT_EQ(show(*drawing, drawing->modelSpaceId()), TvStatus::InvalidInput);
    // The first block of the sample does not stand as others are written: from there on it does.
    EXPECT_EQ(show(*drawing, other), TvStatus::Ok);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(other)->getName(), u"*Paper_Space");
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(first)->getName(), u"*Paper_Space0");
    EXPECT_EQ(show(*drawing, first), TvStatus::Ok);
    const auto before = savedAndRead(*drawing);

    EXPECT_EQ(show(*drawing, other), TvStatus::Ok);
    const auto turned = savedAndRead(*drawing);
    EXPECT_EQ(turned->paperSpaceId().handle(), other.handle());
    EXPECT_EQ(names(*turned), names(*drawing));
    EXPECT_EQ(show(*turned, first), TvStatus::Ok);
    const auto back = savedAndRead(*turned);
    EXPECT_EQ(back->paperSpaceId().handle(), first.handle());
    std::set<std::uint64_t> differing = differences(*before, *back);
    if (GetParam() == "ac1015") // the second records of the viewports are new ones
        for (const TvDbDatabase* one : {before.get(), back.get()})
            std::erase_if(differing, [&](std::uint64_t handle) {
                const TvDbObjectPointer<TvDbObject> object(one->find(handle), TvDb::kForNotify);
                return !object || object->record().classDef()->name().starts_with("VPENT_HDR");
            });
    EXPECT_EQ(differing, std::set<std::uint64_t>());
}

TEST_P(LayoutTest, EntitiesOfTheShownOneImplyTheirOwnerAndThoseOfOthersNameIt)
{
    const TvDbObjectId first = drawing->paperSpaceId();
    const TvDbObjectId second =
        TvDbObjectPointer<TvDbLayout>(add(u"Second"))->getBlockTableRecordId();
    std::map<std::uint64_t, std::uint64_t> lines; // by their blocks
    for (const TvDbObjectId block : {first, second}) {
        TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
        auto* line = new TvDbLine({0, 0, 0}, {1, 1, 0});
        TvDbObjectId id;
        ASSERT_EQ(record->appendTvDbEntity(id, line), TvStatus::Ok);
        line->close();
        lines[block.handle().value()] = id.handle().value();
    }
    const auto expectShown = [&](TvDbDatabase& in, TvDbObjectId shown) {
        EXPECT_EQ(in.paperSpaceId().handle(), shown.handle());
        EXPECT_EQ(TvDbObjectPointer<TvDbBlockTable>(in.symbolTableId(TvDb::SymbolTable::Block))
                      ->paperSpaceId()
                      .handle(),
                  shown.handle());
        for (const auto& [block, line] : lines) {
            const TvDbObjectPointer<TvDbLine> object(in.find(line));
            const bool isShown = block == shown.handle().value();
            EXPECT_EQ(object->fields().integer("entmode"), isShown ? 1 : 0) << block;
            EXPECT_EQ(object->fields().handle("owner"), isShown ? 0 : block);
            EXPECT_EQ(object->ownerId().handle().value(), block);
        }
    };
    expectShown(*drawing, first);
    TvDbHeaderVar& header = *TvDbSystemInternals::getImpDatabase(drawing.get())->headerVar();
    EXPECT_EQ(header.setpaperSpace(drawing->modelSpaceId()), TvStatus::InvalidInput);
    EXPECT_EQ(header.setpaperSpace(TvDbObjectId()), TvStatus::InvalidInput);
    ASSERT_EQ(header.setpaperSpace(second), TvStatus::Ok);
    EXPECT_EQ(header.paperSpace(), second);
    expectShown(*drawing, second);
    const auto turned = savedAndRead(*drawing);
    ASSERT_TRUE(turned);
    expectShown(*turned, second);
    {
        // As a part of the host does it that has the table open itself.
        const TvDbObjectPointer<TvDbBlockTable> table(
            turned->symbolTableId(TvDb::SymbolTable::Block), TvDb::kForWrite);
        TvDbImpDatabase* internal = TvDbSystemInternals::getImpDatabase(turned.get());
        ASSERT_EQ(internal->headerVar()->setpaperSpace(turned->find(first.handle().value())),
                  TvStatus::Ok);
        TvDbObjectPointer<TvDbBlockTableRecord> record(turned->paperSpaceId(), TvDb::kForWrite);
        EXPECT_EQ(record->setName(u"*Paper_Space"), TvStatus::Ok);
        EXPECT_EQ(record->setName(u"*Paper_Space7"), TvStatus::InvalidName);
    }
    const auto back = savedAndRead(*turned);
    ASSERT_TRUE(back);
    expectShown(*back, first);
}

TEST(Layouts, OfAc1015HaveARecordForEachViewportThatIsShown)
{
    const auto drawing = openBytes(minimalDrawing("line-ac1015.dwg"));
    TvDbObjectId layout;
    ASSERT_EQ(db::addLayout(*drawing, u"Second", layout), TvStatus::Ok);
    const TvDbObjectId table = drawing->find(drawing->headerRecord().handle("VXCTL"));
    const auto recordCount = [&](TvDbDatabase& of) {
        return TvDbObjectPointer<TvDbObject>(of.find(table.handle().value()))
            ->fields()
            .array("entries")
            .size();
    };
    EXPECT_EQ(recordCount(*drawing), 0u) << "it is not shown";
    TvDbObjectPointer<TvDbBlockTable> blocks(drawing->symbolTableId(TvDb::SymbolTable::Block),
                                             TvDb::kForWrite);
    const TvDbObjectId block = TvDbObjectPointer<TvDbLayout>(layout)->getBlockTableRecordId();
    const TvDbObjectId before = drawing->paperSpaceId();
    ASSERT_EQ(blocks->setPaperSpaceId(block), TvStatus::Ok);
    EXPECT_EQ(recordCount(*drawing), 1u);
    const auto read = savedAndRead(*drawing);
    EXPECT_EQ(recordCount(*read), 1u);
    ASSERT_EQ(blocks->setPaperSpaceId(before), TvStatus::Ok);
    EXPECT_EQ(recordCount(*drawing), 0u);
}
