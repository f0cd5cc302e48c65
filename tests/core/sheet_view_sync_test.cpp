// Views of sheets follow the named views of their drawings.

#include <core/sheet_view_sync.h>

#include <base/edit_lock.h>
#include <core/auto_open_reactor.h>
#include <core/sheet_data.h>
#include <core/tv_sm_db_reactor.h>
#include <ed/layouts.h>

#include "document_scene.h"

namespace {

using Texts = std::vector<TvString>;

class SheetViewSyncTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2");
        maker.view(u"Front", u"A1", u"Elevations");
        maker.view(u"Model", u"");
        handle = maker.handleOf(u"A1");
        EXPECT_EQ(ed::setCurrentLayout(maker.drawing(), u"A1"), TvStatus::Ok);
        maker.saveAs(folder.file("a.dwg"));
        database = made("house.dst");
        change(database, [&](TvSmSheetSet& set) {
            addBlock(set.getCalloutBlocks(), u"Bubble");
            sheet = addSheet(&set, u"1", u"Plan");
            setLayout(sheet, folder.file("a.dwg"), handle, u"A1");
        });
    }
    TvDbDatabase* openedDrawing()
    {
        document = opened("a.dwg");
        return document->database();
    }
    Texts titles() const
    {
        Texts all;
        for (const TvSmSheetView* view : views())
            all.push_back(view->getTitle());
        return all;
    }
    std::vector<TvSmSheetView*> views() const
    {
        return itemsOf(sheet->getSheetViews()->getEnumerator());
    }
    Texts categories() const
    {
        Texts all;
        for (const TvSmViewCategory* category :
             sm::each(database->getSheetSet()->getViewCategories()->getEnumerator()))
            all.push_back(category->getName());
        return all;
    }
    void eraseView(const TvString& name)
    {
        const TvDbObjectPointer<TvDbViewTable> table(
            document->database()->symbolTableId(TvDb::SymbolTable::View), TvDb::kForWrite);
        TvDbObjectId id;
        ASSERT_EQ(table->getAt(name, id), TvStatus::Ok);
        ASSERT_EQ(TvDbObjectPointer<TvDbViewTableRecord>(id, TvDb::kForWrite)->erase(true),
                  TvStatus::Ok);
    }

    TvSmDatabase* database = nullptr;
    TvSmSheet* sheet = nullptr;
    TvApDocument* document = nullptr;
    TvString handle;
};

TEST_F(SheetViewSyncTest, TakesANewViewInWithItsReferenceTitleAndCategory)
{
    TvDbDatabase* drawing = openedDrawing();
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    ASSERT_EQ(titles(), Texts{u"Front"});
    const TvSmSheetView* view = views()[0];
    EXPECT_EQ(view->getNumber(), u"");
    EXPECT_EQ(view->getViewReference()->getName(), u"Front");
    EXPECT_EQ(view->getViewReference()->getFileName(), folder.file("a.dwg"));
    ASSERT_TRUE(view->getCategory());
    EXPECT_EQ(view->getCategory()->getName(), u"Elevations");
    EXPECT_EQ(itemsOf(view->getCategory()->getCalloutBlocks()->getEnumerator()).size(), 1u)
        << "a new category gets the set's blocks";
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(document->lockCount(), 0);
    EXPECT_NE(folder.read("house.dst").find("Elevations"), std::string::npos);
}

TEST_F(SheetViewSyncTest, WhereNothingDiffersNothingIsWrittenOrTold)
{
    ActivateSheetSet(database);
    TvDbDatabase* drawing = openedDrawing();
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    const std::string before = folder.read("house.dst");
    namespace fs = std::filesystem;
    const auto time = fs::last_write_time(folder.path() / "house.dst");
    host.told.clear();
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_EQ(folder.read("house.dst"), before);
    EXPECT_EQ(fs::last_write_time(folder.path() / "house.dst"), time);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(SheetViewSyncTest, ASetThatSomebodyElseHasStaysAsItIs)
{
    TvDbDatabase* drawing = openedDrawing();
    base::EditLock lock(sm::files(), sm::clock(), folder.file("house.dst"));
    ASSERT_TRUE(lock.take(u"elsewhere"));
    EXPECT_FALSE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_TRUE(titles().empty());
    EXPECT_EQ(document->lockCount(), 0);
}

TEST_F(SheetViewSyncTest, ASetThatIsLockedHereStaysAsItIsAndLocked)
{
    TvDbDatabase* drawing = openedDrawing();
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_FALSE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_EQ(database->getLockStatus(), 1);
    ASSERT_TRUE(database->unlockDb(database, false));
    EXPECT_TRUE(titles().empty());
}

TEST_F(SheetViewSyncTest, AnErasedViewGoesAndOneWithAnotherNameStays)
{
    TvDbDatabase* drawing = openedDrawing();
    const TvDbObjectId back = DrawingMaker(*drawing).view(u"Back", u"A1", u"Elevations");
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    ASSERT_EQ(titles(), (Texts{u"Front", u"Back"}));
    TvDbObjectPointer<TvDbViewTableRecord>(back, TvDb::kForWrite)->setName(u"Rear");
    eraseView(u"Front");
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_EQ(titles(), Texts{u"Back"}) << "titles are the user's";
}

TEST_F(SheetViewSyncTest, ViewsOnAPaperThatIsNoSheetAndInTheModelAreLeftOut)
{
    TvDbDatabase* drawing = openedDrawing();
    DrawingMaker(*drawing).view(u"Elsewhere", u"A2");
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_EQ(titles(), Texts{u"Front"});
}

TEST_F(SheetViewSyncTest, AViewWithoutACategoryGoesToTheOneWithTheEmptyName)
{
    TvDbDatabase* drawing = openedDrawing();
    DrawingMaker(*drawing).view(u"Back", u"A1");
    DrawingMaker(*drawing).view(u"Side", u"A1");
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_EQ(categories(), (Texts{u"Elevations", u""})) << "one is made";
    ASSERT_TRUE(views()[1]->getCategory());
    EXPECT_EQ(views()[1]->getCategory(), views()[2]->getCategory());
    EXPECT_EQ(views()[1]->getCategory()->getName(), u"");
}

TEST_F(SheetViewSyncTest, AKnownViewFollowsTheCategoryOfTheDrawingInAnyCase)
{
    TvDbDatabase* drawing = openedDrawing();
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    change(database, [&](TvSmSheetSet& set) {
        EXPECT_TRUE(AssignViewCategory(&set, views()[0], u"Plans"));
        EXPECT_TRUE(AssignViewCategoryByName(&set, views()[0], u"PLANS"));
        EXPECT_FALSE(AssignViewCategory(&set, nullptr, u"Plans"));
        EXPECT_FALSE(AssignViewCategory(nullptr, views()[0], u"Plans"));
    });
    EXPECT_EQ(categories(), (Texts{u"Elevations", u"Plans"}));
    ASSERT_TRUE(SyncSheetViewsWithDrawing(drawing));
    EXPECT_EQ(views()[0]->getCategory()->getName(), u"Elevations");
}

TEST_F(SheetViewSyncTest, OnlyTheSheetOfTheCurrentLayoutsSetIsLookedAt)
{
    EXPECT_FALSE(SyncSheetViewsWithDrawing(nullptr));
    TvDbDatabase* drawing = openedDrawing();
    TvDbDatabase other(true, true);
    EXPECT_FALSE(SyncSheetViewsWithDrawing(&other)) << "not the current drawing";
    ASSERT_EQ(ed::setCurrentLayout(*drawing, u"A2"), TvStatus::Ok);
    EXPECT_FALSE(SyncSheetViewsWithDrawing(drawing)) << "no sheet is shown";
    EXPECT_TRUE(titles().empty());
}

TEST_F(SheetViewSyncTest, OfSeveralSetsThatHaveTheSheetTheLastOneIsKept)
{
    TvSmDatabase* last = made("last.dst");
    TvSmSheet* other = nullptr;
    change(last, [&](TvSmSheetSet& set) {
        other = addSheet(&set, u"1", u"Plan");
        setLayout(other, folder.file("a.dwg"), handle, u"A1");
    });
    ASSERT_TRUE(SyncSheetViewsWithDrawing(openedDrawing()));
    EXPECT_TRUE(titles().empty());
    EXPECT_EQ(itemsOf(other->getSheetViews()->getEnumerator()).size(), 1u);
}

TEST_F(SheetViewSyncTest, DeadViewsGoFromSheetsOfThisDrawingOnly)
{
    TvDbDatabase* drawing = openedDrawing();
    TvSmSheet* elsewhere = nullptr;
    change(database, [&](TvSmSheetSet& set) {
        elsewhere = addSheet(&set, u"2", u"Other");
        setLayout(elsewhere, folder.file("b.dwg"), handle, u"A1");
        for (TvSmSheet* each : {sheet, elsewhere}) {
            TvSmSheetView* view = addView(each, u"Gone");
            auto* reference = newFor<TvSmTvDbViewReference>(view);
            reference->setHandle(u"FFFF");
            view->setViewReference(reference);
        }
        addView(sheet, u"Refers to nothing");
        RemoveStaleSheetViews(drawing, &set);
        RemoveDeadSheetViews(nullptr, &set);
        RemoveDeadSheetViews(drawing, nullptr);
    });
    EXPECT_EQ(titles(), Texts{u"Refers to nothing"});
    EXPECT_EQ(itemsOf(elsewhere->getSheetViews()->getEnumerator()).size(), 1u);
}

TEST_F(SheetViewSyncTest, AnOpeningSynchronisesWhileLocatingAndOpeningAreOff)
{
    const TvEdAutoOpenSheetSetReactor reactor;
    set(u"SSLOCATE", 0);
    set(u"SSMAUTOOPEN", 0);
    openedDrawing();
    EXPECT_EQ(titles(), Texts{u"Front"});
    EXPECT_FALSE(GetCurrentDatabase());
    EXPECT_FALSE(core::readSheetData(*document->database()).isThere);
}

TEST_F(SheetViewSyncTest, AViewDeletedByACommandIsGoneAtTheCommandsEnd)
{
    TvEdAutoOpenSheetSetReactor reactor;
    openedDrawing();
    eraseView(u"Front");
    ASSERT_TRUE(g_viewsDirty);
    reactor.commandEnded(u"LINE");
    EXPECT_TRUE(g_viewsDirty) << "it is left for later";
    EXPECT_EQ(titles().size(), 1u);
    reactor.commandEnded(nullptr);
    reactor.commandEnded(u"-view");
    EXPECT_FALSE(g_viewsDirty);
    EXPECT_TRUE(titles().empty());
}

TEST_F(SheetViewSyncTest, AViewThatIsBackAfterUndoIsTakenInAnew)
{
    TvEdAutoOpenSheetSetReactor reactor;
    openedDrawing();
    const TvString former = handleOf(views()[0]);
    document->database()->startUndoRecord();
    eraseView(u"Front");
    reactor.commandEnded(u"VIEW");
    ASSERT_TRUE(titles().empty());
    ASSERT_EQ(document->database()->undo(), TvStatus::Ok);
    g_viewsDirty = true;
    reactor.commandEnded(u"U");
    ASSERT_EQ(titles(), Texts{u"Front"});
    EXPECT_NE(handleOf(views()[0]), former);
}

TEST_F(SheetViewSyncTest, EveryCommandThatChangesViewsEndsWithALook)
{
    TvEdAutoOpenSheetSetReactor reactor;
    for (const TvChar* command : {u"VIEW", u"-VIEW", u"U", u"UNDO", u"REDO", u"MREDO", u"mredo"}) {
        g_viewsDirty = true;
        reactor.commandEnded(command);
        EXPECT_FALSE(g_viewsDirty) << TvString(command).utf8();
    }
}

} // namespace
