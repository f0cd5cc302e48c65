#include <db/text_measure.h>

namespace db {

namespace {

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

int hexDigit(char16_t unit)
{
    if (isDigit(unit))
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    return unit >= u'A' && unit <= u'F' ? unit - u'A' + 10 : -1;
}

/// Reads the codes of text one after the other.
class PlainText
{
public:
    explicit PlainText(std::u16string_view text) : m_rest(text) {}

    std::u16string line()
    {
        while (!m_rest.empty())
            if (!percentCode())
                m_out += take();
        return std::move(m_out);
    }

    std::u16string paragraphs()
    {
        while (!m_rest.empty()) {
            const char16_t unit = m_rest.front();
            if (unit == u'\\')
                backslashCode();
            else if (unit == u'{' || unit == u'}')
                take();
            else if (!percentCode())
                m_out += take();
        }
        return std::move(m_out);
    }

private:
    char16_t take()
    {
        const char16_t unit = m_rest.front();
        m_rest.remove_prefix(1);
        return unit;
    }

    /// "%%" and what follows; false when the rest does not begin with one.
    bool percentCode()
    {
        if (m_rest.size() < 3 || m_rest[0] != u'%' || m_rest[1] != u'%')
            return false;
        switch (m_rest[2]) {
        case u'd':
        case u'D': return replace(3, u'\u00B0');
        case u'p':
        case u'P': return replace(3, u'\u00B1');
        case u'c':
        case u'C': return replace(3, u'\u00D8');
        case u'%': return replace(3, u'%');
        case u'u':
        case u'U':
        case u'o':
        case u'O':
        case u'k':
        case u'K': m_rest.remove_prefix(3); return true;
        default: return numberedCharacter();
        }
    }

    bool numberedCharacter()
    {
        if (m_rest.size() < 5 || !isDigit(m_rest[2]) || !isDigit(m_rest[3]) || !isDigit(m_rest[4]))
            return false;
        const int number = (m_rest[2] - u'0') * 100 + (m_rest[3] - u'0') * 10 + (m_rest[4] - u'0');
        return replace(5, static_cast<char16_t>(number));
    }

    bool replace(std::size_t length, char16_t by)
    {
        m_rest.remove_prefix(length);
        if (by != 0)
            m_out += by;
        return true;
    }

    void backslashCode()
    {
        take();
        if (m_rest.empty()) {
            m_out += u'\\';
            return;
        }
        const char16_t code = take();
        switch (code) {
        case u'P':
        case u'N':
        case u'X': m_out += u'\n'; return;
        case u'~': m_out += u'\u00A0'; return;
        case u'L':
        case u'l':
        case u'O':
        case u'o':
        case u'K':
        case u'k': return;
        case u'S': stack(); return;
        case u'U': return characterCode();
        case u'A':
        case u'C':
        case u'c':
        case u'F':
        case u'f':
        case u'H':
        case u'W':
        case u'Q':
        case u'T':
        case u'p': dropArgument(); return;
        default: m_out += code; return; // "\\", "\{", "\}", and what nobody knows
        }
    }

    void dropArgument()
    {
        const auto end = m_rest.find(u';');
        m_rest = end == std::u16string_view::npos ? std::u16string_view() : m_rest.substr(end + 1);
    }

    /// "\Sa/b;": a fraction, or one above the other.
    void stack()
    {
        while (!m_rest.empty()) {
            char16_t unit = take();
            if (unit == u';')
                return;
            if (unit == u'\\' && !m_rest.empty())
                unit = take();
            else if (unit == u'^')
                unit = u' ';
            else if (unit == u'#')
                unit = u'/';
            m_out += unit;
        }
    }

    /// "\U+XXXX".
    void characterCode()
    {
        int value = 0;
        bool isCode = m_rest.size() >= 5 && m_rest[0] == u'+';
        for (std::size_t i = 1; isCode && i < 5; ++i) {
            isCode = hexDigit(m_rest[i]) >= 0;
            value = value * 16 + hexDigit(m_rest[i]);
        }
        if (isCode)
            replace(5, static_cast<char16_t>(value));
        else
            m_out += u'U';
    }

    std::u16string_view m_rest;
    std::u16string m_out;
};

} // namespace

std::u16string plainLine(std::u16string_view text)
{
    return PlainText(text).line();
}

std::u16string plainParagraphs(std::u16string_view contents)
{
    return PlainText(contents).paragraphs();
}

std::u16string escapedForMText(std::u16string_view text)
{
    std::u16string out;
    for (const char16_t unit : text) {
        if (unit == u'\n') {
            out += u"\\P";
            continue;
        }
        if (unit == u'\\' || unit == u'{' || unit == u'}')
            out += u'\\';
        out += unit;
    }
    return out;
}

} // namespace db
