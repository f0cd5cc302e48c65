#include <cmath>

#include <QImage>
#include <QLabel>
#include <QPainter>

#include <ui/icon.h>

#include "program.h"

using ui::ColorRole;
using ui::Theme;

namespace {

class ThemeTest : public Program
{
};

double luminance(const QColor& color)
{
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
           0.0722 * part(color.blueF());
}

double contrast(const QColor& left, const QColor& right)
{
    const double a = luminance(left), b = luminance(right);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// Whether a picture has a pixel of about that colour.
bool shows(const QImage& image, const QColor& wanted)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor at = image.pixelColor(x, y);
            if (at.alpha() > 200 && std::abs(at.red() - wanted.red()) < 12 &&
                std::abs(at.green() - wanted.green()) < 12 &&
                std::abs(at.blue() - wanted.blue()) < 12)
                return true;
        }
    return false;
}

class Watcher : public QWidget
{
public:
    int changes = 0;
    void changeEvent(QEvent* event) override
    {
        changes += event->type() == QEvent::PaletteChange;
        QWidget::changeEvent(event);
    }
};

} // namespace

TEST_F(ThemeTest, TextCanBeReadOnWhatIsBehindIt)
{
    const std::pair<ColorRole, ColorRole> readable[] = {
        {ColorRole::Text, ColorRole::Window},       {ColorRole::Text, ColorRole::Base},
        {ColorRole::Text, ColorRole::Raised},       {ColorRole::Text, ColorRole::Hover},
        {ColorRole::DimText, ColorRole::Window},    {ColorRole::DimText, ColorRole::Base},
        {ColorRole::AccentText, ColorRole::Accent}, {ColorRole::TipText, ColorRole::Tip},
        {ColorRole::Link, ColorRole::Window},       {ColorRole::Bad, ColorRole::Base},
        {ColorRole::Bad, ColorRole::Window}};
    for (const Theme theme : {Theme::Dark, Theme::Light})
        for (const auto& [front, back] : readable)
            EXPECT_GE(contrast(ui::color(front, theme), ui::color(back, theme)), 4.5)
                << static_cast<int>(theme) << ": " << static_cast<int>(front) << " on "
                << static_cast<int>(back);
}

TEST_F(ThemeTest, EdgesFocusAndIconsCanBeSeen)
{
    const std::pair<ColorRole, ColorRole> visible[] = {
        {ColorRole::Edge, ColorRole::Window},       {ColorRole::Edge, ColorRole::Base},
        {ColorRole::IconAccent, ColorRole::Window}, {ColorRole::IconAccent, ColorRole::Raised},
        {ColorRole::Ink, ColorRole::Window},        {ColorRole::IconWarm, ColorRole::Window},
        {ColorRole::IconBad, ColorRole::Base}};
    for (const Theme theme : {Theme::Dark, Theme::Light})
        for (const auto& [front, back] : visible)
            EXPECT_GE(contrast(ui::color(front, theme), ui::color(back, theme)), 3.0)
                << static_cast<int>(theme) << ": " << static_cast<int>(front) << " on "
                << static_cast<int>(back);
}

TEST_F(ThemeTest, FollowsTheVariableAtOnce)
{
    switchTo(Theme::Dark);
    TvEditor editor;
    QWidget window;
    EXPECT_EQ(window.palette().color(QPalette::Window), ui::color(ColorRole::Window, Theme::Dark));
    switchTo(Theme::Light);
    EXPECT_EQ(ui::theme(), Theme::Light);
    EXPECT_EQ(window.palette().color(QPalette::Window), ui::color(ColorRole::Window, Theme::Light));
    EXPECT_EQ(window.palette().color(QPalette::Text), ui::color(ColorRole::Text, Theme::Light));
}

TEST_F(ThemeTest, TellsWindowsOfTheSwitch)
{
    switchTo(Theme::Dark);
    Watcher window;
    window.show();
    window.changes = 0;
    switchTo(Theme::Light);
    EXPECT_GE(window.changes, 1);
}

TEST_F(ThemeTest, TheFirstStartTakesTheWishOfTheDesktop)
{
    m_theme.reset();
    TarvikConfig state(m_folder.file("state2")), config(m_folder.file("config2"));
    ui::setStateStore(&state);
    tarvSetConfig(&config);
    QPalette light;
    light.setColor(QPalette::Window, Qt::white);
    light.setColor(QPalette::WindowText, Qt::black);
    QApplication::setPalette(light);
    {
        const ui::ThemeManager first;
        EXPECT_EQ(ui::theme(), Theme::Light);
        EXPECT_EQ(ed::variable(u"COLORTHEME"), ed::VariableValue(std::int16_t(1)));
    }
    // The user says dark; the desktop still says light.
    ed::setVariable(u"COLORTHEME", std::int16_t(0));
    QApplication::setPalette(light);
    const ui::ThemeManager second;
    EXPECT_EQ(ui::theme(), Theme::Dark);
}

TEST_F(ThemeTest, StyleRecordsFollowTheTheme)
{
    switchTo(Theme::Dark);
    const ui::StyleRecord dark = ui::styleRecord(u"sheetsetpalette");
    EXPECT_EQ(dark.background, ui::color(ColorRole::Base, Theme::Dark));
    EXPECT_EQ(dark.line, ui::color(ColorRole::Bad, Theme::Dark));
    EXPECT_EQ(dark.faceName, u"SystemFont");
    switchTo(Theme::Light);
    EXPECT_EQ(ui::styleRecord(u"SheetSetPalette").line, ui::color(ColorRole::Bad, Theme::Light));
    EXPECT_EQ(ui::styleRecord(u"?").line, ui::color(ColorRole::Edge, Theme::Light));
}

TEST_F(ThemeTest, AllIconsAreDrawnInBothThemes)
{
    EXPECT_GE(ui::iconNames().size(), 50);
    for (const Theme theme : {Theme::Dark, Theme::Light}) {
        switchTo(theme);
        for (const QString& name : ui::iconNames()) {
            const QImage image = ui::icon(name).pixmap(QSize(32, 32)).toImage();
            EXPECT_TRUE(shows(image, ui::color(ColorRole::Ink)) ||
                        shows(image, ui::color(ColorRole::IconAccent)) ||
                        shows(image, ui::color(ColorRole::IconWarm)) ||
                        shows(image, ui::color(ColorRole::IconBad)))
                << name.toStdString();
            EXPECT_FALSE(shows(image, QColor(0x55, 0x55, 0x55)) && theme == Theme::Light &&
                         shows(image, QColor(0x11, 0x11, 0x11)))
                << name.toStdString() << " has a colour that is none of the theme's";
        }
    }
}

TEST_F(ThemeTest, AnIconChangesItsColoursWithTheTheme)
{
    switchTo(Theme::Dark);
    const QIcon icon = ui::icon(TvString(u"sheet"));
    const QImage dark = icon.pixmap(16).toImage();
    switchTo(Theme::Light);
    EXPECT_NE(dark, icon.pixmap(16).toImage());
    EXPECT_TRUE(ui::icon(TvString(u"no such")).isNull());
    EXPECT_TRUE(ui::icon(TvString()).isNull());
}

TEST_F(ThemeTest, IconsAreSharpOnDenseScreens)
{
    const QPixmap dense = ui::icon(TvString(u"open")).pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(dense.size(), QSize(32, 32));
    EXPECT_EQ(dense.devicePixelRatio(), 2.0);
}

TEST_F(ThemeTest, AllIconsOnOnePicture)
{
    for (const Theme theme : {Theme::Dark, Theme::Light}) {
        switchTo(theme);
        const QStringList names = ui::iconNames();
        QPixmap pixels(10 * 90, (static_cast<int>(names.size()) + 9) / 10 * 70);
        pixels.fill(ui::color(ColorRole::Window));
        QPainter painter(&pixels);
        painter.setPen(ui::color(ColorRole::Text));
        QFont font;
        font.setPixelSize(9);
        painter.setFont(font);
        int at = 0;
        for (const QString& name : names) {
            const QPoint corner(at % 10 * 90 + 10, at / 10 * 70 + 6);
            ui::icon(name).paint(&painter, QRect(corner, QSize(16, 16)));
            ui::icon(name).paint(&painter, QRect(corner + QPoint(24, 0), QSize(40, 40)));
            painter.drawText(corner + QPoint(-6, 54), name);
            ++at;
        }
        painter.end();
        QLabel label;
        label.setPixmap(pixels);
        label.resize(pixels.size());
        keepPicture(label, QStringLiteral("icons-%1").arg(static_cast<int>(theme)));
        EXPECT_GT(at, 0);
    }
}
