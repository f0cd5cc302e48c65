// The page of the sheet list as its user meets it.

#include "page_scene.h"

namespace {

using Labels = std::vector<std::string>;
using Ids = std::vector<int>;

TEST_F(PageTest, TheTreeShowsTheSetWithItsFirstLevelOpen)
{
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  Details\n  3 - Section\n Roof\n Cover\n");
    EXPECT_EQ(selectedInView(), Labels{"House"});
    EXPECT_TRUE(tree().uniformRowHeights());
}

TEST_F(PageTest, EachItemHasThePictureOfItsStatus)
{
    drawingFor(plan, "plan.dwg");
    dlg->page().UpdateStatusImages();
    while (!dlg->page().workOnStatus()) {
    }
    EXPECT_EQ(at(plan)->image(), core::SheetImage::ImageSheet);
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheetMissing);
    const auto picture = [&](const TvSmPersist* object) {
        return tree()
            .items()
            .indexOf(at(object))
            .data(Qt::DecorationRole)
            .value<QIcon>()
            .pixmap(16)
            .toImage();
    };
    EXPECT_FALSE(picture(plan).isNull());
    EXPECT_NE(picture(plan), picture(cover));
    EXPECT_NE(picture(plan), picture(ground));
}

TEST_F(PageTest, ALabelIsMadeAnewAfterACommit)
{
    change(database, [this](TvSmSheetSet&) { plan->setTitle(u"Floor"); });
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Floor\n  Details\n  3 - Section\n Roof\n Cover\n");
}

TEST_F(PageTest, ExpansionAndSelectionSurviveACommitOfAnotherProcess)
{
    click(section);
    items().setExpanded(at(details), true);
    items().setExpanded(at(roof), false);
    changeElsewhere([this](TvSmDatabase& copy) {
        inCopy<TvSmSheet>(copy, stair)->setTitle(u"Steps");
        addSheet(inCopy<TvSmSubset>(copy, ground), u"4", u"Yard");
        inCopy<TvSmSubset>(copy, ground)->removeSheet(inCopy<TvSmSheet>(copy, plan));
    });
    PollWatchTable();
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n   2 - Steps\n  3 - Section\n  4 - Yard\n Roof\n"
                      " Cover\n");
    EXPECT_EQ(selectedInView(), Labels{"3 - Section"});
}

TEST_F(PageTest, ASetThatIsShownAgainIsOpenWhereItWasThoughTheSelectionIsHidden)
{
    TvSmDatabase* other = made("other.dst");
    items().setExpanded(at(details), true);
    click(stair);
    ActivateSheetSet(other);
    EXPECT_EQ(rows(), "\n");
    ActivateSheetSet(database);
    const char* open = "House\n Ground\n  1 - Plan\n  Details\n   2 - Stair\n  3 - Section\n Roof\n"
                       " Cover\n";
    EXPECT_EQ(rows(), open);
    EXPECT_EQ(selectedInView(), Labels{"2 - Stair"});
    items().setExpanded(at(details), false);
    ActivateSheetSet(other);
    ActivateSheetSet(database);
    settle();
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  Details\n  3 - Section\n Roof\n Cover\n");
    EXPECT_EQ(items().caret(), at(stair));
}

TEST_F(PageTest, ClickingSelectsAndCtrlAddsButNoSheetWithItsSubset)
{
    click(plan);
    click(cover, Qt::ControlModifier);
    EXPECT_EQ(selectedInView(), (Labels{"1 - Plan", "Cover"}));
    click(ground, Qt::ControlModifier);
    EXPECT_EQ(selectedInView(), (Labels{"Cover", "Ground"}));
    EXPECT_TRUE(dlg->GetDlgItem(CSheetSetDlg::kPublish)->isEnabled());
    click(roof);
    EXPECT_EQ(selectedInView(), Labels{"Roof"});
    EXPECT_FALSE(dlg->GetDlgItem(CSheetSetDlg::kPublish)->isEnabled());
}

TEST_F(PageTest, AClickOnTheArrowOpensAndClosesWithoutSelecting)
{
    const QRect row = tree().rectOf(at(details));
    const QPoint arrow(row.left() - 8, row.center().y());
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, arrow);
    EXPECT_TRUE(at(details)->isExpanded());
    EXPECT_NE(rows().find("2 - Stair"), std::string::npos);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, arrow);
    EXPECT_FALSE(at(details)->isExpanded());
    EXPECT_EQ(rows().find("2 - Stair"), std::string::npos);
    EXPECT_EQ(selectedInView(), Labels{"House"});
}

TEST_F(PageTest, ArrowKeysMoveTheSelectionAndShiftMakesARange)
{
    click(plan);
    tree().setFocus();
    QTest::keyClick(&tree(), Qt::Key_Down);
    EXPECT_EQ(selectedInView(), Labels{"Details"});
    EXPECT_EQ(items().caret(), at(details));
    QTest::keyClick(&tree(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selectedInView(), (Labels{"3 - Section", "Details"}));
    EXPECT_EQ(items().caret(), at(section));
}

TEST_F(PageTest, TheContextMenuHasTheEntriesOfTheItem)
{
    rightClick(pointOf(plan));
    EXPECT_EQ(menus.ids.at(0), panel::kOpenSheet);
    EXPECT_EQ(menus.ids.back(), panel::kProperties);
    EXPECT_EQ(selectedInView(), Labels{"1 - Plan"}) << "it is selected by the click";
    rightClick(pointOf(ground));
    EXPECT_EQ(menus.ids.at(0), panel::kNewSheet);
    rightClick(tree().rectOf(items().root()).center());
    EXPECT_EQ(menus.ids.at(0), panel::kCloseSheetSet);
    rightClick(QPoint(60, tree().viewport()->height() - 4));
    EXPECT_EQ(menus.ids, (Ids{panel::kExpandAll, panel::kCollapseAll, 0, panel::kHidePanel}));
}

TEST_F(PageTest, TheMenuOfSeveralKeepsTheSelection)
{
    click(plan);
    click(section, Qt::ControlModifier);
    rightClick(pointOf(section));
    EXPECT_EQ(selectedInView(), (Labels{"1 - Plan", "3 - Section"}));
    EXPECT_EQ(std::ranges::count(menus.ids, panel::kProperties), 0);
}

TEST_F(PageTest, AChoiceInAMenuIsDone)
{
    menus.choice = panel::kExpandAll;
    rightClick(QPoint(60, tree().viewport()->height() - 4));
    EXPECT_NE(rows().find("2 - Stair"), std::string::npos);
    auto* formats = dlg->Item<CDropMenuButton>(CSheetSetDlg::kPublish);
    menus.choice = 3;
    QTest::mouseClick(formats, Qt::LeftButton, {}, QPoint(formats->width() - 4, 5));
    EXPECT_EQ(menus.ids, (Ids{1, 2, 3}));
    EXPECT_EQ(dlg->page().publishFormat(), 3);
}

TEST_F(PageTest, ADoubleClickOnASheetShowsItsLayout)
{
    drawingFor(section, "section.dwg");
    doubleClick(section);
    ASSERT_NE(documents().mdiActiveDocument(), nullptr);
    EXPECT_EQ(TvString(documents().mdiActiveDocument()->fileName()), folder.file("section.dwg"));
}

TEST_F(PageTest, EnterOpensTheSheetWithTheCaretAndDeleteAsksFirst)
{
    drawingFor(section, "section.dwg");
    click(section);
    QTest::keyClick(&tree(), Qt::Key_Return);
    ASSERT_NE(documents().mdiActiveDocument(), nullptr);
    QTest::keyClick(&tree(), Qt::Key_Delete);
    EXPECT_EQ(messages.numbers(), Ids{347});
    EXPECT_NE(at(section), nullptr);
    messages.answer = TvUserMessages::Answer::Ok;
    QTest::keyClick(&tree(), Qt::Key_Delete);
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  Details\n Roof\n Cover\n");
}

TEST_F(PageTest, ADoubleClickOnASubsetOpensIt)
{
    doubleClick(details);
    EXPECT_TRUE(at(details)->isExpanded());
}

TEST_F(PageTest, TheBoxShowsTheSetAndChoosesAnother)
{
    EXPECT_EQ(COpenComboBox::text().toStdString(), "House");
    TvSmDatabase* other = made("other.dst");
    change(other, [](TvSmSheetSet& top) { top.setName(u"Other"); });
    ActivateSheetSet(other);
    EXPECT_EQ(rows(), "Other\n");
    menus.choice = 3; // the first set of the session
    QTest::mouseClick(dlg->GetDlgItem(CSheetSetDlg::kSetBox), Qt::LeftButton);
    EXPECT_EQ(GetCurrentDatabase(), database);
    EXPECT_EQ(rows().substr(0, 6), "House\n");
}

TEST_F(PageTest, WithoutASetOnlyTheBoxCanBeUsed)
{
    CloseCurrentSheetSet();
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(COpenComboBox::text(), ui::textOf(420));
    EXPECT_TRUE(dlg->GetDlgItem(CSheetSetDlg::kSetBox)->isEnabled());
    for (const int id : {702, 703, 704, 706, 707, 708})
        EXPECT_FALSE(dlg->GetDlgItem(id)->isEnabled()) << id;
}

TEST_F(PageTest, DraggingASheetBehindAnotherMovesItInTheSet)
{
    QWidget* area = tree().viewport();
    const QPoint from = pointOf(plan), to = pointOf(section);
    QTest::mousePress(area, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, area->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     {});
    QApplication::sendEvent(area, &move);
    EXPECT_TRUE(tree().isDragging());
    EXPECT_NE(database->getLockStatus(), 0);
    QApplication::sendEvent(area, &move);
    QTest::mouseRelease(area, Qt::LeftButton, {}, to);
    EXPECT_FALSE(tree().isDragging());
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n  3 - Section\n  1 - Plan\n Roof\n Cover\n");
    EXPECT_EQ(selectedInView(), Labels{"1 - Plan"});
}

TEST_F(PageTest, APressThatDoesNotMoveLocksNothing)
{
    QTest::mousePress(tree().viewport(), Qt::LeftButton, {}, pointOf(plan));
    EXPECT_EQ(database->getLockStatus(), 0);
    QTest::mouseRelease(tree().viewport(), Qt::LeftButton, {}, pointOf(plan));
}

TEST_F(PageTest, TheTwoTogglesSwapTheirTips)
{
    auto* expand = dlg->Item<CIconButton>(CSheetSetDlg::kExpand);
    EXPECT_EQ(expand->toolTip(), ui::textOf(568));
    expand->click();
    EXPECT_EQ(expand->toolTip(), ui::textOf(569));
    EXPECT_FALSE(at(ground)->isExpanded());
    auto* tips = dlg->Item<CIconButton>(CSheetSetDlg::kTips);
    tips->click();
    EXPECT_EQ(tips->toolTip(), ui::textOf(571));
}

} // namespace
