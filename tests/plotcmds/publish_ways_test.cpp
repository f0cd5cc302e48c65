// Where published sheets come from and go to: open drawings, page setups, printers, questions.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <db/tv_db_dictionary.h>
#include <ed/tv_ap_doc_manager.h>
#include <rx/tv_rx_dictionary.h>

#include "attached_scene.h"
#include "fake_programs.h"
#include "module_scene.h"
#include "plotcmds_ids.h"
#include "publisher.h"
#include "scripted_prompts.h"

namespace {

using plotcmds::ProgressDialog;

/// Notes what is said.
class NotedMessages : public TvUserMessages
{
public:
    NotedMessages() { tvrxSetUserMessages(this); }
    ~NotedMessages() override { tvrxSetUserMessages(nullptr); }
    Answer show(const Message& message) override
    {
        said.push_back(message);
        return Answer::Ok;
    }
    std::vector<Message> said;
};

/// On a machine without printers, until a test adds one.
class PublishWays : public ModuleTest
{
protected:
    PublishWays()
    {
        programs.add("lpstat", "exit 1\n");
        ed::setUserPrompts(&prompts);
    }
    ~PublishWays() override { ed::setUserPrompts(nullptr); }

    void publishWith(const TvChar* pageSetup, int kind)
    {
        PublishRequest request;
        request.usePageSetup = request.multipleSheets = true;
        request.kind = kind;
        request.pageSetupName = pageSetup;
        KvCmd_PublishSheetSet(&sheets, set, &request);
    }
    /// A drawing with a page setup of A5 for the set.
    void namePageSetups()
    {
        PlotScene drawing;
        {
            const TvDbObjectPointer<TvDbDictionary> all(
                drawing.database().plotSettingsDictionaryId(), TvDb::kForWrite);
            auto* setup = new TvDbPlotSettings;
            setup->edit().setText("page_setup_name", u"Draft");
            setup->edit().setReal("paper_width", 210);
            setup->edit().setReal("paper_height", 148);
            setup->edit().setInteger("plot_type", TvDbPlotSettings::kLayout);
            TvDbObjectId id;
            ASSERT_EQ(all->setAt(u"Draft", setup, id), TvStatus::Ok);
            setup->close();
        }
        ASSERT_EQ(drawing.database().saveAs(folder.file("setups.dwg")), TvStatus::Ok);
        auto* reference = newFor<TvSmFileReference>(set);
        ASSERT_TRUE(reference->setFileName(folder.file("setups.dwg")) &&
                    set->setAltPageSetups(reference));
    }
    /// Their options say no place then.
    void forgetPlace() { set->getPublishOptions()->setDefaultOutputdir(nullptr); }
    std::string svg(const char* name) { return folder.read(std::string("out/") + name); }
    static std::string line() { return progress()->GetDlgItemText(ProgressDialog::kLine).utf8(); }

    FakePrograms programs;
    NotedMessages messages;
    ScriptedPrompts prompts;
};

TEST_F(PublishWays, WithoutAPrinterKindZeroGivesTheOnePdf)
{
    publish(plot::kToPrinter);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(isThere("all.pdf"));
    EXPECT_EQ(line(), "Publishing is finished: 2 sheets.");
    EXPECT_TRUE(progress()->Item<QPushButton>(ProgressDialog::kOpenFile)->isVisible());
}

TEST_F(PublishWays, WithAPrinterKindZeroGoesThereAndLeavesNoFile)
{
    programs.add("lpstat", "echo Office\n");
    programs.add("lp", "cp \"$8\" " + folder.file("printed").utf8() + "; echo \"$8\" > " +
                           folder.file("said").utf8() + "\n");
    whenWaiting([] {
        auto* dialog = runningDialog<CTvUiDialog>();
        ASSERT_TRUE(dialog);
        dialog->Item<QPushButton>(text::kIdOk)->click();
    });
    publish(plot::kToPrinter);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(folder.read("printed").starts_with("%PDF-"));
    EXPECT_EQ(line(), "The sheets were sent to Office.");
    EXPECT_FALSE(isThere("all.pdf"));
    std::string name = folder.read("said");
    name.pop_back();
    EXPECT_FALSE(std::filesystem::exists(name)) << name;
    EXPECT_FALSE(progress()->Item<QPushButton>(ProgressDialog::kOpenFile)->isVisible());
}

TEST_F(PublishWays, WhoGivesUpThePrinterPublishesNothing)
{
    programs.add("lpstat", "echo Office\n");
    whenWaiting([] { QApplication::activeModalWidget()->close(); });
    publish(plot::kToPrinter);

    EXPECT_EQ(progress(), nullptr);
    EXPECT_FALSE(isThere("all.pdf"));
}

TEST_F(PublishWays, OthersThanKindZeroAskNoPrinter)
{
    programs.add("lpstat", "echo Office\n");
    publish(plot::kOnePdf);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(isThere("all.pdf"));
}

TEST_F(PublishWays, ThePageSetupOfTheRequestTakesThePlaceOfTheSheetsOwn)
{
    namePageSetups();
    publish(plot::kSvgPerSheet);
    ASSERT_TRUE(waitForEnd());
    EXPECT_NE(svg("2 Upper.svg").find("width=\"420.00mm\""), std::string::npos);
    delete progress();
    publishWith(u"DRAFT", plot::kSvgPerSheet);
    ASSERT_TRUE(waitForEnd());

    for (const char* name : {"1 Ground.svg", "2 Upper.svg"})
        EXPECT_NE(svg(name).find("width=\"210.00mm\""), std::string::npos) << name;
}

TEST_F(PublishWays, APageSetupWithoutADrawingForItIsTold)
{
    publishWith(u"Draft", plot::kOnePdf);

    EXPECT_EQ(progress(), nullptr);
    ASSERT_EQ(messages.said.size(), 1U);
    EXPECT_EQ(messages.said[0].text, plotcmds::kNoPageSetups);
    EXPECT_EQ(messages.said[0].arguments, std::vector<TvString>{u"Draft"});
}

TEST_F(PublishWays, APageSetupThatTheDrawingDoesNotHaveEndsTheJob)
{
    namePageSetups();
    publishWith(u"Final", plot::kOnePdf);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(line().starts_with("Publishing failed: ")) << line();
    EXPECT_NE(line().find("Final"), std::string::npos) << line();
    EXPECT_FALSE(isThere("all.pdf"));
}

TEST_F(PublishWays, AnEmptyListIsTold)
{
    sheets = {nullptr};
    publish(plot::kOnePdf);

    ASSERT_EQ(messages.said.size(), 1U);
    EXPECT_EQ(messages.said[0].text, plotcmds::kNothingToPublish);
    EXPECT_EQ(messages.said[0].caption, plotcmds::kPublishing);
}

TEST_F(PublishWays, ChangesAfterTheCallDoNotReachTheJob)
{
    publish(plot::kPdfPerSheet);
    for (TvSmSheet* sheet : sheets) {
        sheet->setTitle(u"Other");
        sheet->setLayoutReference(nullptr);
    }
    set->getPublishOptions()->setDefaultOutputdir(nullptr);
    sheets.clear();

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(isThere("1 Ground.pdf"));
    EXPECT_TRUE(isThere("2 Upper.pdf"));
}

TEST_F(PublishWays, AChangedDrawingIsPublishedAsItStandsInTheEditor)
{
    TvEditor editor;
    tvrxSysRegistry()->atPut(kTvEditor, &editor);
    {
        TvApDocManager documents;
        TvApDocument* document = nullptr;
        ASSERT_EQ(documents.openDocument(folder.file("plan.dwg"), false, document), TvStatus::Ok);
        const TvDbObjectId layout = plot::findLayout(*document->database(), 0, u"Plan");
        const TvDbObjectId paper =
            TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify)->getBlockTableRecordId();
        auto* text = new TvDbText;
        text->setTextString(u"Not saved yet");
        text->setPosition({100, 100, 0});
        text->setHeight(5);
        TvDbObjectId id;
        ASSERT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(paper, TvDb::kForWrite)
                      ->appendTvDbEntity(id, text),
                  TvStatus::Ok);
        text->close();
        const std::string before = folder.read("plan.dwg");
        publish(plot::kSvgPerSheet);

        ASSERT_TRUE(waitForEnd());
        for (const char* name : {"1 Ground.svg", "2 Upper.svg"})
            EXPECT_NE(svg(name).find("Not saved yet</text>"), std::string::npos) << name;
        EXPECT_TRUE(folder.read("plan.dwg") == before) << "it is not saved for that";
    }
    tvrxSysRegistry()->remove(kTvEditor);
}

TEST_F(PublishWays, WhereTheOptionsSayNoPlaceTheFileIsAskedFor)
{
    forgetPlace();
    ASSERT_TRUE(database->save(0));
    prompts.files = {folder.file("chosen")};
    publish(plot::kOnePdf);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(prompts.asked.isForSaving);
    EXPECT_FALSE(prompts.asked.isForFolder);
    EXPECT_EQ(prompts.asked.start, folder.file("all.pdf")) << "beside the set";
    EXPECT_EQ(prompts.asked.extensions, std::vector<TvString>{u"pdf"});
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "chosen.pdf")) << "with its ending";
}

TEST_F(PublishWays, WhereTheOptionsSayNoPlaceTheFolderIsAskedFor)
{
    forgetPlace();
    ASSERT_TRUE(database->save(0));
    prompts.files = {folder.file("sheets")};
    publish(plot::kPdfPerSheet);

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(prompts.asked.isForFolder);
    EXPECT_EQ(prompts.asked.start, TvString(folder.path().string()));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "sheets" / "1 Ground.pdf"));
}

TEST_F(PublishWays, AnAnswerIsTakenInFullAndWithOneEnding)
{
    const auto answered = [this](const char* typed, plot::OutputKind kind) {
        prompts.files = {TvString(typed)};
        return plotcmds::askTarget(kind, {}).utf8();
    };
    const std::string here = std::filesystem::current_path().string();
    EXPECT_EQ(answered("plans", plot::kOnePdf), here + "/plans.pdf");
    EXPECT_EQ(answered("../plans", plot::kSvgPerSheet),
              std::filesystem::path(here).parent_path().string() + "/plans");
    EXPECT_EQ(answered("/a/PLANS.PDF", plot::kToPrinter), "/a/PLANS.PDF");
}

TEST_F(PublishWays, WhoGivesUpTheQuestionPublishesNothing)
{
    forgetPlace();
    publish(plot::kOnePdf);

    EXPECT_EQ(progress(), nullptr);
    EXPECT_TRUE(messages.said.empty());
}

TEST_F(PublishWays, WhatASheetLacksIsListedThoughItIsMade)
{
    plan.addTo(plan.paper(), new TvDbBlockReference(
                                 {50, 50, 0}, attachDrawing(plan.database(), u"Ref", u"ref.dwg")));
    ASSERT_EQ(plan.database().saveAs(folder.file("plan.dwg")), TvStatus::Ok);
    publish(plot::kOnePdf);

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(line(), "Publishing is finished: 2 sheets.");
    const auto* list = progress()->Item<QListWidget>(ProgressDialog::kFailures);
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->text(),
              QStringLiteral("1 - Ground: The external reference Ref is not shown: there is no "
                             "drawing ref.dwg."));
}

TEST_F(PublishWays, UnknownKindsOfOutputAreNone)
{
    for (const int kind : {-1, 4}) {
        publish(kind);
        EXPECT_EQ(progress(), nullptr) << kind;
    }
    EXPECT_TRUE(messages.said.empty());
}

TEST_F(PublishWays, TheEndTellsHowManySheetsAreMissingAndCloses)
{
    setLayout(sheets[1], folder.file("gone.dwg"), u"0", u"Plan");
    publish(plot::kOnePdf);

    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(line(), "Publishing is finished: 1 sheets, 1 could not be published.");
    progress()->Item<QPushButton>(text::kIdCancel)->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(progress(), nullptr) << "its window is closed by the same button";
}

} // namespace
