#include <db/drawing_audit.h>
#include <db/symbol_names.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "real_drawing.h"

namespace {

using Names = std::vector<std::string>;

TvDbObjectId layoutNamed(TvDbDatabase& drawing, const TvString& name)
{
    for (const TvDbObjectId id : db::layoutsInTabOrder(drawing))
        if (TvDbObjectPointer<TvDbLayout>(id, TvDb::kForNotify)->getLayoutName() == name)
            return id;
    return {};
}

Names namesOf(TvDbDatabase& drawing)
{
    Names all;
    for (const TvDbObjectId id : db::layoutsInTabOrder(drawing))
        all.push_back(TvDbObjectPointer<TvDbLayout>(id, TvDb::kForNotify)->getLayoutName().utf8());
    return all;
}

std::vector<TvDbObjectId> contentOf(TvDbObjectId layout)
{
    const TvDbObjectPointer<TvDbLayout> object(layout, TvDb::kForNotify);
    const TvDbObjectPointer<TvDbBlockTableRecord> block(object->getBlockTableRecordId(),
                                                        TvDb::kForNotify);
    return block->entityIds();
}

template <class Entity, class Fill>
TvDbObjectId put(TvDbObjectId layout, Fill fill)
{
    TvDbObjectId blockId;
    {
        const TvDbObjectPointer<TvDbLayout> object(layout, TvDb::kForNotify);
        blockId = object->getBlockTableRecordId();
    }
    TvDbObjectPointer<TvDbBlockTableRecord> block(blockId, TvDb::kForWrite);
    auto entity = std::make_unique<Entity>();
    fill(*entity);
    TvDbObjectId id;
    EXPECT_EQ(block->appendTvDbEntity(id, entity.get()), TvStatus::Ok);
    entity.release()->close();
    return id;
}

int errorsIn(TvDbDatabase& drawing)
{
    int errors = 0;
    for (const db::DrawingFinding& finding : db::auditDrawing(drawing))
        errors += finding.severity == db::AuditSeverity::Error;
    return errors;
}

class LayoutCopyTest : public testing::TestWithParam<std::string>
{
protected:
    LayoutCopyTest() : drawing(openBytes(minimalDrawing("line-" + GetParam() + ".dwg")))
    {
        EXPECT_EQ(db::addLayout(*drawing, u"Plan", plan), TvStatus::Ok);
        put<TvDbLine>(plan, [](TvDbLine& line) { line.setEndPoint({3, 4, 0}); });
        window = put<TvDbViewport>(plan, [](TvDbViewport& viewport) {
            viewport.setWidth(4);
            viewport.setHeight(2);
            viewport.setViewHeight(20);
        });
        const TvDbObjectPointer<TvDbLayout> layout(plan, TvDb::kForWrite);
        layout->edit().setText("style_sheet", u"mono.ctb");
        layout->edit().setPoint("limmax", {50, 40, 0});
        layout->edit().setHandle("active_viewport", window.handle().value());
    }
    std::unique_ptr<TvDbDatabase> drawing;
    TvDbObjectId plan, window;
};

INSTANTIATE_TEST_SUITE_P(Versions, LayoutCopyTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

TEST_P(LayoutCopyTest, HasACopyOfAllThatIsOnTheSheetAlsoAfterASave)
{
    const std::size_t before = contentOf(plan).size();
    TvDbObjectId made;
    ASSERT_EQ(db::copyLayout(plan, u"Plan 2", made), TvStatus::Ok);
    EXPECT_EQ(contentOf(plan).size(), before);
    const auto check = [&](TvDbDatabase& where) {
        const TvDbObjectId copy = layoutNamed(where, u"Plan 2");
        ASSERT_TRUE(copy.isValid());
        const TvDbObjectPointer<TvDbLayout> layout(copy, TvDb::kForNotify);
        EXPECT_EQ(layout->getCurrentStyleSheet(), u"mono.ctb");
        EXPECT_EQ(layout->fields().point("limmax"), (db::Point{50, 40, 0}));
        const std::vector<TvDbObjectId> content = contentOf(copy);
        ASSERT_EQ(content.size(), before);
        for (const TvDbObjectId id : content)
            EXPECT_NE(id.handle().value(), window.handle().value());
        const TvDbObjectPointer<TvDbLine> line(content[1], TvDb::kForNotify);
        ASSERT_TRUE(line);
        EXPECT_EQ(line->endPoint(), TvGePoint3d(3, 4, 0));
        const std::vector<TvDbObjectId> viewports = layout->getViewportArray();
        ASSERT_EQ(viewports.size(), 2u);
        const TvDbObjectPointer<TvDbViewport> shown(viewports[1], TvDb::kForNotify);
        EXPECT_EQ(shown->viewHeight(), 20);
        EXPECT_EQ(shown->number(), 2);
        EXPECT_EQ(layout->fields().handle("active_viewport"), viewports[1].handle().value());
        EXPECT_EQ(errorsIn(where), 0);
    };
    check(*drawing);
    const auto saved = savedAndRead(*drawing);
    ASSERT_TRUE(saved);
    check(*saved);
    EXPECT_EQ(namesOf(*saved), (Names{"Model", "Layout1", "Plan", "Plan 2"}));
}

TEST_P(LayoutCopyTest, IsOneStepOfTheHistory)
{
    drawing->startUndoRecord();
    const std::vector<TvDbObjectId> before = drawing->objectIds();
    TvDbObjectId made;
    ASSERT_EQ(db::copyLayout(plan, u"Plan 2", made), TvStatus::Ok);
    ASSERT_EQ(drawing->undo(), TvStatus::Ok);
    EXPECT_EQ(drawing->objectIds(), before);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "Plan"}));
    ASSERT_EQ(drawing->redo(), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "Plan", "Plan 2"}));
    EXPECT_EQ(errorsIn(*drawing), 0);
}

TEST_P(LayoutCopyTest, WhatCannotBeCopiedIsRefusedAndNothingChanges)
{
    const std::vector<TvDbObjectId> before = drawing->objectIds();
    TvDbObjectId made = plan;
    EXPECT_EQ(db::copyLayout(plan, u"pLAN", made), TvStatus::DuplicateName);
    EXPECT_TRUE(made.isNull());
    EXPECT_EQ(db::copyLayout(plan, u"model", made), TvStatus::NameReserved);
    EXPECT_EQ(db::copyLayout(plan, u"a/b", made), TvStatus::InvalidName);
    EXPECT_EQ(db::copyLayout(plan, u"", made), TvStatus::InvalidName);
    EXPECT_EQ(db::copyLayout(layoutNamed(*drawing, u"Model"), u"New", made),
              TvStatus::NotApplicable);
    EXPECT_EQ(db::copyLayout(window, u"New", made), TvStatus::NotThatObject);
    EXPECT_EQ(db::copyLayout({}, u"New", made), TvStatus::NotThatObject);
    EXPECT_EQ(drawing->objectIds(), before);
}

TEST_P(LayoutCopyTest, TabsAreMovedAndNumberedWithoutGaps)
{
    TvDbObjectId made;
    ASSERT_EQ(db::copyLayout(plan, u"Plan 2", made), TvStatus::Ok);
    EXPECT_EQ(db::placeLayout(made, 1), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Plan 2", "Layout1", "Plan"}));
    EXPECT_EQ(db::placeLayout(made, 2), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "Plan 2", "Plan"}));
    EXPECT_EQ(db::placeLayout(made, 99), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "Plan", "Plan 2"}));
    EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(made)->getTabOrder(), 3);
    EXPECT_EQ(db::placeLayout(made, 0), TvStatus::OutOfRange);
    EXPECT_EQ(db::placeLayout(layoutNamed(*drawing, u"Model"), 2), TvStatus::NotApplicable);
    EXPECT_EQ(db::placeLayout(window, 2), TvStatus::NotThatObject);
}

TEST(LayoutCopies, OfRealDrawingsAreWholeOrRefused)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json&) {
        const int errors = errorsIn(drawing);
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
            const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
            if (layout->isModelLayout())
                continue;
            const std::size_t objects = drawing.objectIds().size();
            TvDbObjectId made;
            const TvString name = layout->getLayoutName() + u" copied";
            const TvStatusCode status = db::copyLayout(id, name, made);
            if (status != TvStatus::Ok) {
                EXPECT_EQ(status, TvStatus::NotUnderstood);
                EXPECT_EQ(drawing.objectIds().size(), objects);
                continue;
            }
            EXPECT_EQ(contentOf(made).size(), contentOf(id).size());
            EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(made)->getViewportArray().size(),
                      layout->getViewportArray().size());
        }
        EXPECT_EQ(errorsIn(drawing), errors);
        const auto saved = savedAndRead(drawing);
        ASSERT_TRUE(saved);
        EXPECT_EQ(namesOf(*saved), namesOf(drawing));
        EXPECT_EQ(errorsIn(*saved), errors);
    });
}

TEST(SymbolNames, AreSeenAsTheyAre)
{
    for (const char16_t* name : {u"Plan", u"Grundriß 1.OG", u"A-101 (Entwurf)", u"図面", u"😀"})
        EXPECT_TRUE(db::isSymbolName(name)) << TvString(name).utf8();
    const TvString wrong[] = {u"",
                              u" ",
                              u" Plan",
                              u"Plan ",
                              u"Plan\u00A0",
                              u"a<b",
                              u"a`b",
                              u"a\tb",
                              u"a\u0085b",
                              u"a\u202Eb",
                              u"a\u200Fb",
                              u"a\u2066b",
                              u"\uFEFFab",
                              u"a\u2028b",
                              u"a\u200Bb",
                              TvString(std::u16string(256, u'x')),
                              TvString(std::u16string{u'a', 0xD800}),
                              TvString(std::u16string{0xDC00, u'a'})};
    for (const TvString& name : wrong)
        EXPECT_FALSE(db::isSymbolName(name)) << name.utf8();
    EXPECT_TRUE(db::isSymbolName(TvString(std::u16string(255, u'x'))));
    EXPECT_FALSE(db::isLayoutName(u"MODEL"));
}

TEST_P(LayoutCopyTest, NamesWithBlanksAroundOrTurnsOfDirectionAreRefusedEverywhere)
{
    TvDbObjectId made;
    for (const TvChar* name : {u" Plan", u"Plan ", u"a\u202Eb", u"a\u200Eb"}) {
        EXPECT_EQ(db::addLayout(*drawing, name, made), TvStatus::InvalidName);
        EXPECT_EQ(db::copyLayout(plan, name, made), TvStatus::InvalidName);
        EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(plan, TvDb::kForWrite)->setLayoutName(name),
                  TvStatus::InvalidName);
    }
}

TEST_P(LayoutCopyTest, StepsOfTheHistoryCanBeMadeOne)
{
    const auto rename = [&](const TvChar* name) {
        drawing->startUndoRecord();
        EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(plan, TvDb::kForWrite)->setLayoutName(name),
                  TvStatus::Ok);
    };
    drawing->startUndoRecord();
    const int depth = drawing->undoDepth();
    rename(u"One");
    rename(u"Two");
    TvDbObjectId made;
    drawing->startUndoRecord();
    db::copyLayout(plan, u"Three", made);
    EXPECT_EQ(drawing->undoDepth(), depth + 3);
    drawing->joinUndo(depth + 1);
    EXPECT_EQ(drawing->undoDepth(), depth + 2);
    ASSERT_EQ(drawing->undo(), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "One"}));
    ASSERT_EQ(drawing->redo(), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "Two", "Three"}));
    drawing->joinUndo(depth);
    ASSERT_EQ(drawing->undo(), TvStatus::Ok);
    EXPECT_EQ(namesOf(*drawing), (Names{"Model", "Layout1", "Plan"}));
    EXPECT_EQ(drawing->undoDepth(), depth);
    drawing->joinUndo(depth + 7);
    drawing->joinUndo(-1);
    EXPECT_EQ(drawing->undoDepth(), depth);
}
