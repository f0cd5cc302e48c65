#include "ui/qt_text.h"

#include <resources/texts.h>

namespace ui {

QString textOf(int number)
{
    const char16_t* text = text::find(number);
    return text ? QString::fromUtf16(text) : QString();
}

QString textOf(int number, std::span<const TvString> arguments)
{
    const char16_t* pattern = text::find(number);
    if (!pattern)
        return {};
    std::vector<base::FormatArgument> packed;
    for (const TvString& argument : arguments)
        packed.emplace_back(argument);
    return toQt(TvString().formatArguments(pattern, packed));
}

QString withoutMnemonics(const QString& text)
{
    return QString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace ui
