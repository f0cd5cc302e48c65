// The tip of the sheet list, as it is painted, and when it comes and goes.

#include <QBuffer>

#include <core/sheet_tip.h>

#include "page_scene.h"

namespace {

constexpr QColor kPaper(241, 242, 247), kLine(0x77, 0x77, 0x77), kRed(200, 30, 40);

/// The bytes of a picture of one colour.
std::vector<std::uint8_t> pictureBytes(const char* format)
{
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(kRed);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, format);
    return {bytes.begin(), bytes.end()};
}

/// A tip with words and a picture of the test's.
class GivenTip : public CTarvSheetSetToolTipCtrl
{
public:
    void GetTipText(TvString& out) override
    {
        m_tip.preview = m_picture.isNull() ? nullptr : std::make_shared<const db::Preview>();
        out = words;
    }
    void usePicture(const QImage& picture) { m_picture = picture; }
    TvString words;
};

class TipPaintTest : public testing::Test
{
protected:
    TipPaintTest() { core::resetTipStyle(); }
    ~TipPaintTest() override { core::resetTipStyle(); }
    void useStyle(int number)
    {
        TarvikConfig settings(folder.file("settings"));
        tarvSetConfig(&settings);
        core::chooseTipStyle(number);
        tarvSetConfig(nullptr);
    }
    void usePicture()
    {
        QImage red(8, 6, QImage::Format_RGB32);
        red.fill(kRed);
        tip.usePicture(red);
    }
    QImage painted(const TvString& words)
    {
        tip.words = words;
        EXPECT_TRUE(tip.Update({100, 100}));
        const QImage picture = tip.grab().toImage();
        if (qEnvironmentVariableIsSet("KV_UI_PICTURES"))
            picture.save(
                qEnvironmentVariable("KV_UI_PICTURES") + QLatin1String("/tip-") +
                QLatin1String(testing::UnitTest::GetInstance()->current_test_info()->name()) +
                QLatin1String(".png"));
        return picture;
    }
    /// The smallest rectangle around all pixels of a colour; empty: there are none.
    static QRect rectOf(const QImage& picture, const QColor& color)
    {
        QRect found;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixelColor(x, y) == color)
                    found |= QRect(x, y, 1, 1);
        return found;
    }
    /// Where words stand: around all that is dark.
    static QRect inkOf(const QImage& picture, int fromY = 0)
    {
        QRect found;
        for (int y = fromY; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixelColor(x, y).lightness() < 60)
                    found |= QRect(x, y, 1, 1);
        return found;
    }

    TempFolder folder;
    GivenTip tip;
};

TEST_F(TipPaintTest, TheNameAloneStandsInTheMiddleWithoutALine)
{
    useStyle(0);
    usePicture();
    const QImage picture = painted(u"A-101 - Ground floor");
    EXPECT_EQ(picture.pixelColor(1, picture.height() - 2), kPaper);
    EXPECT_TRUE(rectOf(picture, kLine).isEmpty());
    EXPECT_TRUE(rectOf(picture, kRed).isEmpty()) << "no picture in this style";
    EXPECT_NEAR(inkOf(picture).center().x(), picture.width() / 2, 3);
    EXPECT_GE(inkOf(picture).left(), CTarvSheetSetToolTipCtrl::kInset);
}

TEST_F(TipPaintTest, DetailsStandBelowALineAtTheLeft)
{
    useStyle(1);
    const QImage picture = painted(u"Plan\nStatus: available\nA second line that is longer");
    const QRect line = rectOf(picture, kLine);
    EXPECT_EQ(line.left(), CTarvSheetSetToolTipCtrl::kInset);
    EXPECT_EQ(line.right(), picture.width() - 1) << "to the edge";
    EXPECT_EQ(line.height(), 1);
    EXPECT_LT(inkOf(picture).top(), line.top());
    EXPECT_GT(inkOf(picture, line.bottom() + 1).height(), 15) << "two lines";
    EXPECT_NEAR(inkOf(picture, line.bottom() + 1).left(), CTarvSheetSetToolTipCtrl::kInset, 2);
}

TEST_F(TipPaintTest, ThePictureStandsBetweenNameAndDetailsInItsSize)
{
    const QSize sizes[] = {{64, 48}, {128, 96}, {256, 192}};
    for (int size = 0; size < 3; ++size) {
        useStyle(5 + size);
        usePicture();
        const TvString padding = core::previewRoom(static_cast<core::TipStyle::Size>(size)).padding;
        const QImage picture = painted(u"Plan" + padding + u"\nStatus: available");
        const QRect red = rectOf(picture, kRed), line = rectOf(picture, kLine);
        EXPECT_EQ(red.size(), sizes[size]);
        EXPECT_EQ(red.top(), line.top() - 1 + 10);
        EXPECT_NEAR(red.center().x(), picture.width() / 2, 1);
        EXPECT_GT(inkOf(picture, red.bottom() + 1).height(), 4) << "words below it";
        EXPECT_TRUE(inkOf(picture.copy(0, line.bottom() + 1, picture.width(),
                                       red.top() - line.bottom() - 1))
                        .isEmpty())
            << "the digits that make room are not shown";
        EXPECT_TRUE(inkOf(picture.copy(red)).isEmpty()) << "nor do words cover it";
    }
}

TEST_F(TipPaintTest, NameAndPictureHaveNoWordsBelow)
{
    const QSize sizes[] = {{64, 48}, {128, 96}, {256, 192}};
    for (int size = 0; size < 3; ++size) {
        useStyle(2 + size);
        usePicture();
        const TvString padding = core::previewRoom(static_cast<core::TipStyle::Size>(size)).padding;
        const QImage picture = painted(u"Plan" + padding + u"1");
        const QRect red = rectOf(picture, kRed);
        EXPECT_EQ(red.size(), sizes[size]);
        EXPECT_TRUE(inkOf(picture, rectOf(picture, kLine).bottom() + 1).isEmpty());
        EXPECT_LE(picture.height(), red.bottom() + 8);
    }
}

TEST_F(TipPaintTest, WithoutAPictureThatStyleShowsTheNameAlone)
{
    useStyle(4);
    const QImage picture = painted(u"House");
    EXPECT_TRUE(rectOf(picture, kLine).isEmpty());
    EXPECT_FALSE(inkOf(picture).isEmpty());
}

TEST_F(TipPaintTest, LongPathsAreBrokenAndStayWithinTheWidth)
{
    useStyle(1);
    const TvString path(std::u16string(200, u'W'));
    const QImage picture = painted(u"Plan\n" + path);
    EXPECT_LE(picture.width(), CTarvSheetSetToolTipCtrl::kMaxWidth);
    EXPECT_GT(inkOf(picture, 25).height(), 30);
    EXPECT_LE(inkOf(picture).right(), picture.width() - 4);
}

class TipTest : public PageTest
{
protected:
    void SetUp() override
    {
        PageTest::SetUp();
        core::resetTipStyle();
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2").picture(u"A1", pictureBytes("PNG"));
        maker.picture(u"A2").saveAs(folder.file("plan.dwg"));
        change(database, [&](TvSmSheetSet&) {
            setLayout(plan, folder.file("plan.dwg"), maker.handleOf(u"A1"), u"A1");
            setLayout(section, folder.file("plan.dwg"), maker.handleOf(u"A2"), u"A2");
        });
    }
    CTarvSheetSetToolTipCtrl& tip() { return tree().tips()->tip(); }
    /// Shown, with all that the disk tells.
    bool show()
    {
        return tip().Update({50, 50}) &&
               QTest::qWaitFor([this] { return !tip().isWaiting(); }, 20000);
    }
    bool isUp()
    {
        return QTest::qWaitFor([this] { return tip().isVisible() && !tip().isWaiting(); }, 20000);
    }
    void moveTo(const QPoint& to)
    {
        QWidget* area = tree().viewport();
        QMouseEvent move(QEvent::MouseMove, to, area->mapToGlobal(to), Qt::NoButton, Qt::NoButton,
                         {});
        QApplication::sendEvent(area, &move);
    }
};

TEST_F(TipTest, ComesAfterTheMouseRestedOnARowAndShowsWhatIsKnownOfIt)
{
    moveTo(pointOf(plan));
    EXPECT_FALSE(tip().isVisible()) << "not while the mouse moves";
    EXPECT_EQ(tip().Handle(), handleOf(plan));
    ASSERT_TRUE(isUp());
    EXPECT_EQ(tip().tip().text.find(u"1 - Plan\n"), 0);
    EXPECT_NE(tip().tip().text.find(u"plan.dwg"), TvString::npos);
    const QImage picture = tip().grab().toImage();
    EXPECT_EQ(picture.pixelColor(picture.width() / 2, 100), kRed) << "its layout's picture";

    moveTo(pointOf(plan) + QPoint(5, 1));
    EXPECT_TRUE(tip().isVisible()) << "it stays while the mouse is on the row";
    moveTo(pointOf(details));
    EXPECT_FALSE(tip().isVisible()) << "and goes with it";
    EXPECT_EQ(tip().Handle(), handleOf(details));
    moveTo(QPoint(60, tree().viewport()->height() - 3));
    EXPECT_EQ(tip().Handle(), u"") << "beside the rows nothing is pointed at";
}

TEST_F(TipTest, TurnedOffItIsHiddenAtOnceAndComesNoMore)
{
    moveTo(pointOf(plan));
    ASSERT_TRUE(isUp());
    dlg->Item<CIconButton>(CSheetSetDlg::kTips)->click();
    EXPECT_FALSE(tip().isVisible());
    EXPECT_FALSE(dlg->showsTips());
    moveTo(pointOf(cover));
    EXPECT_EQ(tip().Handle(), handleOf(plan)) << "the mouse is not looked at any more";
    dlg->Item<CIconButton>(CSheetSetDlg::kTips)->click();
    moveTo(pointOf(cover));
    EXPECT_EQ(tip().Handle(), handleOf(cover));
}

TEST_F(TipTest, GoesWithAPressAndAKey)
{
    for (const bool byKey : {false, true}) {
        tip().SetHandle(handleOf(plan));
        ASSERT_TRUE(show());
        if (byKey)
            QTest::keyClick(&tree(), Qt::Key_Shift);
        else
            QTest::mousePress(tree().viewport(), Qt::LeftButton, {}, pointOf(plan));
        EXPECT_FALSE(tip().isVisible());
    }
    QTest::mouseRelease(tree().viewport(), Qt::LeftButton, {}, pointOf(plan));
}

TEST_F(TipTest, TheStyleOfTheBackgroundMenuIsWhatIsShown)
{
    tip().SetHandle(handleOf(plan));
    dlg->commands().run(panel::kFirstTipStyle);
    ASSERT_TRUE(show());
    EXPECT_EQ(tip().tip().text, u"1 - Plan");
    dlg->commands().run(panel::kFirstTipStyle + 3);
    ASSERT_TRUE(show());
    EXPECT_GE(tip().width(), 128);
    EXPECT_LT(tip().width(), 256);
    int stored = 0;
    ASSERT_TRUE(ReadConfigInt(u"UserInterfaceSettings\\SheetSetDialog\\TooolTipStyle", stored));
    EXPECT_EQ(stored, 3);
}

TEST_F(TipTest, APictureThatCannotBeReadNeedsNoRoom)
{
    tip().SetHandle(handleOf(section));
    ASSERT_TRUE(show());
    EXPECT_EQ(tip().tip().text.find(u"1234567890"), TvString::npos);
    EXPECT_NE(tip().tip().text.find(u"plan.dwg"), TvString::npos);
}

TEST_F(TipTest, AnObjectThatIsGoneHasNoTip)
{
    tip().SetHandle(u"gFFFF");
    EXPECT_FALSE(tip().Update({50, 50}));
    EXPECT_FALSE(tip().isVisible());
}

TEST_F(TipTest, ASetOrASubsetIsShownByItsNameAloneWhereTipsAreNameAndPicture)
{
    for (const int style : {4}) { // the largest picture
        dlg->commands().run(panel::kFirstTipStyle + style);
        moveTo(pointOf(plan));
        ASSERT_TRUE(isUp());
        ASSERT_NE(tip().tip().preview, nullptr) << "the one before had a picture";
        const QSize pictureSize = tip().size();
        for (const auto& [object, name] :
             {std::pair<const TvSmPersist*, TvString>{ground, u"Ground"},
              {database->getSheetSet(), u"House"}}) {
            moveTo(pointOf(object));
            EXPECT_FALSE(tip().isVisible());
            ASSERT_TRUE(isUp());
            EXPECT_EQ(tip().tip().text, name);
            EXPECT_EQ(tip().tip().preview, nullptr);
            EXPECT_LT(tip().height(), pictureSize.height()) << "no room is left for one";
            const QImage picture = tip().grab().toImage();
            bool hasLine = false, hasRed = false;
            for (int y = 0; y < picture.height(); ++y)
                for (int x = 0; x < picture.width(); ++x) {
                    hasLine = hasLine || (x == 5 && picture.pixelColor(x, y) == kLine &&
                                          picture.pixelColor(x + 1, y) == kLine &&
                                          picture.pixelColor(x + 2, y) == kLine);
                    hasRed = hasRed || picture.pixelColor(x, y) == kRed;
                }
            EXPECT_FALSE(hasLine || hasRed);
        }
    }
}

TEST_F(TipTest, ASubsetTellsItsSheetsAndASetItsTextsOnlyWhereDetailsAreShown)
{
    change(database, [](TvSmSheetSet& top) { top.setSheetSetText1(u"North"); });
    for (int style = 0; style < 8; ++style) {
        dlg->commands().run(panel::kFirstTipStyle + style);
        const bool hasDetails = core::tipStyle().showsDetails();
        tip().SetHandle(handleOf(ground));
        ASSERT_TRUE(show());
        EXPECT_EQ(tip().tip().text.find(u"3") != TvString::npos, hasDetails) << style;
        tip().SetHandle(handleOf(database->getSheetSet()));
        ASSERT_TRUE(show());
        EXPECT_EQ(tip().tip().text.find(u"North") != TvString::npos, hasDetails) << style;
    }
}

} // namespace
