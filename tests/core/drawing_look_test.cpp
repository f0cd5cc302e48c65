// Looking for the drawing of a sheet in another thread.

#include <core/drawing_look.h>
#include <core/sheet_tip.h>

#include "document_scene.h"

namespace {

using core::DrawingLook;
using Depth = DrawingLook::Depth;

class DrawingLookTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        DrawingMaker maker;
        maker.paper(u"A1").saveAs(folder.file("plan.dwg"));
        database = made("house.dst");
        ASSERT_TRUE(database->lockDb(database));
        sheet = addSheet(database->getSheetSet(), u"1", u"Plan");
        setLayout(sheet, folder.file("plan.dwg"), maker.handleOf(u"A1"), u"A1");
        ASSERT_TRUE(database->unlockDb(database, true));
        ActivateSheetSet(database);
    }
    DrawingLook::Question question(Depth depth)
    {
        return DrawingLook::questionAbout(*sheet->getLayoutReference(), depth, &cache);
    }
    core::Tip tip(core::DrawingFacts* facts)
    {
        core::Tip made;
        core::fillTip(database, handleOf(sheet), {core::TipStyle::Everything}, facts, cache, made);
        return made;
    }

    TvSmDatabase* database = nullptr;
    TvSmSheet* sheet = nullptr;
    DrawingInfoCache cache;
};

TEST_F(DrawingLookTest, TellsInAnotherThreadWhatItTellsAtOnce)
{
    DrawingLook look(question(Depth::Content));
    ASSERT_TRUE(look.hasAnswered(core::ApartWork::kForEver));
    const core::DrawingFacts now = DrawingLook::answer(question(Depth::Content));
    const core::DrawingFacts& there = look.facts();
    EXPECT_TRUE(there.isThere);
    EXPECT_EQ(there.path(), folder.file("plan.dwg"));
    EXPECT_EQ(there.size, now.size);
    EXPECT_GT(there.size, 0);
    EXPECT_EQ(there.modificationTime, now.modificationTime);
    ASSERT_TRUE(there.info && now.info);
    EXPECT_EQ(there.info->layouts.size(), 1u);
    EXPECT_EQ(there.info->layouts.size(), now.info->layouts.size());
}

TEST_F(DrawingLookTest, WhatIsKnownAndUnchangedIsNotReadAgain)
{
    core::DrawingFacts facts = DrawingLook::answer(question(Depth::Content));
    ASSERT_NE(cache.Take(facts), nullptr);
    core::DrawingFacts again = DrawingLook::answer(question(Depth::Content));
    EXPECT_EQ(again.info, nullptr);
    EXPECT_NE(cache.Take(again), nullptr);
    folder.write("plan.dwg", "changed");
    core::DrawingFacts changed = DrawingLook::answer(question(Depth::Content));
    EXPECT_EQ(changed.info, nullptr) << "it cannot be read now";
    EXPECT_EQ(cache.Take(changed), nullptr) << "and what was known of it is forgotten";
}

TEST_F(DrawingLookTest, AnOpenDocumentIsNamedAndAnswersItself)
{
    TvApDocument* document = nullptr;
    ASSERT_EQ(tvDocManagerPtr()->openDocument(folder.file("plan.dwg"), true, document),
              TvStatus::Ok);
    core::DrawingFacts facts = DrawingLook::answer(question(Depth::Content));
    EXPECT_EQ(facts.openDocument, document->fileName());
    EXPECT_EQ(core::openDocumentNamed(facts.openDocument), document);
    EXPECT_EQ(facts.info, nullptr) << "its file is not read";
    const DrawingInfo* info = cache.Take(facts);
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->isOfDocument);
}

TEST_F(DrawingLookTest, PlaceAloneReadsNothing)
{
    const core::DrawingFacts facts = DrawingLook::answer(question(Depth::Place));
    EXPECT_EQ(facts.resolved, folder.file("plan.dwg"));
    EXPECT_TRUE(facts.isFile);
    EXPECT_EQ(facts.info, nullptr);
    EXPECT_EQ(facts.size, -1);
    std::filesystem::remove(folder.path() / "plan.dwg");
    EXPECT_TRUE(DrawingLook::answer(question(Depth::Place)).resolved.isEmpty());
}

TEST_F(DrawingLookTest, ATipSaysBeforeTheAnswerWhatTheSetAloneKnows)
{
    const TvString before = tip(nullptr).text;
    EXPECT_EQ(before.find(u"1 - Plan"), 0);
    EXPECT_NE(before.find(u"has not answered yet"), TvString::npos);
    EXPECT_NE(before.find(u"plan.dwg"), TvString::npos);
    EXPECT_EQ(before.find(u"bytes"), TvString::npos);
    core::DrawingFacts facts = DrawingLook::answer(question(Depth::Content));
    const TvString after = tip(&facts).text;
    EXPECT_EQ(after.find(u"has not answered yet"), TvString::npos);
    EXPECT_NE(after.find(u"bytes"), TvString::npos);
    EXPECT_EQ(after, tip(&facts).text) << "the same facts may be used again";
}

} // namespace
