#pragma once

#include <span>

#include <QString>

#include <base/tv_string.h>

/// Text on its way between the rooms and the windows. Both count UTF-16 units, and lone surrogates
/// pass unchanged.
namespace ui {

inline QString toQt(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline TvString fromQt(const QString& text)
{
    return {reinterpret_cast<const TvChar*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

/// The text of that number, in the language in force; empty when there is none.
QString textOf(int number);
/// The same with its arguments put in.
QString textOf(int number, std::span<const TvString> arguments);
/// A text in which & is a sign like others, for places where & marks a letter.
QString withoutMnemonics(const QString& text);

} // namespace ui
