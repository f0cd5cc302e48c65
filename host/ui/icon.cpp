#include "ui/icon.h"

#include <optional>

#include <QDir>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include "ui/qt_text.h"
#include "ui/theme.h"

namespace ui {

namespace {

constexpr char kFolder[] = ":/tarvik/icons/";
constexpr char kEnding[] = ".svg";

struct Sign {
    const char* sign; ///< the colour that stands in the files
    ColorRole role;
};
constexpr Sign kSigns[] = {
    {"#111111", ColorRole::Ink},        {"#222222", ColorRole::IconFill},
    {"#333333", ColorRole::IconAccent}, {"#444444", ColorRole::IconWarm},
    {"#555555", ColorRole::IconBad},
};
constexpr double kDisabledOpacity = 0.4;

QString fileOf(const QString& name)
{
    return QLatin1String(kFolder) + name + QLatin1String(kEnding);
}

/// On a selected row, lines and areas in the two colours of what is selected.
ColorRole selectedRole(ColorRole role)
{
    return role == ColorRole::IconFill ? ColorRole::Accent : ColorRole::AccentText;
}

QByteArray inColors(QByteArray picture, QIcon::Mode mode, Theme of)
{
    for (const Sign& row : kSigns) {
        const ColorRole role = mode == QIcon::Selected ? selectedRole(row.role) : row.role;
        picture.replace(row.sign, color(role, of).name().toLatin1());
    }
    return picture;
}

QByteArray contentOf(const QString& name)
{
    QFile file(fileOf(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes pixels when they are asked for, so that a theme switch needs no new icons.
class ThemedIcon : public QIconEngine
{
public:
    /// @param fixed  nullopt: the theme in force.
    explicit ThemedIcon(QString name, std::optional<Theme> fixed = {})
        : m_name(std::move(name)), m_fixed(fixed)
    {
    }

    QIconEngine* clone() const override { return new ThemedIcon(m_name, m_fixed); }
    bool isNull() override { return false; }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        QSvgRenderer renderer(inColors(contentOf(m_name), mode, shownTheme()));
        const int side = std::min(rect.width(), rect.height());
        QRect square(0, 0, side, side);
        square.moveCenter(rect.center());
        painter->save();
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * kDisabledOpacity);
        renderer.render(painter, square);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        const QString key = QStringLiteral("kv-icon/%1/%2/%3/%4/%5")
                                .arg(m_name)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(static_cast<int>(mode))
                                .arg(static_cast<int>(shownTheme()));
        QPixmap pixels;
        if (QPixmapCache::find(key, &pixels))
            return pixels;
        pixels = QPixmap(size);
        pixels.fill(Qt::transparent);
        {
            QPainter painter(&pixels);
            paint(&painter, QRect(QPoint(), size), mode, state);
        }
        QPixmapCache::insert(key, pixels);
        return pixels;
    }

private:
    Theme shownTheme() const { return m_fixed.value_or(theme()); }

    QString m_name;
    std::optional<Theme> m_fixed;
};

} // namespace

QIcon icon(const QString& name)
{
    return !name.isEmpty() && QFile::exists(fileOf(name)) ? QIcon(new ThemedIcon(name)) : QIcon();
}

QIcon icon(const QString& name, Theme theme)
{
    return QFile::exists(fileOf(name)) ? QIcon(new ThemedIcon(name, theme)) : QIcon();
}

QIcon icon(const TvString& name)
{
    return icon(toQt(name));
}

QStringList iconNames()
{
    QStringList names = QDir(QLatin1String(kFolder)).entryList(QDir::Files, QDir::Name);
    for (QString& name : names)
        name.chop(static_cast<qsizetype>(std::size(kEnding)) - 1);
    return names;
}

} // namespace ui
