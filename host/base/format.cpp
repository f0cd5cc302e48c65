#include "base/tv_string.h"
#include "format_number.h"

#include <algorithm>
#include <utility>

// Patterns are translated by people and arguments come from files, so nothing here trusts either:
// the kind of each argument travels with it, and the pattern only says how to show it.

namespace {

using base::Conversion;
using base::FormatArgument;
using base::NumberText;
using Kind = base::FormatArgument::Kind;

bool isLead(char16_t unit)
{
    return unit >= 0xd800 && unit <= 0xdbff;
}

bool isTrail(char16_t unit)
{
    return unit >= 0xdc00 && unit <= 0xdfff;
}

/// The first @p count units, and never half of a surrogate pair.
std::u16string_view cutTo(std::u16string_view text, int count)
{
    const auto size = static_cast<std::size_t>(count);
    if (count == Conversion::kNotGiven || size >= text.size())
        return text;
    const bool splits = size > 0 && isLead(text[size - 1]) && isTrail(text[size]);
    return text.substr(0, splits ? size - 1 : size);
}

void appendPadded(TvString& out, std::u16string_view text, const Conversion& conversion)
{
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::u16string padding(width > text.size() ? width - text.size() : 0, u' ');
    if (conversion.left)
        out.append(text).append(padding);
    else
        out.append(padding).append(text);
}

void appendNumber(TvString& out, const NumberText& number, const Conversion& conversion)
{
    std::string text = number.sign + number.digits;
    const auto width = static_cast<std::size_t>(conversion.width);
    if (conversion.zeros && !conversion.left && number.padsWithZeros && text.size() < width)
        text.insert(number.sign.size(), width - text.size(), '0');
    appendPadded(out, std::u16string(text.begin(), text.end()), conversion);
}

std::u16string textOf(const FormatArgument& argument)
{
    return argument.kind() == Kind::Utf8 ? base::utf16FromUtf8(argument.utf8())
                                         : base::utf16FromWide(argument.wide());
}

/// A text; its precision counts only where the pattern expects a text.
void appendText(TvString& out, const FormatArgument& argument, const Conversion& conversion)
{
    const int limit = conversion.type == u's' ? conversion.precision : Conversion::kNotGiven;
    if (argument.kind() == Kind::Utf16)
        appendPadded(out, cutTo(argument.utf16(), limit), conversion);
    else
        appendPadded(out, cutTo(textOf(argument), limit), conversion);
}

/// The character with the number @p point; one that is too large for any becomes U+FFFD.
void appendCharacter(TvString& out, std::uint64_t point, const Conversion& conversion)
{
    constexpr std::uint64_t kLast = 0x10ffff;
    char16_t units[2] = {static_cast<char16_t>(point > kLast ? 0xfffd : point), 0};
    const bool isPair = point > 0xffff && point <= kLast;
    if (isPair) {
        units[0] = static_cast<char16_t>(0xd7c0 + (point >> 10));
        units[1] = static_cast<char16_t>(0xdc00 + (point & 0x3ff));
    }
    appendPadded(out, {units, isPair ? 2u : 1u}, conversion);
}

bool isWhole(const FormatArgument& argument)
{
    return argument.kind() == Kind::Signed || argument.kind() == Kind::Unsigned ||
           argument.kind() == Kind::Character;
}

bool isNegative(const FormatArgument& argument)
{
    return argument.kind() == Kind::Signed && argument.signedValue() < 0;
}

/// The 64 bits of a whole number; a negative one in two's complement.
std::uint64_t bitsOf(const FormatArgument& argument)
{
    return argument.kind() == Kind::Signed ? static_cast<std::uint64_t>(argument.signedValue())
                                           : argument.unsignedValue();
}

std::uint64_t magnitudeOf(const FormatArgument& argument)
{
    return isNegative(argument) ? 0 - bitsOf(argument) : bitsOf(argument);
}

void appendDecimal(TvString& out, const FormatArgument& argument, const Conversion& conversion)
{
    appendNumber(out, base::decimalText(conversion, isNegative(argument), magnitudeOf(argument)),
                 conversion);
}

void appendHexadecimal(TvString& out, const FormatArgument& argument, const Conversion& conversion)
{
    const int unusedBits = argument.kind() == Kind::Signed ? 64 - 8 * argument.bytes() : 0;
    const std::uint64_t bits = bitsOf(argument) << unusedBits >> unusedBits;
    appendNumber(out, base::hexadecimalText(conversion, bits), conversion);
}

double realOf(const FormatArgument& argument)
{
    if (argument.kind() == Kind::Real)
        return argument.realValue();
    const auto magnitude = static_cast<double>(magnitudeOf(argument));
    return isNegative(argument) ? -magnitude : magnitude;
}

/// A whole number in the conversion that the pattern asks for, or in decimal where it asks for
/// text.
void appendWhole(TvString& out, const FormatArgument& argument, const Conversion& conversion)
{
    switch (conversion.type) {
    case u'c': return appendCharacter(out, bitsOf(argument), conversion);
    case u'x':
    case u'X': return appendHexadecimal(out, argument, conversion);
    case u'f':
    case u'F':
    case u'e':
    case u'E':
    case u'g':
    case u'G': return appendNumber(out, base::realText(conversion, realOf(argument)), conversion);
    case u's':
        if (argument.kind() == Kind::Character)
            return appendCharacter(out, bitsOf(argument), conversion);
        [[fallthrough]];
    default: return appendDecimal(out, argument, conversion);
    }
}

void appendArgument(TvString& out, const FormatArgument& argument, const Conversion& conversion)
{
    if (argument.kind() == Kind::None)
        return;
    if (argument.kind() == Kind::Real)
        appendNumber(out, base::realText(conversion, argument.realValue()), conversion);
    else if (isWhole(argument))
        appendWhole(out, argument, conversion);
    else
        appendText(out, argument, conversion);
}

/// The arguments of one call. Conversions without a position take them in order; those with one
/// neither use up an argument nor move on.
class Arguments
{
public:
    explicit Arguments(std::span<const FormatArgument> all) : m_all(all) {}

    FormatArgument take(const Conversion& conversion)
    {
        if (conversion.position == Conversion::kNotGiven)
            return at(m_next++);
        return conversion.position == 0 ? FormatArgument()
                                        : at(static_cast<std::size_t>(conversion.position) - 1);
    }

private:
    FormatArgument at(std::size_t index) const
    {
        return index < m_all.size() ? m_all[index] : FormatArgument();
    }

    std::span<const FormatArgument> m_all;
    std::size_t m_next = 0;
};

/// Writes what stands behind a percent sign, and gives how much of it that was.
std::size_t appendConversion(TvString& out, std::u16string_view rest, Arguments& arguments)
{
    Conversion conversion;
    const std::size_t length = base::readConversion(rest, conversion);
    if (length == 0 || conversion.type == u'%')
        out += u'%';
    else
        appendArgument(out, arguments.take(conversion), conversion);
    return length;
}

} // namespace

TvString& TvString::formatArguments(const TvString& pattern,
                                    std::span<const base::FormatArgument> args)
{
    TvString out; // this text may be the pattern, or one of the arguments
    Arguments arguments(args);
    std::u16string_view rest = pattern.view();
    for (;;) {
        const std::size_t percent = std::min(rest.find(u'%'), rest.size());
        out.append(rest.substr(0, percent));
        if (percent == rest.size())
            break;
        rest.remove_prefix(percent + 1);
        rest.remove_prefix(appendConversion(out, rest, arguments));
    }
    *this = std::move(out);
    return *this;
}
