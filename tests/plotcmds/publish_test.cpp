// Sheets reach the plotter through what the module exports.

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>

#include "dialogs.h"
#include "module_scene.h"
#include "running_job.h"

namespace {

class Publish : public ModuleTest
{
};

TEST_F(Publish, OnePdfGoesWhereTheOptionsSay)
{
    publish(plot::kOnePdf);
    sheets.clear(); // the job has copies

    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(isThere("all.pdf"));
    keepPicture(*progress(), "plot-progress");
}

TEST_F(Publish, KindsTwoAndThreeGiveAFileForEachSheet)
{
    publish(plot::kPdfPerSheet);
    ASSERT_TRUE(waitForEnd());
    delete progress();
    publish(plot::kSvgPerSheet);
    ASSERT_TRUE(waitForEnd());

    for (const char* name : {"1 Ground.pdf", "2 Upper.pdf", "1 Ground.svg", "2 Upper.svg"})
        EXPECT_TRUE(isThere(name)) << name;
}

TEST_F(Publish, NullsAndUnknownKindsDoNothing)
{
    PublishRequest request;
    KvCmd_PublishSheetSet(nullptr, set, &request);
    KvCmd_PublishSheetSet(&sheets, nullptr, &request);
    KvCmd_PublishSheetSet(&sheets, set, nullptr);
    publish(17);
    KvCmd_PublisDlg(nullptr, database, &sheets);
    KvCmd_PageSetupDlg(nullptr, u"House", false);
    KvCmd_PDFPublishOption(nullptr);

    EXPECT_EQ(progress(), nullptr);
}

TEST_F(Publish, AnEmptyListStartsNothing)
{
    sheets.clear();
    publish(plot::kOnePdf);

    EXPECT_EQ(progress(), nullptr);
}

TEST_F(Publish, ASheetThatFailsIsListedByName)
{
    setLayout(sheets[1], folder.file("gone.dwg"), u"0", u"Plan");
    publish(plot::kOnePdf);
    ASSERT_TRUE(waitForEnd());

    auto* list = progress()->Item<QListWidget>(plotcmds::ProgressDialog::kFailures);
    ASSERT_EQ(list->count(), 1);
    EXPECT_TRUE(list->item(0)->text().startsWith("2 - Upper: "));
    EXPECT_TRUE(isThere("all.pdf"));
}

TEST_F(Publish, CancelEndsTheJobAndLeavesNoFile)
{
    const std::vector<TvSmSheet*> two = sheets;
    for (int i = 0; i < 300; ++i)
        sheets.insert(sheets.end(), two.begin(), two.end());
    publish(plot::kOnePdf);
    ASSERT_TRUE(progress());
    progress()->Item<QPushButton>(text::kIdCancel)->click();

    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(isThere("all.pdf"));
}

TEST_F(Publish, TheDialogPublishesWhatIsChecked)
{
    whenWaiting([this] {
        auto* dialog = runningDialog<plotcmds::PublishDialog>();
        ASSERT_TRUE(dialog);
        auto* tree = dialog->Item<QTreeWidget>(plotcmds::PublishDialog::kSheets);
        ASSERT_EQ(tree->topLevelItemCount(), 2);
        EXPECT_EQ(tree->topLevelItem(0)->text(1), "Ground");
        keepPicture(*dialog, "plot-publish");
        tree->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
        dialog->Item<QComboBox>(plotcmds::PublishDialog::kFormat)->setCurrentIndex(1);
        EXPECT_EQ(dialog->target(), folder.file("out"));
        dialog->Item<QPushButton>(text::kIdOk)->click();
    });
    KvCmd_PublisDlg(set->getPublishOptions(), database, &sheets);

    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(isThere("1 Ground.pdf"));
    EXPECT_TRUE(isThere("2 Upper.pdf"));
}

TEST_F(Publish, TheStampIsKeptOnOk)
{
    whenWaiting([] {
        auto* dialog = runningDialog<plotcmds::StampDialog>();
        ASSERT_TRUE(dialog);
        dialog->SetDlgItemText(plotcmds::StampDialog::kNote, u"Draft");
        dialog->CheckDlgButton(plotcmds::StampDialog::kFirstPart, false);
        keepPicture(*dialog, "plot-stamp");
        dialog->Item<QPushButton>(text::kIdOk)->click();
    });
    KvCmd_PlotStampSetting();

    EXPECT_EQ(plot::storedStamp().note, u"Draft");
    EXPECT_FALSE(plot::storedStamp().hasSetName);
}

TEST_F(Publish, PdfOptionsAreKeptForTheUserAndTheSet)
{
    whenWaiting([] {
        auto* dialog = runningDialog<plotcmds::PdfOptionsDialog>();
        ASSERT_TRUE(dialog);
        dialog->CheckDlgButton(plotcmds::PdfOptionsDialog::kLayers, false);
        dialog->CheckDlgButton(plotcmds::PdfOptionsDialog::kMixed, true);
        keepPicture(*dialog, "plot-pdf-options");
        dialog->Item<QPushButton>(text::kIdOk)->click();
    });
    KvCmd_PDFPublishOption(database);

    EXPECT_FALSE(plot::storedPdfOptions().hasLayers);
    EXPECT_TRUE(set->getPublishOptions()->getLinesMerge());
}

TEST_F(Publish, PageSetupsAreShownWithWhatTheySay)
{
    plot::PageSetup setup;
    setup.name = u"Draft A3";
    setup.paperName = u"ISO A3";
    setup.paperWidthMm = 297;
    setup.paperHeightMm = 420;
    setup.rotation = TvDbPlotSettings::k90degrees;
    plotcmds::PageSetupDialog dialog({setup}, u"House", true);
    ASSERT_TRUE(dialog.Create());
    keepPicture(dialog, "plot-page-setups");

    const TvString details = dialog.GetDlgItemText(plotcmds::PageSetupDialog::kDetails);
    EXPECT_NE(details.find(u"ISO A3, 420 × 297 mm"), TvString::npos);
    EXPECT_NE(dialog.windowTitle().indexOf("House"), -1);
}

} // namespace
