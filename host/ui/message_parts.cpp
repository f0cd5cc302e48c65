#include "message_parts.h"

#include <QGuiApplication>

#include "ui/icon.h"
#include "ui/qt_text.h"

namespace ui {

namespace {

constexpr int kLongestArgument = 600; // UTF-16 units

/// Line by line: what would change the order of letters, or is no letter at all, is made visible.
TvString safe(const TvString& text)
{
    TvString lines;
    for (int start = 0, end = 0; end != TvString::npos; start = end + 1) {
        end = text.find(u'\n', start);
        if (start > 0)
            lines += u'\n';
        lines += base::escapedForDisplay(text.substr(start, end < 0 ? -1 : end - start));
    }
    return lines;
}

} // namespace

QString titleOf(int number)
{
    const QString title = number ? textOf(number) : QString();
    return title.isEmpty() ? QGuiApplication::applicationDisplayName() : title;
}

QIcon pictureOf(TvUserMessages::Icon picture)
{
    switch (picture) {
    case TvUserMessages::Icon::Information: return icon(QStringLiteral("information"));
    case TvUserMessages::Icon::Warning: return icon(QStringLiteral("warning"));
    case TvUserMessages::Icon::Question: return icon(QStringLiteral("question"));
    case TvUserMessages::Icon::Stop: return icon(QStringLiteral("stop"));
    default: return {};
    }
}

std::vector<TvString> shortened(std::span<const TvString> arguments)
{
    std::vector<TvString> kept;
    for (const TvString& argument : arguments) {
        constexpr int half = kLongestArgument / 2;
        kept.push_back(safe(argument.length() <= kLongestArgument
                                ? argument
                                : argument.left(half) + u"…" + argument.right(half)));
    }
    return kept;
}

} // namespace ui
