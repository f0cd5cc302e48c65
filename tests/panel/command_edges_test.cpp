// Commands whose set or sheet goes while a question stands.

#include <ed/command_line.h>
#include <ed/user_prompts.h>
#include <panel/recover_drawing.h>

#include "command_scene.h"

namespace {

class CommandEdgesTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        DrawingMaker maker;
        maker.paper(u"A1").saveAs(folder.file("b.dwg"));
        change(database, [&](TvSmSheetSet& top) {
            lost = addSheet(&top, u"1", u"Lost");
            setLayout(lost, folder.file("lost.dwg"), u"22", u"A1");
            plan = addSheet(&top, u"2", u"Plan");
            setLayout(plan, folder.file("b.dwg"), maker.handleOf(u"A1"), u"A1");
            roof = addSubset(&top, u"Roof");
            addSheet(roof, u"3", u"Tiles");
        });
        show();
    }

    TvSmSheet *lost = nullptr, *plan = nullptr;
    TvSmSubset* roof = nullptr;
};

TEST_F(CommandEdgesTest, SheetsOfASetThatClosesMeanwhileAreLeftAlone)
{
    answers.meanwhile = [] { CloseCurrentSheetSet(); };
    select({lost, plan});
    commands.run(panel::kOpenSheet);
    EXPECT_EQ(answers.tasks.size(), 1u);
    EXPECT_EQ(documents().documentCount(), 0);
}

TEST_F(CommandEdgesTest, ASheetThatGoesWhileItsRecoveryIsAskedAboutIsNotRemovedAgain)
{
    answers.meanwhile = [this] {
        change(database, [this](TvSmSheetSet& top) { top.removeSheet(lost); });
    };
    answers.task = 1001;
    answers.answer = TvUserMessages::Answer::Ok;
    panel::RecoverMissingDrawing(lost->getLayoutReference(), 618, 619);
    EXPECT_EQ(answers.tasks.size(), 1u);
    EXPECT_TRUE(answers.asked.empty());
}

TEST_F(CommandEdgesTest, ASetThatIsLockedWhileItsRecoveryIsAskedAboutStaysAsItIs)
{
    answers.meanwhile = [this] { ASSERT_TRUE(database->lockDb(database)); };
    for (const int task : {1001, 1002}) {
        answers.task = task;
        answers.answer = TvUserMessages::Answer::Ok;
        bool isReplaced = false;
        panel::setReplaceLayout([&](TvSmDatabase&, TvSmSheet&) { return isReplaced = true; });
        panel::RecoverMissingDrawing(lost->getLayoutReference(), 618, 619);
        panel::setReplaceLayout({});
        EXPECT_FALSE(isReplaced);
        EXPECT_TRUE(answers.asked.empty());
        ASSERT_TRUE(database->unlockDb(database, false));
    }
}

TEST_F(CommandEdgesTest, BothQuestionsOfRemovalOfferOkAndCancel)
{
    select({lost});
    commands.run(panel::kRemoveSheets);
    select({roof});
    commands.run(panel::kRemoveSubset);
    ASSERT_EQ(answers.numbers(), (std::vector<int>{347, 587}));
    EXPECT_EQ(answers.asked[1].caption, 586);
    for (const TvUserMessages::Message& message : answers.asked)
        EXPECT_EQ(message.buttons, TvUserMessages::Buttons::OkCancel);
    EXPECT_NE(at(roof), nullptr);
}

TEST_F(CommandEdgesTest, AnExcludedSubsetShowsItThoughImagesFollowNoEvents)
{
    change(database, [this](TvSmSheetSet& top) {
        auto* place = newFor<TvSmFileReference>(&top);
        place->setFileName(TvString(folder.path().u16string().c_str()));
        ASSERT_TRUE(top.setNewSheetLocation(place));
        auto* sheet = tvrxCast<TvSmSheet>(itemsOf(roof->getSheetEnumerator()).front());
        setLayout(sheet, folder.file("b.dwg"), u"22", u"A1");
    });
    select({roof});
    commands.run(panel::kExcludeSubset);
    while (!page.workOnStatus()) {
    }
    EXPECT_EQ(at(roof)->image(), core::SheetImage::ImageSubsetNoPublish);
    commands.run(panel::kIncludeSubset);
    while (!page.workOnStatus()) {
    }
    EXPECT_EQ(at(roof)->image(), core::SheetImage::ImageSubset);
}

TEST_F(CommandEdgesTest, ThePanelsOldSetIsNotTheOneThatCommandsChange)
{
    TvSmDatabase* other = made("other.dst");
    select({lost});
    SetCurrentDatabase(other); // without telling the page
    answers.answer = TvUserMessages::Answer::Ok;
    commands.run(panel::kRemoveSheets);
    commands.run(3);
    EXPECT_TRUE(answers.asked.empty());
    EXPECT_EQ(other->getSheetSet()->getPublishOptions()->getEplotFormat(),
              TvSmDatabase().getSheetSet()->getPublishOptions()->getEplotFormat());
    EXPECT_NE(at(lost), nullptr);
    SetCurrentDatabase(database);
}

TEST_F(CommandEdgesTest, AfterARemovedSubsetRangesBeginAtTheCaret)
{
    select({roof});
    page.tree().setAnchor(at(lost));
    answers.answer = TvUserMessages::Answer::Ok;
    commands.run(panel::kRemoveSubset);
    EXPECT_EQ(at(roof), nullptr);
    EXPECT_EQ(page.tree().caret(), at(plan)) << "the one before";
    EXPECT_EQ(page.tree().anchor(), at(plan));
}

TEST_F(CommandEdgesTest, ADrawingThatMovedWithItsSetIsShownWhereItIsNow)
{
    namespace fs = std::filesystem;
    fs::create_directories(folder.path() / "before");
    DrawingMaker maker;
    maker.paper(u"A1").saveAs(folder.file("before/a.dwg"));
    TvSmDatabase* moved = made("before/moved.dst");
    change(moved, [&](TvSmSheetSet& top) {
        setLayout(addSheet(&top, u"1", u"Plan"), folder.file("before/a.dwg"), maker.handleOf(u"A1"),
                  u"A1");
    });
    ASSERT_TRUE(manager().closeDatabase(moved));
    fs::rename(folder.path() / "before", folder.path() / "after");
    moved = manager().openDatabase(folder.file("after/moved.dst"), true, 0);
    ASSERT_NE(moved, nullptr);
    ActivateSheetSet(moved);
    page.tree().selectOnly(page.tree().root()->firstChild());
    commands.run(panel::kExploreSheet);
    EXPECT_EQ(program.explored, std::vector<TvString>{folder.file("after/a.dwg")});
}

TEST_F(CommandEdgesTest, AskingForASheetListGivesUpWhatWasBeingTyped)
{
    struct Prompts : ed::UserPrompts {
        Prompts() { ed::setUserPrompts(this); }
        ~Prompts() override { ed::setUserPrompts(nullptr); }
        int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
        int askFiles(const FileQuestion&, std::vector<TvString>&) override
        {
            return ed::kCancelled;
        }
        void print(const TvString&) override {}
        void say(int, const std::vector<TvString>& arguments) override { said = arguments; }
        std::vector<TvString> said;
    } prompts;
    ed::CommandLine line;
    line.post(u"HALFTYPED");
    select({lost});
    commands.run(panel::kInsertSheetList);
    line.work();
    EXPECT_EQ(prompts.said, std::vector<TvString>{u"_SmInsertToc"});
    panel::PanelCommands::sheetListHandles().clear();
}

TEST_F(CommandEdgesTest, TheRootIsNoSubsetToBeRemoved)
{
    select({database->getSheetSet()});
    answers.answer = TvUserMessages::Answer::Ok;
    commands.run(panel::kRemoveSubset);
    EXPECT_TRUE(answers.asked.empty());
    EXPECT_EQ(childrenOf(database->getSheetSet()).size(), 3u);
}

} // namespace
