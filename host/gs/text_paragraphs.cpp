#include "text_paragraphs.h"

#include <algorithm>
#include <charconv>
#include <numbers>

#include "text_codes.h"

namespace gs {

namespace {

constexpr std::size_t kDeepest = 64;
constexpr double kMostHeights = 1e4; // of an indent or tab
constexpr std::size_t kMostTabs = 100;

/// A number at the beginning of @p text, which is taken away; @p otherwise when there is none.
double takeNumber(std::u16string_view& text, double otherwise)
{
    char digits[40];
    std::size_t count = 0;
    if (!text.empty() && text.front() == u'+')
        text.remove_prefix(1);
    while (count < text.size() && count < sizeof digits &&
           std::u16string_view(u"0123456789.-eE").find(text[count]) != std::u16string_view::npos) {
        digits[count] = static_cast<char>(text[count]);
        ++count;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(digits, digits + count, value);
    if (error != std::errc())
        return otherwise;
    text.remove_prefix(static_cast<std::size_t>(end - digits));
    return value;
}

double numberIn(std::u16string_view text, double otherwise)
{
    return takeNumber(text, otherwise);
}

/// "2.5" is a size, "2.5x" a factor of @p size.
double resized(double size, std::u16string_view argument)
{
    const double value = takeNumber(argument, 0);
    const bool isFactor =
        !argument.empty() && (argument.front() == u'x' || argument.front() == u'X');
    return isFactor ? size * value : value;
}

bool standsAlone(char32_t c)
{
    return (c >= 0x2E80 && c < 0xA4D0) || (c >= 0xAC00 && c < 0xD7A4) ||
           (c >= 0xF900 && c < 0xFB00) || (c >= 0x20000 && c < 0x30000);
}

/// "l2,t4,8,c12": one letter that says what, and its value.
class ParagraphArguments
{
public:
    ParagraphArguments(std::u16string_view rest, ParagraphFormat& format)
        : m_rest(rest), m_format(format)
    {
    }

    void read()
    {
        while (!m_rest.empty()) {
            const char16_t what = m_rest.front();
            if (isNumberStart(what)) { // a tab stop after others
                addTab(Alignment::Left);
                continue;
            }
            m_rest.remove_prefix(1);
            readOne(what);
        }
    }

private:
    static bool isNumberStart(char16_t c)
    {
        return (c >= u'0' && c <= u'9') || c == u'.' || c == u'-' || c == u'+';
    }

    double length(double otherwise = 0)
    {
        if (!m_rest.empty() && m_rest.front() == u'*') {
            m_rest.remove_prefix(1);
            return otherwise;
        }
        const double value = takeNumber(m_rest, otherwise);
        return std::abs(value) <= kMostHeights ? value : otherwise;
    }

    void readOne(char16_t what)
    {
        switch (what) {
        case u'i': m_format.firstIndent = length(); break;
        case u'l': m_format.left = length(); break;
        case u'r':
            if (m_inTabs)
                addTab(Alignment::Right);
            else
                m_format.right = length();
            break;
        case u'c': addTab(Alignment::Center); break;
        case u'd': addTab(Alignment::Right); break;
        case u'b': m_format.before = std::max(length(), 0.0); break;
        case u'a': m_format.after = std::max(length(), 0.0); break;
        case u'q': readAlignment(); break;
        case u's': readSpacing(); break;
        case u't':
            m_format.tabs = std::make_shared<std::vector<TabStop>>();
            m_inTabs = true;
            break;
        default: break; // commas, "x" in front, and what nobody knows
        }
    }

    void addTab(Alignment alignment)
    {
        const std::size_t before = m_rest.size();
        const double at = length(-1);
        if (at >= 0 && m_inTabs && m_format.tabs->size() < kMostTabs)
            m_format.tabs->push_back({at, alignment});
        if (m_rest.size() == before && !m_rest.empty())
            m_rest.remove_prefix(1); // not a number after all
    }

    void readAlignment()
    {
        if (m_rest.empty())
            return;
        switch (m_rest.front()) {
        case u'l': m_format.alignment = Alignment::Left; break;
        case u'r': m_format.alignment = Alignment::Right; break;
        case u'c': m_format.alignment = Alignment::Center; break;
        case u'j':
        case u'd': m_format.alignment = Alignment::Justified; break;
        default: m_format.alignment = Alignment::AsText; break;
        }
        m_rest.remove_prefix(1);
    }

    void readSpacing()
    {
        if (m_rest.empty())
            return;
        using Spacing = ParagraphFormat::Spacing;
        const char16_t kind = m_rest.front();
        m_rest.remove_prefix(1);
        m_format.spacing = kind == u'm'   ? Spacing::Multiple
                           : kind == u'e' ? Spacing::Exact
                           : kind == u'a' ? Spacing::AtLeast
                                          : Spacing::AsText;
        const double value = takeNumber(m_rest, 1);
        if (value > 0 && value <= kLargestHeight)
            m_format.spacingValue = value;
        else
            m_format.spacing = Spacing::AsText;
    }

    std::u16string_view m_rest;
    ParagraphFormat& m_format;
    bool m_inTabs = false;
};

class ParagraphParser
{
public:
    ParagraphParser(std::u16string_view rest, const PieceLook& look, Fonts& fonts)
        : m_rest(rest), m_fonts(fonts), m_look(look)
    {
        m_text.formats.emplace_back();
        m_text.looks.push_back(look);
        begin();
    }

    ParagraphText parse()
    {
        while (!m_rest.empty() && isWithinLimits())
            step();
        end();
        giveDirections(m_text);
        return std::move(m_text);
    }

private:
    bool isWithinLimits() const
    {
        return m_text.letters.size() + m_text.pieces.size() + m_text.paragraphs.size() +
                   m_text.formats.size() + m_stackedLetters <
               2 * kMostLetters;
    }

    char16_t take()
    {
        const char16_t unit = m_rest.front();
        m_rest.remove_prefix(1);
        return unit;
    }

    void step()
    {
        if (const auto sign = takePercentCharacter(m_rest))
            return letter(*sign);
        if (const auto code = takeCharacterCode(m_rest))
            return letter(*code);
        if (const auto what = takePercentLine(m_rest)) {
            LetterLook& look = m_look.letters;
            bool& flag = *what == u'u'   ? look.isUnderlined
                         : *what == u'o' ? look.isOverlined
                                         : look.isStruck;
            flag = !flag;
            return;
        }
        switch (m_rest.front()) {
        case u'\\': take(); return code();
        case u'{': take(); return open();
        case u'}': take(); return close();
        case u'^': take(); return control();
        case u'\n': take(); return nextParagraph();
        case u'\r': take(); return;
        case u'\t': take(); return mark(TextPiece::Kind::Tab);
        case u' ': take(); return mark(TextPiece::Kind::Space);
        default: return letter(takeCharacter(m_rest));
        }
    }

    void open()
    {
        if (m_outer.size() < kDeepest)
            m_outer.push_back(m_look);
        else
            ++m_deeper;
    }
    void close()
    {
        if (m_deeper > 0) {
            --m_deeper;
        } else if (!m_outer.empty()) {
            m_look = m_outer.back();
            m_outer.pop_back();
        }
    }

    /// After "^": control characters as letters.
    void control()
    {
        if (m_rest.empty())
            return letter(U'^');
        switch (m_rest.front()) {
        case u'I': take(); return mark(TextPiece::Kind::Tab);
        case u'J': take(); return nextParagraph();
        case u'M': take(); return;
        case u' ': take(); return letter(U'^');
        default: return letter(U'^');
        }
    }

    void code()
    {
        if (m_rest.empty())
            return letter(U'\\');
        const char16_t what = take();
        switch (what) {
        case u'P':
        case u'X': return nextParagraph();
        case u'N': return mark(TextPiece::Kind::NextColumn);
        case u'~': return letter(U'\u00A0');
        case u'L': m_look.letters.isUnderlined = true; return;
        case u'l': m_look.letters.isUnderlined = false; return;
        case u'O': m_look.letters.isOverlined = true; return;
        case u'o': m_look.letters.isOverlined = false; return;
        case u'K': m_look.letters.isStruck = true; return;
        case u'k': m_look.letters.isStruck = false; return;
        case u'S': return stack();
        case u'A':
        case u'C':
        case u'c':
        case u'F':
        case u'f':
        case u'H':
        case u'W':
        case u'Q':
        case u'T':
        case u'p': return format(what, argument());
        default: return letter(what); // "\\", "\{", "\}", and what nobody knows
        }
    }

    std::u16string_view argument()
    {
        const auto end = m_rest.find(u';');
        const std::u16string_view text = m_rest.substr(0, end);
        m_rest = end == std::u16string_view::npos ? std::u16string_view() : m_rest.substr(end + 1);
        return text;
    }

    void format(char16_t what, std::u16string_view value)
    {
        LetterLook& look = m_look.letters;
        switch (what) {
        case u'A': m_look.place = placeOf(value); return;
        case u'C':
            look.color = OwnColor::fromIndex(static_cast<int>(inRange(value, 0, 256)));
            return;
        case u'c':
            look.color = bgrColor(static_cast<std::uint32_t>(inRange(value, 0, 0xFFFFFF)));
            return;
        case u'F':
        case u'f': look.font = &m_fonts.find(fontOf(value, what == u'f')); return;
        case u'H':
            if (const double height = resized(look.height, value); isDrawableHeight(height))
                look.height = height;
            return;
        case u'W':
            look.widthFactor = soundFactor(resized(look.widthFactor, value), look.widthFactor);
            return;
        case u'Q': look.slant = slantOf(numberIn(value, 0) * std::numbers::pi / 180); return;
        case u'T': look.tracking = std::clamp(resized(look.tracking, value), 0.1, 10.0); return;
        default: paragraphFormat(value); return;
        }
    }

    static double inRange(std::u16string_view value, double low, double high)
    {
        const double number = numberIn(value, low);
        return number >= low && number <= high ? number : low;
    }

    static LetterPlace placeOf(std::u16string_view value)
    {
        const double number = numberIn(value, 0);
        return number == 1   ? LetterPlace::Middle
               : number == 2 ? LetterPlace::Top
                             : LetterPlace::Bottom;
    }

    /// Blue stands in the highest byte.
    static OwnColor bgrColor(std::uint32_t bgr)
    {
        return OwnColor::fromRgb((bgr & 0xFF) << 16 | (bgr & 0xFF00) | (bgr >> 16 & 0xFF));
    }

    /// "Arial|b1|i0|c0|p34".
    static FontName fontOf(std::u16string_view value, bool isFamily)
    {
        FontName font;
        const auto end = value.find(u'|');
        font.name = value.substr(0, end);
        font.isFamily = isFamily;
        const std::u16string_view marks =
            end == std::u16string_view::npos ? std::u16string_view() : value.substr(end);
        font.isBold = marks.find(u"|b1") != std::u16string_view::npos;
        font.isItalic = marks.find(u"|i1") != std::u16string_view::npos;
        return font;
    }

    void paragraphFormat(std::u16string_view value)
    {
        ParagraphFormat changed = m_text.formats.back();
        ParagraphArguments(value, changed).read();
        m_text.formats.push_back(std::move(changed));
        m_text.paragraphs.back().format = static_cast<std::uint32_t>(m_text.formats.size() - 1);
    }

    /// "\Sa/b;", "\Sa#b;", "\Sa^b;"; a backslash takes the next sign as it is.
    void stack()
    {
        TextStack stack;
        bool isLower = false;
        while (!m_rest.empty()) {
            if (const auto sign = takePercentCharacter(m_rest)) {
                (isLower ? stack.lower : stack.upper) += *sign;
                continue;
            }
            if (const auto sign = takeCharacterCode(m_rest)) {
                (isLower ? stack.lower : stack.upper) += *sign;
                continue;
            }
            char32_t c = takeCharacter(m_rest);
            if (c == U';')
                break;
            if (c == U'\\' && !m_rest.empty())
                c = takeCharacter(m_rest);
            else if (!isLower && (c == U'/' || c == U'#' || c == U'^')) {
                isLower = true;
                stack.kind = c == U'/'   ? TextStack::Kind::Fraction
                             : c == U'#' ? TextStack::Kind::Diagonal
                                         : TextStack::Kind::Tolerance;
                continue;
            }
            if (c >= U' ')
                (isLower ? stack.lower : stack.upper) += c;
        }
        const std::size_t letters = stack.upper.size() + stack.lower.size();
        if (!isLower) { // nothing to stack
            for (const char32_t c : stack.upper)
                c == U' ' ? mark(TextPiece::Kind::Space) : letter(c);
        } else if (letters > 0 && letters <= kMostLetters) {
            trim(stack.upper);
            trim(stack.lower);
            m_stackedLetters += letters;
            m_text.pieces.push_back({TextPiece::Kind::Stack, false, 0, lookIndex(),
                                     static_cast<std::uint32_t>(m_text.stacks.size()), 1});
            m_text.stacks.push_back(std::move(stack));
        }
    }

    static void trim(std::u32string& text)
    {
        text.erase(0, std::min(text.find_first_not_of(U' '), text.size()));
        text.erase(text.find_last_not_of(U' ') + 1);
    }

    void letter(char32_t c)
    {
        if (c < U' ')
            return;
        const std::uint32_t look = lookIndex();
        const bool isAlone = standsAlone(c);
        const auto at = static_cast<std::uint32_t>(m_text.letters.size());
        m_text.letters += c;
        if (!m_text.pieces.empty() && !isAlone &&
            m_text.pieces.size() > m_text.paragraphs.back().firstPiece) {
            TextPiece& last = m_text.pieces.back();
            if (last.kind == TextPiece::Kind::Word && last.look == look && !last.mayBreakBefore) {
                ++last.count;
                return;
            }
        }
        m_text.pieces.push_back({TextPiece::Kind::Word, isAlone, 0, look, at, 1});
    }

    void mark(TextPiece::Kind kind)
    {
        m_text.pieces.push_back({kind, false, 0, lookIndex(), 0, 0});
    }

    std::uint32_t lookIndex()
    {
        if (!(m_text.looks.back() == m_look))
            m_text.looks.push_back(m_look);
        return static_cast<std::uint32_t>(m_text.looks.size() - 1);
    }

    void begin()
    {
        const auto at = static_cast<std::uint32_t>(m_text.pieces.size());
        m_text.paragraphs.push_back(
            {at, at, lookIndex(), static_cast<std::uint32_t>(m_text.formats.size() - 1)});
    }
    void end()
    {
        m_text.paragraphs.back().endPiece = static_cast<std::uint32_t>(m_text.pieces.size());
    }
    void nextParagraph()
    {
        end();
        begin();
    }

    std::u16string_view m_rest;
    Fonts& m_fonts;
    ParagraphText m_text;
    PieceLook m_look;
    std::vector<PieceLook> m_outer; // of the braces around
    std::size_t m_deeper = 0;       // braces beyond the deepest that count
    std::size_t m_stackedLetters = 0;
};

} // namespace

ParagraphText parsedParagraphs(std::u16string_view contents, const PieceLook& look, Fonts& fonts)
{
    return ParagraphParser(contents, look, fonts).parse();
}

} // namespace gs
