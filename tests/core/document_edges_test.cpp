// What the current document tells the session, and names of view categories in other letters.

#include <core/current_sheet.h>
#include <core/sheet_view_sync.h>
#include <ed/layouts.h>

#include "document_scene.h"

namespace {

class DocumentEdgesTest : public DocumentTest
{
protected:
    TvApDocument* openedPlan()
    {
        DrawingMaker maker;
        maker.paper(u"A1").saveAs(folder.file("a.dwg"));
        handle = maker.handleOf(u"A1");
        return opened("a.dwg");
    }
    static bool isThere(TvDbDatabase** drawing = nullptr, TvString* path = nullptr,
                        TvDbHandle* layout = nullptr)
    {
        core::DocumentLayout provider;
        TvDbDatabase* database = nullptr;
        TvString name;
        TvDbHandle shown;
        const bool isThere = provider.currentLayout(database, name, shown);
        if (drawing) {
            *drawing = database;
            *path = name;
            *layout = shown;
        }
        return isThere;
    }
    TvString handle;
};

TEST_F(DocumentEdgesTest, TheCurrentLayoutIsThatOfThePaperAndNoneInTheModelOrWithoutADocument)
{
    EXPECT_FALSE(isThere());
    TvApDocument* document = openedPlan();
    ASSERT_EQ(ed::setCurrentLayout(*document->database(), u"Model"), TvStatus::Ok);
    EXPECT_FALSE(isThere());
    ASSERT_EQ(ed::setCurrentLayout(*document->database(), u"A1"), TvStatus::Ok);
    TvDbDatabase* drawing = nullptr;
    TvString path;
    TvDbHandle layout;
    ASSERT_TRUE(isThere(&drawing, &path, &layout));
    EXPECT_EQ(drawing, document->database());
    EXPECT_EQ(path, folder.file("a.dwg"));
    EXPECT_EQ(layout.text(), handle);
}

TEST_F(DocumentEdgesTest, AViewGoesToTheCategoryOfThatNameInAnyLetters)
{
    TvSmDatabase* database = made("house.dst");
    change(database, [](TvSmSheetSet& set) {
        TvSmSheet* sheet = addSheet(&set, u"1", u"Plan");
        TvSmSheetView* first = addView(sheet, u"First");
        TvSmSheetView* second = addView(sheet, u"Second");
        EXPECT_TRUE(AssignViewCategory(&set, first, u"Plans"));
        EXPECT_TRUE(AssignViewCategory(&set, second, u"Elevations"));
        EXPECT_TRUE(AssignViewCategory(&set, second, u"PLANS"));
        EXPECT_EQ(second->getCategory(), first->getCategory());
        EXPECT_EQ(first->getCategory()->getName(), u"Plans");
        EXPECT_EQ(itemsOf(set.getViewCategories()->getEnumerator()).size(), 2u);
    });
}

} // namespace
