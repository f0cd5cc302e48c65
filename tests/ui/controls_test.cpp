#include <limits>

#include <QBuffer>

#include <ui/kv_preview_static.h>
#include <ui/path_label.h>
#include <ui/scroll_bar_ex.h>

#include "program.h"

namespace {

class ControlsTest : public Program
{
};

std::vector<std::byte> bytesOf(const QByteArray& data)
{
    const auto* first = reinterpret_cast<const std::byte*>(data.constData());
    return {first, first + data.size()};
}

QByteArray written(const QImage& image, const char* format)
{
    QByteArray data;
    QBuffer buffer(&data);
    image.save(&buffer, format);
    return data;
}

QImage red()
{
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

/// The colour in the middle of what a preview shows.
QColor middle(CKvPreviewStatic& preview)
{
    preview.resize(120, 100);
    return preview.grab().toImage().pixelColor(60, 50);
}

} // namespace

TEST_F(ControlsTest, APreviewShowsPictures)
{
    CKvPreviewStatic preview;
    EXPECT_NE(middle(preview), QColor(Qt::red));
    EXPECT_TRUE(preview.SetPreview(bytesOf(written(red(), "PNG"))));
    EXPECT_EQ(middle(preview), QColor(Qt::red));
    EXPECT_FALSE(preview.SetPreview({}));
    EXPECT_FALSE(preview.HasPicture());
    preview.SetPicture(red());
    EXPECT_EQ(middle(preview), QColor(Qt::red));
}

TEST_F(ControlsTest, APreviewShowsBitmapsAsDrawingsStoreThem)
{
    CKvPreviewStatic preview;
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_Indexed8}) {
        const QByteArray file = written(red().convertToFormat(format), "BMP");
        EXPECT_TRUE(preview.SetPreview(bytesOf(file.mid(14)))) << "without its file header";
        EXPECT_EQ(middle(preview), QColor(Qt::red));
    }
}

TEST_F(ControlsTest, DamagedPreviewsAreNoPictures)
{
    CKvPreviewStatic preview;
    const QByteArray good = written(red().convertToFormat(QImage::Format_Indexed8), "BMP").mid(14);
    for (int length = 0; length < good.size(); length += 7)
        preview.SetPreview(bytesOf(good.left(length)));
    QByteArray huge = good;
    huge[4] = huge[5] = huge[6] = '\x7F'; // its width
    EXPECT_FALSE(preview.SetPreview(bytesOf(huge)));
    QByteArray colors = good;
    colors[32] = colors[33] = colors[34] = colors[35] = '\xFF';
    preview.SetPreview(bytesOf(colors));
    EXPECT_FALSE(preview.SetPreview(bytesOf(QByteArray(200, '\x28'))));
}

TEST_F(ControlsTest, AThinScrollBarScrolls)
{
    CScrollBarEx bar(Qt::Vertical);
    bar.setRange(0, 90);
    bar.setPageStep(10);
    bar.resize(bar.sizeHint().width(), 200);
    bar.show();
    EXPECT_LE(bar.width(), 12);
    EXPECT_EQ(bar.handle(), QRect(0, 0, bar.width(), 20));
    QTest::mouseClick(&bar, Qt::LeftButton, {}, QPoint(4, 150));
    EXPECT_EQ(bar.value(), 10);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, QPoint(4, 2));
    EXPECT_EQ(bar.value(), 0);
    QTest::mousePress(&bar, Qt::LeftButton, {}, QPoint(4, 10));
    QTest::mouseMove(&bar, QPoint(4, 100));
    EXPECT_EQ(bar.value(), 45);
    QTest::mouseMove(&bar, QPoint(4, 5000));
    EXPECT_EQ(bar.value(), 90);
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(4, 5000));
    QTest::keyClick(&bar, Qt::Key_Home);
    EXPECT_EQ(bar.value(), 0);
}

TEST_F(ControlsTest, AThinScrollBarBearsAnyRange)
{
    CScrollBarEx bar(Qt::Horizontal);
    EXPECT_TRUE(bar.handle().isNull() || bar.maximum() > bar.minimum());
    bar.setRange(std::numeric_limits<int>::min() / 2, std::numeric_limits<int>::max() / 2);
    bar.resize(3, 9);
    bar.setValue(bar.maximum());
    EXPECT_LE(bar.handle().right(), 3);
    bar.setRange(5, 5);
    EXPECT_TRUE(bar.handle().isNull());
    bar.grab();
}

TEST_F(ControlsTest, APathLosesItsMiddle)
{
    ui::PathLabel label;
    label.setText(QStringLiteral("/projects/a <b>very</b> long way/to the drawing.dwg"));
    label.resize(120, 20);
    label.show();
    EXPECT_TRUE(label.toolTip().contains(QLatin1String("&lt;b&gt;")));
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
    label.resize(1000, 20);
    EXPECT_TRUE(label.toolTip().isEmpty());
}
