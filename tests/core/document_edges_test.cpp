// What the current document tells the session, names of view categories in other letters, and how
// questions are put.

#include <core/auto_open_reactor.h>
#include <core/current_sheet.h>
#include <core/missing_sheet_set_link_dialog.h>
#include <core/open_sheet_set.h>
#include <core/sheet_view_sync.h>
#include <core/status_timer.h>
#include <core/tv_sm_db_reactor.h>
#include <ed/layouts.h>
#include <ed/user_prompts.h>

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

TEST_F(DocumentEdgesTest, ACommandThatFindsNoViewChangedSynchronisesNothing)
{
    TvApDocument* document = openedPlan();
    ASSERT_EQ(ed::setCurrentLayout(*document->database(), u"A1"), TvStatus::Ok);
    TvSmDatabase* database = made("house.dst");
    TvSmSheet* sheet = nullptr;
    change(database, [&](TvSmSheetSet& set) {
        sheet = addSheet(&set, u"1", u"Plan");
        setLayout(sheet, folder.file("a.dwg"), handle, u"A1");
    });
    DrawingMaker(*document->database()).view(u"Front", u"A1");
    const auto views = [&] { return itemsOf(sheet->getSheetViews()->getEnumerator()).size(); };
    TvEdAutoOpenSheetSetReactor reactor;
    g_viewsDirty = false;
    reactor.commandEnded(u"VIEW");
    EXPECT_EQ(views(), 0u);
    g_viewsDirty = true;
    reactor.commandEnded(u"VIEW");
    EXPECT_EQ(views(), 1u);
}

TEST_F(DocumentEdgesTest, ASetThatIsBusyForItselfKeepsTheStatusTimerQuiet)
{
    struct Page : core::StatusTimer::Page {
        void UpdateStatusImages() override { ++updates; }
        void ResetStatusImages() override {}
        void startTimer(int, int) override {}
        void stopTimer(int) override {}
        bool isVisible() const override { return true; }
        int updates = 0;
    } page;
    core::StatusTimer timer(page);
    TvSmDatabase scratch; // the manager does not know it
    scratch.setTransmitting(true);
    timer.fired(&scratch);
    EXPECT_EQ(page.updates, 0);
    scratch.setTransmitting(false);
    timer.fired(&scratch);
    EXPECT_EQ(page.updates, 1);
}

TEST_F(DocumentEdgesTest, EnterKeepsALinkThatLeadsNowhere)
{
    EXPECT_NE(CMissingSheetSetLinkDialog(u"a.dwg", u"house.dst").DoModal(), 1);
    ASSERT_EQ(messages.numbers(), std::vector<int>{350});
    EXPECT_EQ(messages.asked[0].standard, TvUserMessages::Answer::No);
    EXPECT_EQ(messages.asked[0].buttons, TvUserMessages::Buttons::YesNo);
}

TEST_F(DocumentEdgesTest, ASetIsAskedForAsOneFileThatIsThere)
{
    struct Prompts : ed::UserPrompts {
        Prompts() { ed::setUserPrompts(this); }
        ~Prompts() override { ed::setUserPrompts(nullptr); }
        int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
        int askFiles(const FileQuestion& question, std::vector<TvString>&) override
        {
            asked.push_back(question);
            return ed::kCancelled;
        }
        void print(const TvString&) override {}
        void say(int, const std::vector<TvString>&) override {}
        std::vector<FileQuestion> asked;
    } prompts;
    OpenSheetSetByDialog();
    ASSERT_EQ(prompts.asked.size(), 1u);
    EXPECT_FALSE(prompts.asked[0].mayBeSeveral);
    EXPECT_FALSE(prompts.asked[0].isForSaving);
    EXPECT_FALSE(prompts.asked[0].isForFolder);
}

} // namespace
