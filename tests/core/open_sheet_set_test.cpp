// Opening sheet sets: what is asked, what is told, and in which order.

#include <base/path_rules.h>
#include <core/current_sheet.h>
#include <core/open_sheet_set.h>
#include <core/sheet_data.h>
#include <db/tv_db_host_application_services.h>
#include <dwg/dwg_codec.h>
#include <ed/layouts.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/user_prompts.h>
#include <rx/tv_user_messages.h>

#include "session_scene.h"

namespace {

using Told = std::vector<std::string>;

class OpenTest : public SessionTest, private ed::UserPrompts, private TvUserMessages
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        ed::setUserPrompts(this);
        tvrxSetUserMessages(this);
        for (const char* name : {"a.dst", "b.dst"})
            manager().closeDatabase(made(name));
        folder.write("broken.dst", "no sheet set");
        folder.write("a.txt", "no sheet set");
    }
    void TearDown() override
    {
        tvrxSetUserMessages(nullptr);
        ed::setUserPrompts(nullptr);
        SessionTest::TearDown();
    }
    bool isOpen(const char* name) const
    {
        return manager().findOpenDatabase(folder.file(name)) != nullptr;
    }
    TvString current() const
    {
        return GetCurrentDatabase() ? GetCurrentDatabase()->getFileName() : TvString();
    }
    bool hasBackup(const char* name) const { return std::filesystem::exists(folder.path() / name); }

    std::vector<TvString> answers; ///< to questions for paths; none left: given up
    Told asked;                    ///< questions and messages

private:
    int answer(const std::string& question, TvString& out)
    {
        asked.push_back(question);
        if (answers.empty())
            return ed::kCancelled;
        out = answers.front();
        answers.erase(answers.begin());
        return 5100;
    }
    int askText(const TvString& prompt, bool withBlanks, TvString& out) override
    {
        EXPECT_TRUE(withBlanks);
        EXPECT_FALSE(prompt.isEmpty());
        return answer("prompt", out);
    }
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override
    {
        EXPECT_EQ(question.extensions, std::vector<TvString>{u"dst"});
        EXPECT_FALSE(question.title.isEmpty());
        out.resize(1);
        return answer("dialog", out[0]);
    }
    void print(const TvString&) override {}
    void say(int, const std::vector<TvString>&) override {}
    Answer show(const Message& message) override
    {
        asked.push_back(std::to_string(message.text) + " on " + std::to_string(message.caption) +
                        (message.icon == Icon::Stop      ? " stop"
                         : message.icon == Icon::Warning ? " warning"
                                                         : ""));
        return Answer::Ok;
    }
};

TEST_F(OpenTest, APathOpensShowsCopiesRemembersAndActivates)
{
    OpenSheetSetFile(folder.file("a.dst"));
    EXPECT_EQ(current(), folder.file("a.dst"));
    EXPECT_TRUE(hasBackup("a.ds$"));
    EXPECT_EQ(recentSheetSets(), std::vector<TvString>{folder.file("a.dst")});
    EXPECT_EQ(host.told.front(), "show") << "before the file is opened";
    EXPECT_TRUE(asked.empty());
}

TEST_F(OpenTest, AnOpenSetIsCopiedNoMoreAndStillMovesToTheFront)
{
    OpenSheetSetFile(folder.file("a.dst"));
    OpenSheetSetFile(folder.file("b.dst"));
    std::filesystem::remove(folder.path() / "a.ds$");
    OpenSheetSetFile(folder.file("a.dst"));
    EXPECT_FALSE(hasBackup("a.ds$"));
    EXPECT_EQ(recentSheetSets(),
              (std::vector<TvString>{folder.file("a.dst"), folder.file("b.dst")}));
    EXPECT_EQ(current(), folder.file("a.dst"));
}

TEST_F(OpenTest, WhatDoesNotEndInDstIsNothing)
{
    OpenSheetSetFile(folder.file("a.txt"));
    OpenSheetSetFile(u"");
    EXPECT_TRUE(asked.empty());
    EXPECT_TRUE(host.told.empty());
    std::filesystem::rename(folder.path() / "b.dst", folder.path() / "B.DST");
    OpenSheetSetFile(folder.file("B.DST"));
    EXPECT_EQ(current(), folder.file("B.DST")) << "in any case";
}

TEST_F(OpenTest, AMissingPathIsToldLeavesTheRecentListAndTheDialogOpens)
{
    UpdateRecentList(folder.file("gone.dst"), true);
    OpenSheetSetFile(folder.file("gone.dst"));
    EXPECT_EQ(asked, (Told{"513 on 511 warning", "dialog"}));
    EXPECT_TRUE(recentSheetSets().empty());
    EXPECT_TRUE(host.told.empty()) << "nothing to show";
}

TEST_F(OpenTest, APathThatCannotBeOpenedLeavesTheRecentListAndTheDialogOpens)
{
    UpdateRecentList(folder.file("broken.dst"), true);
    answers = {folder.file("a.dst")};
    OpenSheetSetFile(folder.file("broken.dst"));
    EXPECT_EQ(asked, (Told{"512 on 0 warning", "dialog"}));
    EXPECT_EQ(current(), folder.file("a.dst"));
    EXPECT_EQ(recentSheetSets(), std::vector<TvString>{folder.file("a.dst")});
    EXPECT_FALSE(hasBackup("broken.ds$"));
}

TEST_F(OpenTest, TheDialogRepeatsUntilTheFileIsThereAndIsADst)
{
    answers = {folder.file("gone.dst"), folder.file("a.txt"), folder.file("b.dst")};
    OpenSheetSetByDialog();
    EXPECT_EQ(asked, (Told{"dialog", "513 on 0 stop", "dialog", "512 on 511 warning", "dialog"}));
    EXPECT_EQ(current(), folder.file("b.dst"));
    EXPECT_TRUE(hasBackup("b.ds$"));
    EXPECT_EQ(recentSheetSets(), std::vector<TvString>{folder.file("b.dst")});
}

TEST_F(OpenTest, ADialogsSetThatCannotBeOpenedEndsItAndTheRecentListStays)
{
    UpdateRecentList(folder.file("broken.dst"), true);
    answers = {folder.file("broken.dst"), folder.file("a.dst")};
    OpenSheetSetByDialog();
    EXPECT_EQ(asked, (Told{"dialog", "512 on 0 warning"}));
    EXPECT_EQ(recentSheetSets(), std::vector<TvString>{folder.file("broken.dst")});
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(host.told, Told{"show"});
}

TEST_F(OpenTest, ADialogThatIsGivenUpChangesNothing)
{
    OpenSheetSetByDialog();
    EXPECT_EQ(asked, Told{"dialog"});
    EXPECT_TRUE(host.told.empty());
}

TEST_F(OpenTest, ThePromptCompletesTheExtension)
{
    answers = {folder.file("a")};
    OpenSheetSetByPrompt();
    EXPECT_EQ(asked, Told{"prompt"});
    EXPECT_EQ(current(), folder.file("a.dst"));
    EXPECT_TRUE(hasBackup("a.ds$"));
    EXPECT_EQ(recentSheetSets(), std::vector<TvString>{folder.file("a.dst")});
}

TEST_F(OpenTest, APathFromTheCurrentFolderIsRememberedWhole)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    answers = {u"a"};
    OpenSheetSetByPrompt();
    std::filesystem::current_path(before);
    ASSERT_NE(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(recentSheetSets(), std::vector<TvString>{GetCurrentDatabase()->getFileName()});
    EXPECT_TRUE(base::PathRules::native().isAbsolute(recentSheetSets().at(0)));
}

TEST_F(OpenTest, ThePromptRepeatsForAMissingFile)
{
    answers = {folder.file("gone"), folder.file("B.DST"), folder.file("b.dst")};
    OpenSheetSetByPrompt();
    EXPECT_EQ(asked, (Told{"prompt", "513 on 0 stop", "prompt", "513 on 0 stop", "prompt"}));
    EXPECT_EQ(current(), folder.file("b.dst"));
}

TEST_F(OpenTest, APromptsSetThatCannotBeOpenedLeadsToTheDialog)
{
    answers = {folder.file("broken"), folder.file("a.dst")};
    OpenSheetSetByPrompt();
    EXPECT_EQ(asked, (Told{"prompt", "512 on 0 warning", "dialog"}));
    EXPECT_EQ(current(), folder.file("a.dst"));
}

TEST_F(OpenTest, APromptThatIsGivenUpChangesNothing)
{
    OpenSheetSetByPrompt();
    EXPECT_EQ(asked, Told{"prompt"});
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
}

// The drawing that the user has before him

class ActiveDrawingTest : public OpenTest
{
protected:
    void SetUp() override
    {
        OpenTest::SetUp();
        dwg::install();
        TvDbDatabase drawing(true, true);
        ASSERT_EQ(drawing.saveAs(folder.file("plan.dwg")), TvStatus::Ok);
        ASSERT_EQ(documents.openDocument(folder.file("plan.dwg"), false, document), TvStatus::Ok);
        sm::environment().layout = &layout;
        switchTo(u"Layout1");
    }
    TvDbDatabase& drawing() { return *document->database(); }
    void switchTo(const TvString& name)
    {
        ASSERT_EQ(ed::setCurrentLayout(drawing(), name), TvStatus::Ok);
    }
    TvString layoutHandle() { return ed::currentLayout(drawing()).handle().text(); }
    /// A set on disk in which the layout that is shown is a sheet; open.
    TvSmDatabase* setWithSheet(const char* name)
    {
        TvSmDatabase* set = manager().createDatabase(folder.file(name), u"", true);
        setLayout(addSheet(set->getSheetSet(), u"1", u"Plan"), folder.file("plan.dwg"),
                  layoutHandle(), u"Layout1");
        EXPECT_TRUE(set->save(0));
        return set;
    }
    core::DocumentLayout layout;
    TvApDocManager documents;
    TvApDocument* document = nullptr;
};

TEST_F(ActiveDrawingTest, TheCurrentLayoutIsFoundAsASheet)
{
    TvSmDatabase* set = setWithSheet("set.dst");
    const TvSmSheet* sheet = GetCurrentDrawingSheet(set->getSheetSet());
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(FindSheetOfLayoutInActiveDocument(set->getSheetSet(), ed::currentLayout(drawing())),
              sheet);
    EXPECT_TRUE(KvDbUtil::IsCurrentSheetInSheetSet(set));
    switchTo(u"Layout2");
    EXPECT_EQ(GetCurrentDrawingSheet(set->getSheetSet()), nullptr);
    switchTo(u"Model");
    EXPECT_EQ(GetCurrentDrawingSheet(set->getSheetSet()), nullptr);
    EXPECT_FALSE(KvDbUtil::IsCurrentSheetInSheetSet(set));
    EXPECT_EQ(GetCurrentDrawingSheet(nullptr), nullptr);
    EXPECT_EQ(FindSheetOfLayoutInActiveDocument(set->getSheetSet(), TvDbObjectId()), nullptr);
    documents.closeDocument(document);
    EXPECT_EQ(GetCurrentDrawingSheet(set->getSheetSet()), nullptr);
    manager().closeDatabase(set);
}

TEST_F(ActiveDrawingTest, TheSetThatTheDrawingNamesIsOpenedAndFound)
{
    manager().closeDatabase(setWithSheet("set.dst"));
    ASSERT_TRUE(WriteSheetData(
        &drawing(), {layoutHandle(), u"Layout1", folder.file("plan.dwg"), folder.file("set.dst")}));
    TvSmSheetSet* found = nullptr;
    EXPECT_TRUE(GetSheetSetOfActiveDrawing(&manager(), found));
    EXPECT_EQ(current(), folder.file("set.dst"));
    ASSERT_NE(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(found, GetCurrentDatabase()->getSheetSet());
}

TEST_F(ActiveDrawingTest, OfSeveralSetsTheLastOneIsFound)
{
    TvSmDatabase* first = setWithSheet("first.dst");
    TvSmDatabase* last = setWithSheet("last.dst");
    TvSmSheetSet* found = nullptr;
    EXPECT_TRUE(GetSheetSetOfActiveDrawing(&manager(), found));
    EXPECT_EQ(found, last->getSheetSet());
    EXPECT_EQ(GetCurrentDatabase(), nullptr) << "the drawing names none";
    manager().closeDatabase(first);
    manager().closeDatabase(last);
}

TEST_F(ActiveDrawingTest, ALinkThatLeadsNowhereIsSilent)
{
    ASSERT_TRUE(WriteSheetData(&drawing(), {layoutHandle(), u"Layout1", folder.file("plan.dwg"),
                                            folder.file("gone.dst")}));
    TvSmSheetSet* found = nullptr;
    EXPECT_FALSE(GetSheetSetOfActiveDrawing(&manager(), found));
    EXPECT_EQ(found, nullptr);
    EXPECT_TRUE(asked.empty());
    EXPECT_FALSE(GetSheetSetOfActiveDrawing(nullptr, found));
}

} // namespace
