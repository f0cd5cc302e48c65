#include <map>

#include <QListWidget>
#include <QMainWindow>
#include <QScreen>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <ui/qt_text.h>
#include <ui/td_ui_palette.h>
#include <ui/td_ui_palette_set.h>

#include "program.h"

using ed::DockSide;

namespace {

class Element : public ed::StateElement
{
public:
    std::map<TvString, TvString> attributes;

    std::optional<TvString> attribute(const TvString& name) const override
    {
        const auto found = attributes.find(name);
        return found == attributes.end() ? std::nullopt : std::optional(found->second);
    }
    void setAttribute(const TvString& name, const TvString& value) override
    {
        attributes[name] = value;
    }
};

class Palette : public CTdUiPalette
{
public:
    std::vector<bool> activations;
    QListWidget* list;

    explicit Palette(const TvString& title) : CTdUiPalette(title), list(new QListWidget(this))
    {
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(0, 0, 0, 0);
        column->addWidget(list);
        for (const char* sheet :
             {"A-101 - Ground Floor", "A-102 - First Floor", "A-201 - Sections"})
            list->addItem(QLatin1String(sheet));
        setFocusProxy(list);
    }
    void OnActivated(bool isActive) override { activations.push_back(isActive); }
};

class Set : public CTdUiPaletteSet
{
public:
    std::vector<bool> shown;
    explicit Set(QMainWindow* frame)
        : CTdUiPaletteSet(u"Sheet Sets", u"{473490AC-962C-64E0-23DC-07CA90B4EE68}", frame)
    {
    }
    void OnShown(bool isShown) override { shown.push_back(isShown); }
};

void settle(int ms = 0)
{
    QTest::qWait(ms);
}

class PaletteSetTest : public Program
{
protected:
    QMainWindow m_frame;
    std::unique_ptr<Set> m_set;
    Palette* m_first = nullptr; // owned by the set
    Palette* m_second = nullptr;

    PaletteSetTest()
    {
        auto* canvas = new QWidget;
        canvas->setAutoFillBackground(true);
        QPalette dark;
        dark.setColor(QPalette::Window, ui::color(ui::ColorRole::Canvas));
        canvas->setPalette(dark);
        m_frame.setCentralWidget(canvas);
        m_frame.setGeometry(0, 0, 760, 520);
        m_frame.show();
        m_set = std::make_unique<Set>(&m_frame);
        m_set->SetMinimumSize(200, 160);
        m_first = new Palette(u"Sheet List");
        m_second = new Palette(u"Views & More");
        EXPECT_EQ(m_set->AddPalette(m_first), 0);
        EXPECT_EQ(m_set->AddPalette(m_second), 1);
        m_set->EnableDocking(ed::kDockLeft | ed::kDockRight);
    }
    void show(DockSide side)
    {
        m_set->RestoreControlBar(static_cast<int>(side));
        m_set->setShown(true);
        settle();
    }
    /// Puts the mouse where nothing of the set is.
    void leave()
    {
        QCursor::setPos(m_frame.mapToGlobal(QPoint(m_frame.width() / 2, m_frame.height() - 5)));
        settle();
    }
};

QToolButton* titleButton(const CTdUiPaletteSet& set, int text)
{
    for (auto* button : set.findChildren<QToolButton*>())
        if (button->accessibleName() == ui::textOf(text))
            return button;
    return nullptr;
}

} // namespace

TEST_F(PaletteSetTest, IsHiddenUntilItIsShown)
{
    EXPECT_FALSE(m_set->isShown());
    m_set->setShown(true);
    EXPECT_TRUE(m_set->isShown());
    m_set->setShown(true);
    m_set->setShown(false);
    EXPECT_EQ(m_set->shown, (std::vector<bool>{true, false}));
}

TEST_F(PaletteSetTest, ItsCrossHidesIt)
{
    show(DockSide::Right);
    QTest::mouseClick(titleButton(*m_set, 23313), Qt::LeftButton);
    EXPECT_FALSE(m_set->isShown());
    m_set->setShown(true);
    m_set->close();
    EXPECT_FALSE(m_set->isShown());
    EXPECT_EQ(m_set->shown, (std::vector<bool>{true, false, true, false}));
}

TEST_F(PaletteSetTest, HasATabForEachPalette)
{
    EXPECT_EQ(m_set->GetPaletteCount(), 2);
    EXPECT_EQ(m_set->GetPalette(0), m_first);
    EXPECT_EQ(m_set->GetPalette(2), nullptr);
    EXPECT_EQ(m_set->GetPalette(-1), nullptr);
    auto* tabs = m_set->findChild<QTabBar*>();
    ASSERT_TRUE(tabs);
    EXPECT_EQ(tabs->tabText(1), QStringLiteral("Views && More"));
    m_second->SetTitle(u"Views");
    EXPECT_EQ(tabs->tabText(1), QStringLiteral("Views"));
    EXPECT_EQ(m_first->GetPaletteSet(), m_set.get());
}

TEST_F(PaletteSetTest, TakesNoPaletteTwiceAndNoNull)
{
    EXPECT_EQ(m_set->AddPalette(nullptr), -1);
    EXPECT_EQ(m_set->AddPalette(m_first), -1);
    EXPECT_EQ(m_set->GetPaletteCount(), 2);
}

TEST_F(PaletteSetTest, TellsPalettesWhenTheyComeUpAndGo)
{
    EXPECT_EQ(m_first->activations, std::vector<bool>{true});
    EXPECT_TRUE(m_set->SetActivePalette(1));
    EXPECT_EQ(m_set->GetActivePalette(), m_second);
    EXPECT_TRUE(m_second->IsActive());
    EXPECT_EQ(m_first->activations, (std::vector<bool>{true, false}));
    EXPECT_EQ(m_second->activations, std::vector<bool>{true});
    EXPECT_FALSE(m_set->SetActivePalette(7));
    EXPECT_FALSE(m_set->SetActivePalette(-1));
    EXPECT_EQ(m_set->GetActivePalette(), m_second);
}

TEST_F(PaletteSetTest, DocksAndFloatsByTheNumbersOfTheBars)
{
    m_set->EnableDocking(15);
    m_set->setShown(true);
    const std::pair<int, Qt::DockWidgetArea> areas[] = {{59419, Qt::TopDockWidgetArea},
                                                        {59420, Qt::LeftDockWidgetArea},
                                                        {59421, Qt::RightDockWidgetArea},
                                                        {59422, Qt::BottomDockWidgetArea}};
    for (const auto& [bar, area] : areas) {
        m_set->RestoreControlBar(bar);
        EXPECT_FALSE(m_set->isFloating()) << bar;
        EXPECT_EQ(m_frame.dockWidgetArea(m_set.get()), area) << bar;
        EXPECT_EQ(static_cast<int>(m_set->side()), bar);
        EXPECT_TRUE(m_set->isShown());
    }
    const ed::ScreenRect place{120, 130, 260, 300};
    m_set->RestoreControlBar(59423, &place);
    EXPECT_TRUE(m_set->isFloating());
    EXPECT_EQ(m_set->geometry(), QRect(120, 130, 260, 300));
    m_set->RestoreControlBar(4711);
    EXPECT_EQ(m_set->side(), DockSide::Floating);
}

TEST_F(PaletteSetTest, FloatsWhereItMayNotDock)
{
    show(DockSide::Top);
    EXPECT_EQ(m_set->side(), DockSide::Floating);
    show(DockSide::Left);
    EXPECT_EQ(m_set->side(), DockSide::Left);
    m_set->AllowDocking(false);
    EXPECT_EQ(m_set->side(), DockSide::Floating);
    EXPECT_TRUE(m_set->isShown());
    show(DockSide::Left);
    EXPECT_EQ(m_set->side(), DockSide::Floating);
    m_set->AllowDocking(true);
    show(DockSide::Right);
    EXPECT_EQ(m_set->side(), DockSide::Right);
}

TEST_F(PaletteSetTest, WithoutAFrameItFloats)
{
    CTdUiPaletteSet alone(u"Alone", u"alone", nullptr);
    alone.AddPalette(new CTdUiPalette(u"One"));
    alone.RestoreControlBar(59420);
    alone.setShown(true);
    EXPECT_EQ(alone.side(), DockSide::Floating);
    alone.SetAutoRollup(true);
    alone.RollOut();
    EXPECT_EQ(alone.placement().side, DockSide::Floating);
}

TEST_F(PaletteSetTest, ComesBackAsItWasSaved)
{
    m_set->setShown(true);
    ed::ScreenRect place{90, 80, 280, 340};
    m_set->RestoreControlBar(59423, &place);
    m_set->SetTransparency(true, 40);
    m_set->SetActivePalette(1);
    Element element;
    m_set->Save(element);

    Set other(&m_frame);
    other.AddPalette(new CTdUiPalette(u"One"));
    other.AddPalette(new CTdUiPalette(u"Two"));
    other.EnableDocking(ed::kDockLeft | ed::kDockRight);
    other.Restore(element);
    EXPECT_FALSE(other.isShown());
    other.setShown(true);
    settle();
    EXPECT_EQ(other.placement(), m_set->placement());
    EXPECT_EQ(other.geometry(), QRect(90, 80, 280, 340));
}

TEST_F(PaletteSetTest, ItsDockedWidthComesBack)
{
    show(DockSide::Left);
    m_frame.resizeDocks({m_set.get()}, {333}, Qt::Horizontal);
    settle();
    const int width = m_set->width();
    ASSERT_NEAR(width, 333, 3);
    Element element;
    m_set->Save(element);
    m_set.reset();

    Set other(&m_frame);
    other.EnableDocking(15);
    other.Restore(element);
    other.setShown(true);
    settle();
    EXPECT_EQ(other.side(), DockSide::Left);
    EXPECT_NEAR(other.width(), width, 2);
}

TEST_F(PaletteSetTest, HostileStatesDoNoHarm)
{
    const std::map<TvString, std::vector<TvString>> hostile = {
        {u"Orientation", {u"0", u"6", u"-1", u"x", u"99999999999"}},
        {u"AutoHide", {u"2", u"-1", u""}},
        {u"Transparency", {u"100", u"-5", u"1e9"}},
        {u"ActivePalette", {u"99", u"-3"}},
        {u"X", {u"-90000", u"90000"}},
        {u"Width", {u"0", u"100000", u"-7"}},
        {u"DockWidth", {u"100000", u"1"}}};
    for (const auto& [name, values] : hostile)
        for (const TvString& value : values) {
            Element element;
            show(DockSide::Floating);
            m_set->Save(element);
            element.attributes[name] = value;
            m_set->Restore(element);
            settle();
            EXPECT_GE(m_set->windowOpacity(), 0.05);
            EXPECT_TRUE(m_set->GetActivePalette());
            EXPECT_TRUE(QGuiApplication::primaryScreen()
                            ->availableGeometry()
                            .adjusted(-4, -4, 4, 4)
                            .contains(m_set->geometry()))
                << name.utf8() << " = " << value.utf8();
            m_set->SetAutoRollup(false);
        }
}

TEST_F(PaletteSetTest, ComesBackFromAScreenThatIsGone)
{
    m_set->setShown(true);
    const ed::ScreenRect far{5000, 3000, 300, 400};
    m_set->RestoreControlBar(59423, &far);
    settle();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(m_set->geometry()));
    EXPECT_EQ(m_set->size(), QSize(300, 400));
}

TEST_F(PaletteSetTest, RollsInToAStripAndOpensForTheMouse)
{
    show(DockSide::Right);
    leave();
    m_set->SetAutoRollup(true);
    settle();
    EXPECT_TRUE(m_set->isRolledUp());
    EXPECT_TRUE(m_set->isShown());
    EXPECT_LT(m_set->width(), 60);
    EXPECT_FALSE(m_first->isVisible());
    const int central = m_frame.centralWidget()->width();

    QTest::mouseMove(m_set.get(), m_set->rect().center());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_set->isRolledUp(); }, 3000));
    EXPECT_TRUE(m_first->isVisible());
    EXPECT_GT(m_first->width(), 150);
    EXPECT_EQ(m_frame.centralWidget()->width(), central) << "the drawing is covered, not moved";
    keepPicture(m_frame, QStringLiteral("palette-rolled-out"));

    leave();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_set->isRolledUp(); }, 3000));
    EXPECT_FALSE(m_first->isVisible());
    m_set->SetAutoRollup(false);
    settle();
    EXPECT_FALSE(m_set->isRolledUp());
    EXPECT_TRUE(m_first->isVisible());
    EXPECT_GT(m_set->width(), 150);
}

TEST_F(PaletteSetTest, TheKeyboardOpensItsStripToo)
{
    show(DockSide::Left);
    leave();
    m_set->SetAutoRollup(true);
    settle();
    QApplication::setActiveWindow(&m_frame);
    QAbstractButton* strip = nullptr;
    for (auto* button : m_set->findChildren<QAbstractButton*>())
        if (button->accessibleName() == QStringLiteral("Sheet Sets"))
            strip = button;
    ASSERT_TRUE(strip);
    strip->setFocus();
    QTest::keyClick(strip, Qt::Key_Return);
    EXPECT_FALSE(m_set->isRolledUp());
    EXPECT_TRUE(m_first->list->hasFocus());
    // It stays while the keyboard is in it.
    settle(600);
    EXPECT_FALSE(m_set->isRolledUp());
    m_set->RollUp();
    EXPECT_TRUE(m_set->isRolledUp());
    EXPECT_TRUE(strip->hasFocus());
}

TEST_F(PaletteSetTest, FloatingItRollsInToItsTitle)
{
    m_frame.resize(400, 520); // beside it: no window lies below the other
    m_set->setShown(true);
    const ed::ScreenRect place{480, 100, 280, 340};
    m_set->RestoreControlBar(59423, &place);
    leave();
    m_set->SetAutoRollup(true);
    settle();
    EXPECT_TRUE(m_set->isRolledUp());
    EXPECT_LT(m_set->height(), 60);
    EXPECT_EQ(m_set->width(), 280);
    EXPECT_EQ(m_set->placement().floating, place);
    QTest::mouseMove(m_set.get(), QPoint(40, 8));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_set->isRolledUp(); }, 3000));
    EXPECT_EQ(m_set->height(), 340);
    leave();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_set->isRolledUp(); }, 3000));
    EXPECT_LT(m_set->height(), 60);
}

TEST_F(PaletteSetTest, ARolledInStateComesBackRolledIn)
{
    show(DockSide::Right);
    leave();
    const int width = m_set->width();
    m_set->SetAutoRollup(true);
    settle();
    Element element;
    m_set->Save(element);
    EXPECT_EQ(element.attributes[u"AutoHide"], u"1");
    m_set->SetAutoRollup(false);
    m_set->Restore(element);
    settle();
    EXPECT_TRUE(m_set->isRolledUp());
    EXPECT_LT(m_set->width(), 60);
    m_set->SetAutoRollup(false);
    settle();
    EXPECT_NEAR(m_set->width(), width, 4);
}

TEST_F(PaletteSetTest, IsSeenThroughWhileTheMouseIsElsewhere)
{
    m_frame.resize(400, 520);
    const ed::ScreenRect place{480, 100, 280, 340};
    m_set->RestoreControlBar(59423, &place);
    m_set->setShown(true);
    leave();
    m_set->SetTransparency(true, 30);
    EXPECT_NEAR(m_set->windowOpacity(), 0.7, 0.01);
    QTest::mouseMove(m_set.get(), QPoint(30, 30));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_set->windowOpacity() > 0.99; }, 2000));
    leave();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_set->windowOpacity() < 0.8; }, 2000));
    m_set->SetTransparency(true, 1000);
    EXPECT_EQ(m_set->placement().transparency, 90);
    m_set->SetTransparency(false, 30);
    EXPECT_NEAR(m_set->windowOpacity(), 1, 0.01);
}

TEST_F(PaletteSetTest, ItsMenuDocksItAndLetsItFloat)
{
    show(DockSide::Right);
    whenWaiting([] { QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_L); });
    QTest::mouseClick(titleButton(*m_set, 23310), Qt::LeftButton);
    EXPECT_EQ(m_set->side(), DockSide::Left);
    whenWaiting([] { QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_F); });
    QTest::mouseClick(titleButton(*m_set, 23310), Qt::LeftButton);
    EXPECT_EQ(m_set->side(), DockSide::Floating);
    // Top is not among its edges.
    whenWaiting([] {
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_T);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    });
    QTest::mouseClick(titleButton(*m_set, 23310), Qt::LeftButton);
    EXPECT_EQ(m_set->side(), DockSide::Floating);
}

TEST_F(PaletteSetTest, ItsPinRollsItIn)
{
    show(DockSide::Right);
    QTest::mouseClick(titleButton(*m_set, 23311), Qt::LeftButton);
    EXPECT_TRUE(m_set->GetAutoRollup());
}

TEST_F(PaletteSetTest, MayGoBeforeItsFrameWhileItIsOut)
{
    show(DockSide::Right);
    m_set->SetAutoRollup(true);
    for (auto* button : m_set->findChildren<QAbstractButton*>())
        if (button->accessibleName() == QStringLiteral("Sheet Sets"))
            button->click();
    EXPECT_FALSE(m_set->isRolledUp());
    bool isGone = false;
    QObject::connect(m_first, &QObject::destroyed, [&] { isGone = true; });
    m_set.reset();
    settle(400);
    EXPECT_TRUE(isGone);
}

TEST_F(PaletteSetTest, LooksWellInBothThemes)
{
    for (const ui::Theme theme : {ui::Theme::Dark, ui::Theme::Light}) {
        switchTo(theme);
        const QString number = QString::number(static_cast<int>(theme));
        show(DockSide::Right);
        leave();
        EXPECT_NEAR(m_set->width(), 280, 2);
        keepPicture(m_frame, QStringLiteral("palette-docked-") + number);
        show(DockSide::Floating);
        keepPicture(*m_set, QStringLiteral("palette-floating-") + number);
        EXPECT_EQ(m_first->list->palette().color(QPalette::Base), ui::color(ui::ColorRole::Base));
        show(DockSide::Left);
        m_set->SetAutoRollup(true);
        settle();
        keepPicture(m_frame, QStringLiteral("palette-strip-") + number);
        m_set->SetAutoRollup(false);
    }
}
