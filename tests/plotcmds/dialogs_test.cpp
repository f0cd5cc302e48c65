// The dialogs of plotting: what they show, keep, refuse and leave alone.

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTreeWidget>

#include <db/tv_db_dictionary.h>

#include "dialogs.h"
#include "module_scene.h"
#include "scripted_prompts.h"

namespace {

using plotcmds::PageSetupDialog;
using plotcmds::PdfOptionsDialog;
using plotcmds::PublishDialog;
using plotcmds::StampDialog;

class PlotDialogs : public ModuleTest
{
protected:
    PlotDialogs() { ed::setUserPrompts(&prompts); }
    ~PlotDialogs() override { ed::setUserPrompts(nullptr); }

    /// Runs one, does that in it, and cancels it if it is still there.
    template <class Dialog, class Step, class Call>
    void inDialog(Call call, Step step)
    {
        bool wasOpen = false;
        whenWaiting([&] {
            auto* dialog = runningDialog<Dialog>();
            wasOpen = dialog != nullptr;
            if (!dialog)
                return;
            step(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
        call();
        EXPECT_TRUE(wasOpen);
    }
    template <class Step>
    void inPublish(Step step)
    {
        inDialog<PublishDialog>(
            [this] { KvCmd_PublisDlg(set->getPublishOptions(), database, &sheets); }, step);
    }
    template <class Step>
    void inStamp(Step step)
    {
        inDialog<StampDialog>([] { KvCmd_PlotStampSetting(); }, step);
    }
    template <class Step>
    void inPdfOptions(Step step)
    {
        inDialog<PdfOptionsDialog>([this] { KvCmd_PDFPublishOption(database); }, step);
    }
    static void press(CTvUiDialog& dialog, int id) { dialog.Item<QAbstractButton>(id)->click(); }
    static void choose(PublishDialog& dialog, int format)
    {
        dialog.Item<QComboBox>(PublishDialog::kFormat)->setCurrentIndex(format);
    }

    ScriptedPrompts prompts;
};

// What is published

TEST_F(PlotDialogs, TheFormatIsTheSetsAtFirst)
{
    const std::pair<long, plot::OutputKind> formats[] = {
        {0, plot::kPdfPerSheet}, {2, plot::kSvgPerSheet}, {1, plot::kOnePdf}, {7, plot::kOnePdf}};
    for (const auto& [stored, kind] : formats) {
        set->getPublishOptions()->setEplotFormat(stored);
        inPublish([&, kind = kind](PublishDialog& dialog) { EXPECT_EQ(dialog.kind(), kind); });
    }
}

TEST_F(PlotDialogs, ThePlaceFollowsTheFormat)
{
    inPublish([this](PublishDialog& dialog) {
        const auto canType = [&] {
            return dialog.Item<QLineEdit>(PublishDialog::kTarget)->isEnabled();
        };
        choose(dialog, 0);
        EXPECT_EQ(dialog.target(), folder.file("out/all.pdf"));
        choose(dialog, 2);
        EXPECT_EQ(dialog.kind(), plot::kSvgPerSheet);
        EXPECT_EQ(dialog.target(), folder.file("out"));
        EXPECT_TRUE(canType());
        choose(dialog, 3);
        EXPECT_EQ(dialog.kind(), plot::kToPrinter);
        EXPECT_TRUE(dialog.target().isEmpty());
        EXPECT_FALSE(canType());
    });
}

TEST_F(PlotDialogs, WithoutAnOutputFolderThePlaceIsBesideTheSet)
{
    set->getPublishOptions()->setDefaultOutputdir(nullptr);
    ASSERT_TRUE(database->save(0));
    inPublish([this](PublishDialog& dialog) {
        choose(dialog, 0);
        EXPECT_EQ(dialog.target(), folder.file("all.pdf"));
        choose(dialog, 1);
        EXPECT_EQ(dialog.target(), TvString(folder.path().string()));
    });
}

TEST_F(PlotDialogs, AllOrNoneAreChosenAndNoneIsNotPublished)
{
    const std::vector<TvSmSheet*> there = sheets;
    sheets.insert(sheets.begin(), nullptr);
    inPublish([&](PublishDialog& dialog) {
        EXPECT_EQ(dialog.chosen(), there) << "all at first, without the null";
        press(dialog, PublishDialog::kNone);
        EXPECT_TRUE(dialog.chosen().empty());
        press(dialog, text::kIdOk);
        EXPECT_TRUE(dialog.isVisible());
        press(dialog, PublishDialog::kAll);
        EXPECT_EQ(dialog.chosen(), there);
        dialog.SetDlgItemText(PublishDialog::kTarget, TvString());
        press(dialog, text::kIdOk);
        EXPECT_TRUE(dialog.isVisible()) << "nor without a place";
    });
    EXPECT_EQ(progress(), nullptr) << "cancelled";
}

TEST_F(PlotDialogs, ThePlaceCanBeChosen)
{
    inPublish([this](PublishDialog& dialog) {
        choose(dialog, 0);
        press(dialog, PublishDialog::kBrowse); // and given up
        EXPECT_EQ(dialog.target(), folder.file("out/all.pdf"));
        prompts.files = {folder.file("other")};
        press(dialog, PublishDialog::kBrowse);
        EXPECT_EQ(dialog.target(), folder.file("other.pdf"));
        EXPECT_EQ(prompts.asked.start, folder.file("out/all.pdf"));
        choose(dialog, 2);
        press(dialog, PublishDialog::kBrowse);
        EXPECT_TRUE(prompts.asked.isForFolder);
        EXPECT_EQ(dialog.target(), folder.file("other"));
        press(dialog, text::kIdOk);
    });
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "other" / "2 Upper.svg"));
    EXPECT_FALSE(isThere("2 Upper.svg"));
}

TEST_F(PlotDialogs, TheWishForAStampIsTheUsersSetting)
{
    const auto stamp = [this](bool isWanted, int button) {
        inPublish([=](PublishDialog& dialog) {
            dialog.CheckDlgButton(PublishDialog::kStamp, isWanted);
            press(dialog, button);
        });
        delete progress();
    };
    stamp(true, text::kIdCancel);
    EXPECT_FALSE(plot::isStampWanted());
    stamp(true, text::kIdOk);
    EXPECT_TRUE(plot::isStampWanted());
    inPublish([](PublishDialog& dialog) { EXPECT_TRUE(dialog.isStamped()); });
    stamp(false, text::kIdOk);
    EXPECT_FALSE(plot::isStampWanted());
}

// The stamp

TEST_F(PlotDialogs, AStampThatIsCancelledIsNotKept)
{
    inStamp([](StampDialog& dialog) { dialog.SetDlgItemText(StampDialog::kNote, u"Draft"); });

    EXPECT_TRUE(plot::storedStamp().note.isEmpty());
}

TEST_F(PlotDialogs, TheHeightOfAStampMustBeSensible)
{
    inStamp([](StampDialog& dialog) {
        for (const TvChar* wrong : {u"", u"0.2", u"21", u"x"}) {
            dialog.SetDlgItemText(StampDialog::kHeight, wrong);
            press(dialog, text::kIdOk);
            EXPECT_TRUE(dialog.isVisible()) << TvString(wrong).utf8();
        }
        dialog.SetDlgItemText(StampDialog::kHeight, u"2.75");
        dialog.Item<QComboBox>(StampDialog::kCorner)->setCurrentIndex(3);
        press(dialog, text::kIdOk);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(plot::storedStamp().heightMm, 2.75);
    EXPECT_EQ(plot::storedStamp().corner, plot::Stamp::Corner::UpperRight);
}

TEST_F(PlotDialogs, AnExampleShowsTheStamp)
{
    inStamp([](StampDialog& dialog) {
        const auto sample = [&] { return dialog.GetDlgItemText(StampDialog::kSample).utf8(); };
        EXPECT_EQ(sample(), "Example: Lake House | A-101 | Ground Floor | 2026-03-31");
        press(dialog, StampDialog::kFirstPart); // the set's name is taken away
        dialog.SetDlgItemText(StampDialog::kNote, u"Draft");
        EXPECT_EQ(sample(), "Example: A-101 | Ground Floor | 2026-03-31 | Draft");
        for (const int part : {1, 2, 5})
            dialog.CheckDlgButton(StampDialog::kFirstPart + part, false);
        dialog.SetDlgItemText(StampDialog::kNote, TvString());
        EXPECT_EQ(sample(), "Example: (nothing)");
    });
}

// PDF

TEST_F(PlotDialogs, PdfOptionsThatAreCancelledAreNotKept)
{
    inPdfOptions([](PdfOptionsDialog& dialog) {
        dialog.CheckDlgButton(PdfOptionsDialog::kText, false);
        dialog.CheckDlgButton(PdfOptionsDialog::kMixed, true);
    });

    EXPECT_TRUE(plot::storedPdfOptions().hasText);
    EXPECT_FALSE(set->getPublishOptions()->getLinesMerge());
}

TEST_F(PlotDialogs, PdfOptionsAreShownAsTheyAre)
{
    plot::PdfOptions mine;
    mine.hasOutline = mine.hasText = false;
    mine.isMonochrome = true;
    plot::storePdfOptions(mine);
    set->getPublishOptions()->setLinesMerge(true);
    inPdfOptions([](PdfOptionsDialog& dialog) {
        const auto isChecked = [&](int id) { return dialog.IsDlgButtonChecked(id); };
        EXPECT_TRUE(isChecked(PdfOptionsDialog::kLayers));
        EXPECT_FALSE(isChecked(PdfOptionsDialog::kOutline));
        EXPECT_FALSE(isChecked(PdfOptionsDialog::kText));
        EXPECT_TRUE(isChecked(PdfOptionsDialog::kBlack));
        EXPECT_TRUE(isChecked(PdfOptionsDialog::kMixed)) << "the set's";
        dialog.CheckDlgButton(PdfOptionsDialog::kOutline, true);
        dialog.CheckDlgButton(PdfOptionsDialog::kText, true);
        dialog.CheckDlgButton(PdfOptionsDialog::kBlack, false);
        dialog.CheckDlgButton(PdfOptionsDialog::kMixed, false);
        press(dialog, text::kIdOk);
    });
    EXPECT_EQ(plot::storedPdfOptions(), plot::PdfOptions());
    EXPECT_FALSE(set->getPublishOptions()->getLinesMerge());
}

// Page setups

TEST_F(PlotDialogs, PageSetupsOfADrawingAreShownAndNothingChanges)
{
    {
        const TvDbObjectPointer<TvDbDictionary> all(plan.database().plotSettingsDictionaryId(),
                                                    TvDb::kForWrite);
        for (const TvChar* name : {u"Draft", u"Final"}) {
            auto* setup = new TvDbPlotSettings;
            setup->edit().setText("page_setup_name", name);
            TvDbObjectId id;
            ASSERT_EQ(all->setAt(name, setup, id), TvStatus::Ok);
            setup->close();
        }
    }
    const auto before = plan.bytes();
    inDialog<PageSetupDialog>(
        [this] { KvCmd_PageSetupDlg(&plan.database(), u"House", false); },
        [](PageSetupDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Page Setups of House"));
            auto* list = dialog.Item<QListWidget>(PageSetupDialog::kSetups);
            ASSERT_EQ(list->count(), 2);
            EXPECT_EQ(list->item(1)->text(), QStringLiteral("Final"));
            EXPECT_TRUE(dialog.GetDlgItemText(PageSetupDialog::kNote).isEmpty());
            press(dialog, text::kIdOk);
        });
    EXPECT_TRUE(*plan.bytes() == *before);
}

TEST_F(PlotDialogs, ThatThereIsNoPageSetupAndThatADrawingIsOpenIsSaid)
{
    const auto note = [](std::vector<plot::PageSetup> setups, bool isOpen) {
        PageSetupDialog dialog(std::move(setups), u"House", isOpen);
        EXPECT_TRUE(dialog.Create());
        return dialog.GetDlgItemText(PageSetupDialog::kNote).utf8();
    };
    EXPECT_EQ(note({}, true), "There are no page setups in this drawing.");
    EXPECT_EQ(note({plot::PageSetup()}, true),
              "The drawing is open in the editor; this is how it looks there now.");
    EXPECT_EQ(note({plot::PageSetup()}, false), "");
}

TEST(PageSetupWords, TellPaperPrinterAreaScaleAndTable)
{
    plot::PageSetup setup;
    EXPECT_EQ(plotcmds::describe(setup).utf8(),
              "Paper: none, 0 × 0 mm\nPrinter: none\nArea: Layout\n"
              "Scale: 1 mm on paper for one drawing unit\nPlot style table: none\n");
    setup.paperName = u"ISO A4";
    setup.paperWidthMm = 297;
    setup.paperHeightMm = 209.6;
    setup.printer = u"Office";
    setup.area = TvDbPlotSettings::kView;
    setup.viewName = u"North";
    setup.fits = true;
    setup.styleTable = u"thin.ctb";
    setup.usesStyles = true;
    EXPECT_EQ(plotcmds::describe(setup).utf8(),
              "Paper: ISO A4, 297 × 210 mm\nPrinter: Office\nArea: View “North”\n"
              "Scale: fits the paper\nPlot style table: thin.ctb\n");
    setup.usesStyles = false;
    setup.fits = false;
    setup.isInches = true;
    setup.scale = 0.5;
    setup.area = TvDbPlotSettings::kDisplay;
    EXPECT_EQ(plotcmds::describe(setup).utf8(),
              "Paper: ISO A4, 297 × 210 mm\nPrinter: Office\nArea: Display\n"
              "Scale: 12.7 mm on paper for one drawing unit\nPlot style table: none\n");
}

} // namespace
