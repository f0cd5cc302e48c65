// The boxes of what is drawn, of known geometry and of real drawings.

#include <cmath>
#include <numbers>

#include <db/tv_db_annotations.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>
#include <db/tv_db_viewport.h>

#include <db/text_measure.h>

#include "real_drawing.h"

namespace {

constexpr double kPi = std::numbers::pi;

void expectBox(const TvDbEntity& entity, const TvGePoint3d& low, const TvGePoint3d& high)
{
    TvDbExtents box;
    ASSERT_EQ(entity.getGeomExtents(box), TvStatus::Ok);
    const TvGeTol tolerance(1e-9, 1e-9);
    EXPECT_TRUE(box.minPoint().isEqualTo(low, tolerance))
        << box.minPoint().x << ' ' << box.minPoint().y << ' ' << box.minPoint().z;
    EXPECT_TRUE(box.maxPoint().isEqualTo(high, tolerance))
        << box.maxPoint().x << ' ' << box.maxPoint().y << ' ' << box.maxPoint().z;
}

/// Every letter is half as wide as it is high.
class HalfWide : public db::TextMeasure
{
public:
    HalfWide() { db::setTextMeasure(this); }
    ~HalfWide() override { db::setTextMeasure(nullptr); }
    double width(std::u16string_view line, const db::TextLook& look) override
    {
        return 0.5 * look.height * look.widthFactor * static_cast<double>(line.size());
    }
};

class InsertedTest : public testing::Test
{
protected:
    TvDbObjectId addBlock(const TvChar* name, const db::Point& base = {})
    {
        TvDbObjectPointer<TvDbBlockTable> blocks(drawing.symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        auto* block = new TvDbBlockTableRecord;
        block->setName(name);
        TvDbObjectId id;
        EXPECT_EQ(blocks->add(id, block), TvStatus::Ok);
        block->edit().setPoint("base_pt", base);
        block->close();
        return id;
    }
    TvDbObjectId append(TvDbObjectId block, TvDbEntity* entity)
    {
        TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
        TvDbObjectId id;
        EXPECT_EQ(record->appendTvDbEntity(id, entity), TvStatus::Ok);
        entity->close();
        return id;
    }
    TvDbDatabase drawing{true, true};
};

} // namespace

// --- curves and areas

TEST(Extents, OfLinesPointsCirclesAndArcs)
{
    expectBox(TvDbLine({1, 5, 2}, {4, -1, 0}), {1, -1, 0}, {4, 5, 2});
    TvDbPoint point;
    point.setPosition({3, 4, 5});
    expectBox(point, {3, 4, 5}, {3, 4, 5});
    TvDbCircle circle;
    circle.setCenter({1, 2, 3});
    circle.setRadius(2);
    expectBox(circle, {-1, 0, 3}, {3, 4, 3});
    circle.setNormal({1, 0, 0}); // object x is world y, object y world z, object z world x
    expectBox(circle, {3, -1, 0}, {3, 3, 4});
    TvDbArc arc;
    arc.setRadius(2);
    arc.setStartAngle(kPi / 4);
    arc.setEndAngle(3 * kPi / 4); // over the top only
    const double root = std::sqrt(2.0);
    expectBox(arc, {-root, root, 0}, {root, 2, 0});
    arc.setStartAngle(3 * kPi / 2); // over the right, through 0
    arc.setEndAngle(kPi / 2);
    expectBox(arc, {0, -2, 0}, {2, 2, 0});
}

TEST(Extents, OfEllipsesAndTheirParts)
{
    TvDbEllipse ellipse;
    ellipse.setCenter({10, 0, 0});
    ellipse.setMajorAxis({0, 4, 0});
    ellipse.setRadiusRatio(0.5);
    ellipse.setStartParam(0);
    ellipse.setEndParam(2 * kPi);
    expectBox(ellipse, {8, -4, 0}, {12, 4, 0});
    ellipse.setEndParam(kPi / 2); // from the top to the left
    expectBox(ellipse, {8, 0, 0}, {10, 4, 0});
    ellipse.setMajorAxis({std::sqrt(8.0), std::sqrt(8.0), 0}); // turned by 45 degrees
    ellipse.setEndParam(2 * kPi);
    const double half = std::sqrt((16.0 + 4.0) / 2);
    expectBox(ellipse, {10 - half, -half, 0}, {10 + half, half, 0});
}

TEST(Extents, OfPolylinesReachAsFarAsTheirArcs)
{
    TvDbPolyline chain;
    chain.addVertexAt(0, {0, 0});
    chain.addVertexAt(1, {4, 0}, 1); // a half circle to the next one, to the right of it
    chain.addVertexAt(2, {4, 2});
    chain.setElevation(7);
    expectBox(chain, {0, 0, 7}, {5, 2, 7});
    EXPECT_EQ(chain.addVertexAt(5, {0, 0}), TvStatus::OutOfRange);
    EXPECT_EQ(chain.removeVertexAt(1), TvStatus::Ok);
    expectBox(chain, {0, 0, 7}, {4, 2, 7});
}

TEST(Extents, OfFlatAreas)
{
    TvDbSolid solid;
    db::RecordEditor edit = solid.edit();
    EXPECT_NE(solid.getGeomExtents(*std::make_unique<TvDbExtents>()), TvStatus::InvalidInput);
    EXPECT_FALSE(edit.setPoint("nothing", {}));
    TvDbFace face;
    TvDbExtents box;
    ASSERT_EQ(face.getGeomExtents(box), TvStatus::Ok);
    EXPECT_TRUE(box.minPoint().isEqualTo({0, 0, 0}));
}

TEST(Extents, OfWhatDrawsNothingOrCannotBeKnownAreNone)
{
    TvDbExtents box({1, 2, 3}, {4, 5, 6});
    EXPECT_EQ(TvDbXline().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(TvDbRay().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_EQ(TvDbText().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_EQ(TvDbMText().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_EQ(TvDbSpline().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_EQ(TvDbLeader().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_EQ(TvDbHatch().getGeomExtents(box), TvStatus::NotApplicable);
    EXPECT_EQ(TvDbBlockReference().getGeomExtents(box), TvStatus::NotApplicable);
}

// --- texts

TEST(Extents, OfTextTurnWithIt)
{
    const HalfWide measure;
    TvDbText text;
    text.setTextString(u"abcd");
    text.setHeight(2);
    text.setPosition({10, 20, 0});
    TvDbExtents box;
    ASSERT_EQ(text.getGeomExtents(box), TvStatus::Ok);
    EXPECT_DOUBLE_EQ(box.minPoint().x, 10);
    EXPECT_DOUBLE_EQ(box.maxPoint().x, 14);
    EXPECT_DOUBLE_EQ(box.maxPoint().y, 22);
    const double below = 20 - box.minPoint().y;
    EXPECT_GT(below, 0) << "letters that hang below the line";
    EXPECT_LT(below, 1);
    text.setRotation(kPi / 2);
    expectBox(text, {8, 20, 0}, {10 + below, 24, 0});
    text.setRotation(0);
    text.setHorizontalMode(TvDbText::kTextRight);
    text.setAlignmentPoint({10, 20, 0});
    ASSERT_EQ(text.adjustAlignment(), TvStatus::Ok);
    expectBox(text, {6, 20 - below, 0}, {10, 22, 0});
}

TEST(Extents, OfMTextAreItsWrappedLinesAtItsAttachment)
{
    const HalfWide measure;
    TvDbMText text;
    text.setTextHeight(2);
    text.setLocation({100, 50, 0});
    text.setContents(u"aaaa bbbb\\Pcc"); // 9 letters are 9 wide
    expectBox(text, {100, 50 - 2 * (1 + 5.0 / 3), 0}, {109, 50, 0});
    text.setWidth(6); // "aaaa", "bbbb", "cc"
    EXPECT_DOUBLE_EQ(text.actualWidth(), 4);
    const double high = 2 * (1 + 2 * 5.0 / 3);
    EXPECT_DOUBLE_EQ(text.actualHeight(), high);
    expectBox(text, {100, 50 - high, 0}, {104, 50, 0});
    text.setAttachment(TvDbMText::kBottomRight);
    expectBox(text, {96, 50, 0}, {100, 50 + high, 0});
    text.setAttachment(TvDbMText::kMiddleCenter);
    expectBox(text, {98, 50 - high / 2, 0}, {102, 50 + high / 2, 0});
    text.setLineSpacingFactor(2);
    EXPECT_DOUBLE_EQ(text.actualHeight(), 2 * (1 + 4 * 5.0 / 3));
    text.setLineSpacingFactor(1);
    text.setAttachment(TvDbMText::kTopLeft);
    text.setDirection({0, 1, 0}); // lines run up, the next one lies to the right
    expectBox(text, {100, 50, 0}, {100 + high, 54, 0});
    text.setWidth(1); // no word is broken
    EXPECT_DOUBLE_EQ(text.actualWidth(), 4);
    text.setContents(u"");
    TvDbExtents box;
    EXPECT_EQ(text.getGeomExtents(box), TvStatus::NotApplicable);
}

// --- blocks

TEST_F(InsertedTest, NestedTurnedAndScaledBlocksReachWhereTheirEntitiesGo)
{
    const TvDbObjectId inner = addBlock(u"Inner", {1, 0, 0});
    append(inner, new TvDbLine({1, 0, 0}, {3, 1, 0})); // 2 by 1 from the base point
    const TvDbObjectId outer = addBlock(u"Outer");
    auto* turned = new TvDbBlockReference({10, 0, 0}, inner);
    turned->setRotation(kPi / 2); // x from 9 to 10, y from 0 to 2
    append(outer, turned);
    auto* big = new TvDbBlockReference({100, 100, 0}, outer);
    big->setScaleFactors({2, 3, 1});
    const TvDbObjectId id = append(drawing.modelSpaceId(), big);
    expectBox(*TvDbObjectPointer<TvDbEntity>(id), {118, 100, 0}, {120, 106, 0});
    auto* mirrored = new TvDbBlockReference({0, 0, 0}, inner);
    mirrored->setScaleFactors({-1, 1, 1});
    const TvDbObjectId mirroredId = append(drawing.modelSpaceId(), mirrored);
    expectBox(*TvDbObjectPointer<TvDbEntity>(mirroredId), {-2, 0, 0}, {0, 1, 0});
}

TEST_F(InsertedTest, BlocksThatHoldThemselvesOrManyOthersEnd)
{
    const TvDbObjectId self = addBlock(u"Self");
    append(self, new TvDbLine({0, 0, 0}, {1, 1, 0}));
    const TvDbObjectId inside = append(self, new TvDbBlockReference({5, 0, 0}, self));
    TvDbExtents box;
    EXPECT_EQ(TvDbObjectPointer<TvDbEntity>(inside)->getGeomExtents(box), TvStatus::Ok);
    // Each holds the one before twice: as boxes of entities one by one these were a billion.
    TvDbObjectId last = addBlock(u"B0");
    append(last, new TvDbLine({0, 0, 0}, {1, 1, 0}));
    for (int i = 1; i < 31; ++i) {
        const TvDbObjectId next =
            addBlock(TvString(base::utf16FromUtf8("B" + std::to_string(i))).kwszPtr());
        append(next, new TvDbBlockReference({0, 0, 0}, last));
        append(next, new TvDbBlockReference({1, 0, 0}, last));
        last = next;
    }
    const TvDbObjectId id = append(drawing.modelSpaceId(), new TvDbBlockReference({}, last));
    expectBox(*TvDbObjectPointer<TvDbEntity>(id), {0, 0, 0}, {31, 1, 0});
}

TEST_F(InsertedTest, AnArrayOfBillionsOfPlacesIsMeasuredByItsCorners)
{
    const TvDbObjectId block = addBlock(u"Block");
    append(block, new TvDbLine({0, 0, 0}, {1, 1, 0}));
    auto* array = new TvDbMInsertBlock;
    array->setBlockTableRecord(block);
    array->setColumns(65535);
    array->setRows(65535);
    array->setColumnSpacing(2);
    array->setRowSpacing(3);
    const TvDbObjectId id = append(drawing.modelSpaceId(), array);
    expectBox(*TvDbObjectPointer<TvDbEntity>(id), {0, 0, 0}, {65534 * 2 + 1, 65534 * 3 + 1, 0});
}

TEST_F(InsertedTest, NumbersOutOfAllBoundsEndInABoxOrInNone)
{
    const TvDbObjectId block = addBlock(u"Block");
    append(block, new TvDbLine({0, 0, 0}, {1, 1, 0}));
    for (const double angle : {1e300, HUGE_VAL, std::nan("")}) {
        auto* arc = new TvDbArc;
        arc->setRadius(1);
        arc->setEndAngle(angle);
        append(block, arc);
    }
    for (const double wild : {1e308, -1e308, HUGE_VAL, std::nan("")}) {
        auto* reference = new TvDbBlockReference({0, 0, 0}, block);
        reference->setRotation(wild);
        reference->setScaleFactors({wild, wild, wild});
        const TvDbObjectId id = append(drawing.modelSpaceId(), reference);
        TvDbExtents box;
        const TvStatusCode status = TvDbObjectPointer<TvDbEntity>(id)->getGeomExtents(box);
        EXPECT_TRUE(status == TvStatus::Ok || status == TvStatus::NotApplicable) << wild;
    }
}

TEST(Extents, OfMTextNestedWithoutEndAreMeasuredInOneWalk)
{
    constexpr std::size_t kDepth = 16'000;
    TvDbMText text;
    text.setTextHeight(1);
    ASSERT_EQ(text.setContents(
                  TvString(std::u16string(kDepth, u'{') + u"AB" + std::u16string(kDepth, u'}'))),
              TvStatus::Ok);
    EXPECT_EQ(text.text(), u"AB");
    TvDbExtents box;
    EXPECT_EQ(text.getGeomExtents(box), TvStatus::Ok);
    text.setContents(TvString(std::u16string(kDepth, u'{') + u"AB")); // never closed
    EXPECT_EQ(text.text(), u"AB");
    text.setContents(TvString(std::u16string(kDepth, u'\\')));
    EXPECT_EQ(text.text().view().size(), kDepth / 2);
}

TEST_F(InsertedTest, WhatIsInvisibleOrErasedTakesNoRoom)
{
    const TvDbObjectId block = addBlock(u"Block");
    append(block, new TvDbLine({0, 0, 0}, {1, 1, 0}));
    const TvDbObjectId hidden = append(block, new TvDbLine({0, 0, 0}, {50, 1, 0}));
    TvDbObjectPointer<TvDbEntity>(hidden, TvDb::kForWrite)->setVisibility(false);
    const TvDbObjectId gone = append(block, new TvDbLine({0, 0, 0}, {1, 90, 0}));
    TvDbObjectPointer<TvDbEntity>(gone, TvDb::kForWrite)->erase();
    const TvDbObjectId id = append(drawing.modelSpaceId(), new TvDbBlockReference({}, block));
    expectBox(*TvDbObjectPointer<TvDbEntity>(id), {0, 0, 0}, {1, 1, 0});
}

// --- real drawings

TEST(Extents, OfRealDrawingsLieWhereTheirModelSpaceSays)
{
    forEachDrawing("mixed-ac10", [](TvDbDatabase& drawing, const nlohmann::json&) {
        // The drawing's own box was worked out by whoever made it, of all that is drawn.
        const db::Point low = drawing.extmin(), high = drawing.extmax();
        const double wide = high.x - low.x, tall = high.y - low.y;
        int known = 0, unknown = 0, inside = 0;
        const TvDbObjectPointer<TvDbBlockTableRecord> model(drawing.modelSpaceId());
        for (const TvDbObjectId id : model->entityIds()) {
            const TvDbObjectPointer<TvDbEntity> entity(id);
            TvDbExtents box;
            if (!entity || entity->getGeomExtents(box) != TvStatus::Ok) {
                ++unknown;
                continue;
            }
            ++known;
            // Some slack: letters are measured without their fonts here.
            inside += box.minPoint().x > low.x - 0.02 * wide &&
                              box.maxPoint().x < high.x + 0.02 * wide &&
                              box.minPoint().y > low.y - 0.02 * tall &&
                              box.maxPoint().y < high.y + 0.02 * tall
                          ? 1
                          : 0;
        }
        EXPECT_GT(known, 100);
        EXPECT_LT(unknown, known / 3);
        EXPECT_GE(inside, known * 9 / 10) << known;
    });
}

TEST(Extents, OfRealEntitiesHoldTheirOwnPoints)
{
    forEachDrawing("ac10", [](TvDbDatabase& drawing, const nlohmann::json&) {
        int seen = 0;
        for (const TvDbObjectId id : drawing.objectIds()) {
            const TvDbObjectPointer<TvDbEntity> entity(id, TvDb::kForNotify);
            TvDbExtents box;
            if (!entity || entity->getGeomExtents(box) != TvStatus::Ok)
                continue;
            ASSERT_FALSE(box.isEmpty()) << textOf(id);
            const TvGeTol tolerance(1e-6, 1e-6);
            if (const auto* line = tvrxCast<TvDbLine>(entity.object())) {
                EXPECT_TRUE(box.contains(line->startPoint(), tolerance)) << textOf(id);
                EXPECT_TRUE(box.contains(line->endPoint(), tolerance)) << textOf(id);
                ++seen;
            } else if (const auto* spline = tvrxCast<TvDbSpline>(entity.object())) {
                for (const TvGePoint3d& point :
                     spline->hasOnlyFitPoints() ? spline->fitPoints() : spline->controlPoints())
                    EXPECT_TRUE(box.contains(point, tolerance)) << textOf(id);
                ++seen;
            } else if (const auto* leader = tvrxCast<TvDbLeader>(entity.object())) {
                for (const TvGePoint3d& point : leader->vertices())
                    EXPECT_TRUE(box.contains(point, tolerance)) << textOf(id);
                ++seen;
            }
        }
        (void)seen;
    });
}
