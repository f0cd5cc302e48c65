#include "ui/window_state.h"

#include <charconv>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <base/tarvik_config.h>

namespace ui {

namespace {

constexpr int kScope = 1;
constexpr TvChar kWindows[] = u"Windows\\";
constexpr int kFarthest = 100000; // pixels: beyond any desktop

TarvikConfig* g_store = nullptr; // not owned

/// Four numbers with blanks between them; null for anything else.
QRect rectFrom(const TvString& text)
{
    const std::string digits = text.utf8();
    int numbers[4] = {};
    const char* at = digits.data();
    const char* const end = at + digits.size();
    for (int& number : numbers) {
        if (&number != numbers && (at == end || *at++ != ' '))
            return {};
        const auto [next, error] = std::from_chars(at, end, number);
        if (error != std::errc() || number < -kFarthest || number > kFarthest)
            return {};
        at = next;
    }
    return at == end ? QRect(numbers[0], numbers[1], numbers[2], numbers[3]) : QRect();
}

qint64 areaOf(const QRect& rect)
{
    return rect.isEmpty() ? 0 : qint64(rect.width()) * rect.height();
}

qint64 distanceBetween(const QRect& screen, const QPoint& point)
{
    const qint64 x = std::max({screen.left() - point.x(), point.x() - screen.right(), 0});
    const qint64 y = std::max({screen.top() - point.y(), point.y() - screen.bottom(), 0});
    return x * x + y * y;
}

const QRect& bestScreen(const QRect& wanted, const QList<QRect>& screens)
{
    const auto worse = [&](const QRect& left, const QRect& right) {
        const qint64 seenLeft = areaOf(left & wanted), seenRight = areaOf(right & wanted);
        if (seenLeft != seenRight)
            return seenLeft < seenRight;
        return distanceBetween(left, wanted.center()) > distanceBetween(right, wanted.center());
    };
    return *std::ranges::max_element(screens, worse);
}

} // namespace

void setStateStore(TarvikConfig* store)
{
    g_store = store;
}

TvString rememberedText(const TvString& key)
{
    TarvikConfigValue value;
    return g_store && g_store->getValue(kScope, key, value) ? value.textValue() : TvString();
}

void rememberText(const TvString& key, const TvString& text)
{
    if (g_store && rememberedText(key) != text)
        g_store->setValue(kScope, key, TarvikConfigValue::ofText(text));
}

void rememberWindow(const QWidget& window, const TvString& name)
{
    const QRect rect = window.isMaximized() ? window.normalGeometry() : window.geometry();
    if (!name.isEmpty())
        rememberText(
            TvString(kWindows) + name,
            TvString().format(u"%d %d %d %d", rect.x(), rect.y(), rect.width(), rect.height()));
}

bool restoreWindow(QWidget& window, const TvString& name)
{
    const QRect rect =
        name.isEmpty() ? QRect() : rectFrom(rememberedText(TvString(kWindows) + name));
    if (rect.isEmpty())
        return false;
    window.setGeometry(placedOnScreens(rect, window.minimumSize(), availableScreens()));
    return true;
}

QRect placedOnScreens(const QRect& wanted, const QSize& least, const QList<QRect>& screens)
{
    if (screens.isEmpty())
        return wanted;
    const QRect& screen = bestScreen(wanted, screens);
    const QSize size = wanted.size().expandedTo(least).boundedTo(screen.size());
    const auto within = [](int at, int low, int high) { return std::max(low, std::min(at, high)); };
    return {QPoint(within(wanted.x(), screen.x(), screen.x() + screen.width() - size.width()),
                   within(wanted.y(), screen.y(), screen.y() + screen.height() - size.height())),
            size};
}

QList<QRect> availableScreens()
{
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    return screens;
}

} // namespace ui
