// Buttons and clicks of the page that start commands, and when images are looked at anew.

#include <ed/palette_set.h>

#include "page_scene.h"

namespace {

using Ids = std::vector<int>;

class ButtonsTest : public PageTest
{
protected:
    CDropMenuButton* formatButton() { return dlg->Item<CDropMenuButton>(CSheetSetDlg::kPublish); }
    /// Notes the commands instead of running them.
    void noteCommands(int first, int last)
    {
        for (int id = first; id <= last; ++id)
            dlg->commands().setHandler(id,
                                       [this, id](panel::SheetListPage&) { run.push_back(id); });
    }
    void workOnStatus()
    {
        while (!dlg->page().workOnStatus()) {
        }
    }
    Ids run;
};

TEST_F(ButtonsTest, TheMainPartOfTheFormatButtonPublishesInThatFormat)
{
    click(plan);
    noteCommands(panel::kPublishFirst, panel::kPublishLast);
    for (int format = 1; format <= 3; ++format) {
        dlg->commands().run(format);
        QTest::mouseClick(formatButton(), Qt::LeftButton, {}, QPoint(4, 5));
    }
    EXPECT_EQ(run, (Ids{4, 5, 6}));
    EXPECT_TRUE(menus.ids.empty());
}

TEST_F(ButtonsTest, TheSixteenPixelsAtItsRightOpenTheFormats)
{
    click(plan);
    noteCommands(panel::kPublishFirst, panel::kPublishLast);
    const int width = formatButton()->width();
    QTest::mouseClick(formatButton(), Qt::LeftButton, {}, QPoint(width - 16, 5));
    EXPECT_EQ(menus.ids, (Ids{1, 2, 3}));
    EXPECT_TRUE(run.empty());
    menus.ids.clear();
    QTest::mouseClick(formatButton(), Qt::LeftButton, {}, QPoint(width - 17, 5));
    EXPECT_TRUE(menus.ids.empty());
    EXPECT_EQ(run.size(), 1u);
}

TEST_F(ButtonsTest, TheOtherTwoOpenTheirMenusWhereverTheyArePressed)
{
    click(plan);
    auto* publish = dlg->Item<CDropMenuButton>(CSheetSetDlg::kPublishMenu);
    QTest::mouseClick(publish, Qt::LeftButton, {}, QPoint(2, 5));
    EXPECT_EQ(menus.ids.at(0), panel::kPublishFirst);
    auto* selections = dlg->Item<CDropMenuButton>(CSheetSetDlg::kSelections);
    QTest::mouseClick(selections, Qt::LeftButton, {}, QPoint(2, 5));
    EXPECT_EQ(menus.ids, (Ids{panel::kManageSelections, panel::kCreateSelection}));
}

TEST_F(ButtonsTest, CtrlWithTheRightButtonKeepsTheSelectionAndMeansTheItemWithTheCaret)
{
    click(plan);
    rightClick(pointOf(ground), Qt::ControlModifier);
    EXPECT_EQ(selectedInView(), std::vector<std::string>{"1 - Plan"});
    EXPECT_EQ(menus.ids.at(0), panel::kOpenSheet) << "a sheet's";
    rightClick(pointOf(ground), Qt::ShiftModifier);
    EXPECT_EQ(menus.ids.at(0), panel::kOpenSheet);
    items().setCaret(nullptr);
    menus.ids.clear();
    rightClick(pointOf(ground), Qt::ControlModifier);
    EXPECT_TRUE(menus.ids.empty()) << "without a caret there is nothing to show";
}

TEST_F(ButtonsTest, WithoutASetThereIsNoBackgroundMenu)
{
    CloseCurrentSheetSet();
    rightClick(QPoint(60, tree().viewport()->height() - 4));
    EXPECT_TRUE(menus.ids.empty());
}

TEST_F(ButtonsTest, AMenuThatIsGivenUpRunsNothing)
{
    dlg->commands().setHandler(0, [this](panel::SheetListPage&) { run.push_back(0); });
    menus.choice = 0;
    rightClick(pointOf(plan));
    EXPECT_TRUE(run.empty());
    EXPECT_FALSE(menus.ids.empty());
}

TEST_F(ButtonsTest, TheLastEntryOfTheBackgroundMenuHidesThePaletteSet)
{
    struct Palettes : ed::PaletteSet {
        bool isShown() const override { return shown; }
        void setShown(bool isShown) override { shown = isShown; }
        bool isRolledUp() const override { return false; }
        void EnableDocking(unsigned) override {}
        void RestoreControlBar(int, const ed::ScreenRect*) override {}
        ed::PalettePlacement placement() const override { return {}; }
        void setPlacement(const ed::PalettePlacement&) override {}
        bool shown = true;
    } palettes;
    host.palettes = &palettes;
    menus.choice = panel::kHidePanel;
    rightClick(QPoint(60, tree().viewport()->height() - 4));
    EXPECT_FALSE(palettes.shown);
    host.palettes = nullptr;
}

TEST_F(ButtonsTest, AClickLooksAtTheDrawingsAgainUnlessImagesAreOff)
{
    drawingFor(plan, "plan.dwg");
    set(u"SSMSHEETSTATUS", 1);
    dlg->page().UpdateStatusImages();
    workOnStatus();
    ASSERT_EQ(at(plan)->image(), core::SheetImage::ImageSheet);
    std::filesystem::remove(folder.path() / "plan.dwg");
    set(u"SSMSHEETSTATUS", 0);
    click(section);
    workOnStatus();
    EXPECT_EQ(at(plan)->image(), core::SheetImage::ImageSheet);
    set(u"SSMSHEETSTATUS", 1);
    click(section);
    workOnStatus();
    EXPECT_EQ(at(plan)->image(), core::SheetImage::ImageSheetMissing);
}

} // namespace
