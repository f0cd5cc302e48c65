#include <db/tv_db_block_reference.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>
#include <db/tv_db_xrecord.h>

#include "real_drawing.h"

namespace {

class ViewTest : public testing::TestWithParam<std::string>
{
protected:
    ViewTest() : drawing(openBytes(minimalDrawing("line-" + GetParam() + ".dwg"))) {}

    TvDbObjectId addView(const TvChar* name)
    {
        TvDbObjectPointer<TvDbViewTable> views(drawing->symbolTableId(TvDb::SymbolTable::View),
                                               TvDb::kForWrite);
        auto* view = new TvDbViewTableRecord;
        view->setName(name);
        view->setWidth(20);
        view->setHeight(10);
        view->setCenterPoint({3, 4, 0});
        TvDbObjectId id;
        EXPECT_EQ(views->add(id, view), TvStatus::Ok);
        view->close();
        return id;
    }
    TvDbObjectId layout() { return db::layoutsInTabOrder(*drawing).at(1); }

    std::unique_ptr<TvDbDatabase> drawing;
};

INSTANTIATE_TEST_SUITE_P(Versions, ViewTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

TEST(Views, OfRealDrawingsAreAsExpected)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        const TvDbObjectPointer<TvDbViewTable> views(
            drawing.symbolTableId(TvDb::SymbolTable::View));
        ASSERT_TRUE(views);
        EXPECT_EQ(views->recordIds().size(), expected["views"].size());
        for (const nlohmann::json& facts : expected["views"]) {
            TvDbViewTableRecord* opened = nullptr;
            ASSERT_EQ(views->getAt(TvString(facts["name"].get<std::string>()), opened),
                      TvStatus::Ok);
            EXPECT_EQ(textOf(opened->objectId()), facts["handle"]);
            EXPECT_EQ(opened->height(), facts["height"]);
            EXPECT_EQ(opened->width(), facts["width"]);
            EXPECT_FALSE(opened->isPaperspaceView());
            EXPECT_EQ(opened->getCategoryName(), u"") << "it is noted to have none";
            const TvDbObjectPointer<TvDbLayout> layout(opened->getLayout());
            ASSERT_TRUE(layout);
            EXPECT_TRUE(layout->isModelLayout());
            opened->close();
        }
    });
}

TEST(Views, KeepThePictureThatWasMadeOfThem)
{
    int pictures = 0;
    forEachDrawing("mixed", [&](TvDbDatabase& drawing, const nlohmann::json&) {
        const TvDbObjectPointer<TvDbViewTable> views(
            drawing.symbolTableId(TvDb::SymbolTable::View));
        for (const TvDbObjectId id : views->recordIds()) {
            const db::Preview picture = TvDbObjectPointer<TvDbViewTableRecord>(id)->getThumbnail();
            pictures += picture.kind != db::Preview::Kind::None && picture.bytes.size() > 40;
        }
    });
    if (!realDrawings("mixed").empty()) {
        EXPECT_GE(pictures, 3);
    }
}

TEST(Views, OfRealDrawingsGetCategoriesWhereTheyNoteThem)
{
    forEachDrawing("mixed", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        const TvDbObjectId id = drawing.find(hexValue(expected["views"][0]["handle"]));
        std::size_t notes = 0;
        {
            TvDbObjectPointer<TvDbViewTableRecord> view(id, TvDb::kForWrite);
            notes = TvDbObjectPointer<TvDbDictionary>(view->extensionDictionary())->numEntries();
            EXPECT_EQ(view->setCategoryName(u"Schnitte"), TvStatus::Ok);
        }
        const auto read = savedAndRead(drawing);
        const TvDbObjectPointer<TvDbViewTableRecord> view(read->find(id.handle().value()));
        EXPECT_EQ(view->getCategoryName(), u"Schnitte");
        EXPECT_TRUE(TvDbObjectPointer<TvDbLayout>(view->getLayout())->isModelLayout());
        EXPECT_EQ(TvDbObjectPointer<TvDbDictionary>(view->extensionDictionary())->numEntries(),
                  notes);
    });
}

TEST_P(ViewTest, NewOneIsReadBackWithCategoryAndLayout)
{
    const TvDbObjectId id = addView(u"Nord");
    {
        TvDbObjectPointer<TvDbViewTableRecord> view(id, TvDb::kForWrite);
        EXPECT_EQ(view->setIsPaperspaceView(true), TvStatus::Ok);
        EXPECT_TRUE(view->getLayout().isNull());
        EXPECT_EQ(view->setLayout(layout()), TvStatus::Ok);
        EXPECT_EQ(view->setLayout(drawing->clayer()), TvStatus::InvalidInput);
        EXPECT_EQ(view->setCategoryName(u"Ansichten"), TvStatus::Ok);
    }
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbViewTable> views(read->symbolTableId(TvDb::SymbolTable::View));
    TvDbViewTableRecord* view = nullptr;
    ASSERT_EQ(views->getAt(u"nord", view), TvStatus::Ok);
    EXPECT_TRUE(view->isPaperspaceView());
    EXPECT_EQ(view->width(), 20);
    EXPECT_EQ(view->height(), 10);
    EXPECT_EQ(view->centerPoint(), (db::Point{3, 4, 0}));
    EXPECT_EQ(view->getLayout().handle(), layout().handle());
    EXPECT_EQ(view->getCategoryName(), u"Ansichten");
    view->close();
}

TEST_P(ViewTest, CategoryIsTakenAwayAgainAndOneThatIsTheSameChangesNothing)
{
    const TvDbObjectId id = addView(u"Nord");
    {
        TvDbObjectPointer<TvDbViewTableRecord> view(id, TvDb::kForWrite);
        EXPECT_EQ(view->setCategoryName(u""), TvStatus::Ok);
        EXPECT_TRUE(view->extensionDictionary().isNull());
        EXPECT_EQ(view->setCategoryName(u"A"), TvStatus::Ok);
        EXPECT_EQ(view->setCategoryName(u""), TvStatus::Ok);
        EXPECT_EQ(view->getCategoryName(), u"");
    }
    const TvDbObjectPointer<TvDbViewTableRecord> reader(id);
    EXPECT_EQ(reader->setCategoryName(u"B"), TvStatus::NotOpenForWrite);
}

TEST_P(ViewTest, LayoutThatIsErasedIsNoneAnyMore)
{
    const TvDbObjectId id = addView(u"Nord");
    TvDbObjectId second;
    ASSERT_EQ(db::addLayout(*drawing, u"Second", second), TvStatus::Ok);
    TvDbObjectPointer<TvDbViewTableRecord>(id, TvDb::kForWrite)->setLayout(second);
    TvDbObjectPointer<TvDbLayout>(second, TvDb::kForWrite)->erase();
    EXPECT_TRUE(TvDbObjectPointer<TvDbViewTableRecord>(id)->getLayout().isNull());
    const auto read = savedAndRead(*drawing);
    EXPECT_TRUE(TvDbObjectPointer<TvDbViewTableRecord>(read->find(id.handle().value()))
                    ->getLayout()
                    .isNull());
}

// --- viewports

TEST(Viewports, OfRealDrawingsAreAsExpected)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        for (const nlohmann::json& facts : expected["viewports"]) {
            const TvDbObjectPointer<TvDbViewport> viewport(drawing.find(hexValue(facts["handle"])));
            ASSERT_TRUE(viewport) << facts["handle"];
            EXPECT_EQ(viewport->width(), facts["width"]);
            EXPECT_EQ(viewport->height(), facts["height"]);
            EXPECT_EQ(viewport->viewHeight(), facts["view_height"]);
            EXPECT_EQ(viewport->centerPoint().x, facts["center"][0]);
            EXPECT_EQ(viewport->viewCenter().y, facts["view_center"][1]);
            EXPECT_EQ(viewport->isOn(), (facts["status"].get<int>() & 0x20000) == 0);
            EXPECT_EQ(viewport->isOverall(), viewport->number() == 1);
            EXPECT_GE(viewport->number(), 1);
            EXPECT_NEAR(viewport->customScale() * viewport->viewHeight(), viewport->height(), 1e-9);
        }
    });
}

TEST_P(ViewTest, NewViewportIsListedAndKeepsWhatItShows)
{
    TvDbObjectId id;
    {
        TvDbObjectPointer<TvDbBlockTableRecord> paper(drawing->paperSpaceId(), TvDb::kForWrite);
        for (int i = 0; i < 3; ++i) {
            auto* viewport = new TvDbViewport;
            viewport->setCenterPoint({5.0 + i, 4, 0});
            viewport->setWidth(6);
            viewport->setHeight(4);
            viewport->setCustomScale(0.02);
            viewport->setOn(i != 1);
            viewport->setLocked(true);
            EXPECT_EQ(paper->appendTvDbEntity(id, viewport), TvStatus::Ok);
            EXPECT_EQ(viewport->freezeLayers({drawing->clayer()}), TvStatus::Ok);
            viewport->close();
        }
    }
    EXPECT_EQ(TvDbObjectPointer<TvDbViewport>(id)->number(), 3);
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbViewport> viewport(read->find(id.handle().value()));
    ASSERT_TRUE(viewport);
    EXPECT_EQ(viewport->number(), 3);
    EXPECT_EQ(viewport->viewHeight(), 200);
    EXPECT_TRUE(viewport->isLocked());
    EXPECT_TRUE(viewport->isOn());
    EXPECT_EQ(viewport->frozenLayers(), std::vector<TvDbObjectId>{read->clayer()});
    const TvDbObjectPointer<TvDbLayout> layout(db::layoutsInTabOrder(*read).at(1));
    ASSERT_EQ(layout->getViewportArray().size(), 3u);
    EXPECT_FALSE(TvDbObjectPointer<TvDbViewport>(layout->getViewportArray()[1])->isOn());
    if (GetParam() != "ac1015") {
        EXPECT_EQ(layout->fields().array("viewports").size(), 3u);
    } else {
        const TvDbObjectPointer<TvDbObject> table(read->find(read->headerRecord().handle("VXCTL")));
        EXPECT_EQ(table->fields().array("entries").size(), 3u);
        EXPECT_NE(viewport->fields().handle("vp_ent_hdr"), 0u);
    }
}

TEST_P(ViewTest, LabelBlockOfAViewportIsKeptUntilItIsErased)
{
    TvDbObjectId viewportId, labelId;
    {
        TvDbObjectPointer<TvDbBlockTable> blocks(drawing->symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        auto* block = new TvDbBlockTableRecord;
        block->setName(u"Label");
        TvDbObjectId blockId;
        blocks->add(blockId, block);
        block->close();
        TvDbObjectPointer<TvDbBlockTableRecord> paper(drawing->paperSpaceId(), TvDb::kForWrite);
        auto* viewport = new TvDbViewport;
        paper->appendTvDbEntity(viewportId, viewport);
        auto* label = new TvDbBlockReference({1, 1, 0}, blockId);
        paper->appendTvDbEntity(labelId, label);
        label->close();
        EXPECT_TRUE(viewport->getLabelBlock().isNull());
        EXPECT_EQ(viewport->setLabelBlock(blockId), TvStatus::InvalidInput);
        EXPECT_EQ(viewport->setLabelBlock(labelId), TvStatus::Ok);
        viewport->close();
    }
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbViewport> viewport(read->find(viewportId.handle().value()));
    EXPECT_EQ(viewport->getLabelBlock().handle(), labelId.handle());
    TvDbObjectPointer<TvDbEntity>(viewport->getLabelBlock(), TvDb::kForWrite)->erase();
    EXPECT_TRUE(viewport->getLabelBlock().isNull());
}
