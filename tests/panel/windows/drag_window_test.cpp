// Dragging in the tree as its user sees it: cursors, marks, what opens and what scrolls.

#include <QScrollBar>

#include "page_scene.h"

namespace {

class DragWindowTest : public PageTest
{
protected:
    void TearDown() override
    {
        if (tree().isDragging())
            release();
        PageTest::TearDown();
    }
    QWidget* area() { return tree().viewport(); }
    void moveTo(const QPoint& at)
    {
        m_at = at;
        QMouseEvent move(QEvent::MouseMove, at, area()->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(area(), &move);
    }
    void take(const TvSmPersist* object)
    {
        QTest::mousePress(area(), Qt::LeftButton, {}, pointOf(object));
        moveTo(pointOf(object) + QPoint(1, 0));
        ASSERT_TRUE(tree().isDragging());
    }
    void release() { QTest::mouseRelease(area(), Qt::LeftButton, {}, m_at); }
    Qt::CursorShape cursor() { return area()->cursor().shape(); }
    QPoint inRow(const TvSmPersist* object, int fromBottom)
    {
        const QRect row = tree().rectOf(at(object));
        return {row.left() + 5, row.bottom() - fromBottom};
    }
    /// Whether the view shows the line below an item; beside what is dragged.
    bool hasMarkBelow(const TvSmPersist* object)
    {
        const QRect row = tree().rectOf(at(object));
        const QImage shown = area()->grab().toImage();
        return shown.pixelColor(row.right() - 3, row.bottom() + 1) ==
               ui::color(ui::ColorRole::Accent);
    }

private:
    QPoint m_at;
};

TEST_F(DragWindowTest, TheCursorSaysWhereItemsMayGoAndIsTheUsualOneBehindTheDrop)
{
    const std::string before = folder.read("house.dst");
    take(plan);
    EXPECT_EQ(cursor(), Qt::ForbiddenCursor) << "on itself";
    moveTo(pointOf(section));
    EXPECT_EQ(cursor(), Qt::ArrowCursor);
    moveTo(QPoint(60, area()->height() - 4));
    EXPECT_EQ(cursor(), Qt::ForbiddenCursor) << "beside all items";
    moveTo(QPoint(area()->width() + 40, pointOf(section).y()));
    EXPECT_EQ(cursor(), Qt::ForbiddenCursor) << "outside the tree";
    release();
    EXPECT_FALSE(area()->testAttribute(Qt::WA_SetCursor));
    EXPECT_EQ(folder.read("house.dst"), before) << "nothing is written";
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(DragWindowTest, TheLowestFourPixelsOfAClosedSubsetAreBehindIt)
{
    take(plan);
    moveTo(inRow(details, 3));
    release();
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n  1 - Plan\n  3 - Section\n Roof\n Cover\n");
    take(plan);
    moveTo(inRow(details, 4));
    release();
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n  3 - Section\n Roof\n Cover\n");
    items().setExpanded(at(details), true);
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n   2 - Stair\n   1 - Plan\n  3 - Section\n"
                      " Roof\n Cover\n");
}

TEST_F(DragWindowTest, TheMarkStandsBelowTheItemWhileThePointerIsOnItsLabel)
{
    take(plan);
    moveTo(inRow(section, 3));
    EXPECT_TRUE(hasMarkBelow(section));
    moveTo(QPoint(area()->width() - 3, pointOf(section).y()));
    EXPECT_FALSE(hasMarkBelow(section)) << "beside the label";
    EXPECT_EQ(cursor(), Qt::ArrowCursor) << "it may be dropped there all the same";
    release();
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n  3 - Section\n  1 - Plan\n Roof\n Cover\n");
}

TEST_F(DragWindowTest, AClosedSubsetOpensWhenThePointerStaysAndTheDropIsAtItsEnd)
{
    take(plan);
    moveTo(pointOf(details));
    EXPECT_FALSE(at(details)->isExpanded()) << "not at once";
    ASSERT_TRUE(QTest::qWaitFor([this] { return at(details)->isExpanded(); }, 10000));
    release();
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n   2 - Stair\n   1 - Plan\n  3 - Section\n"
                      " Roof\n Cover\n");
}

TEST_F(DragWindowTest, APointerThatMovesOnOpensNothing)
{
    take(plan);
    moveTo(pointOf(details));
    moveTo(pointOf(section));
    QTest::qWait(panel::TreeDrag::kExpandMs + 200);
    EXPECT_FALSE(at(details)->isExpanded());
    moveTo(pointOf(details));
    release();
    QTest::qWait(panel::TreeDrag::kExpandMs + 200);
    EXPECT_FALSE(at(details)->isExpanded()) << "nor does one that was let go";
}

TEST_F(DragWindowTest, NearItsEdgesTheTreeScrolls)
{
    change(database, [this](TvSmSheetSet&) {
        for (int i = 0; i < 40; ++i)
            addSheet(roof, TvString().format(u"%d", 100 + i), u"Sheet");
    });
    settle();
    QScrollBar* bar = tree().verticalScrollBar();
    ASSERT_EQ(bar->value(), 0);
    take(plan);
    moveTo(QPoint(60, area()->height() - 2));
    ASSERT_TRUE(QTest::qWaitFor([bar] { return bar->value() > bar->singleStep(); }, 10000));
    moveTo(QPoint(60, 2));
    ASSERT_TRUE(QTest::qWaitFor([bar] { return bar->value() == 0; }, 10000)) << "and up again";
    moveTo(QPoint(60, area()->height() / 2));
    const int still = bar->value();
    QTest::qWait(8 * panel::TreeDrag::kScrollMs);
    EXPECT_EQ(bar->value(), still) << "in the middle it stands";
}

TEST_F(DragWindowTest, NoKeyEndsADragOrDoesAnythingElseMeanwhile)
{
    take(plan);
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Delete, Qt::Key_Down, Qt::Key_Return})
        QTest::keyClick(&tree(), key);
    EXPECT_TRUE(tree().isDragging());
    EXPECT_EQ(selectedInView(), std::vector<std::string>{"1 - Plan"});
    EXPECT_TRUE(messages.asked.empty());
    menus.ids.clear();
    rightClick(pointOf(section));
    EXPECT_TRUE(menus.ids.empty()) << "no menu, either";
    EXPECT_TRUE(tree().isDragging());
}

TEST_F(DragWindowTest, APressBelongsToADragOnlyOnceItHasMoved)
{
    QTest::mousePress(area(), Qt::LeftButton, {}, pointOf(plan));
    moveTo(pointOf(plan));
    EXPECT_FALSE(tree().isDragging());
    EXPECT_EQ(database->getLockStatus(), 0);
    release();
}

TEST_F(DragWindowTest, OtherCommandsStayAwayMeanwhile)
{
    take(plan);
    dlg->commands().run(panel::kRemoveSheets);
    EXPECT_TRUE(messages.asked.empty());
    EXPECT_NE(at(plan), nullptr);
    release();
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(DragWindowTest, WhileThePointerStandsAtAnEdgeTheDropGoesToWhatScrolledUnderIt)
{
    change(database, [this](TvSmSheetSet&) {
        for (int i = 0; i < 40; ++i)
            addSheet(roof, TvString().format(u"%d", 100 + i), u"Sheet");
    });
    settle();
    const QScrollBar* bar = tree().verticalScrollBar();
    take(plan);
    moveTo(QPoint(60, area()->height() - 2));
    const TvString before = tree().itemUnder(QPoint(60, area()->height() - 2))->handle();
    ASSERT_TRUE(QTest::qWaitFor([bar] { return bar->value() > 3 * bar->singleStep(); }, 10000));
    const TvString under = tree().itemUnder(QPoint(60, area()->height() - 2))->handle();
    ASSERT_NE(under, before);
    release();
    ASSERT_TRUE(at(plan)->previousSibling());
    EXPECT_EQ(at(plan)->previousSibling()->handle(), under);
}

/// Counts what its timers do.
class TimerCount : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Timer;
        return false;
    }
};

TEST_F(DragWindowTest, BehindTheDropNoTimerGoesOn)
{
    TimerCount timers;
    tree().installEventFilter(&timers);
    take(plan);
    moveTo(pointOf(section));
    ASSERT_TRUE(QTest::qWaitFor([&] { return timers.count > 0; }, 10000)) << "it ticks meanwhile";
    moveTo(pointOf(details));
    release();
    settle();
    QTest::qWait(10); // what the drop itself put off
    timers.count = 0;
    QTest::qWait(panel::TreeDrag::kExpandMs + 3 * panel::TreeDrag::kScrollMs);
    EXPECT_EQ(timers.count, 0);
    EXPECT_FALSE(at(details)->isExpanded());
}

TEST_F(DragWindowTest, ADropIsNoClickOnTheItemThatItWasTakenBy)
{
    click(plan);
    click(section, Qt::ControlModifier);
    ASSERT_EQ(items().caret(), at(plan));
    take(section);
    moveTo(pointOf(roof));
    release();
    EXPECT_EQ(rows(), "House\n Ground\n  Details\n Roof\n  1 - Plan\n  3 - Section\n Cover\n");
    EXPECT_EQ(items().caret(), at(plan));
    EXPECT_EQ(selectedInView(), std::vector<std::string>{"1 - Plan"});
}

} // namespace
