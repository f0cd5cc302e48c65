#include "window_scene.h"

#include <QTimer>

#include <ed/layouts.h>
#include <ed/prompts.h>
#include <ed/system_variables.h>
#include <ed/tv_ed_jig.h>

namespace {

int g_status = 0;
TvGePoint3d g_point;
double g_number = 0;

/// Each step runs once all that the one before began is done.
class PointerTest : public WindowTest
{
protected:
    PointerTest()
    {
        g_status = 0;
        g_point = {};
        g_number = 0;
        const auto add = [this](const TvChar* name, TvEdCommandFunction run) {
            program.commands().addCommand(u"T", name, name, 0, run);
        };
        add(u"ONEPOINT", [] { g_status = tvedGetPoint(nullptr, u"Where:", g_point); });
        add(u"ONEANGLE", [] { g_status = tvedGetAngle(u"Angle:", g_number); });
        add(u"ONEDIST", [] { g_status = tvedGetDist(nullptr, u"Distance:", g_number); });
        page = &open("a.dwg");
    }
    void whileAsking(const char* command, std::vector<std::function<void()>> steps)
    {
        m_steps = std::move(steps);
        m_next = 0;
        later();
        type(command);
        settle();
        EXPECT_EQ(m_next, m_steps.size());
        EXPECT_FALSE(canvas().isAskingPoint());
    }
    window::DrawingCanvas& canvas() { return page->canvas(); }
    void click(QPoint at) { QTest::mouseClick(&canvas(), Qt::LeftButton, {}, at); }
    void move(QPoint to)
    {
        QMouseEvent event(QEvent::MouseMove, QPointF(to), canvas().mapToGlobal(QPointF(to)),
                          Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&canvas(), &event);
    }
    /// As type(), but what waits is not waited for.
    void keys(const char* text)
    {
        QTest::keyClicks(&line(), QLatin1String(text));
        QTest::keyClick(&line(), Qt::Key_Return);
    }
    TvGePoint2d planAt(QPoint at)
    {
        return canvas().view().toPlan({static_cast<double>(at.x()), static_cast<double>(at.y())});
    }

    window::DocumentPage* page;

private:
    void later()
    {
        QTimer::singleShot(0, main.get(), [this] {
            if (m_next == m_steps.size())
                return;
            const auto step = m_steps[m_next++];
            later();
            step();
        });
    }
    std::vector<std::function<void()>> m_steps;
    std::size_t m_next = 0;
};

TEST_F(PointerTest, AClickAnswersWhoAsksForAPoint)
{
    const TvGePoint2d expected = planAt({120, 80});
    whileAsking("ONEPOINT", {[this] {
                    EXPECT_TRUE(canvas().isAskingPoint());
                    click({120, 80});
                }});
    EXPECT_EQ(g_status, 5100);
    EXPECT_NEAR(g_point.x, expected.x, 1e-9);
    EXPECT_NEAR(g_point.y, expected.y, 1e-9);
    EXPECT_NE(said().find("Where:"), std::string::npos) << said();
}

TEST_F(PointerTest, ClicksMeanNothingWhileNobodyAsks)
{
    click({50, 50});
    EXPECT_FALSE(main->commandPanel().isAskingPoint());
    whileAsking("ONEPOINT", {[this] { keys("3,4"); }});
    EXPECT_EQ(g_point, TvGePoint3d(3, 4, 0));
}

TEST_F(PointerTest, TheRightButtonAndEnterEndAndEscapeCancels)
{
    whileAsking("ONEPOINT", {[this] { QTest::mouseClick(&canvas(), Qt::RightButton); }});
    EXPECT_EQ(g_status, ed::kNoAnswer);
    g_status = 0;
    whileAsking("ONEPOINT", {[this] { QTest::keyClick(&canvas(), Qt::Key_Return); }});
    EXPECT_EQ(g_status, ed::kNoAnswer);
    whileAsking("ONEPOINT", {[this] { QTest::keyClick(&canvas(), Qt::Key_Escape); }});
    EXPECT_EQ(g_status, ed::kCancelled);
}

TEST_F(PointerTest, AnglesAndDistancesAreThoseOfTwoPoints)
{
    whileAsking("ONEANGLE", {[this] { click({100, 100}); }, [this] { click({150, 50}); }});
    EXPECT_EQ(g_status, 5100);
    EXPECT_NEAR(g_number, 0.785398163397448, 1e-9);
    const double expected = planAt({100, 100}).distanceTo(planAt({130, 140}));
    whileAsking("ONEDIST", {[this] { click({100, 100}); }, [this] { click({130, 140}); }});
    EXPECT_NEAR(g_number, expected, 1e-9);
    whileAsking("ONEDIST", {[this] { keys("2.5"); }});
    EXPECT_EQ(g_number, 2.5);
}

TEST_F(PointerTest, ZoomWindowAndPanGoByClicks)
{
    const TvGePoint2d low = planAt({100, 200}), high = planAt({300, 100});
    whileAsking("ZOOM W", {[this] { click({100, 200}); }, [this] { click({300, 100}); }});
    EXPECT_NEAR(canvas().view().center().x, (low.x + high.x) / 2, 1e-6);
    EXPECT_NEAR(canvas().view().center().y, (low.y + high.y) / 2, 1e-6);
    EXPECT_LT(canvas().view().planHeight(), 2 * (high.y - low.y) + 1e-6);

    const TvGePoint2d moved = planAt({100, 100});
    whileAsking("PAN", {[this] { click({100, 100}); }, [this] { click({160, 130}); }});
    const TvGePoint2d now = planAt({160, 130});
    EXPECT_NEAR(now.x, moved.x, 1e-6);
    EXPECT_NEAR(now.y, moved.y, 1e-6);
}

TEST_F(PointerTest, AViewIsSavedOfWhatLiesBetweenTwoClicks)
{
    const TvGePoint2d low = planAt({100, 200}), high = planAt({300, 100});
    whileAsking("-VIEW Window", {[this] { keys("Part"); },
                                 [this] {
                                     click({100, 200});
                                 },
                                 [this] {
                                     click({300, 100});
                                 }});
    type("-VIEW Restore Part");
    EXPECT_NEAR(canvas().view().center().x, (low.x + high.x) / 2, 1e-6);
    EXPECT_NEAR(canvas().view().center().y, (low.y + high.y) / 2, 1e-6);
}

TEST_F(PointerTest, PointsOnASheetAreThoseOfThePaper)
{
    type("CTAB Layout1");
    const TvGePoint2d expected = planAt({200, 150});
    whileAsking("ONEPOINT", {[this] { click({200, 150}); }});
    EXPECT_NEAR(g_point.x, expected.x, 1e-9);
    EXPECT_NEAR(g_point.y, expected.y, 1e-9);
}

TEST_F(PointerTest, ALineLeadsFromTheFirstPointToThePointer)
{
    const auto dark = [this](QPoint at) { return canvas().grab().toImage().pixel(at); };
    QRgb during = 0;
    const QRgb before = dark({150, 150});
    whileAsking("PAN", {[this] {
                            click({100, 100});
                        },
                        [&] {
                            move({200, 200});
                            during = dark({150, 150});
                        },
                        [this] { QTest::keyClick(&canvas(), Qt::Key_Escape); }});
    EXPECT_NE(during, before);
    EXPECT_EQ(dark({150, 150}), before);
}

class Follower : public TvEdJig
{
public:
    DragStatus sampler() override
    {
        const DragStatus status = acquirePoint(g_point);
        ++samples;
        return status;
    }
    int samples = 0;
};
Follower* g_follower = nullptr;

TEST_F(PointerTest, WhatIsDraggedFollowsThePointerUntilTheClick)
{
    Follower follower;
    g_follower = &follower;
    program.commands().addCommand(u"T", u"DRAGGING", u"DRAGGING", 0,
                                  [] { g_status = g_follower->drag(); });
    const TvGePoint2d expected = planAt({140, 90});
    whileAsking("DRAGGING", {[this] {
                                 move({60, 60});
                             },
                             [this] {
                                 move({90, 60});
                             },
                             [this] {
                                 click({140, 90});
                             }});
    EXPECT_EQ(g_status, TvEdJig::kNormal);
    EXPECT_GE(follower.samples, 3);
    EXPECT_NEAR(g_point.x, expected.x, 1e-9);
    EXPECT_NEAR(g_point.y, expected.y, 1e-9);
}

} // namespace
